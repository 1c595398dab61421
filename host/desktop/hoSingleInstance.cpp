// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoSingleInstance.h"

#include "app/ApplicationShell.h"
#include "platform/toolkit/gtComeToFront.h"
#include "platform/toolkit/gtTextConversion.h"

#include <utility>

bool hoSingleInstance::handOver(const std::vector<gtString>& documents, std::function<void()> onActivate)
{
    const auto onOpen = [](const std::vector<gtString>& requested)
    {
        for (const gtString& path : requested)
        {
            wxGetApp().MacOpenFile(gtPathTextFromBytes(path));
        }
    };
    _bus.setOnStartupId([](const gtString& id) { gtTakeStartupId(id); });
    _bus.setStartupId(gtStartupId());
    return _bus.start(documents, onOpen, std::move(onActivate)) == hoSessionBus::Outcome::HandedOver;
}

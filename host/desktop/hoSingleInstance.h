// SPDX-License-Identifier: Apache-2.0
// One application a session: a second start hands its documents over to the first and ends. Documents that come to the
// first one, from the desktop or from later starts, go through the application's MacOpenFile. Main thread only.
#ifndef COUNTERSIGN_HO_SINGLE_INSTANCE_H
#define COUNTERSIGN_HO_SINGLE_INSTANCE_H

#include "host/desktop/hoSessionBus.h"
#include "platform/baseTools/gtString.h"

#include <functional>
#include <vector>

class hoSingleInstance
{
public:
    // True: the application is running already and has taken the documents, or comes to the front if there are none;
    // nothing is left to do here. False: this is the first one, or there is no session bus. From now on onActivate is
    // called when a later start brings no documents, and documents are opened, both from the event loop, never from
    // inside this call. Call it once, with an ApplicationShell there.
    bool handOver(const std::vector<gtString>& documents, std::function<void()> onActivate);

    // From now on nothing is called any more, and a later start is the first one.
    void leave() { _bus.leave(); }

private:
    hoSessionBus _bus;
};

#endif

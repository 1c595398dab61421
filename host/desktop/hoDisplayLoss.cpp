// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoDisplayLoss.h"

#if defined(__APPLE__)

hoDisplayLoss::hoDisplayLoss(std::function<void()>) {}

hoDisplayLoss::~hoDisplayLoss() = default;

#else

#include <utility>

#include <X11/Xlib.h>

namespace
{
std::function<void()> onLossOfDisplay;
XIOErrorHandler pPreviousHandler = nullptr;

int handleLoss(Display* pDisplay)
{
    // Once: what is done may find the connection lost again.
    const std::function<void()> onLoss = std::exchange(onLossOfDisplay, nullptr);
    if (onLoss)
    {
        onLoss();
    }
    return pPreviousHandler == nullptr ? 0 : pPreviousHandler(pDisplay);
}
}  // namespace

hoDisplayLoss::hoDisplayLoss(std::function<void()> onLoss)
{
    onLossOfDisplay = std::move(onLoss);
    pPreviousHandler = XSetIOErrorHandler(&handleLoss);
}

hoDisplayLoss::~hoDisplayLoss()
{
    XSetIOErrorHandler(pPreviousHandler);
    onLossOfDisplay = nullptr;
}

#endif

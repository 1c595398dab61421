// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtMainThreadCall.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace
{
const int pauseBetweenLooks = 50;  // milliseconds
}

gtMainThreadCall::gtMainThreadCall(std::function<void()> function)
    : _function(std::move(function)), _isRequested(false), _ends{-1, -1}
{
    if (::pipe(_ends) == 0)
    {
        for (const int end : _ends)
        {
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
            ::fcntl(end, F_SETFL, O_NONBLOCK);
        }
        _pSource.reset(wxEventLoopBase::AddSourceForFD(_ends[0], this, wxEVENT_SOURCE_INPUT));
    }
    if (_pSource == nullptr)
    {
        // The system has no more descriptors to give.
        _look.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { callIfRequested(); });
        _look.Start(pauseBetweenLooks);
    }
}

gtMainThreadCall::~gtMainThreadCall()
{
    _pSource.reset();
    for (const int end : _ends)
    {
        if (end >= 0)
        {
            ::close(end);
        }
    }
}

void gtMainThreadCall::request() noexcept
{
    if (_isRequested.exchange(true) || _pSource == nullptr)
    {
        return;
    }
    // There is room: a byte is written again when the one before has been read.
    while (::write(_ends[1], "", 1) < 0 && errno == EINTR)
    {
    }
}

// One byte alone: one that is written for the next request by now stays.
void gtMainThreadCall::OnReadWaiting()
{
    char byte = 0;
    while (::read(_ends[0], &byte, 1) < 0 && errno == EINTR)
    {
    }
    callIfRequested();
}

void gtMainThreadCall::callIfRequested()
{
    if (_isRequested.exchange(false))
    {
        _function();
    }
}

// SPDX-License-Identifier: Apache-2.0
// A call on the main thread that any thread can ask for, however little memory there is. Asking takes no memory, no
// lock and nothing of the toolkit's, which keeps the lock of its queue of events when it finds no memory to put one in.
//
// Threads: request() may be called from any as long as the object is there. Everything else, construction and
// destruction too, is for the main thread, with an application object there.
#ifndef GT_MAIN_THREAD_CALL_H
#define GT_MAIN_THREAD_CALL_H

#include <wx/evtloop.h>
#include <wx/evtloopsrc.h>
#include <wx/timer.h>

#include <atomic>
#include <functional>
#include <memory>

class gtMainThreadCall : private wxEventLoopSourceHandler
{
public:
    // The function is called by whatever event loop runs on the main thread. It may neither run one itself, which would
    // see no request, nor throw, nor destroy this object.
    explicit gtMainThreadCall(std::function<void()> function);
    // The function is not called any more.
    ~gtMainThreadCall() override;
    gtMainThreadCall(const gtMainThreadCall&) = delete;
    gtMainThreadCall& operator=(const gtMainThreadCall&) = delete;

    // The function will be called, once for all requests since it was called last, and sees what their threads did
    // before them.
    void request() noexcept;

private:
    void OnReadWaiting() override;
    void OnWriteWaiting() override {}
    void OnExceptionWaiting() override {}
    void callIfRequested();

    const std::function<void()> _function;
    std::atomic<bool> _isRequested;
    int _ends[2];  // of a pipe that a request writes a byte into; -1 if there is none
    std::unique_ptr<wxEventLoopSource> _pSource;
    wxTimer _look;  // runs where there is no source
};

#endif

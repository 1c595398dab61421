// SPDX-License-Identifier: Apache-2.0
// While it lives, what the toolkit and the language find wrong reaches the registered assertion handlers, too:
//
// - failed wxASSERT, wxCHECK, wxFAIL and their kin, instead of the toolkit's own dialog. The program goes on behind
//   them.
// - exceptions that nothing catches in what the main loop and the loops of dialogs call: "Unhandled exception of type
//   TYPE: TEXT". The event is given up, the program goes on. Standard error has a line of it even where the registered
//   handlers are silent, since something that was asked for has not been done.
// - std::terminate, on any thread: "Terminated by an exception of type TYPE: TEXT". It is reported as the end that it
//   is (see arInteractiveAssertionFailureHandler::announceEnd), then the terminate handler from before is called.
//
// Exceptions in the main loop are reached by defining wxAppConsoleBase::OnExceptionInMainLoop and ProcessPendingEvents
// in the place of the toolkit's own, which works where the toolkit is a shared library with names that a program may
// replace (ELF). Elsewhere, and in an application class that overrides the function, the class itself says
//
//     bool OnExceptionInMainLoop() override { return arReportUnhandledException(); }
//
// One at a time. Threads: to be made and destroyed on the main thread; reports may come from any.
#ifndef AR_TOOLKIT_BRIDGE_H
#define AR_TOOLKIT_BRIDGE_H

#include <exception>

#include <wx/debug.h>

#pragma GCC visibility push(default)

class arToolkitBridge
{
public:
    arToolkitBridge();
    // What was in its place before is there again.
    ~arToolkitBridge();
    arToolkitBridge(const arToolkitBridge&) = delete;
    arToolkitBridge& operator=(const arToolkitBridge&) = delete;

private:
    const wxAssertHandler_t _assertHandlerBefore;
    const std::terminate_handler _terminateHandlerBefore;
};

// To be called where an exception is being handled: reports it, and gives true.
bool arReportUnhandledException();

#pragma GCC visibility pop

#endif

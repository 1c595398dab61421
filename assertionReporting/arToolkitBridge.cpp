// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arToolkitBridge.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <dlfcn.h>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>

#include <wx/app.h>

#include "assertionReporting/arInteractiveAssertionFailureHandler.h"
#include "assertionReporting/arWrittenFailures.h"
#include "platform/baseTools/gtAssert.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/toolkit/gtTextConversion.h"

namespace
{

std::atomic<bool> isBridged(false);
std::atomic<std::terminate_handler> terminateHandlerBefore(nullptr);

std::string currentExceptionsType()
{
    const std::type_info* const pType = abi::__cxa_current_exception_type();
    if (pType == nullptr)
    {
        return "unknown";
    }
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> pName(abi::__cxa_demangle(pType->name(), nullptr, nullptr, &status),
                                                       &std::free);
    return pName == nullptr ? pType->name() : pName.get();
}

// "type std::runtime_error: what it says", of the exception that is being handled.
std::string currentException()
{
    try
    {
        throw;
    }
    catch (const std::exception& error)
    {
        return "type " + currentExceptionsType() + ": " + error.what();
    }
    catch (const std::string& text)
    {
        return "type std::string: " + text;
    }
    catch (const char* pText)
    {
        return std::string("type const char*: ") + (pText == nullptr ? "(null)" : pText);
    }
    catch (...)
    {
        return "type " + currentExceptionsType();
    }
}

void onToolkitsAssertion(const wxString& file, int line, const wxString& function, const wxString& condition,
                         const wxString& message)
{
    // Some of the toolkit's macros hand the condition over in quotes.
    const bool isQuoted = condition.length() > 1 && condition.StartsWith("\"") && condition.EndsWith("\"");
    const wxString bareCondition = isQuoted ? condition.Mid(1, condition.length() - 2) : condition;
    const gtString conditionBytes = gtBytesFromText("Assertion failure (" + bareCondition + ")");
    const gtString messageBytes = gtBytesFromText(message);
    gtReportFailedAssertion(gtBytesFromText(function).asCharArray(), gtBytesFromText(file).asCharArray(), line,
                            conditionBytes.asCharArray(), message.empty() ? nullptr : messageBytes.asCharArray());
}

// In one line, unless the registry or the handler that asks writes one.
void reportUnhandledException(std::string_view text)
{
    const bool isHeard = gtAmountOfRegisteredAssertionFailureHandlers() > 0;
    const unsigned long before = arAmountOfWrittenFailures();
    gtReportFailedAssertion("OnExceptionInMainLoop", "", 0, text.data(), nullptr);
    if (!isHeard || arAmountOfWrittenFailures() != before)
    {
        return;
    }
    for (const char c : text)
    {
        static_cast<void>(std::fputc(static_cast<unsigned char>(c) < ' ' ? ' ' : c, stderr));
    }
    static_cast<void>(std::fputc('\n', stderr));
}

[[noreturn]] void onTerminate()
{
    // A failure in here would come back here.
    static thread_local bool isHere = false;
    if (!isHere)
    {
        isHere = true;
        arInteractiveAssertionFailureHandler::announceEnd();
        try
        {
            const std::string text = std::current_exception() == nullptr
                                         ? std::string("Terminated without an exception")
                                         : "Terminated by an exception of " + currentException();
            gtReportFailedAssertion("std::terminate", "", 0, text.c_str(), nullptr);
        }
        catch (const std::bad_alloc&)
        {
            gtReportFailedAssertion("std::terminate", "", 0, "Terminated", nullptr);
        }
    }
    const std::terminate_handler before = terminateHandlerBefore;
    if (before != nullptr)
    {
        before();
    }
    std::abort();
}

}  // namespace

bool arReportUnhandledException()
{
    try
    {
        reportUnhandledException("Unhandled exception of " + currentException());
    }
    catch (const std::bad_alloc&)
    {
        reportUnhandledException("Unhandled exception");
    }
    return true;
}

// In the place of the toolkit's own. Weak, so that a program with the toolkit inside keeps that one.
__attribute__((weak)) bool wxAppConsoleBase::OnExceptionInMainLoop()
{
    if (isBridged)
    {
        return arReportUnhandledException();
    }
    // What the toolkit does.
    throw;
}

#if defined(__ELF__)
// Calls of wxEvtHandler::CallAfter are made in here, and what they throw would go through the event loop's C code.
__attribute__((weak)) void wxAppConsoleBase::ProcessPendingEvents()
{
    // The toolkit's own, behind this one.
    using Function = void (*)(wxAppConsoleBase*);
    static const auto toolkitsFunction =
        reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_ZN16wxAppConsoleBase20ProcessPendingEventsEv"));
    if (!isBridged)
    {
        toolkitsFunction(this);
        return;
    }
    try
    {
        toolkitsFunction(this);
    }
    catch (...)
    {
        arReportUnhandledException();
    }
}
#endif

arToolkitBridge::arToolkitBridge()
    : _assertHandlerBefore(wxSetAssertHandler(&onToolkitsAssertion)),
      _terminateHandlerBefore(std::set_terminate(&onTerminate))
{
    terminateHandlerBefore = _terminateHandlerBefore;
    isBridged = true;
}

arToolkitBridge::~arToolkitBridge()
{
    isBridged = false;
    std::set_terminate(_terminateHandlerBefore);
    wxSetAssertHandler(_assertHandlerBefore);
}

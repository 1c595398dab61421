// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtAssert.h"

#include <cerrno>
#include <exception>

#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/baseTools/gtString.h"

int gtReportFailedAssertion(const char* functionName, const char* fileName, int lineNumber, const char* message,
                            const char* text) noexcept
{
    const int errorNumber = errno;
    gtString wholeMessage;
    const char* pMessage = message;
    if (text != nullptr)
    {
        try
        {
            wholeMessage.append(message).append(": ").append(text);
            pMessage = wholeMessage.asCharArray();
        }
        catch (const std::exception&)
        {
            // No memory, or more than a text holds. The condition alone says enough.
        }
    }
    // Allocating may have changed it, and handlers are to find that of the failing code.
    errno = errorNumber;
    gtTriggerAssertonFailureHandler(functionName, fileName, lineNumber, pMessage);
    return 0;
}

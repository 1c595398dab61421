// SPDX-License-Identifier: Apache-2.0
// What the program of these tests does is its first argument:
//
//   run             tells about its handler and its arguments, and closes its window
//   withoutWindow   has no memory for the main window
//   exitDecision    like run, but ends by the assertion dialog's exit decision, its window standing
//
// At the very end it tells how many handlers are registered, and fails an assertion.
#include <cstdio>
#include <cstdlib>

#include "MainFrame.h"

#include "app/ApplicationShell.h"
#include "assertionHandling/ahAssertDialog.h"
#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "platform/toolkit/gtTextConversion.h"

namespace
{

bool hasStarted = false;

void tell(MainFrame& frame)
{
    hasStarted = true;
    std::printf("window with %d handler\n", gtAmountOfRegisteredAssertionFailureHandlers());
    const wxArrayString& arguments = wxGetApp().argv.GetArguments();
    for (std::size_t i = 1; i < arguments.size(); ++i)
    {
        std::printf("argument %s\n", gtBytesFromArgument(arguments[i]).asCharArray());
    }
    static_cast<void>(std::fflush(stdout));
    if (arguments.size() > 1 && arguments[1] == "exitDecision")
    {
        wxGetApp().CallAfter(
            []
            {
                ahDialogBasedAssertionFailureHandler handler(0);
                handler.handleUsersDecision(AH_EXIT_BUTTON_ID, osFilePath(), 0);
            });
    }
    else
    {
        frame.CallAfter([&frame] { frame.Close(true); });
    }
}

// Made before main() and destroyed after it, when the application object is long gone.
class Witness
{
public:
    Witness()
    {
        MainFrame::whileConstructing() = &tell;
        // Before main() the arguments are found nowhere else.
        std::FILE* pCommandLine = std::fopen("/proc/self/cmdline", "r");
        char text[4096] = {};
        if (pCommandLine != nullptr)
        {
            const std::size_t length = std::fread(text, 1, sizeof(text) - 1, pCommandLine);
            static_cast<void>(std::fclose(pCommandLine));
            const std::string commandLine(text, length);
            MainFrame::hasNoMemory = commandLine.find(std::string("\0withoutWindow", 14)) != std::string::npos;
        }
    }

    ~Witness()
    {
        gtTriggerAssertonFailureHandler("~Witness", "shellProgram.cpp", 1, hasStarted ? "late" : "late, no window");
        std::printf("%d handlers at the end\n", gtAmountOfRegisteredAssertionFailureHandlers());
    }
};

Witness witness;

}  // namespace

// SPDX-License-Identifier: Apache-2.0
// The program countersign. Everything it does is in the library beside it.
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "cli/clArguments.h"
#include "cli/clCommands.h"
#include "cli/clInterrupt.h"
#include "cli/clStandardStreams.h"
#include "platform/osWrappers/osProcess.h"
#include "platform/osWrappers/osWriteAll.h"

namespace
{

// Where an exception leaves a function of a library that promises to throw none: without memory the parser's do.
[[noreturn]] void endWithoutMemory()
{
    try
    {
        if (std::current_exception() != nullptr)
        {
            std::rethrow_exception(std::current_exception());
        }
    }
    catch (const std::bad_alloc&)
    {
        constexpr std::string_view text = "countersign: std::bad_alloc\n";
        static_cast<void>(osWriteAll(STDERR_FILENO, text));
        std::_Exit(clStatusNotChecked);
    }
    catch (...)
    {
    }
    std::abort();
}

}  // namespace

int main(int argc, char** argv)
{
    std::set_terminate(endWithoutMemory);
    // Without them there is nobody to tell.
    if (!osOpenClosedStandardStreams())
    {
        return clStatusNotChecked;
    }
    try
    {
        // A core file would hold the private key.
        osWriteNoCoreFiles();
        clCatchInterrupts();
        const int status = clPerform(clParseArguments(std::vector<gtString>(argv + (argc > 0 ? 1 : 0), argv + argc)));
        clEndIfInterrupted();
        return status;
    }
    catch (const std::exception& problem)
    {
        clComplain(problem.what());
        return clStatusNotChecked;
    }
}

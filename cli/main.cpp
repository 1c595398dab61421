// SPDX-License-Identifier: Apache-2.0
// The program countersign. Everything it does is in the library beside it.
#include <exception>
#include <vector>

#include "cli/clArguments.h"
#include "cli/clCommands.h"
#include "cli/clInterrupt.h"
#include "cli/clStandardStreams.h"
#include "platform/osWrappers/osProcess.h"

int main(int argc, char** argv)
{
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

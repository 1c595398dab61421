// The program countersign. Everything it does is in the library beside it.
#include <exception>
#include <string>
#include <vector>

#include <sys/resource.h>

#include "cli/clArguments.h"
#include "cli/clCommands.h"
#include "cli/clInterrupt.h"
#include "cli/clStandardStreams.h"

namespace
{

// A core file would hold the private key.
void writeNoCoreFile()
{
    const struct rlimit none = {0, 0};
    static_cast<void>(setrlimit(RLIMIT_CORE, &none));
}

}  // namespace

int main(int argc, char** argv)
{
    try
    {
        writeNoCoreFile();
        clCatchInterrupts();
        const int status =
            clPerform(clParseArguments(std::vector<std::string>(argv + ((argc > 0) ? 1 : 0), argv + argc)));
        clEndIfInterrupted();
        return status;
    }
    catch (const std::exception& problem)
    {
        clComplain(problem.what());
        return clStatusNotChecked;
    }
}

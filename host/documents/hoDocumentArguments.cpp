// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoDocumentArguments.h"

#include "platform/osWrappers/osFileFacts.h"

#include <fstream>
#include <string>

namespace
{
bool isSameFile(const gtString& left, const gtString& right)
{
    osFileFacts leftFacts;
    osFileFacts rightFacts;
    return osReadFileFacts(left, leftFacts).isOk() && osReadFileFacts(right, rightFacts).isOk() &&
           leftFacts._device == rightFacts._device && leftFacts._fileNumber == rightFacts._fileNumber;
}
}  // namespace

std::vector<gtString> hoDocumentArguments(const std::vector<gtString>& arguments, const gtString& programPath)
{
    if (arguments.size() == 1)
    {
        const gtString& only = arguments[0];
        const bool isDocument = only.asCharArray()[0] == '/' && only != programPath && !isSameFile(only, programPath);
        return isDocument ? arguments : std::vector<gtString>();
    }

    std::vector<gtString> documents;
    for (std::size_t i = 1; i < arguments.size(); ++i)
    {
        if (!arguments[i].isEmpty())
        {
            documents.push_back(arguments[i]);
        }
    }
    return documents;
}

std::vector<gtString> hoRestoreLostArguments(const std::vector<gtString>& toolkits,
                                             const std::vector<gtString>& process,
                                             const std::function<bool(const gtString&)>& isLost)
{
    std::vector<gtString> all;
    std::size_t taken = 0;
    for (const gtString& argument : process)
    {
        const bool isToolkits = taken < toolkits.size() && toolkits[taken] == argument;
        if (isToolkits || isLost(argument))
        {
            all.push_back(argument);
        }
        taken += isToolkits ? 1 : 0;
    }
    return taken == toolkits.size() ? all : toolkits;
}

std::vector<gtString> hoProcessArguments()
{
    std::vector<gtString> arguments;
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::string argument;
    while (std::getline(file, argument, '\0'))
    {
        arguments.push_back(argument);
    }
    return arguments;
}

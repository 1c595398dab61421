// SPDX-License-Identifier: Apache-2.0
#include "cli/clColours.h"

#include <cstdlib>
#include <string_view>

#include "cli/clTerminal.h"
#include "host/messages/hoMessages.h"

namespace
{

std::string_view fromEnvironment(const char* pName)
{
    const char* const pText = std::getenv(pName);
    return pText == nullptr ? std::string_view() : std::string_view(pText);
}

bool areColoursWanted()
{
    const std::string_view terminal = fromEnvironment("TERM");
    return fromEnvironment("NO_COLOR").empty() && !terminal.empty() && terminal != "dumb" && clIsOutputATerminal();
}

const char* colourOf(hoVerdict verdict)
{
    switch (verdict)
    {
    case hoVerdict::Good:
        return "\033[32m";
    case hoVerdict::Bad:
        return "\033[1;31m";
    default:
        return "\033[33m";
    }
}

}  // namespace

gtString clVerdictWord(hoVerdict verdict)
{
    const gtString word = hoVerdictText(verdict);
    return areColoursWanted() ? gtString(colourOf(verdict)).append(word).append("\033[0m") : word;
}

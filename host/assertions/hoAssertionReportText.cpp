// SPDX-License-Identifier: Apache-2.0
#include "host/assertions/hoAssertionReportText.h"

#include "platform/osWrappers/osTime.h"

namespace
{

std::string onOneLine(std::string text)
{
    for (char& byte : text)
    {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x20U || value == 0x7FU)
        {
            byte = ' ';
        }
    }
    return text;
}

}  // namespace

const char* hoDecisionWord(hoAssertionDecision decision)
{
    switch (decision)
    {
    case hoAssertionDecision::None:
        break;
    case hoAssertionDecision::Closed:
        return "closed";
    case hoAssertionDecision::Ignore:
        return "ignore";
    case hoAssertionDecision::IgnoreAll:
        return "ignore all";
    case hoAssertionDecision::Open:
        return "open";
    case hoAssertionDecision::Debug:
        return "debug";
    case hoAssertionDecision::Exit:
        return "exit";
    }
    return "none";
}

std::string hoThreadWords(const hoAssertionRow& row, unsigned int mainThreadId)
{
    const std::string number = std::to_string(row._threadId);
    return (row._threadId == mainThreadId ? "main (" + number + ")" : number) +
           (row._isOfSeveralThreads ? ", others" : "");
}

std::string hoReportTime(std::int64_t seconds)
{
    gtString text;
    osTime(seconds).timeAsString(text, osTime::DATE_AND_TIME, osTime::LOCAL);
    return text.asStdString();
}

std::vector<std::string> hoAssertionReportLines(const std::vector<hoAssertionRow>& rows, unsigned int mainThreadId)
{
    std::vector<std::string> lines = {"File\tLine\tCount\tFirst\tLast\tThread\tDecision\tFunction\tReason"};
    lines.reserve(rows.size() + 1);
    for (const hoAssertionRow& row : rows)
    {
        lines.push_back(onOneLine(row._file) + "\t" + std::to_string(row._line) + "\t" + std::to_string(row._count) +
                        "\t" + hoReportTime(row._firstSeconds) + "\t" + hoReportTime(row._lastSeconds) + "\t" +
                        hoThreadWords(row, mainThreadId) + "\t" + hoDecisionWord(row._decision) + "\t" +
                        onOneLine(row._function) + "\t" + onOneLine(row._message));
    }
    return lines;
}

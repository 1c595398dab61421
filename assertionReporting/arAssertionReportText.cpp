// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arAssertionReportText.h"

#include "assertionReporting/arStackTrace.h"
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

std::string stackOnOneLine(const std::vector<std::uintptr_t>& stack)
{
    std::string text;
    for (const std::string& frame : arStackLines(stack))
    {
        text += (text.empty() ? "" : "; ") + onOneLine(frame);
    }
    return text;
}

}  // namespace

const char* arDecisionWord(arAssertionDecision decision)
{
    switch (decision)
    {
    case arAssertionDecision::None:
        break;
    case arAssertionDecision::Closed:
        return "closed";
    case arAssertionDecision::Ignore:
        return "ignore";
    case arAssertionDecision::IgnoreAll:
        return "ignore all";
    case arAssertionDecision::Open:
        return "open";
    case arAssertionDecision::Debug:
        return "debug";
    case arAssertionDecision::Exit:
        return "exit";
    case arAssertionDecision::Terminated:
        return "terminated";
    }
    return "none";
}

std::string arThreadWords(const arAssertionRow& row, unsigned int mainThreadId)
{
    const std::string number = std::to_string(row._threadId);
    return (row._threadId == mainThreadId ? "main (" + number + ")" : number) +
           (row._isOfSeveralThreads ? ", others" : "");
}

std::string arReportTime(std::int64_t seconds)
{
    gtString text;
    osTime(seconds).timeAsString(text, osTime::DATE_AND_TIME, osTime::LOCAL);
    return std::string(text.asCharArray());
}

std::vector<std::string> arAssertionReportLines(const std::vector<arAssertionRow>& rows, unsigned int mainThreadId)
{
    std::vector<std::string> lines = {"File\tLine\tCount\tFirst\tLast\tThread\tDecision\tFunction\tReason\tStack"};
    lines.reserve(rows.size() + 1);
    for (const arAssertionRow& row : rows)
    {
        lines.push_back(onOneLine(row._file) + "\t" + std::to_string(row._line) + "\t" + std::to_string(row._count) +
                        "\t" + arReportTime(row._firstSeconds) + "\t" + arReportTime(row._lastSeconds) + "\t" +
                        arThreadWords(row, mainThreadId) + "\t" + arDecisionWord(row._decision) + "\t" +
                        onOneLine(row._function) + "\t" + onOneLine(row._message) + "\t" + stackOnOneLine(row._stack));
    }
    return lines;
}

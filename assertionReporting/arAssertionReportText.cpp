// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arAssertionReportText.h"

#include "assertionReporting/arStackTrace.h"
#include "platform/osWrappers/osTime.h"

#include <string>
#include <utility>

namespace
{

gtString onOneLine(const gtString& text)
{
    std::string line = text.asStdString();
    for (char& byte : line)
    {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x20U || value == 0x7FU)
        {
            byte = ' ';
        }
    }
    return line;
}

gtString stackOnOneLine(const std::vector<std::uintptr_t>& stack)
{
    gtString text;
    for (const gtString& frame : arStackLines(stack))
    {
        text.append(text.isEmpty() ? "" : "; ").append(onOneLine(frame));
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

gtString arThreadWords(const arAssertionRow& row, unsigned int mainThreadId)
{
    const std::string number = std::to_string(row._threadId);
    const bool isMain = row._threadId == mainThreadId;
    return gtString(isMain ? "main (" : "")
        .append(number)
        .append(isMain ? ")" : "")
        .append(row._isOfSeveralThreads ? ", others" : "");
}

gtString arReportTime(std::int64_t seconds)
{
    gtString text;
    osTime(seconds).timeAsString(text, osTime::DATE_AND_TIME, osTime::LOCAL);
    return text;
}

std::vector<gtString> arAssertionReportLines(const std::vector<arAssertionRow>& rows, unsigned int mainThreadId)
{
    std::vector<gtString> lines = {"File\tLine\tCount\tFirst\tLast\tThread\tDecision\tFunction\tReason\tStack"};
    lines.reserve(rows.size() + 1);
    for (const arAssertionRow& row : rows)
    {
        const gtString fields[] = {onOneLine(row._file),           std::to_string(row._line),
                                   std::to_string(row._count),     arReportTime(row._firstSeconds),
                                   arReportTime(row._lastSeconds), arThreadWords(row, mainThreadId),
                                   arDecisionWord(row._decision),  onOneLine(row._function),
                                   onOneLine(row._message),        stackOnOneLine(row._stack)};
        gtString line;
        for (const gtString& field : fields)
        {
            line.append(&field == fields ? "" : "\t").append(field);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

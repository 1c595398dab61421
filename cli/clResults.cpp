// SPDX-License-Identifier: Apache-2.0
#include "cli/clResults.h"

#include <algorithm>
#include <string>

#include "cli/clJsonOutput.h"
#include "cli/clStandardStreams.h"
#include "host/messages/hoNumbers.h"

void clResults::add(const gtString& document, const clOutcome& outcome)
{
    count(outcome);
    const bool isLineWanted = !_arguments._isStatusOnly && (outcome._status != clStatusGood || !_arguments._isQuiet);
    if (!_arguments._isJsonWanted)
    {
        print(outcome, isLineWanted);
    }
    else if (isLineWanted || !outcome._messages.empty())
    {
        printJson(document, outcome);
    }
}

gtString clResults::summary(std::size_t amountNotBegun, std::size_t amountOfSignatures) const
{
    std::vector<Amount> amounts = _amounts;
    if (amountNotBegun > 0)
    {
        amounts.push_back({"not begun", "not-begun", amountNotBegun});
    }
    std::size_t inAll = 0;
    gtString kinds;
    for (const Amount& amount : amounts)
    {
        inAll += amount._amount;
        kinds.append(kinds.isEmpty() ? ": " : ", ").append(std::to_string(amount._amount)).append(' ');
        kinds.append(amount._kind);
    }
    gtString text = hoAmountText(inAll, "document", "documents").append(kinds);
    if (amountOfSignatures > 0)
    {
        text.append("; ").append(hoAmountText(amountOfSignatures, "signature", "signatures")).append(" left out");
    }
    return text.append('\n');
}

clJsonObject clResults::jsonSummary(std::size_t amountNotBegun, std::size_t amountOfSignatures) const
{
    std::size_t inAll = amountNotBegun;
    clJsonObject results;
    for (const Amount& amount : _amounts)
    {
        inAll += amount._amount;
        results.addNumber(amount._result.asCharArray(), amount._amount);
    }
    clJsonObject object = clBeginJson("summary", _arguments._command);
    object.addNumber("documents", inAll).addObject("results", results);
    object.addNumber("notBegun", amountNotBegun).addNumber("signaturesLeftOut", amountOfSignatures);
    return object;
}

void clResults::count(const clOutcome& outcome)
{
    const auto found = std::find_if(_amounts.begin(), _amounts.end(),
                                    [&outcome](const Amount& amount) { return amount._kind == outcome._kind; });
    if (found == _amounts.end())
    {
        _amounts.push_back({outcome._kind, outcome._result, 1});
    }
    else
    {
        ++found->_amount;
    }
}

void clResults::print(const clOutcome& outcome, bool isLineWanted) const
{
    for (const clMessage& message : outcome._messages)
    {
        clTell(message);
    }
    clWriteOutput(outcome._product);
    if (isLineWanted)
    {
        clWriteOutput(outcome._line);
    }
}

void clResults::printJson(const gtString& document, const clOutcome& outcome) const
{
    clJsonObject object = clBeginJson("document", _arguments._command);
    object.addFileName("file", document).add("result", outcome._result);
    object.addNumber("status", static_cast<std::size_t>(outcome._status)).append(outcome._facts);
    clWriteJson(object.addMessages("messages", outcome._messages));
}

// SPDX-License-Identifier: Apache-2.0
#include "cli/clResults.h"

#include <algorithm>
#include <string>

#include "cli/clStandardStreams.h"
#include "host/messages/hoNumbers.h"

void clResults::add(const clOutcome& outcome)
{
    const auto found =
        std::find_if(_amounts.begin(), _amounts.end(),
                     [&outcome](const auto& kindAndAmount) { return kindAndAmount.first == outcome._kind; });
    if (found == _amounts.end())
    {
        _amounts.emplace_back(outcome._kind, 1);
    }
    else
    {
        ++found->second;
    }
    for (const gtString& complaint : outcome._complaints)
    {
        clComplain(complaint);
    }
    clWriteOutput(outcome._product);
    if (!_arguments._isStatusOnly && (outcome._status != clStatusGood || !_arguments._isQuiet))
    {
        clWriteOutput(outcome._line);
    }
}

gtString clResults::summary(std::size_t amountNotBegun, std::size_t amountOfSignatures) const
{
    std::vector<std::pair<gtString, std::size_t>> amounts = _amounts;
    if (amountNotBegun > 0)
    {
        amounts.emplace_back("not begun", amountNotBegun);
    }
    std::size_t inAll = 0;
    gtString kinds;
    for (const auto& [kind, amount] : amounts)
    {
        inAll += amount;
        kinds.append(kinds.isEmpty() ? ": " : ", ").append(std::to_string(amount)).append(' ').append(kind);
    }
    gtString text = hoAmountText(inAll, "document", "documents").append(kinds);
    if (amountOfSignatures > 0)
    {
        text.append("; ").append(hoAmountText(amountOfSignatures, "signature", "signatures")).append(" left out");
    }
    return text.append('\n');
}

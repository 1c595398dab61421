// SPDX-License-Identifier: Apache-2.0
#include "cli/clNearestWord.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/baseTools/gtStartsWith.h"

namespace
{

// A word that is longer is no misspelling of anything.
constexpr std::size_t longestWord = 40;
// Words that are shorter begin too many others.
constexpr std::size_t shortestBeginning = 3;

// The optimal string alignment distance.
std::size_t distance(std::string_view left, std::string_view right)
{
    std::vector<std::vector<std::size_t>> table(left.size() + 1, std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i)
    {
        for (std::size_t j = 0; j <= right.size(); ++j)
        {
            if (i == 0 || j == 0)
            {
                table[i][j] = i + j;
                continue;
            }
            const std::size_t replaced = table[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
            table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
            {
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
            }
        }
    }
    return table[left.size()][right.size()];
}

}  // namespace

gtString clNearestWord(const gtString& word, const std::vector<gtString>& candidates)
{
    const std::string_view given = word.asStringView();
    if (given.size() > longestWord)
    {
        return gtString();
    }
    gtString nearest;
    std::size_t least = given.size() / 3 + 1;
    for (const gtString& candidate : candidates)
    {
        if (given.size() >= shortestBeginning && gtStartsWith(candidate.asStringView(), given))
        {
            return candidate;
        }
        const std::size_t mistakes = distance(given, candidate.asStringView());
        if (mistakes < least)
        {
            least = mistakes;
            nearest = candidate;
        }
    }
    return nearest;
}

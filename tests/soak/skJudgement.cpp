// SPDX-License-Identifier: Apache-2.0
#include "skJudgement.h"

#include <algorithm>
#include <cstdio>

double skSlope(const std::vector<double>& positions, const std::vector<double>& values)
{
    std::vector<double> slopes;
    for (std::size_t left = 0; left < positions.size(); ++left)
    {
        for (std::size_t right = left + 1; right < positions.size(); ++right)
        {
            if (positions[right] > positions[left])
            {
                slopes.push_back((values[right] - values[left]) / (positions[right] - positions[left]));
            }
        }
    }
    if (slopes.empty())
    {
        return 0;
    }
    const auto middle = slopes.begin() + static_cast<std::ptrdiff_t>(slopes.size() / 2);
    std::nth_element(slopes.begin(), middle, slopes.end());
    return *middle;
}

std::vector<skFinding> skJudge(const std::vector<skMoment>& moments)
{
    std::vector<skFinding> findings;
    for (std::size_t number = 0; number < skAmountOfResources; ++number)
    {
        std::vector<double> positions;
        std::vector<double> values;
        for (const skMoment& moment : moments)
        {
            positions.push_back(moment._operations);
            values.push_back(moment._sample.at(number));
        }
        skFinding finding;
        finding._resource = static_cast<skResource>(number);
        finding._first = values.front();
        finding._last = values.back();
        if (number < skAmountOfMemories)
        {
            const double slope = skSlope(positions, values);
            finding._growth = slope * 1000;
            finding._bound = skMostGrowth;
            finding._isGrown =
                finding._growth > finding._bound && slope * (positions.back() - positions.front()) > skNoise;
        }
        else
        {
            finding._growth = finding._last - finding._first;
            finding._isGrown = finding._growth > 0;
        }
        findings.push_back(finding);
    }
    return findings;
}

std::string skTableOf(const std::vector<skFinding>& findings)
{
    std::string table = "                    first          last    growth/1000 ops   bound\n";
    for (const skFinding& finding : findings)
    {
        const bool isMemory = static_cast<std::size_t>(finding._resource) < skAmountOfMemories;
        const double unit = isMemory ? 1024 : 1;
        char line[160];
        static_cast<void>(std::snprintf(line, sizeof line, "%-12s %9.0f %s %9.0f %s %9.1f %s %9.0f %s  %s\n",
                                        skNameOf(finding._resource), finding._first / unit, isMemory ? "KiB" : "   ",
                                        finding._last / unit, isMemory ? "KiB" : "   ", finding._growth / unit,
                                        isMemory ? "KiB" : "all", finding._bound / unit, isMemory ? "KiB" : "   ",
                                        !finding._isGrown ? ""
                                        : isMemory        ? "HAS GROWN"
                                                          : "LOST"));
        table += line;
    }
    return table;
}

// SPDX-License-Identifier: Apache-2.0
#include "tests/support/tsContrast.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace
{

double luminance(const wxColour& colour)
{
    const auto linear = [](unsigned char value)
    { return value <= 10 ? value / 255.0 / 12.92 : std::pow((value / 255.0 + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.Red()) + 0.7152 * linear(colour.Green()) + 0.0722 * linear(colour.Blue());
}

}  // namespace

double tsContrast(const wxColour& one, const wxColour& other)
{
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

tsInk tsInkOf(const wxImage& picture, const wxRect& rect)
{
    std::map<unsigned int, int> amounts;
    const wxRect inside = wxRect(picture.GetSize()).Intersect(rect);
    for (int y = inside.GetTop(); y <= inside.GetBottom(); ++y)
    {
        for (int x = inside.GetLeft(); x <= inside.GetRight(); ++x)
        {
            amounts[wxColour(picture.GetRed(x, y), picture.GetGreen(x, y), picture.GetBlue(x, y)).GetRGB()]++;
        }
    }
    tsInk ink = {*wxWHITE, *wxWHITE};
    const auto commonest = std::max_element(amounts.begin(), amounts.end(),
                                            [](const auto& a, const auto& b) { return a.second < b.second; });
    if (commonest != amounts.end())
    {
        ink.ground.SetRGB(commonest->first);
        ink.letters = ink.ground;
    }
    for (const auto& amount : amounts)
    {
        wxColour colour;
        colour.SetRGB(amount.first);
        ink.letters = tsContrast(colour, ink.ground) > tsContrast(ink.letters, ink.ground) ? colour : ink.letters;
    }
    return ink;
}

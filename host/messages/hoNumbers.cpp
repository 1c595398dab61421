// SPDX-License-Identifier: Apache-2.0
#include "host/messages/hoNumbers.h"

#include "host/messages/hoFilledText.h"
#include "host/messages/hoLanguage.h"
#include "platform/baseTools/gtNumberText.h"

#include <climits>
#include <cmath>
#include <string>

gtString hoNumberText(std::uint64_t number)
{
    const hoNumberMarks& marks = hoMarksOfNumbers();
    const std::string group = marks._group.asStdString();
    const std::string_view sizes = marks._sizes.asStringView();
    std::string digits = std::to_string(number);
    std::size_t end = digits.length();
    for (std::size_t i = 0; !sizes.empty(); i += i + 1 < sizes.size() ? 1U : 0U)
    {
        // CHAR_MAX says that there are no further groups.
        const std::size_t size = static_cast<unsigned char>(sizes[i]);
        if (size == 0 || size == CHAR_MAX || end <= size)
        {
            break;
        }
        end -= size;
        digits.insert(end, group);
    }
    return digits;
}

gtString hoAmountText(std::uint64_t amount, const char* pOne, const char* pMany)
{
    return gtNumberText(amount).append(' ').append(amount == 1 ? pOne : pMany);
}

gtString hoExactSizeText(std::uint64_t bytes)
{
    return hoFilledText(hoTranslatedPlural("%s byte", "%s bytes", bytes), {hoNumberText(bytes)});
}

gtString hoSizeText(std::uint64_t bytes)
{
    const std::uint64_t step = 1000;
    if (bytes < step)
    {
        return hoExactSizeText(bytes);
    }
    const gtString formats[] = {hoTranslated("%s kB"), hoTranslated("%s MB"), hoTranslated("%s GB"),
                                hoTranslated("%s TB"), hoTranslated("%s PB"), hoTranslated("%s EB")};
    const gtString* pFormat = formats;
    std::uint64_t unit = step;
    // Half of the last figure is added by rounding: 999,500 bytes are 1.00 MB and not 1000 kB.
    while (unit < step * step * step * step * step * step && bytes >= unit * step - unit / 2)
    {
        unit *= step;
        ++pFormat;
    }
    const double value = static_cast<double>(bytes) / static_cast<double>(unit);
    const int decimals = value < 9.995 ? 2 : (value < 99.95 ? 1 : 0);
    // Not printf, which takes the decimal point from the locale, whatever the language is.
    const std::uint64_t scale = decimals == 2 ? 100 : (decimals == 1 ? 10 : 1);
    const auto scaled = static_cast<std::uint64_t>(std::lround(value * static_cast<double>(scale)));
    gtString text(std::to_string(scaled / scale));
    if (decimals > 0)
    {
        const std::string fraction = std::to_string(scale + scaled % scale).substr(1);
        text.append(hoMarksOfNumbers()._decimal).append(fraction);
    }
    return hoFilledText(*pFormat, {text});
}

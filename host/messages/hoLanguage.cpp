// SPDX-License-Identifier: Apache-2.0
#include "host/messages/hoLanguage.h"

namespace
{
hoLanguage& theLanguage()
{
    static hoLanguage language;
    return language;
}
}  // namespace

void hoSetLanguage(const hoLanguage& language)
{
    theLanguage() = language;
}

const hoNumberMarks& hoMarksOfNumbers()
{
    return theLanguage()._marks;
}

gtString hoTranslated(const char* pText)
{
    const auto translate = theLanguage()._translate;
    return translate == nullptr ? gtString(pText) : translate(pText);
}

gtString hoTranslatedPlural(const char* pOne, const char* pMany, std::uint64_t amount)
{
    const auto translate = theLanguage()._translatePlural;
    return translate == nullptr ? gtString(amount == 1 ? pOne : pMany) : translate(pOne, pMany, amount);
}

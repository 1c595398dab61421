// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtDisplayText.h"

#include "platform/toolkit/gtTextConversion.h"

namespace
{
const wxUniChar replacement(0xFFFD);
const wxUint32 firstPicture = 0x203C;

// Characters that cannot be seen and change how their neighbours are seen.
bool isInvisible(wxUint32 character)
{
    return (character >= 0x80 && character <= 0x9F) || character == 0xAD || character == 0x34F || character == 0x61C ||
           character == 0x115F || character == 0x1160 || character == 0x17B4 || character == 0x17B5 ||
           (character >= 0x180B && character <= 0x180F) || character == 0x3164 || character == 0xFFA0 ||
           (character >= 0x1D173 && character <= 0x1D17A) || (character >= 0xE0100 && character <= 0xE01EF) ||
           (character >= 0x200B && character <= 0x200F) || (character >= 0x202A && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF ||
           (character >= 0xFFF0 && character <= 0xFFFB) || (character >= 0xE0000 && character <= 0xE007F);
}

wxUniChar harmless(wxUniChar character)
{
    const wxUint32 value = character.GetValue();
    const wxUint32 firstControlPicture = 0x2400;
    if (value < 0x20)
    {
        return wxUniChar(firstControlPicture + value);
    }
    if (value == 0x7F)
    {
        return wxUniChar(0x2421);
    }
    if (value == 0x2028 || value == 0x2029)
    {
        return wxUniChar(0x2424);
    }
    return isInvisible(value) ? replacement : character;
}

wxString withoutMiddle(const wxString& text, std::size_t mostCharacters)
{
    if (text.length() <= mostCharacters)
    {
        return text;
    }
    const std::size_t atEnd = (mostCharacters - 1) / 3;
    return text.Left(mostCharacters - 1 - atEnd) + wxUniChar(0x2026) + text.Right(atEnd);
}
}  // namespace

wxString gtDisplayText(const gtString& bytes, std::size_t mostCharacters)
{
    return gtHarmlessText(gtTextFromBytes(bytes), mostCharacters);
}

wxString gtHarmlessText(const wxString& text, std::size_t mostCharacters)
{
    wxString line;
    wxUint32 before = 0;
    for (const wxUniChar character : withoutMiddle(gtShowableText(text), mostCharacters))
    {
        // Behind a picture they say whether it is coloured; behind a letter they say nothing.
        const bool isVariation = character.GetValue() >= 0xFE00 && character.GetValue() <= 0xFE0F;
        line += isVariation && before < firstPicture ? replacement : harmless(character);
        before = character.GetValue();
    }
    return line;
}

wxString gtNumberText(std::uint64_t number)
{
    wxString digits;
    digits << static_cast<wxULongLong_t>(number);
    for (std::size_t end = digits.length(); end > 3; end -= 3)
    {
        digits.insert(end - 3, ",");
    }
    return digits;
}

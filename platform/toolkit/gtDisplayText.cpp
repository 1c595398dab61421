// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtDisplayText.h"

#include "platform/baseTools/gtCharacters.h"
#include "platform/toolkit/gtTextConversion.h"

namespace
{
const wxUniChar replacement(0xFFFD);

wxUniChar pictureOfControl(wxUint32 control)
{
    const wxUint32 firstControlPicture = 0x2400;
    if (control < 0x20)
    {
        return wxUniChar(firstControlPicture + control);
    }
    return control == 0x7F ? wxUniChar(0x2421) : replacement;
}

wxUniChar harmless(wxUint32 character, wxUint32 before)
{
    switch (gtKindOfCharacter(character, before))
    {
    case gtCharacterKind::Harmless:
        break;
    case gtCharacterKind::Control:
        return pictureOfControl(character);
    case gtCharacterKind::LineSeparator:
        return wxUniChar(0x2424);
    case gtCharacterKind::Invisible:
        return replacement;
    }
    return wxUniChar(character);
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
        line += harmless(character.GetValue(), before);
        before = character.GetValue();
    }
    return line;
}

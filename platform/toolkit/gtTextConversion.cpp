// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtTextConversion.h"

#include <cstring>
#include <string_view>

#include <wx/strconv.h>

#include "platform/baseTools/gtUtf8.h"

namespace
{

// Where the reversible conversion puts the bytes that are not UTF-8.
const wxUint32 privateUseOfBytes = 0x100000;

const wxUint32 replacementCharacter = 0xFFFD;
const wxUint32 pictureOfNul = 0x2400;

void appendByte(gtString& bytes, wxUint32 byte)
{
    bytes.append(static_cast<char>(static_cast<unsigned char>(byte)));
}

void appendUtf8(gtString& bytes, wxUint32 codePoint)
{
    const unsigned int marks[] = {0x00, 0xC0, 0xE0, 0xF0};
    const int more = codePoint < 0x80 ? 0 : codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3;
    appendByte(bytes, marks[more] | (codePoint >> (6 * more)));
    for (int shift = 6 * (more - 1); shift >= 0; shift -= 6)
    {
        appendByte(bytes, 0x80u | ((codePoint >> shift) & 0x3Fu));
    }
}

bool standsForByte(wxUint32 codePoint)
{
    return codePoint >= privateUseOfBytes && codePoint <= privateUseOfBytes + 0xFF;
}

bool isEncodable(wxUint32 codePoint)
{
    return codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
}

}  // namespace

wxString gtTextFromBytes(const char* pBytes, std::size_t length)
{
    if (length == 0)
    {
        return wxString();
    }
    // It tries UTF-8 first.
    const wxString text(pBytes, wxConvWhateverWorks, length);
    return text.empty() ? wxString::From8BitData(pBytes, length) : text;
}

wxString gtTextFromBytes(const char* pText)
{
    return pText == nullptr ? wxString() : gtTextFromBytes(pText, std::strlen(pText));
}

wxString gtTextFromBytes(const gtString& bytes)
{
    return gtTextFromBytes(bytes.asCharArray(), static_cast<std::size_t>(bytes.length()));
}

gtString gtBytesFromText(const wxString& text)
{
    gtString bytes;
    for (const wxUniChar character : text)
    {
        const wxUint32 codePoint = character.GetValue();
        appendUtf8(bytes, isEncodable(codePoint) ? codePoint : replacementCharacter);
    }
    return bytes;
}

wxString gtShowableText(const wxString& text)
{
    wxString showable;
    for (const wxUniChar character : text)
    {
        const wxUint32 codePoint = character.GetValue();
        if (codePoint == 0)
        {
            showable += wxUniChar(pictureOfNul);
        }
        else
        {
            showable += isEncodable(codePoint) ? character : wxUniChar(replacementCharacter);
        }
    }
    return showable;
}

wxString gtPathTextFromBytes(const gtString& path)
{
    wxString text;
    std::string_view rest = path.asStringView();
    while (!rest.empty())
    {
        // The toolkit's own decoder lets overlong forms and surrogates pass.
        const std::size_t length = gtLengthOfUtf8Character(rest);
        const wxUint32 codePoint = length == 0 ? 0 : gtCodePointOfUtf8Character(rest.substr(0, length));
        if (length == 0 || standsForByte(codePoint))
        {
            text += wxUniChar(privateUseOfBytes + static_cast<unsigned char>(rest.front()));
            rest.remove_prefix(1);
        }
        else
        {
            text += wxUniChar(codePoint);
            rest.remove_prefix(length);
        }
    }
    return text;
}

gtString gtPathBytesFromText(const wxString& pathText)
{
    gtString path;
    for (const wxUniChar character : pathText)
    {
        const wxUint32 codePoint = character.GetValue();
        if (standsForByte(codePoint))
        {
            appendByte(path, codePoint & 0xFFu);
        }
        else
        {
            appendUtf8(path, codePoint);
        }
    }
    return path;
}

gtString gtBytesFromArgument(const wxString& argument)
{
    const wxScopedCharBuffer bytes = argument.mb_str(wxConvLocal);
    if (bytes.length() == 0)
    {
        return gtBytesFromText(argument);
    }
    return gtString(bytes.data(), static_cast<int>(bytes.length()));
}

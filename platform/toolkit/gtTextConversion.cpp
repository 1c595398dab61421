// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtTextConversion.h"

#include <cstring>

#include <wx/strconv.h>

namespace
{

// Where the reversible conversion puts the bytes that are not UTF-8.
const wxUint32 privateUseOfBytes = 0x100000;

const wxUint32 replacementCharacter = 0xFFFD;
const wxUint32 pictureOfNul = 0x2400;

// The length of the well-formed UTF-8 sequence that pBytes[0..length) begins with (Unicode 15.0, table 3-7), 0 if it
// begins with none. The toolkit's own decoder lets overlong sequences, surrogates and code points beyond the last pass.
std::size_t sequenceLength(const unsigned char* pBytes, std::size_t length)
{
    const unsigned char lead = pBytes[0];
    std::size_t sequence = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead < 0x80)
    {
        sequence = 1;
    }
    else if (lead < 0xC2)
    {
        return 0;
    }
    else if (lead <= 0xDF)
    {
        sequence = 2;
    }
    else if (lead <= 0xEF)
    {
        sequence = 3;
        low = lead == 0xE0 ? 0xA0 : low;
        high = lead == 0xED ? 0x9F : high;
    }
    else if (lead <= 0xF4)
    {
        sequence = 4;
        low = lead == 0xF0 ? 0x90 : low;
        high = lead == 0xF4 ? 0x8F : high;
    }
    if (sequence > length)
    {
        return 0;
    }
    for (std::size_t i = 1; i < sequence; i++)
    {
        if (pBytes[i] < low || pBytes[i] > high)
        {
            return 0;
        }
        low = 0x80;
        high = 0xBF;
    }
    return sequence;
}

// The code point of a well-formed sequence.
wxUint32 codePointOf(const unsigned char* pBytes, std::size_t sequence)
{
    if (sequence == 1)
    {
        return pBytes[0];
    }
    wxUint32 codePoint = pBytes[0] & (0x7Fu >> sequence);
    for (std::size_t i = 1; i < sequence; i++)
    {
        codePoint = (codePoint << 6) | (pBytes[i] & 0x3Fu);
    }
    return codePoint;
}

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
    const auto* pBytes = reinterpret_cast<const unsigned char*>(path.asCharArray());
    const std::size_t length = static_cast<std::size_t>(path.length());
    wxString text;
    for (std::size_t i = 0; i < length;)
    {
        const std::size_t sequence = sequenceLength(pBytes + i, length - i);
        const wxUint32 codePoint = sequence == 0 ? 0 : codePointOf(pBytes + i, sequence);
        if (sequence == 0 || standsForByte(codePoint))
        {
            text += wxUniChar(privateUseOfBytes + pBytes[i]);
            i++;
        }
        else
        {
            text += wxUniChar(codePoint);
            i += sequence;
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

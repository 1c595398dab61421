#include "assertionHandling/ahTextConversion.h"

#include <cstring>

#include <wx/strconv.h>

namespace
{

// Where the reversible conversion puts the bytes that are not UTF-8.
const wxUint32 privateUseOfBytes = 0x100000;

bool isEncodable(wxUint32 codePoint)
{
    return codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
}

bool isAllEncodable(const wxString& text)
{
    for (const wxUniChar character : text)
    {
        if (!isEncodable(character.GetValue()))
        {
            return false;
        }
    }
    return true;
}

wxString replaceUnencodable(const wxString& text, wxUniChar forNul)
{
    wxString result;
    result.reserve(text.length());
    for (const wxUniChar character : text)
    {
        const wxUint32 codePoint = character.GetValue();
        if (codePoint == 0)
        {
            result += forNul;
        }
        else
        {
            result += isEncodable(codePoint) ? character : wxUniChar(0xFFFD);
        }
    }
    return result;
}

gtString toString(const wxScopedCharBuffer& bytes)
{
    return gtString(bytes.data(), static_cast<int>(bytes.length()));
}

wxMBConvUTF8 reversibleConversion()
{
    return wxMBConvUTF8(wxMBConvUTF8::MAP_INVALID_UTF8_TO_PUA);
}

}  // namespace

wxString ahTextFromBytes(const char* pBytes, std::size_t length)
{
    if (length == 0)
    {
        return wxString();
    }
    wxString text = wxString::FromUTF8(pBytes, length);
    // Half a surrogate pair passes the toolkit's decoder, and is not UTF-8.
    if (!text.empty() && isAllEncodable(text))
    {
        return text;
    }
    text = wxString(pBytes, wxConvWhateverWorks, length);
    if (!text.empty() && isAllEncodable(text))
    {
        return text;
    }
    return wxString::From8BitData(pBytes, length);
}

wxString ahTextFromBytes(const char* pText)
{
    return pText == nullptr ? wxString() : ahTextFromBytes(pText, std::strlen(pText));
}

wxString ahTextFromBytes(const gtString& bytes)
{
    return ahTextFromBytes(bytes.asCharArray(), static_cast<std::size_t>(bytes.length()));
}

gtString ahBytesFromText(const wxString& text)
{
    return toString((isAllEncodable(text) ? text : replaceUnencodable(text, wxUniChar(0))).utf8_str());
}

wxString ahShowableText(const wxString& text)
{
    if (isAllEncodable(text) && text.find(wxUniChar(0)) == wxString::npos)
    {
        return text;
    }
    return replaceUnencodable(text, wxUniChar(0x2400));
}

wxString ahPathTextFromBytes(const gtString& path)
{
    const wxMBConvUTF8 conversion = reversibleConversion();
    const wxString text(path.asCharArray(), conversion, static_cast<std::size_t>(path.length()));
    if (isAllEncodable(text))
    {
        return text;
    }
    // The toolkit's decoder lets some code points through that UTF-8 does not have, and windows refuse them.
    wxString encodable;
    for (const wxUniChar character : text)
    {
        if (isEncodable(character.GetValue()))
        {
            encodable += character;
            continue;
        }
        const wxScopedCharBuffer bytes = wxString(character).mb_str(conversion);
        for (std::size_t i = 0; i < bytes.length(); i++)
        {
            encodable += wxUniChar(privateUseOfBytes + static_cast<unsigned char>(bytes.data()[i]));
        }
    }
    return encodable;
}

gtString ahPathBytesFromText(const wxString& pathText)
{
    return toString(pathText.mb_str(reversibleConversion()));
}

gtString ahBytesFromArgument(const wxString& argument)
{
    const wxScopedCharBuffer bytes = argument.mb_str(wxConvLocal);
    if (bytes.length() > 0)
    {
        return toString(bytes);
    }
    return ahBytesFromText(argument);
}

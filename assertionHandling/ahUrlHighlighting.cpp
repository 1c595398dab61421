#include "assertionHandling/ahUrlHighlighting.h"

#include <string>

#include <wx/textctrl.h>

#ifdef __WXGTK__

namespace
{

// What the control takes for the beginning of a URL; something must follow it.
const char* const urlBeginnings[] = {"http://",   "https://",    "ftp://",  "file://",  "mailto://",
                                     "www.",      "ftp.",        "nntp://", "news://",  "mms://",
                                     "telnet://", "prospero://", "wais://", "gopher://"};

// Not by the C library, whose answers depend on the locale.
bool isBlank(wxUint32 codePoint)
{
    switch (codePoint)
    {
    case '\t':
    case '\n':
    case '\f':
    case '\r':
    case ' ':
    case 0x00A0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        return codePoint >= 0x2000 && codePoint <= 0x200A;
    }
}

bool isPunctuation(wxUint32 codePoint)
{
    if (codePoint < 0x80)
    {
        const bool isLetter = (codePoint | 0x20) >= 'a' && (codePoint | 0x20) <= 'z';
        return codePoint > ' ' && codePoint < 0x7F && !isLetter && !(codePoint >= '0' && codePoint <= '9');
    }
    return codePoint == 0x00A1 || codePoint == 0x00AB || codePoint == 0x00BB || codePoint == 0x00BF ||
           (codePoint >= 0x2010 && codePoint <= 0x2027) || (codePoint >= 0x2030 && codePoint <= 0x205E) ||
           (codePoint >= 0x3001 && codePoint <= 0x3003) || (codePoint >= 0x3008 && codePoint <= 0x3011);
}

bool beginsLikeUrl(const std::u32string& text, std::size_t begin, std::size_t end)
{
    for (const char* pExpected : urlBeginnings)
    {
        std::size_t i = begin;
        for (; *pExpected != '\0' && i < end; pExpected++, i++)
        {
            const char32_t character = text[i] >= U'A' && text[i] <= U'Z' ? text[i] | 0x20 : text[i];
            if (character != static_cast<char32_t>(*pExpected))
            {
                break;
            }
        }
        if (*pExpected == '\0' && i < end)
        {
            return true;
        }
    }
    return false;
}

void highlight(wxTextCtrl* pTextCtrl, long begin, long end)
{
    wxTextAttr style;
    if (pTextCtrl->GetStyle(begin, style) && style.HasFont())
    {
        pTextCtrl->SetStyle(begin, end, wxTextAttr(*wxBLUE, wxNullColour, style.GetFont().Underlined()));
    }
}

}  // namespace

void ahHighlightUrls(wxTextCtrl* pTextCtrl)
{
    // One element a character, so that an index is the control's position.
    std::u32string text;
    const wxString value = pTextCtrl->GetValue();
    text.reserve(value.length());
    for (const wxUniChar character : value)
    {
        text += static_cast<char32_t>(character.GetValue());
    }

    // The control's own rule: words between blanks, without punctuation around them but for a slash at the end.
    std::size_t wordEnd = 0;
    for (std::size_t wordBegin = 0; wordBegin < text.size(); wordBegin = wordEnd + 1)
    {
        wordEnd = wordBegin;
        while (wordEnd < text.size() && !isBlank(text[wordEnd]))
        {
            wordEnd++;
        }
        std::size_t begin = wordBegin;
        std::size_t end = wordEnd;
        while (begin < end && isPunctuation(text[begin]))
        {
            begin++;
        }
        while (end > begin && isPunctuation(text[end - 1]) && text[end - 1] != U'/')
        {
            end--;
        }
        if (beginsLikeUrl(text, begin, end))
        {
            highlight(pTextCtrl, static_cast<long>(begin), static_cast<long>(end));
        }
    }
}

#else

void ahHighlightUrls(wxTextCtrl* /*pTextCtrl*/) {}

#endif

// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtUrlHighlighting.h"

#include <string>

#include <wx/textctrl.h>

#ifdef __WXGTK__

#include <gtk/gtk.h>

namespace
{

// Every one more in a line costs as much again as all before it.
const int mostUrlsInALine = 1000;

// What the control takes for the beginning of a URL; something must follow it.
const char* const urlBeginnings[] = {"http://",   "https://",    "ftp://",  "file://",  "mailto://",
                                     "www.",      "ftp.",        "nntp://", "news://",  "mms://",
                                     "telnet://", "prospero://", "wais://", "gopher://"};

bool beginsLikeUrl(const std::u32string& text, std::size_t begin, std::size_t end)
{
    for (const char* pExpected : urlBeginnings)
    {
        std::size_t i = begin;
        for (; *pExpected != '\0' && i < end; ++pExpected, ++i)
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

GtkTextBuffer* bufferOf(wxTextCtrl* pTextCtrl)
{
    // The control's own window scrolls; the text is in the one inside.
    return gtk_text_view_get_buffer(GTK_TEXT_VIEW(gtk_bin_get_child(GTK_BIN(pTextCtrl->GetHandle()))));
}

// The control's own means set all of a style anew, for which they look through the whole text.
void highlight(GtkTextBuffer* pBuffer, std::size_t begin, std::size_t end)
{
    const char* const pName = "gtUrl";
    GtkTextTag* pTag = gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(pBuffer), pName);
    if (pTag == nullptr)
    {
        const GdkRGBA* const pBlue = *wxBLUE;
        pTag = gtk_text_buffer_create_tag(pBuffer, pName, "foreground-rgba", pBlue, "underline", PANGO_UNDERLINE_SINGLE,
                                          nullptr);
    }
    GtkTextIter beginPosition;
    GtkTextIter endPosition;
    gtk_text_buffer_get_iter_at_offset(pBuffer, &beginPosition, static_cast<gint>(begin));
    gtk_text_buffer_get_iter_at_offset(pBuffer, &endPosition, static_cast<gint>(end));
    gtk_text_buffer_apply_tag(pBuffer, pTag, &beginPosition, &endPosition);
}

}  // namespace

void gtHighlightUrls(wxTextCtrl* pTextCtrl)
{
    GtkTextBuffer* const pBuffer = bufferOf(pTextCtrl);
    // One element a character, so that an index is the control's position.
    std::u32string text;
    const wxString value = pTextCtrl->GetValue();
    text.reserve(value.length());
    for (const wxUniChar character : value)
    {
        text += static_cast<char32_t>(character.GetValue());
    }

    // The control's own rule: words between blanks, without punctuation around them but for a slash at the end.
    int urlsInLine = 0;
    std::size_t wordEnd = 0;
    for (std::size_t wordBegin = 0; wordBegin < text.size(); wordBegin = wordEnd + 1)
    {
        wordEnd = wordBegin;
        while (wordEnd < text.size() && g_unichar_isspace(text[wordEnd]) == FALSE)
        {
            ++wordEnd;
        }
        std::size_t begin = wordBegin;
        std::size_t end = wordEnd;
        while (begin < end && g_unichar_ispunct(text[begin]) != FALSE)
        {
            ++begin;
        }
        while (end > begin && g_unichar_ispunct(text[end - 1]) != FALSE && text[end - 1] != U'/')
        {
            end--;
        }
        if (urlsInLine < mostUrlsInALine && beginsLikeUrl(text, begin, end))
        {
            highlight(pBuffer, begin, end);
            ++urlsInLine;
        }
        if (wordEnd < text.size() && text[wordEnd] == U'\n')
        {
            urlsInLine = 0;
        }
    }
}

#else

void gtHighlightUrls(wxTextCtrl* /*pTextCtrl*/) {}

#endif

gtUrlDetectionPause::gtUrlDetectionPause(wxTextCtrl* pTextCtrl, std::size_t amountOfCharacters)
    : _pTextCtrl(pTextCtrl), _style(pTextCtrl->GetWindowStyleFlag())
{
    if (amountOfCharacters > gtMostDetected)
    {
        _pTextCtrl->SetWindowStyleFlag(_style & ~static_cast<long>(wxTE_AUTO_URL));
    }
}

gtUrlDetectionPause::~gtUrlDetectionPause()
{
    if (_pTextCtrl->GetWindowStyleFlag() != _style)
    {
        _pTextCtrl->SetWindowStyleFlag(_style);
    }
}

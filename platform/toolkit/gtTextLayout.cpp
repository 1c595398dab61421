// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtTextLayout.h"

#include <wx/textctrl.h>

#ifdef __WXGTK__

#include <gtk/gtk.h>

#include <memory>

namespace
{

// Short enough for the width of the widest characters to fit the layout's numbers.
const int pieceLength = 10000;
// A piece may be that much longer, to end where marks do not leave their letter.
const int mostMarks = 100;

const char* const anywhereName = "ahBreakAnywhere";
const char* const pieceName = "ahPiece";

GtkTextTag* tagNamed(GtkTextBuffer* pBuffer, const char* pName)
{
    return gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(pBuffer), pName);
}

GtkTextTag* anywhereTag(GtkTextBuffer* pBuffer)
{
    GtkTextTag* pTag = tagNamed(pBuffer, anywhereName);
    return pTag != nullptr ? pTag
                           : gtk_text_buffer_create_tag(pBuffer, anywhereName, "wrap-mode", GTK_WRAP_CHAR, nullptr);
}

// Text with another set of attributes is laid out apart. Kerning is what every font does without being asked, so this
// one changes nothing that could be seen.
GtkTextTag* pieceTag(GtkTextBuffer* pBuffer)
{
    GtkTextTag* pTag = tagNamed(pBuffer, pieceName);
    return pTag != nullptr ? pTag : gtk_text_buffer_create_tag(pBuffer, pieceName, "font-features", "kern=1", nullptr);
}

// Lines break behind these, and they take no room there.
bool isBlank(gunichar character)
{
    const GUnicodeBreakType type = g_unichar_break_type(character);
    return type == G_UNICODE_BREAK_SPACE || type == G_UNICODE_BREAK_ZERO_WIDTH_SPACE ||
           (type == G_UNICODE_BREAK_AFTER && g_unichar_isspace(character) != FALSE);
}

bool hasLongWord(const GtkTextIter& begin, const GtkTextIter& end)
{
    const std::unique_ptr<char, void (*)(void*)> text(gtk_text_iter_get_slice(&begin, &end), g_free);
    int length = 0;
    for (char* pText = text.get(); *pText != '\0' && length <= gtLongestUnbrokenWord; pText = g_utf8_next_char(pText))
    {
        length = isBlank(g_utf8_get_char(pText)) ? 0 : length + 1;
    }
    return length > gtLongestUnbrokenWord;
}

void goOnePiece(GtkTextIter& position, const GtkTextIter& end)
{
    gtk_text_iter_forward_chars(&position, pieceLength);
    for (int i = 0; i < mostMarks && g_unichar_ismark(gtk_text_iter_get_char(&position)) != FALSE; ++i)
    {
        gtk_text_iter_forward_char(&position);
    }
    if (gtk_text_iter_compare(&position, &end) > 0)
    {
        position = end;
    }
}

void layOutInPieces(GtkTextBuffer* pBuffer, const GtkTextIter& begin, const GtkTextIter& end)
{
    GtkTextIter position = begin;
    goOnePiece(position, end);
    while (gtk_text_iter_compare(&position, &end) < 0)
    {
        GtkTextIter next = position;
        goOnePiece(next, end);
        gtk_text_buffer_apply_tag(pBuffer, pieceTag(pBuffer), &position, &next);
        position = next;
        goOnePiece(position, end);
    }
}

void removeTag(GtkTextBuffer* pBuffer, const char* pName)
{
    GtkTextTag* const pTag = tagNamed(pBuffer, pName);
    if (pTag != nullptr)
    {
        GtkTextIter begin;
        GtkTextIter end;
        gtk_text_buffer_get_bounds(pBuffer, &begin, &end);
        gtk_text_buffer_remove_tag(pBuffer, pTag, &begin, &end);
    }
}

}  // namespace

void gtAllowBreaksInLongWords(wxTextCtrl* pTextCtrl)
{
    // The control's own window scrolls; the text is in the one inside.
    GtkTextBuffer* const pBuffer =
        gtk_text_view_get_buffer(GTK_TEXT_VIEW(gtk_bin_get_child(GTK_BIN(pTextCtrl->GetHandle()))));
    removeTag(pBuffer, anywhereName);
    removeTag(pBuffer, pieceName);
    GtkTextIter line;
    gtk_text_buffer_get_start_iter(pBuffer, &line);
    do
    {
        if (gtk_text_iter_get_chars_in_line(&line) <= gtLongestUnbrokenWord)
        {
            continue;
        }
        GtkTextIter end = line;
        if (gtk_text_iter_ends_line(&end) == FALSE)
        {
            gtk_text_iter_forward_to_line_end(&end);
        }
        if (hasLongWord(line, end))
        {
            gtk_text_buffer_apply_tag(pBuffer, anywhereTag(pBuffer), &line, &end);
        }
        layOutInPieces(pBuffer, line, end);
    } while (gtk_text_iter_forward_line(&line) != FALSE);
}

#else

void gtAllowBreaksInLongWords(wxTextCtrl* /*pTextCtrl*/) {}

#endif

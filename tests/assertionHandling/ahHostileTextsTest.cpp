// SPDX-License-Identifier: Apache-2.0
// The dialog with texts that nobody would write on purpose: it shows all of them, and is as easy to end as ever. Laid
// out by the control's own means the longest would take many minutes, far beyond the test's patience.
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <wx/arrstr.h>
#include <wx/frame.h>
#include <wx/textctrl.h>

#include "assertionHandling/ahAssertDialog.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextLayout.h"
#include "platform/toolkit/gtUrlHighlighting.h"
#include "tests/support/tsWindowTest.h"

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

namespace
{

// What is laid out in the square of its length takes more than the test's time for that many characters without a
// blank, and widths do not fit the layout's numbers.
const std::size_t halfAMegabyte = 500000;

// The piece again and again, up to that many characters.
wxString repeated(const wxString& piece, std::size_t length)
{
    wxString text;
    text.reserve(length + piece.length());
    while (text.length() < length)
    {
        text += piece;
    }
    return text.Left(length);
}

wxString character(wxUint32 codePoint)
{
    return wxString(wxUniChar(codePoint));
}

wxTextCtrl* reportOf(const wxDialog& dialog)
{
    return dynamic_cast<wxTextCtrl*>(dialog.GetChildren().GetFirst()->GetData());
}

long amountOfLinesAcross(wxTextCtrl* pControl, long begin, long end)
{
    const int lineHeight = pControl->GetCharHeight();
    return (pControl->PositionToCoords(end).y - pControl->PositionToCoords(begin).y) / lineHeight;
}

// Shows the dialog, and ends it by Return once it has the keyboard and has painted the end of its report.
std::string showWith(const std::string& path, const wxString& reason, long leastLines = 1)
{
    ahAssertDialog dialog(osFilePath(gtString(path.data(), static_cast<int>(path.size()))), 7, reason, nullptr);
    wxTextCtrl* const pReport = reportOf(dialog);
    std::string text(pReport->GetValue().utf8_string());
    EXPECT_EQ(pReport->GetInsertionPoint(), pReport->GetLastPosition());
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
        .perform("look at the end and at the beginning",
                 [&]
                 {
                     pReport->ShowPosition(pReport->GetLastPosition());
                     tsRunEvents();
                     EXPECT_GE(amountOfLinesAcross(pReport, 0, pReport->GetLastPosition()), leastLines);
                     pReport->ShowPosition(0);
                     tsRunEvents();
                 })
        .perform("press Return", [] { tsPressKeys("Return"); })
        .start();
    EXPECT_EQ(dialog.ShowModal(), AH_IGNORE_ALL_BUTTON_ID);
    EXPECT_TRUE(script.isFinished());
    return text;
}

void expectShown(const wxString& reason, long leastLines = 1)
{
    // Compared without printing: a megabyte in a test's output helps nobody.
    const std::string expected = "Debug Assertion Failed!\n\nFile Name: a.c - 7\n\nFile Path: /a.c\n\n"
                                 "Assert Reason: \n\n" +
                                 reason.utf8_string();
    EXPECT_TRUE(showWith("/a.c", reason, leastLines) == expected);
}

}  // namespace

TEST(HostileTexts, OfHalfAMegabyteWithoutABlankAreShown)
{
    expectShown(repeated("abcdefghijklmnopqrstuvwxyz", halfAMegabyte), halfAMegabyte / 100);
}

TEST(HostileTexts, OfHalfAMegabyteInOneLineAreShown)
{
    expectShown(repeated("words and words ", halfAMegabyte), halfAMegabyte / 100);
}

TEST(HostileTexts, OfHalfAMegabyteOfLinesAreShown)
{
    expectShown(repeated("\n", halfAMegabyte / 2) + repeated("line\n", halfAMegabyte / 2));
}

TEST(HostileTexts, OfNothingButUrlsAreShown)
{
    // Were each of them highlighted, this would take as long.
    expectShown(repeated("http://a.b ", 700000));
    expectShown(repeated("(https://a.b/c?d=%20) ", 50000));
}

TEST(HostileTexts, OfControlCharactersAreShown)
{
    wxString controls;
    for (wxUint32 codePoint = 1; codePoint < 0x20; ++codePoint)
    {
        controls += codePoint == '\n' || codePoint == '\r' ? wxString() : character(codePoint);
    }
    expectShown(repeated(controls + character(0x7F) + character(0x85) + character(0x9B), 50000));
}

TEST(HostileTexts, OfOtherDirectionsAreShown)
{
    expectShown(repeated("a" + character(0x5D0), 50000) + "\n" + repeated(character(0x202E) + "b", 50000) + "\n" +
                repeated(character(0x627) + character(0x644), 50000));
}

TEST(HostileTexts, OfMarksWithoutLettersAreShown)
{
    expectShown(repeated(character(0x301) + character(0x20DD), 20000));
    expectShown("e" + repeated(character(0x301), 20000) + "\nend");
}

TEST(HostileTexts, ThatLookLikeSomethingElseAreTakenAsTheyAre)
{
    expectShown("<b>bold</b> &amp; <span foreground=\"red\">red</span> &Ignore %s %n %1$s \\n \\0 ]]> <!--");
}

TEST(HostileTexts, MayBeNames)
{
    const std::string word(150000, 'n');
    const std::string shown = showWith("/" + word + "/" + word + ".c", "x");
    EXPECT_TRUE(shown == "Debug Assertion Failed!\n\nFile Name: " + word + ".c - 7\n\nFile Path: /" + word + "/" +
                             word + ".c\n\nAssert Reason: \n\nx");
    const std::string invalid = "/\xff\xfe\xc0\x80" + std::string(50000, '\xff') + ".c";
    EXPECT_GT(showWith(invalid, "x").size(), 2 * 2 * 50000U);
    EXPECT_NE(showWith("/a\nb\r\n<i>&c%s.c", "x").find("File Path: /a\nb\r\n<i>&c%s.c\n"), std::string::npos);
}

TEST(HostileTexts, AreBrokenAtTheMarginOnlyInLinesWithLongWords)
{
    const wxString longWord('w', static_cast<std::size_t>(gtLongestUnbrokenWord) + 1);
    const wxString words = repeated(wxString('w', 30) + " ", 3100);
    ahAssertDialog dialog(osFilePath(gtString("/a.c")), 7, words + "\n" + longWord + " " + words, nullptr);
    wxTextCtrl* const pReport = reportOf(dialog);
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
        .perform("see where the lines break",
                 [&]
                 {
                     // The same words take less room where they may be broken than where they may not.
                     const long first = pReport->GetValue().Find(words);
                     const long length = static_cast<long>(words.length());
                     const long second = first + length + 1 + static_cast<long>(longWord.length()) + 1;
                     EXPECT_LT(amountOfLinesAcross(pReport, second, second + length),
                               amountOfLinesAcross(pReport, first, first + length));
                     tsPressKeys("Return");
                 })
        .start();
    EXPECT_EQ(dialog.ShowModal(), AH_IGNORE_ALL_BUTTON_ID);
    EXPECT_TRUE(script.isFinished());
}

#ifdef __WXGTK__

GtkTextView* viewOf(const wxTextCtrl& control)
{
    return GTK_TEXT_VIEW(gtk_bin_get_child(GTK_BIN(control.GetHandle())));
}

// The control's own way of writing lays the text out at once.
void writeEasily(wxTextCtrl& control, const wxString& text)
{
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(viewOf(control)), text.utf8_str(), -1);
    gtAllowBreaksInLongWords(&control);
}

// Whether the first line may break at any character.
bool breaksAnywhere(const wxString& textOfControl)
{
    wxFrame frame(nullptr, wxID_ANY, "texts");
    auto* const pText = new wxTextCtrl(&frame, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxTE_MULTILINE);
    writeEasily(*pText, textOfControl);
    GtkTextIter begin;
    gtk_text_buffer_get_start_iter(gtk_text_view_get_buffer(viewOf(*pText)), &begin);
    const std::unique_ptr<GtkTextAttributes, void (*)(GtkTextAttributes*)> attributes(
        gtk_text_view_get_default_attributes(viewOf(*pText)), gtk_text_attributes_unref);
    gtk_text_iter_get_attributes(&begin, attributes.get());
    return attributes->wrap_mode == GTK_WRAP_CHAR;
}

// Where the attributes that the text is laid out with change.
std::vector<int> borders(const wxTextCtrl& control)
{
    std::vector<int> offsets;
    GtkTextIter position;
    gtk_text_buffer_get_start_iter(gtk_text_view_get_buffer(viewOf(control)), &position);
    if (gtk_text_iter_toggles_tag(&position, nullptr) != FALSE)
    {
        offsets.push_back(0);
    }
    while (gtk_text_iter_forward_to_tag_toggle(&position, nullptr) != FALSE)
    {
        offsets.push_back(gtk_text_iter_get_offset(&position));
    }
    // The end is told in both ways.
    offsets.erase(std::unique(offsets.begin(), offsets.end()), offsets.end());
    return offsets;
}

// Texts that the toolkit lays out at once: a line, or what stands between two changes of its attributes.
wxArrayString piecesOf(const wxTextCtrl& control)
{
    wxArrayString pieces;
    int begin = 0;
    for (const wxString& line : wxSplit(control.GetValue(), '\n', '\0'))
    {
        const int end = begin + static_cast<int>(line.length());
        int last = begin;
        for (const int border : borders(control))
        {
            if (border > begin && border < end)
            {
                pieces.push_back(
                    line.Mid(static_cast<std::size_t>(last - begin), static_cast<std::size_t>(border - last)));
                last = border;
            }
        }
        pieces.push_back(line.Mid(static_cast<std::size_t>(last - begin)));
        begin = end + 1;
    }
    return pieces;
}

TEST(HostileTexts, AreLaidOutInPieces)
{
    // A line of this length takes the toolkit no time that anybody notices.
    const std::size_t longest = 10000;
    const std::size_t mostMarks = 100;
    wxFrame frame(nullptr, wxID_ANY, "texts");
    auto* const pText = new wxTextCtrl(&frame, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxTE_MULTILINE);
    const auto expectPieces = [pText](bool isCut)
    {
        const wxArrayString pieces = piecesOf(*pText);
        EXPECT_EQ(pieces.size() > wxSplit(pText->GetValue(), '\n', '\0').size(), isCut);
        for (const wxString& piece : pieces)
        {
            EXPECT_LE(piece.length(), longest + mostMarks);
        }
    };
    const auto expectPiecesOf = [&](const wxString& text, bool isCut)
    {
        writeEasily(*pText, text);
        EXPECT_TRUE(pText->GetValue() == text);
        expectPieces(isCut);
    };
    expectPiecesOf("ab", false);
    expectPiecesOf(repeated("w ", 10000), false);
    for (const std::size_t length : {10001U, 20000U, 20001U, 45000U})
    {
        expectPiecesOf(repeated("w ", length), true);
    }
    // Each line by itself.
    expectPiecesOf(repeated("w ", 6000) + "\n" + repeated("w ", 6000), false);
    expectPiecesOf("ab\n" + repeated("w ", 15000) + "\n\n" + repeated("v ", 12000) + "\n", true);
    expectPiecesOf(repeated("w", 15000) + "\nab", true);

    // Marks stay with their letter, up to a hundred of them.
    const wxString acute = character(0x301);
    for (const std::size_t marks : {5U, 100U, 101U})
    {
        expectPiecesOf(repeated("w ", 10000) + repeated(acute, marks) + repeated("w ", 20000), true);
        const bool isParted = piecesOf(*pText)[1].StartsWith(acute);
        EXPECT_EQ(isParted, marks > 100) << marks;
    }

    // What is left of a text is looked at anew.
    const auto remove = [pText](int begin, int end)
    {
        GtkTextBuffer* const pBuffer = gtk_text_view_get_buffer(viewOf(*pText));
        GtkTextIter first;
        GtkTextIter last;
        gtk_text_buffer_get_iter_at_offset(pBuffer, &first, begin);
        gtk_text_buffer_get_iter_at_offset(pBuffer, &last, end);
        gtk_text_buffer_delete(pBuffer, &first, &last);
        gtAllowBreaksInLongWords(pText);
    };
    expectPiecesOf(repeated("w ", 35000), true);
    remove(5000, 15000);
    expectPieces(true);
    remove(0, 20000);
    expectPieces(false);
}

TEST(HostileTexts, HaveAThousandUrlsInALineAtMost)
{
    wxFrame frame(nullptr, wxID_ANY, "texts");
    auto* const pText = new wxTextCtrl(&frame, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxTE_MULTILINE);
    const auto bordersOf = [pText](const wxString& text)
    {
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(viewOf(*pText)), text.utf8_str(), -1);
        gtHighlightUrls(pText);
        return borders(*pText);
    };
    EXPECT_EQ(bordersOf(repeated("www.a ", 6000)).size(), 2000U);
    EXPECT_EQ(bordersOf(repeated("www.a ", 6006)).back(), 5999);
    EXPECT_EQ(bordersOf(repeated("www.a ", 6006) + "\nwww.a").back(), 6012);
    EXPECT_EQ(bordersOf(" www.a"), std::vector<int>({1, 6}));
    // Control characters are no small letters of anything.
    EXPECT_EQ(bordersOf("http:\x0F\x0F"
                        "a WAIS://A"),
              std::vector<int>({9, 17}));
}

TEST(HostileTexts, OfAThousandCharactersWithoutABlankStayWords)
{
    EXPECT_FALSE(breaksAnywhere(wxString('w', 1000)));
    EXPECT_TRUE(breaksAnywhere(wxString('w', 1001)));
    // A longer line, and words at its beginning, in its middle and at its end.
    EXPECT_FALSE(breaksAnywhere(repeated(wxString('w', 1000) + " ", 5000)));
    EXPECT_FALSE(breaksAnywhere("w " + wxString('w', 1000)));
    EXPECT_TRUE(breaksAnywhere(wxString('w', 1001) + repeated(" w", 5000)));
    EXPECT_TRUE(breaksAnywhere(repeated("w ", 5000) + wxString('w', 1001) + repeated(" w", 5000)));
    EXPECT_TRUE(breaksAnywhere(repeated("w ", 5000) + wxString('w', 1001)));
    EXPECT_FALSE(breaksAnywhere("short\n" + wxString('w', 1001)));
}

TEST(HostileTexts, EndTheirWordsAtBlanks)
{
    const wxString half('w', 600);
    for (const wxUint32 blank : {0x20U, 0x9U, 0x1680U, 0x2000U, 0x2006U, 0x2008U, 0x200AU, 0x200BU, 0x205FU, 0x3000U})
    {
        EXPECT_FALSE(breaksAnywhere(half + character(blank) + half)) << blank;
    }
    // Neither letters nor hyphens, nor blanks that keep words together.
    for (const wxUint32 other :
         {0x77U, 0x21U, 0x2DU, 0xA0U, 0xADU, 0x1FFFU, 0x2007U, 0x200CU, 0x2013U, 0x202FU, 0x3001U})
    {
        EXPECT_TRUE(breaksAnywhere(half + character(other) + half)) << other;
    }
}

#endif

TEST(HostileTexts, KeepTheirStyles)
{
    const wxString reason = repeated("w", 3 * gtMostDetected) + " http://a.b/";
    const ahAssertDialog dialog(osFilePath(gtString("/a.c")), 7, reason, nullptr);
    wxTextCtrl* const pReport = reportOf(dialog);
    const long first = pReport->GetValue().Find("ww");
    for (const long position : {first, first + 10000, first + 10001, first + 20000, first + 29999})
    {
        wxTextAttr style;
        ASSERT_TRUE(pReport->GetStyle(position, style));
        EXPECT_TRUE(style.GetTextColour() == *wxBLACK)
            << position << " " << style.GetTextColour().GetAsString(wxC2S_HTML_SYNTAX).utf8_string();
        EXPECT_EQ(style.GetFont().GetPointSize(), wxNORMAL_FONT->GetPointSize()) << position;
        EXPECT_FALSE(style.GetFontUnderlined()) << position;
    }
    // Without the control's own detection URLs are highlighted as well.
    wxTextAttr style;
    ASSERT_TRUE(pReport->GetStyle(pReport->GetLastPosition() - 2, style));
    EXPECT_EQ(style.GetTextColour(), *wxBLUE);
    EXPECT_TRUE(style.GetFontUnderlined());
    EXPECT_NE(pReport->GetWindowStyleFlag() & wxTE_AUTO_URL, 0);
}

TEST(HostileTexts, AreEasedAgainWhenTheyChange)
{
    wxFrame frame(nullptr, wxID_ANY, "texts");
    wxTextCtrl text(&frame, wxID_ANY, wxString(), wxDefaultPosition, wxSize(300, 200), wxTE_MULTILINE);
    frame.Show();
    ASSERT_TRUE(tsRunUntil("the window has the keyboard", [&] { return tsHasKeyboard(frame); }));
    const wxString before = repeated("w", 200000) + "\nshort";
    text.ChangeValue(before);
    gtAllowBreaksInLongWords(&text);
    tsRunEvents();
    EXPECT_TRUE(text.GetValue() == before);
    text.ChangeValue("one two");
    gtAllowBreaksInLongWords(&text);
    text.AppendText(repeated(" three", 100) + "\n" + repeated("v", 200000));
    gtAllowBreaksInLongWords(&text);
    tsRunEvents();
    EXPECT_EQ(text.GetValue().length(), 7U + 100U + 1U + 200000U);
    EXPECT_EQ(text.GetInsertionPoint(), text.GetLastPosition());
    text.Clear();
    gtAllowBreaksInLongWords(&text);
}

// The dialog with texts that nobody would write on purpose: it shows all of them, and is as easy to end as ever. Laid out
// by the control's own means the longest would take many minutes, far beyond the test's patience.
#include <functional>
#include <string>

#include <gtest/gtest.h>
#include <wx/frame.h>
#include <wx/textctrl.h>

#include "assertionHandling/ahAssertDialog.h"
#include "assertionHandling/ahTextConversion.h"
#include "assertionHandling/ahTextLayout.h"
#include "assertionHandling/ahUrlHighlighting.h"
#include "tests/support/tsWindowTest.h"

namespace
{

const std::size_t megabyte = 1000000;

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

TEST(HostileTexts, OfAMegabyteWithoutABlankAreShown)
{
    expectShown(repeated("abcdefghijklmnopqrstuvwxyz", megabyte), megabyte / 100);
}

TEST(HostileTexts, OfAMegabyteInOneLineAreShown)
{
    expectShown(repeated("words and words ", megabyte), megabyte / 100);
}

TEST(HostileTexts, OfAMegabyteOfLinesAreShown)
{
    expectShown(repeated("\n", megabyte / 2) + repeated("line\n", megabyte / 2));
}

TEST(HostileTexts, OfNothingButUrlsAreShown)
{
    expectShown(repeated("http://a.b ", megabyte));
    expectShown(repeated("(https://a.b/c?d=%20) ", megabyte / 20));
}

TEST(HostileTexts, OfControlCharactersAreShown)
{
    wxString controls;
    for (wxUint32 codePoint = 1; codePoint < 0x20; codePoint++)
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
    const wxString longWord('w', static_cast<std::size_t>(ahLongestUnbrokenWord) + 1);
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

TEST(HostileTexts, KeepTheirStyles)
{
    const wxString reason = repeated("w", 3 * ahMostDetected) + " http://a.b/";
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
    ahEaseLayout(&text);
    tsRunEvents();
    EXPECT_TRUE(text.GetValue() == before);
    text.ChangeValue("one two");
    ahEaseLayout(&text);
    text.AppendText(repeated(" three", 100) + "\n" + repeated("v", 200000));
    ahEaseLayout(&text);
    tsRunEvents();
    EXPECT_EQ(text.GetValue().length(), 7U + 100U + 1U + 200000U);
    EXPECT_EQ(text.GetInsertionPoint(), text.GetLastPosition());
    text.Clear();
    ahEaseLayout(&text);
}

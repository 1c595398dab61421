// SPDX-License-Identifier: Apache-2.0
#include "assertionHandling/ahAssertDialog.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/button.h>
#include <wx/display.h>
#include <wx/iconbndl.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>

#include "assertionHandling/ahAssertDialogIcon.h"
#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "platform/toolkit/gtTextConversion.h"
#include "tests/support/tsContrast.h"
#include "tests/support/tsWindowTest.h"

namespace
{

class OpenDialog : public ahAssertDialog
{
public:
    using ahAssertDialog::_assertionMessage;
    using ahAssertDialog::_filePath;
    using ahAssertDialog::_lineNumber;
    using ahAssertDialog::_pButtonsSizer;
    using ahAssertDialog::_pDebugButton;
    using ahAssertDialog::_pExitButton;
    using ahAssertDialog::_pIgnoreAllButton;
    using ahAssertDialog::_pIgnoreButton;
    using ahAssertDialog::_pOpenButton;
    using ahAssertDialog::ahAssertDialog;
    using ahAssertDialog::GetEventTable;
    using ahAssertDialog::sm_eventTable;

    explicit OpenDialog(const std::string& path = "/home/u/notes.txt", int lineNumber = 42,
                        const wxString& message = "x != 0", wxWindow* parent = nullptr)
        : ahAssertDialog(osFilePath(gtString(path.data(), static_cast<int>(path.size()))), lineNumber, message, parent)
    {
    }

    wxTextCtrl* report() const { return wxDynamicCast(GetChildren().GetFirst()->GetData(), wxTextCtrl); }
    wxString text() const { return report()->GetValue(); }

    std::vector<wxButton*> buttons() const
    {
        return {_pIgnoreButton, _pIgnoreAllButton, _pOpenButton, _pDebugButton, _pExitButton};
    }
};

const int ids[] = {8001, 8002, 8003, 8004, 8005};
const char* const labels[] = {"&Ignore", "Ignore &all", "&Open", "&Debug", "&Exit"};

// Shows the dialog, performs the action once it has the keyboard, and gives what ShowModal returned.
int showAnd(wxDialog& dialog, const std::string& what, std::function<void()> action)
{
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
        .perform(what, std::move(action))
        .start();
    const int result = dialog.ShowModal();
    EXPECT_TRUE(script.isFinished());
    return result;
}

std::string windowProperty(const std::string& property)
{
    std::string id;
    EXPECT_EQ(tsRunProgram({"xdotool", "search", "--onlyvisible", "--name", "^Assert in: "}, &id), 0);
    std::string output;
    EXPECT_EQ(tsRunProgram({"xprop", "-id", id.substr(0, id.find('\n')), property}, &output), 0);
    return output;
}

bool isBlue(unsigned char red, unsigned char green, unsigned char blue)
{
    return blue > 150 && red < 100 && green < 100;
}

long amountOfBluePixels(const wxRect& screenRect)
{
    const wxImage picture = tsPictureOfScreen();
    if (!picture.IsOk())
    {
        return -1;
    }
    const wxRect rect = wxRect(picture.GetSize()).Intersect(screenRect);
    long amount = 0;
    for (int y = rect.GetTop(); y <= rect.GetBottom(); ++y)
    {
        for (int x = rect.GetLeft(); x <= rect.GetRight(); ++x)
        {
            amount += isBlue(picture.GetRed(x, y), picture.GetGreen(x, y), picture.GetBlue(x, y)) ? 1 : 0;
        }
    }
    return amount;
}

// One run of characters of the same look.
struct Piece
{
    std::string text;
    wxColour colour;
    int size;
    bool isBold;
    bool isUnderlined;

    bool hasLookOf(const Piece& other) const
    {
        return colour == other.colour && size == other.size && isBold == other.isBold &&
               isUnderlined == other.isUnderlined;
    }
    bool operator==(const Piece& other) const { return text == other.text && hasLookOf(other); }
};

std::ostream& operator<<(std::ostream& stream, const Piece& run)
{
    return stream << testing::PrintToString(run.text) << " " << run.colour.GetAsString(wxC2S_HTML_SYNTAX).utf8_str()
                  << " size " << run.size << (run.isBold ? " bold" : "") << (run.isUnderlined ? " underlined" : "");
}

// What the control itself says about each of its characters.
std::vector<Piece> runsOf(wxTextCtrl* pControl)
{
    std::vector<Piece> runs;
    const wxString text = pControl->GetValue();
    for (std::size_t i = 0; i < text.length(); ++i)
    {
        wxTextAttr style;
        EXPECT_TRUE(pControl->GetStyle(static_cast<long>(i), style));
        const wxFont font = style.GetFont();
        const Piece run = {std::string(wxString(text[i]).utf8_str()), style.GetTextColour(), font.GetPointSize(),
                           font.GetWeight() == wxFONTWEIGHT_BOLD, style.GetFontUnderlined()};
        if (!runs.empty() && runs.back().hasLookOf(run))
        {
            runs.back().text += run.text;
        }
        else
        {
            runs.push_back(run);
        }
    }
    return runs;
}

// Notes what is written into it, call by call.
class NotingTextCtrl : public wxTextCtrl
{
public:
    struct Call
    {
        bool isStyle = false;
        wxTextAttr style = {};
        wxString text = {};
    };

    explicit NotingTextCtrl(wxWindow* pParent)
        : wxTextCtrl(pParent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_MULTILINE | wxTE_RICH)
    {
    }

    bool SetDefaultStyle(const wxTextAttr& style) override
    {
        calls.push_back({true, style, wxString()});
        return wxTextCtrl::SetDefaultStyle(style);
    }

    void AppendText(const wxString& text) override
    {
        calls.push_back({false, wxTextAttr(), text});
        wxTextCtrl::AppendText(text);
    }

    std::vector<Call> calls;
};

template <class Operation>
std::ptrdiff_t slotOf(Operation operation)
{
    // A member pointer to a virtual operation holds 1 + its offset in the table (Itanium C++ ABI 2.3).
    std::ptrdiff_t slot = 0;
    std::memcpy(&slot, &operation, sizeof(slot));
    return slot;
}

}  // namespace

TEST(Dialog, HasTheFixedIds)
{
    EXPECT_EQ(AH_IGNORE_BUTTON_ID, 8001);
    EXPECT_EQ(AH_IGNORE_ALL_BUTTON_ID, 8002);
    EXPECT_EQ(AH_OPEN_BUTTON_ID, 8003);
    EXPECT_EQ(AH_DEBUG_BUTTON_ID, 8004);
    EXPECT_EQ(AH_EXIT_BUTTON_ID, 8005);
}

TEST(Dialog, HasAnEventTableOfFiveButtons)
{
    const OpenDialog dialog;
    const wxEventTable* pTable = dialog.GetEventTable();
    ASSERT_EQ(pTable, &OpenDialog::sm_eventTable);
    for (int i = 0; i < 5; ++i)
    {
        const wxEventTableEntry& entry = pTable->entries[i];
        EXPECT_EQ(entry.m_eventType, wxEVT_BUTTON);
        EXPECT_EQ(entry.m_id, ids[i]);
        EXPECT_EQ(entry.m_lastId, wxID_ANY);
        EXPECT_EQ(entry.m_callbackUserData, nullptr);
    }
    EXPECT_EQ(pTable->entries[5].m_fn, nullptr);

    struct PlainDialog : wxDialog
    {
        using wxDialog::GetEventTable;
    };
    const PlainDialog plain;
    EXPECT_EQ(pTable->baseTable, plain.GetEventTable());
}

TEST(Dialog, HasItsOperationsAndMembersInTheirOrder)
{
    static_assert(std::is_base_of<wxDialog, ahAssertDialog>::value, "");
    static_assert(!std::is_copy_constructible<ahAssertDialog>::value, "");
    EXPECT_LT(slotOf(&OpenDialog::GetEventTable), slotOf(&ahAssertDialog::ShowModal));
    EXPECT_EQ(slotOf(&ahAssertDialog::ShowModal), slotOf(&wxDialog::ShowModal));

    const OpenDialog dialog("/a", 7, "m");
    const std::vector<const void*> members = {
        &dialog._filePath,      &dialog._lineNumber,       &dialog._assertionMessage,
        &dialog._pIgnoreButton, &dialog._pIgnoreAllButton, &dialog._pOpenButton,
        &dialog._pDebugButton,  &dialog._pExitButton,      &dialog._pButtonsSizer};
    EXPECT_TRUE(std::is_sorted(members.begin(), members.end()));
    EXPECT_EQ(dialog._filePath, osFilePath(gtString("/a")));
    EXPECT_EQ(dialog._lineNumber, 7);
    EXPECT_EQ(dialog._assertionMessage, "m");
}

TEST(Dialog, IsADialogOfFixedSizeOnTopOfOthers)
{
    const OpenDialog dialog;
    EXPECT_EQ(dialog.GetWindowStyle() & ~static_cast<long>(wxTAB_TRAVERSAL), 0x20009800);
    EXPECT_FALSE(dialog.HasFlag(wxRESIZE_BORDER));
    EXPECT_EQ(dialog.GetParent(), nullptr);
    EXPECT_EQ(dialog.GetName(), wxString(wxDialogNameStr));
    EXPECT_FALSE(dialog.IsShown());

    // A window manager may centre a window on its own, so the place is looked at before there is one.
    const wxRect screen = wxDisplay(0u).GetClientArea();
    EXPECT_NEAR(2 * dialog.GetPosition().x + dialog.GetSize().x, screen.width, 2);
    EXPECT_NEAR(2 * dialog.GetPosition().y + dialog.GetSize().y, screen.height, 2);
}

TEST(Dialog, HasAReportControl)
{
    const OpenDialog dialog;
    ASSERT_NE(dialog.report(), nullptr);
    EXPECT_EQ(dialog.report()->GetWindowStyle(), 0x2010b0);
    EXPECT_EQ(dialog.report()->GetSize(), wxSize(400, 250));
    EXPECT_EQ(dialog.report()->GetBackgroundColour(), dialog.GetBackgroundColour());
    EXPECT_EQ(dialog.report()->GetFont().GetPointSize(), wxNORMAL_FONT->GetPointSize());
    EXPECT_EQ(dialog.report()->GetFont().GetFaceName(), wxNORMAL_FONT->GetFaceName());
    EXPECT_FALSE(dialog.report()->IsEditable());
    EXPECT_TRUE(dialog.report()->IsMultiLine());
}

TEST(Dialog, HasFiveButtonsAndNothingElse)
{
    OpenDialog dialog;
    ASSERT_EQ(dialog.GetChildren().size(), 6U);
    std::size_t i = 0;
    for (const wxButton* pButton : dialog.buttons())
    {
        EXPECT_EQ(dialog.GetChildren().Item(i + 1)->GetData(), pButton);
        EXPECT_EQ(pButton->GetId(), ids[i]);
        EXPECT_EQ(pButton->GetLabel(), labels[i]);
        EXPECT_EQ(pButton->GetWindowStyle(), 0);
        ++i;
    }
    EXPECT_EQ(dialog.GetDefaultItem(), dialog._pIgnoreAllButton);
    EXPECT_EQ(dialog.GetAffirmativeId(), wxID_OK);
    EXPECT_EQ(dialog.FindWindow(wxID_CANCEL), nullptr);
}

TEST(Dialog, IsLaidOutByTwoSizers)
{
    OpenDialog dialog;
    auto* pTop = dynamic_cast<wxBoxSizer*>(dialog.GetSizer());
    ASSERT_NE(pTop, nullptr);
    EXPECT_EQ(pTop->GetOrientation(), wxVERTICAL);
    ASSERT_EQ(pTop->GetItemCount(), 2U);
    const wxSizerItem* pReport = pTop->GetItem(std::size_t{0});
    EXPECT_EQ(pReport->GetWindow(), dialog.report());
    EXPECT_EQ(pReport->GetProportion(), 0);
    EXPECT_EQ(pReport->GetFlag(), wxLEFT | wxRIGHT | wxTOP);
    EXPECT_EQ(pReport->GetBorder(), 10);
    const wxSizerItem* pRow = pTop->GetItem(std::size_t{1});
    EXPECT_EQ(pRow->GetSizer(), dialog._pButtonsSizer);
    EXPECT_EQ(pRow->GetProportion(), 0);
    EXPECT_EQ(pRow->GetFlag(), 0xf1);
    EXPECT_EQ(pRow->GetBorder(), 10);

    EXPECT_EQ(dialog._pButtonsSizer->GetOrientation(), wxHORIZONTAL);
    ASSERT_EQ(dialog._pButtonsSizer->GetItemCount(), 5U);
    for (std::size_t i = 0; i < 5; ++i)
    {
        const wxSizerItem* pItem = dialog._pButtonsSizer->GetItem(i);
        EXPECT_EQ(pItem->GetWindow(), dialog.buttons()[i]);
        EXPECT_EQ(pItem->GetProportion(), 0);
        EXPECT_EQ(pItem->GetFlag(), i < 4 ? wxRIGHT : 0);
        EXPECT_EQ(pItem->GetBorder(), i < 4 ? 10 : 0);
    }
    EXPECT_TRUE(dialog.GetAutoLayout());

    const wxSize row = dialog._pButtonsSizer->CalcMin();
    EXPECT_EQ(dialog.GetClientSize(), wxSize(std::max(400, row.x) + 20, 10 + 250 + 10 + row.y + 10));
    EXPECT_EQ(dialog.GetClientSize(), pTop->CalcMin());
    EXPECT_EQ(dialog.GetMinClientSize(), pTop->CalcMin());
}

TEST(Dialog, StandsOnTheScreenAsItWasLaidOut)
{
    OpenDialog dialog;
    std::string state;
    std::string hints;
    std::string icon;
    wxRect rect;
    EXPECT_EQ(showAnd(dialog, "look",
                      [&]
                      {
                          state = windowProperty("_NET_WM_STATE");
                          hints = windowProperty("WM_NORMAL_HINTS");
                          icon = windowProperty("_NET_WM_ICON");
                          rect = dialog.GetScreenRect();
                          tsPressKeys("Return");
                      }),
              8002);
    EXPECT_NE(state.find("_NET_WM_STATE_ABOVE"), std::string::npos) << state;
    EXPECT_NE(state.find("_NET_WM_STATE_MODAL"), std::string::npos) << state;
    EXPECT_NE(icon.find("16 x 16"), std::string::npos) << icon;

    // The smallest size is the largest one.
    const std::string size =
        std::to_string(dialog.GetClientSize().x) + " by " + std::to_string(dialog.GetClientSize().y);
    EXPECT_NE(hints.find("minimum size: " + size), std::string::npos) << hints;
    EXPECT_NE(hints.find("maximum size: " + size), std::string::npos) << hints;

    const wxRect screen = wxDisplay(0u).GetGeometry();
    EXPECT_NEAR(2 * rect.x + rect.width, screen.width, 30);
    EXPECT_NEAR(2 * rect.y + rect.height, screen.height, 60);
    EXPECT_EQ(dialog.report()->GetSize(), wxSize(400, 250));
    EXPECT_EQ(dialog.report()->GetPosition(), wxPoint(10, 10));
    EXPECT_EQ(dialog._pIgnoreButton->GetPosition(), wxPoint(10, 270));
}

TEST(Dialog, HasTheKeyboardOnIgnoreAll)
{
    OpenDialog dialog;
    wxWindow* pFocus = nullptr;
    EXPECT_EQ(showAnd(dialog, "look at the focus and press the blank",
                      [&]
                      {
                          pFocus = wxWindow::FindFocus();
                          tsPressKeys("space");
                      }),
              8002);
    EXPECT_EQ(pFocus, dialog._pIgnoreAllButton);
}

using Key = std::pair<std::string, int>;

class DialogKey : public testing::TestWithParam<Key>
{
};

TEST_P(DialogKey, EndsTheDialog)
{
    OpenDialog dialog;
    EXPECT_EQ(showAnd(dialog, "press keys", [] { tsPressKeys(GetParam().first); }), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Keys, DialogKey,
                         testing::Values(Key("Return", 8002), Key("alt+i", 8001), Key("alt+a", 8002),
                                         Key("alt+o", 8003), Key("alt+d", 8004), Key("alt+e", 8005)),
                         [](const auto& key)
                         {
                             std::string name = key.param.first;
                             name.erase(std::remove(name.begin(), name.end(), '+'), name.end());
                             return name;
                         });

class DialogButton : public testing::TestWithParam<int>
{
};

TEST_P(DialogButton, EndsTheDialogWithItsIdWhenClicked)
{
    OpenDialog dialog;
    const auto index = static_cast<std::size_t>(GetParam() - 8001);
    EXPECT_EQ(showAnd(dialog, "click", [&] { tsClick(*dialog.buttons()[index]); }), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Clicks, DialogButton, testing::ValuesIn(ids));

TEST(Dialog, EscapeIsNoDecision)
{
    OpenDialog dialog;
    // Keys arrive in their order: had Escape ended the dialog, its result would not be that of Alt+D.
    EXPECT_EQ(showAnd(dialog, "press Escape, then another key",
                      []
                      {
                          tsPressKeys("Escape");
                          tsPressKeys("alt+d");
                      }),
              8004);
}

TEST(Dialog, CloseBoxGivesNoneOfTheFive)
{
    OpenDialog dialog;
    const int result = showAnd(dialog, "close the window as its close box does",
                               [] {
                                   EXPECT_EQ(tsRunProgram({"wmctrl", "-c", "Assert in: "}), 0);
                               });
    EXPECT_EQ(result, static_cast<int>(wxID_CANCEL));
}

TEST(Dialog, CanBeShownTwice)
{
    OpenDialog dialog;
    EXPECT_EQ(showAnd(dialog, "press Alt+I", [] { tsPressKeys("alt+i"); }), 8001);
    const wxString text = dialog.text();
    EXPECT_EQ(showAnd(dialog, "press Alt+E", [] { tsPressKeys("alt+e"); }), 8005);
    EXPECT_EQ(dialog.text(), text);
}

TEST(DialogTitle, NamesFileAndLine)
{
    EXPECT_EQ(OpenDialog("/home/u/notes.txt", 42).GetTitle(), "Assert in: notes.txt - Line: 42");
    EXPECT_EQ(OpenDialog("Makefile", 12).GetTitle(), "Assert in: Makefile. - Line: 12");
    EXPECT_EQ(OpenDialog("/src/.profile", 0).GetTitle(), "Assert in: .profile. - Line: 0");
    EXPECT_EQ(OpenDialog("a.tar.gz", -3).GetTitle(), "Assert in: a.tar.gz - Line: -3");
    EXPECT_EQ(OpenDialog("", 2147483647).GetTitle(), "Assert in: . - Line: 2147483647");
    EXPECT_EQ(OpenDialog("/src/", 1).GetTitle(), "Assert in: . - Line: 1");
    EXPECT_EQ(OpenDialog("100%d %s.c", 1).GetTitle(), "Assert in: 100%d %s.c - Line: 1");
}

TEST(DialogReport, HasNineLines)
{
    EXPECT_EQ(OpenDialog().text(), "Debug Assertion Failed!\n"
                                   "\n"
                                   "File Name: notes.txt - 42\n"
                                   "\n"
                                   "File Path: /home/u/notes.txt\n"
                                   "\n"
                                   "Assert Reason: \n"
                                   "\n"
                                   "x != 0");
}

TEST(DialogReport, TakesOddValuesAsTheyAre)
{
    EXPECT_EQ(OpenDialog("", -1, "").text(), "Debug Assertion Failed!\n\nFile Name: . - -1\n\nFile Path: \n\n"
                                             "Assert Reason: \n\n");
    EXPECT_EQ(OpenDialog("/m/Makefile", 0, "  a\n\n%s %d b \n").text(),
              "Debug Assertion Failed!\n\nFile Name: Makefile. - 0\n\nFile Path: /m/Makefile\n\n"
              "Assert Reason: \n\n  a\n\n%s %d b \n");
}

TEST(DialogReport, HasItsStyles)
{
    const int size = wxNORMAL_FONT->GetPointSize();
    const OpenDialog dialog;
    const std::vector<Piece> expected = {
        {"Debug Assertion Failed!\n\n", *wxBLUE, size + 2, false, false},
        {"File Name: ", *wxBLACK, size, true, false},
        {"notes.txt - 42\n\n", *wxBLACK, size + 4, false, false},
        {"File Path: ", *wxBLACK, size, true, false},
        {"/home/u/notes.txt\n\n", *wxBLACK, size, false, false},
        {"Assert Reason: \n\n", *wxBLUE, size + 2, false, false},
        {"x != 0", *wxBLACK, size, false, false},
    };
    EXPECT_EQ(runsOf(dialog.report()), expected);
}

TEST(DialogReport, IsWrittenInThirteenSteps)
{
    wxFont body(*wxNORMAL_FONT);
    body.SetEncoding(wxFONTENCODING_DEFAULT);
    const int size = body.GetPointSize();
    wxFont large(body);
    large.SetPointSize(size + 4);
    wxFont bold(body);
    bold.SetWeight(wxFONTWEIGHT_BOLD);
    wxFont heading(body);
    heading.SetPointSize(size + 2);

    OpenDialog dialog;
    auto* pControl = new NotingTextCtrl(&dialog);
    dialog.fillAssertionMessageBody(pControl);

    struct Step
    {
        const wxColour* pColour;  // null: text is appended in the style that is set
        const wxFont* pFont;
        const char* pText;
    };
    const Step steps[] = {
        {wxBLUE, &heading, nullptr},       {nullptr, nullptr, "Debug Assertion Failed!"},
        {nullptr, nullptr, "\n\n"},        {wxBLACK, &bold, nullptr},
        {nullptr, nullptr, "File Name: "}, {wxBLACK, &large, nullptr},
        {nullptr, nullptr, "notes.txt"},   {nullptr, nullptr, " - "},
        {nullptr, nullptr, "42"},          {nullptr, nullptr, "\n\n"},
        {wxBLACK, &bold, nullptr},         {nullptr, nullptr, "File Path: "},
        {wxBLACK, &body, nullptr},         {nullptr, nullptr, "/home/u/notes.txt"},
        {nullptr, nullptr, "\n"},          {nullptr, nullptr, "\n"},
        {wxBLUE, &heading, nullptr},       {nullptr, nullptr, "Assert Reason: \n\n"},
        {wxBLACK, &body, nullptr},         {nullptr, nullptr, "x != 0"},
    };
    ASSERT_EQ(pControl->calls.size(), std::size(steps));
    for (std::size_t i = 0; i < std::size(steps); ++i)
    {
        const NotingTextCtrl::Call& call = pControl->calls[i];
        ASSERT_EQ(call.isStyle, steps[i].pText == nullptr) << i;
        if (!call.isStyle)
        {
            EXPECT_EQ(call.text, steps[i].pText) << i;
            continue;
        }
        EXPECT_EQ(call.style.GetTextColour(), *steps[i].pColour) << i;
        EXPECT_FALSE(call.style.HasBackgroundColour()) << i;
        EXPECT_EQ(call.style.GetBackgroundColour(), wxNullColour) << i;
        EXPECT_EQ(call.style.GetAlignment(), wxTEXT_ALIGNMENT_DEFAULT) << i;
        EXPECT_EQ(call.style.GetFont(), *steps[i].pFont) << i << ": " << call.style.GetFont().GetNativeFontInfoDesc();
    }
}

TEST(DialogReport, LeavesTheInsertionPointAtItsEnd)
{
    for (const char* pMessage : {"", "x != 0", "see http://a.b\n", "\xE2\x82\xAC"})
    {
        const OpenDialog dialog("/a.c", 1, wxString::FromUTF8(pMessage));
        EXPECT_EQ(dialog.report()->GetInsertionPoint(), static_cast<long>(dialog.text().length())) << pMessage;
        EXPECT_EQ(dialog.report()->GetLastPosition(), dialog.report()->GetInsertionPoint());
        EXPECT_FALSE(dialog.report()->HasFocus());
    }
}

TEST(DialogReport, MarksUrlsInTheReason)
{
    const int size = wxNORMAL_FONT->GetPointSize();
    const auto runsOfReason = [&](const wxString& reason)
    {
        const OpenDialog dialog("/a.c", 1, reason);
        std::vector<Piece> runs = runsOf(dialog.report());
        runs.erase(runs.begin(), runs.begin() + 6);
        return runs;
    };
    const auto plain = [&](const char* pText) { return Piece{pText, *wxBLACK, size, false, false}; };
    const auto url = [&](const char* pText) { return Piece{pText, *wxBLUE, size, false, true}; };
    using Pieces = std::vector<Piece>;

    EXPECT_EQ(runsOfReason("see https://example.org/x?y=1 for more"),
              (Pieces{plain("see "), url("https://example.org/x?y=1"), plain(" for more")}));
    EXPECT_EQ(runsOfReason("(http://a.b/), \"www.c.d\"\nFTP://e\tend"),
              (Pieces{plain("("), url("http://a.b/"), plain("), \""), url("www.c.d"), plain("\"\n"), url("FTP://e"),
                      plain("\tend")}));
    EXPECT_EQ(runsOfReason("http://a.b"), (Pieces{url("http://a.b")}));
    EXPECT_EQ(runsOfReason(wxString::FromUTF8("\xF0\x9F\x98\x80 \xE2\x80\x9Chttp://a.b\xE2\x80\x9D")),
              (Pieces{plain("\xF0\x9F\x98\x80 \xE2\x80\x9C"), url("http://a.b"), plain("\xE2\x80\x9D")}));
    EXPECT_EQ(runsOfReason("http:// www. a.b:/c http:/x xhttp://a"),
              (Pieces{plain("http:// www. a.b:/c http:/x xhttp://a")}));
}

TEST(DialogReport, MarksEveryKindOfUrl)
{
    const auto urlsOfReason = [](const wxString& reason)
    {
        const OpenDialog dialog("/a.c", 1, reason);
        std::vector<std::string> urls;
        for (const Piece& piece : runsOf(dialog.report()))
        {
            if (piece.isUnderlined)
            {
                urls.push_back(piece.text);
            }
        }
        return urls;
    };
    using Urls = std::vector<std::string>;

    const Urls beginnings = {"http://", "https://", "ftp://", "file://",   "mailto://",   "www.",    "ftp.",
                             "nntp://", "news://",  "mms://", "telnet://", "prospero://", "wais://", "gopher://"};
    Urls expected;
    wxString reason;
    for (const std::string& beginning : beginnings)
    {
        reason.append(beginning).append(" ").append(beginning).append("z/, (").append(beginning).append("y)\n");
        expected.push_back(beginning + "z/");
        expected.push_back(beginning + "y");
    }
    EXPECT_EQ(urlsOfReason(reason), expected);
    // Blanks of all kinds end a URL.
    EXPECT_EQ(urlsOfReason(wxString(L"www.a\u00A0www.b\u2003www.c\u2028www.d\u3000www.e")),
              (Urls{"www.a", "www.b", "www.c", "www.d", "www.e"}));

    wxString manyInALine;
    for (int i = 0; i < 1001; ++i)
    {
        manyInALine += "www.a ";
    }
    Urls thousandAndOne(1000, "www.a");
    thousandAndOne.emplace_back("www.b");
    EXPECT_EQ(urlsOfReason(manyInALine + "\nwww.b"), thousandAndOne);
}

TEST(DialogReport, KeepsTheSizeOfANameThatLooksLikeAUrl)
{
    const int size = wxNORMAL_FONT->GetPointSize();
    const OpenDialog dialog("www.c", 1, "");
    const std::vector<Piece> runs = runsOf(dialog.report());
    ASSERT_GT(runs.size(), 3U);
    EXPECT_EQ(runs[2], (Piece{"www.c", *wxBLUE, size + 4, false, true}));
    EXPECT_EQ(runs[3], (Piece{" - 1\n\n", *wxBLACK, size + 4, false, false}));
}

TEST(DialogReport, ShowsUrlsInBlueOnTheScreen)
{
    for (const bool hasUrl : {false, true})
    {
        OpenDialog dialog("/a.c", 1, hasUrl ? "see https://example.org/blue" : "see nothing of that kind");
        wxRect reason = dialog.report()->GetScreenRect();
        long amountAbove = 0;
        long amountBelow = -1;
        tsScript script;
        script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
            .waitUntil("the report is painted",
                       [&]
                       {
                           reason = dialog.report()->GetScreenRect();
                           const long begin = dialog.text().Find("see ");
                           const int top = dialog.report()->PositionToCoords(begin).y;
                           const wxRect above(reason.x, reason.y, reason.width, top);
                           reason.y += top;
                           reason.height -= top;
                           amountAbove = amountOfBluePixels(above);
                           amountBelow = amountOfBluePixels(reason);
                           // The headings are blue in any case.
                           return amountAbove > 100 && (!hasUrl || amountBelow > 50);
                       })
            .perform("press Return", [] { tsPressKeys("Return"); })
            .start();
        EXPECT_EQ(dialog.ShowModal(), 8002);
        EXPECT_TRUE(script.isFinished());
        if (!hasUrl)
        {
            EXPECT_EQ(amountBelow, 0);
        }
    }
}

TEST(DialogBytes, ThatAreNotUtf8AreShownWhole)
{
    // Read character by character where nothing else fits.
    const OpenDialog dialog("/tmp/caf\xE9\xFF.t\xFF", 5,
                            gtTextFromBytes("b\xFF"
                                            "d"));
    EXPECT_EQ(dialog.GetTitle(), wxString(L"Assert in: caf\u00E9\u00FF.t\u00FF - Line: 5"));
    EXPECT_EQ(dialog.text(), wxString(L"Debug Assertion Failed!\n\nFile Name: caf\u00E9\u00FF.t\u00FF - 5\n\n"
                                      L"File Path: /tmp/caf\u00E9\u00FF.t\u00FF\n\nAssert Reason: \n\nb\u00FFd"));
}

TEST(DialogBytes, ThatAreUtf8AreRead)
{
    const OpenDialog dialog("/tmp/\xE2\x82\xAC.\xF0\x9F\x98\x80", 5, gtTextFromBytes("\xC3\xA9 != 0"));
    EXPECT_EQ(dialog.GetTitle(), wxString(L"Assert in: \u20AC.\U0001F600 - Line: 5"));
    EXPECT_NE(dialog.text().Find(wxString(L"File Path: /tmp/\u20AC.\U0001F600\n")), wxNOT_FOUND);
    EXPECT_TRUE(dialog.text().EndsWith(wxString(L"\n\u00E9 != 0")));
}

TEST(DialogBytes, ThatNoTextCanHoldCostNothingAroundThem)
{
    wxString reason("before ");
    reason += wxUniChar(0);
    reason += wxUniChar(0xD800);
    reason += " after";
    const OpenDialog dialog(std::string("/tmp/a\0b\xED\xA0\x80.txt", 15), 5, reason);
    EXPECT_TRUE(dialog.text().EndsWith(wxString(L"before \u2400\uFFFD after"))) << dialog.text();
    EXPECT_TRUE(dialog.GetTitle().StartsWith(wxString(L"Assert in: a\u2400b"))) << dialog.GetTitle();
    EXPECT_TRUE(dialog.GetTitle().EndsWith(".txt - Line: 5")) << dialog.GetTitle();
}

TEST(DialogBytes, ReachTheScreensTitle)
{
    OpenDialog dialog("/tmp/caf\xE9.txt", 5, "m");
    // The window manager tells a moment later than the toolkit which window has the keyboard.
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
        .waitUntil("the screen has its title",
                   []
                   {
                       std::string title;
                       tsRunProgram({"xdotool", "getactivewindow", "getwindowname"}, &title);
                       return title == "Assert in: caf\xC3\xA9.txt - Line: 5\n";
                   })
        .perform("press Return", [] { tsPressKeys("Return"); })
        .start();
    EXPECT_EQ(dialog.ShowModal(), 8002);
    EXPECT_TRUE(script.isFinished());
}

TEST(DialogBytes, AreTheSameInEveryLocale)
{
    for (const std::string locale : {"C", "C.UTF-8"})
    {
        std::string output;
        EXPECT_EQ(tsRunProgram({"env", "LC_ALL=" + locale, "/proc/" + std::to_string(wxGetProcessId()) + "/exe",
                                "--gtest_filter=DialogBytes.That*:DialogBytes.Reach*:DialogTitle.*"},
                               &output),
                  0)
            << locale << ":\n"
            << output;
        EXPECT_NE(output.find("[  PASSED  ] 5 tests"), std::string::npos) << output;
    }
}

// By itself in the theme that the tests have anyhow; DialogContrast.IsHighInEveryTheme runs it in others.
TEST(DialogContrast, IsHighOnTheScreen)
{
    OpenDialog dialog("/src/someFile.cpp", 7, "index < size\nhttps://example.org/some-url");
    wxImage picture;
    std::map<std::string, wxRect> places;
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [&] { return tsHasKeyboard(dialog); })
        .waitUntil("the report and the buttons are painted",
                   [&]
                   {
                       const wxRect report = dialog.report()->GetScreenRect();
                       const auto lineOf = [&](const char* pText)
                       {
                           const int top = dialog.report()->PositionToCoords(dialog.text().Find(pText)).y;
                           return wxRect(report.x, report.y + top, report.width, wxNORMAL_FONT->GetPixelSize().y);
                       };
                       for (const char* pText :
                            {"Debug Assertion", "File Name", "File Path", "Assert Reason", "index < size", "https://"})
                       {
                           places[pText] = lineOf(pText);
                       }
                       for (const wxButton* pButton : dialog.buttons())
                       {
                           places[pButton->GetLabelText().utf8_string()] = pButton->GetScreenRect().Deflate(8);
                       }
                       picture = tsPictureOfScreen();
                       return std::all_of(places.begin(), places.end(),
                                          [&](const auto& place)
                                          {
                                              const tsInk ink = tsInkOf(picture, place.second);
                                              return ink.ground != ink.letters;
                                          });
                   })
        .perform("press Return", [] { tsPressKeys("Return"); })
        .start();
    EXPECT_EQ(dialog.ShowModal(), 8002);
    EXPECT_TRUE(script.isFinished());

    const wxColour background = dialog.report()->GetBackgroundColour();
    EXPECT_EQ(background, dialog.GetBackgroundColour());
    for (const auto& place : places)
    {
        const tsInk ink = tsInkOf(picture, place.second);
        EXPECT_GE(tsContrast(ink.ground, ink.letters), 7)
            << place.first << ": " << ink.letters.GetAsString(wxC2S_HTML_SYNTAX).utf8_str() << " on "
            << ink.ground.GetAsString(wxC2S_HTML_SYNTAX).utf8_str();
    }
    for (const char* pHeading : {"Debug Assertion", "Assert Reason", "https://"})
    {
        const tsInk ink = tsInkOf(picture, places[pHeading]);
        EXPECT_EQ(ink.ground, background) << pHeading;
        EXPECT_GE(tsContrast(*wxBLUE, ink.ground), 7) << pHeading;
        EXPECT_TRUE(isBlue(ink.letters.Red(), ink.letters.Green(), ink.letters.Blue())) << pHeading;
    }
    // The dialog's face is the report's.
    const wxPoint besideReport = dialog.report()->GetScreenRect().GetTopRight() + wxPoint(5, 125);
    const wxColour face = tsInkOf(picture, wxRect(besideReport, wxSize(3, 3))).ground;
    EXPECT_LT(tsContrast(face, background), 1.1)
        << face.GetAsString(wxC2S_HTML_SYNTAX).utf8_str()
        << ", report: " << background.GetAsString(wxC2S_HTML_SYNTAX).utf8_str();
}

TEST(DialogContrast, IsHighInEveryTheme)
{
    for (const std::string theme : {"Adwaita", "Adwaita:dark", "HighContrast", "HighContrastInverse"})
    {
        std::string output;
        EXPECT_EQ(tsRunProgram({"env", "GTK_THEME=" + theme, "/proc/" + std::to_string(wxGetProcessId()) + "/exe",
                                "--gtest_filter=DialogContrast.IsHighOnTheScreen"},
                               &output),
                  0)
            << theme << ":\n"
            << output;
        EXPECT_NE(output.find("[  PASSED  ] 1 test"), std::string::npos) << output;
    }
}

TEST(DialogContrast, LeavesThemesAloneThatAreReadable)
{
    for (const std::string theme : {"Adwaita", "HighContrast"})
    {
        std::string output;
        EXPECT_EQ(tsRunProgram({"env", "GTK_THEME=" + theme, "/proc/" + std::to_string(wxGetProcessId()) + "/exe",
                                "--gtest_also_run_disabled_tests",
                                "--gtest_filter=DialogContrast.DISABLED_TheThemesBackgroundIsKept"},
                               &output),
                  0)
            << theme << ":\n"
            << output;
        EXPECT_NE(output.find("[  PASSED  ] 1 test"), std::string::npos) << output;
    }
}

// For the one above, in the themes that it names.
TEST(DialogContrast, DISABLED_TheThemesBackgroundIsKept)
{
    const OpenDialog dialog;
    EXPECT_FALSE(dialog.UseBgCol());
}

TEST(DialogLayout, IsNotMovedByLongTexts)
{
    const wxSize size = OpenDialog().GetSize();
    const std::string longName(1000, 'n');
    // An unbroken word much longer than that takes the toolkit seconds, growing with the square of its length.
    wxString longReason('r', 10000);
    for (int i = 0; i < 5000; ++i)
    {
        longReason += " words and words";
    }
    longReason += "\nthe end";
    OpenDialog dialog("/" + longName + "/" + longName + ".txt", 1, longReason);
    EXPECT_EQ(dialog.GetSize(), size);
    EXPECT_EQ(dialog.report()->GetSize(), wxSize(400, 250));
    EXPECT_EQ(dialog.GetTitle().length(), longName.size() + std::strlen("Assert in: .txt - Line: 1"));
    EXPECT_TRUE(dialog.text().EndsWith(longReason));
    wxSize shownSize;
    EXPECT_EQ(showAnd(dialog, "look",
                      [&]
                      {
                          shownSize = dialog.GetClientSize();
                          tsPressKeys("Return");
                      }),
              8002);
    EXPECT_EQ(shownSize, OpenDialog().GetClientSize());
}

TEST(DialogIcon, IsSet)
{
    OpenDialog dialog;
    ASSERT_EQ(dialog.GetIcons().GetIconCount(), 1U);
    EXPECT_EQ(dialog.GetIcons().GetIconByIndex(0).GetSize(), wxSize(16, 16));
    EXPECT_TRUE(dialog.loadIcon());
    EXPECT_EQ(dialog.GetIcons().GetIconCount(), 1U);
}

TEST(DialogIcon, HasFortyColoursAllUsed)
{
    ASSERT_STREQ(ahAssertDialogIcon[0], "16 16 40 1");
    std::map<char, std::string> palette;
    std::set<std::string> colours;
    for (int i = 1; i <= 40; ++i)
    {
        const std::string line(ahAssertDialogIcon[i]);
        ASSERT_EQ(line.size(), 11U) << line;
        ASSERT_EQ(line.substr(1, 4), " c #") << line;
        palette[line[0]] = line.substr(4);
        colours.insert(line.substr(4));
    }
    ASSERT_EQ(palette.size(), 40U);
    ASSERT_EQ(colours.size(), 40U);
    EXPECT_EQ(palette[' '], "#FFFFFF");
    for (const char* pColour : {"#F71B01", "#F81F00", "#F82300", "#FFFEFE"})
    {
        EXPECT_EQ(colours.count(pColour), 1U) << pColour;
    }

    std::set<char> used;
    for (int y = 0; y < 16; ++y)
    {
        const std::string row(ahAssertDialogIcon[41 + y]);
        ASSERT_EQ(row.size(), 16U) << row;
        used.insert(row.begin(), row.end());
    }
    EXPECT_EQ(used.size(), 40U);
    for (const char character : used)
    {
        EXPECT_EQ(palette.count(character), 1U) << character;
    }
}

TEST(DialogIcon, IsARedSquareWithAWhiteGlyph)
{
    const wxImage image = wxBitmap(ahAssertDialogIcon).ConvertToImage();
    ASSERT_EQ(image.GetSize(), wxSize(16, 16));
    int amountOfRed = 0;
    int amountOfWhite = 0;
    for (int y = 0; y < 16; ++y)
    {
        for (int x = 0; x < 16; ++x)
        {
            const int red = image.GetRed(x, y);
            const int green = image.GetGreen(x, y);
            const int blue = image.GetBlue(x, y);
            // Every colour lies between one red and white.
            EXPECT_GE(red, 0xF7);
            EXPECT_LE(blue, green);
            EXPECT_LE(green - blue, 0x23);
            amountOfRed += green < 0x60 ? 1 : 0;
            if (green == 0xFF && blue == 0xFF)
            {
                ++amountOfWhite;
                EXPECT_TRUE(x >= 4 && x < 12 && y >= 2 && y < 14) << x << ", " << y;
            }
        }
    }
    EXPECT_GT(amountOfRed, 150);
    EXPECT_GT(amountOfWhite, 10);
}

// The road through the handler.

namespace
{

class DialogOfHandler : public testing::Test
{
protected:
    static ahAssertDialog& current()
    {
        auto* pDialog = dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
        if (pDialog == nullptr)
        {
            throw std::logic_error("there is no dialog");
        }
        return *pDialog;
    }

    static wxString reportText()
    {
        return wxDynamicCast(current().GetChildren().GetFirst()->GetData(), wxTextCtrl)->GetValue();
    }

    static bool isThere() { return tsTopModalDialog() != nullptr && tsHasKeyboard(current()); }

    int display(const char* pFile, int line, const char* pMessage, std::function<void()> action)
    {
        tsScript script;
        script.waitUntil("the dialog has the keyboard", [] { return isThere(); })
            .perform("act on it", std::move(action))
            .start();
        const int result = _handler.displayAssertionDialog("function", osFilePath(gtString(pFile)), line, pMessage);
        EXPECT_TRUE(script.isFinished());
        EXPECT_EQ(wxTopLevelWindows.size(), 0U);
        return result;
    }

    ahDialogBasedAssertionFailureHandler _handler{1};
};

}  // namespace

TEST_F(DialogOfHandler, ShowsWhatFailed)
{
    wxString title;
    wxString text;
    EXPECT_EQ(display("/src/a.cpp", 3, "caf\xE9 != \xC3",
                      [&]
                      {
                          EXPECT_EQ(current().GetParent(), nullptr);
                          title = current().GetTitle();
                          text = reportText();
                          tsPressKeys("alt+o");
                      }),
              8003);
    EXPECT_EQ(title, "Assert in: a.cpp - Line: 3");
    EXPECT_TRUE(text.EndsWith(wxString(L"\ncaf\u00E9 != \u00C3"))) << text;
    EXPECT_EQ(text.Find("function"), wxNOT_FOUND);
}

TEST_F(DialogOfHandler, TakesANullReasonForAnEmptyOne)
{
    wxString text;
    EXPECT_EQ(display("/src/a.cpp", 3, nullptr,
                      [&]
                      {
                          text = reportText();
                          tsPressKeys("alt+i");
                      }),
              8001);
    EXPECT_TRUE(text.EndsWith("Assert Reason: \n\n")) << text;
}

TEST_F(DialogOfHandler, IsNotMadeForAnIgnoredLocation)
{
    const osFilePath path(gtString("/src/a.cpp"));
    const int decision = display("/src/a.cpp", 3, "m", [] { tsPressKeys("Return"); });
    EXPECT_EQ(decision, 8002);
    _handler.handleUsersDecision(decision, path, 3);

    // Would hang if there were a dialog.
    EXPECT_EQ(_handler.displayAssertionDialog("function", path, 3, "m"), 8001);
    EXPECT_EQ(wxTopLevelWindows.size(), 0U);
    EXPECT_EQ(display("/src/a.cpp", 4, "m", [] { tsPressKeys("alt+e"); }), 8005);
}

TEST_F(DialogOfHandler, PassesTheCloseBoxOn)
{
    const osFilePath path(gtString("/src/a.cpp"));
    const int decision = display("/src/a.cpp", 3, "m",
                                 [] {
                                     EXPECT_EQ(tsRunProgram({"wmctrl", "-c", "Assert in: "}), 0);
                                 });
    EXPECT_EQ(decision, static_cast<int>(wxID_CANCEL));
    _handler.handleUsersDecision(decision, path, 3);
    EXPECT_FALSE(_handler.isInIgnoredSourceLocations(path, 3));
}

TEST_F(DialogOfHandler, LetsAnExceptionOutAfterTheDialogIsGone)
{
    tsScript script;
    script.waitUntil("the dialog has the keyboard", [] { return isThere(); })
        .perform("throw", [] { throw std::runtime_error("out of the modal loop"); })
        .start();
    EXPECT_THROW(_handler.displayAssertionDialog("f", osFilePath(gtString("/a.cpp")), 1, "m"), std::runtime_error);
    EXPECT_EQ(wxTopLevelWindows.size(), 0U);
    EXPECT_FALSE(_handler.isInIgnoredSourceLocations(osFilePath(gtString("/a.cpp")), 1));
    // And the next one works.
    EXPECT_EQ(display("/src/a.cpp", 3, "m", [] { tsPressKeys("alt+d"); }), 8004);
}

TEST(DialogOfHandlerDeathTest, ExitEndsTheProcessWithStatusZero)
{
    EXPECT_EXIT(
        {
            ahDialogBasedAssertionFailureHandler handler(1);
            const osFilePath path(gtString("/src/a.cpp"));
            tsScript script;
            script
                .waitUntil("the dialog has the keyboard",
                           []
                           {
                               auto* pDialog = dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
                               return pDialog != nullptr && tsHasKeyboard(*pDialog);
                           })
                .perform("press Alt+E", [] { tsPressKeys("alt+e"); })
                .start();
            handler.handleUsersDecision(handler.displayAssertionDialog("f", path, 1, "m"), path, 1);
            std::_Exit(3);
        },
        testing::ExitedWithCode(0), "");
}

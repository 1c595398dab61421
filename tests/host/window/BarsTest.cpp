// SPDX-License-Identifier: Apache-2.0
// The bar above the documents as it is seen: its text, its sign, and its Details.
#include "tests/host/MainFrameFixture.h"

#include "host/window/hoDetailsDialog.h"
#include "host/window/hoPreferencesDialog.h"
#include "tests/support/tsContrast.h"

#include <gmock/gmock.h>
#include <wx/clipbrd.h>
#include <wx/infobar.h>
#include <wx/textctrl.h>

#include <cstddef>
#include <functional>

#include <gtk/gtk.h>

namespace
{
using testing::HasSubstr;
using testing::StartsWith;

const char* const good = "\xe2\x9c\x93 ";
const char* const bad = "\xe2\x9c\x97 ";
const char* const warning = "\xe2\x9a\xa0 ";

using Visit = std::function<void(GtkWidget*)>;

void visitAll(GtkWidget* pWidget, const Visit& visit)
{
    visit(pWidget);
    if (GTK_IS_CONTAINER(pWidget))
    {
        gtk_container_forall(
            GTK_CONTAINER(pWidget),
            [](GtkWidget* pChild, gpointer pVisit) { visitAll(pChild, *static_cast<const Visit*>(pVisit)); },
            const_cast<Visit*>(&visit));
    }
}

class Bars : public MainFrameFixture
{
protected:
    wxWindow* bar() const
    {
        for (wxWindow* pChild : _pFrame->GetChildren())
        {
            if (dynamic_cast<const wxInfoBar*>(pChild) != nullptr)
            {
                return pChild;
            }
        }
        return nullptr;
    }
    bool isBarShown() const { return bar() != nullptr && bar()->IsShownOnScreen(); }
    // What its label shows, or nothing. Every character of it has a picture in the fonts that are there.
    std::string seen() const
    {
        std::string text;
        if (!isBarShown())
        {
            return text;
        }
        visitAll(bar()->GetHandle(),
                 [&](GtkWidget* pWidget)
                 {
                     const bool isOfButton = gtk_widget_get_ancestor(pWidget, GTK_TYPE_BUTTON) != nullptr;
                     if (GTK_IS_LABEL(pWidget) && gtk_widget_get_mapped(pWidget) != FALSE && !isOfButton)
                     {
                         text += gtk_label_get_text(GTK_LABEL(pWidget));
                         PangoLayout* const pLayout = gtk_label_get_layout(GTK_LABEL(pWidget));
                         EXPECT_EQ(pango_layout_get_unknown_glyphs_count(pLayout), 0) << text;
                     }
                 });
        return text;
    }
    // On the screen; nothing as long as the bar still comes up.
    wxPoint middleOfButton(const std::string& label) const
    {
        wxPoint middle;
        visitAll(bar()->GetHandle(),
                 [&](GtkWidget* pWidget)
                 {
                     if (!GTK_IS_BUTTON(pWidget) || gtk_button_get_label(GTK_BUTTON(pWidget)) == nullptr ||
                         gtk_button_get_label(GTK_BUTTON(pWidget)) != label || gtk_widget_get_mapped(pWidget) == FALSE)
                     {
                         return;
                     }
                     GtkWidget* const pRevealer = gtk_widget_get_ancestor(pWidget, GTK_TYPE_REVEALER);
                     if (pRevealer != nullptr && gtk_revealer_get_child_revealed(GTK_REVEALER(pRevealer)) == FALSE)
                     {
                         return;
                     }
                     GtkAllocation place;
                     gtk_widget_get_allocation(pWidget, &place);
                     if (place.width <= 1)
                     {
                         // It is new and has no place yet.
                         return;
                     }
                     int x = 0;
                     int y = 0;
                     gdk_window_get_origin(gtk_widget_get_window(pWidget), &x, &y);
                     middle = wxPoint(x + place.x + place.width / 2, y + place.y + place.height / 2);
                 });
        return middle;
    }
    void clickButton(const std::string& label) const
    {
        wxPoint middle;
        tsRunUntil("the button has its place",
                   [&]
                   {
                       const wxPoint before = middle;
                       middle = middleOfButton(label);
                       return middle != wxPoint() && middle == before;
                   });
        tsClickAt(middle);
    }
    void startWithKey()
    {
        start({"countersign-desktop", _folder.write("a.txt", "first"), _folder.write("b.txt", "second")});
        dropNewKey();
    }
    void work(const std::string& keys)
    {
        MainFrameFixture::work(keys);
        tsRunUntil("the bar is shown", [this] { return isBarShown() && !seen().empty(); });
    }
    static bool areDetailsUp()
    {
        const auto* pDialog = dynamic_cast<hoDetailsDialog*>(tsTopModalDialog());
        return pDialog != nullptr && tsHasKeyboard(*pDialog);
    }
    void openAndCloseDetails() const
    {
        tsScript script;
        script.waitUntil("the details have the keyboard", areDetailsUp)
            .perform("close them", [] { tsPressKeys("Escape"); })
            .start();
        clickButton("Details...");
        tsRunUntil("the details are closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
    }
};
}  // namespace

TEST_F(Bars, TellGoodBadAndWhatCannotBeOpenedApart)
{
    startWithKey();
    work("ctrl+shift+t");
    EXPECT_EQ(seen(), warning + std::string("2 documents: 2 not signed."));
    work("ctrl+shift+s");
    EXPECT_EQ(seen(), good + std::string("2 documents: 2 signed."));
    _folder.write("b.txt", "changed");
    work("ctrl+shift+t");
    EXPECT_EQ(seen(), bad + std::string("Not all is well. 2 documents: 1 good, 1 bad."));
    openAskedFor(_folder.path("missing.txt"));
    tsRunUntil("the bar tells of it", [this] { return seen().find("missing") != std::string::npos; });
    EXPECT_THAT(seen(), StartsWith(warning + std::string("Cannot open")));
}

TEST_F(Bars, GoWhenADocumentOfTheirResultIsClosed)
{
    startWithKey();
    work("ctrl+shift+s");
    openAskedFor(_folder.path("a.txt"));
    EXPECT_TRUE(isBarShown());
    tsPressKeys("Delete");
    tsRunUntil("the bar is gone", [this] { return !isBarShown(); });
    EXPECT_TRUE(_pFrame->workMessage()._line.empty());

    tsPressKeys("ctrl+a");
    work("ctrl+t");
    tsPressKeys("ctrl+shift+w");
    tsRunUntil("the bar is gone", [this] { return !isBarShown(); });
}

TEST_F(Bars, StayWhenTheirDetailsAreClosed)
{
    startWithKey();
    work("ctrl+shift+s");
    const std::string before = seen();
    openAndCloseDetails();
    settle();
    EXPECT_TRUE(isBarShown());
    EXPECT_EQ(seen(), before);

    clickButton("Dismiss");
    tsRunUntil("the bar is gone", [this] { return !isBarShown(); });
}

TEST_F(Bars, LeaveTheirRoomToTheList)
{
    startWithKey();
    tsPictureAtRest();
    const wxRect whole = list().GetScreenRect();
    const wxRect bottom(whole.x + 20, whole.GetBottom() - 20, whole.width - 40, 10);
    const wxColour before = tsInkOf(tsPictureAtRest(), bottom).ground;
    work("ctrl+shift+t");
    tsRunUntil("the list makes room", [&] { return list().GetScreenRect().height < whole.height; });
    EXPECT_EQ(tsInkOf(tsPictureAtRest(), bottom).ground, before);
    // To the button, past Details.
    tsPressKeys("shift+Tab");
    tsPressKeys("shift+Tab");
    tsPictureAtRest();
    tsPressKeys("space");
    tsRunUntil("the list has its room again", [&] { return list().GetScreenRect() == whole; });
    EXPECT_EQ(tsInkOf(tsPictureAtRest(), bottom).ground, before);
}

TEST_F(Bars, GiveDetailsToCopyAndToSave)
{
    startWithKey();
    work("ctrl+shift+s");
    const std::string details = _pFrame->workMessage()._details.utf8_string();
    EXPECT_THAT(details, HasSubstr(_folder.path("a.txt") + "\n"));
    // The dialog begins in the current folder, with this name.
    const std::string file = _folder.path("details.txt");
    const std::filesystem::path folderBefore = std::filesystem::current_path();
    std::filesystem::current_path(_folder.path());
    std::string afterSaving;
    std::string afterRefusing;
    const auto isQuestionUp = []
    {
        std::string id;
        return tsRunProgram({"xdotool", "getactivewindow"}, &id) == 0 && !id.empty() && !isActive("Countersign") &&
               !isActive("Save the details") && !isActive("Details");
    };

    tsScript script;
    const auto save = [&]
    {
        script.waitUntil("the details have the keyboard", areDetailsUp)
            .perform("save", [] { tsClick(*wxWindow::FindWindowById(wxID_SAVE, tsTopModalDialog())); })
            .waitUntil("the file dialog is up", [] { return isActive("Save the details"); })
            .perform("press Return", [] { tsPressKeys("Return"); });
    };
    script.waitUntil("the details have the keyboard", areDetailsUp)
        .perform("copy", [] { tsClick(*wxWindow::FindWindowById(wxID_COPY, tsTopModalDialog())); });
    save();
    script.waitUntil("the file is written", [&] { return std::filesystem::exists(file); })
        .perform("put another file in its place",
                 [&]
                 {
                     afterSaving = _folder.read("details.txt");
                     _folder.write("details.txt", "kept");
                 });
    save();
    script.waitUntil("the question is up", isQuestionUp)
        .perform("refuse", [] { tsPressKeys("Escape"); })
        .waitUntil("the file dialog is up", [] { return isActive("Save the details"); })
        .perform("cancel",
                 [&]
                 {
                     afterRefusing = _folder.read("details.txt");
                     tsPressKeys("Escape");
                 });
    save();
    script.waitUntil("the question is up", isQuestionUp)
        .perform("agree", [] { tsPressKeys("alt+r"); })
        .waitUntil("the details have the keyboard", areDetailsUp)
        .perform("close them", [] { tsPressKeys("Escape"); })
        .start();
    clickButton("Details...");
    tsRunUntil("the details are closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
    std::filesystem::current_path(folderBefore);
    const wxClipboardLocker clipboard;
    wxTextDataObject copied;
    EXPECT_TRUE(wxTheClipboard->GetData(copied));
    EXPECT_EQ(copied.GetText().utf8_string(), details);
    EXPECT_EQ(afterSaving, details);
    EXPECT_EQ(afterRefusing, "kept");
    EXPECT_EQ(_folder.read("details.txt"), details);
}

TEST_F(Bars, HaveTheColourOfWhatTheyTell)
{
    startWithKey();
    const auto ground = [this]
    {
        const wxImage picture = tsPictureAtRest();
        const wxRect place = bar()->GetScreenRect();
        return tsInkOf(picture, wxRect(place.x + 6, place.y + 8, 300, place.height - 16)).ground;
    };
    const wxColour green(0x1B, 0x5E, 0x20);
    const wxColour red(0x9B, 0x1C, 0x1C);
    const wxColour brown(0x6B, 0x44, 0x00);
    work("ctrl+shift+t");
    EXPECT_EQ(ground(), brown) << "not signed";
    work("ctrl+shift+s");
    EXPECT_EQ(ground(), green);
    _folder.write("b.txt", "changed");
    work("ctrl+shift+t");
    EXPECT_EQ(ground(), red);
    openAskedFor(_folder.path("missing.txt"));
    EXPECT_EQ(ground(), brown) << "cannot be opened";
    closeWindow();
    wxGetApp().OnExit();
    start();
    tsRunUntil("the key is offered", [this] { return isBarShown() && !seen().empty(); });
    EXPECT_EQ(ground(), wxColour(0x17, 0x4A, 0x7E)) << "the offer of a key";
}

TEST_F(Bars, WarnOfAPrivateKeyThatOthersMayRead)
{
    start();
    std::filesystem::permissions(_folder.path(), std::filesystem::perms::owner_all);
    const std::string key = _folder.write("mine.pem", newKeyText(1024));
    std::filesystem::permissions(key, std::filesystem::perms(0644));
    static_cast<hoDocumentDropTarget*>(_pFrame->GetDropTarget())->drop("file://" + key + "\r\n");
    tsRunUntil("the key is loaded", [this] { return _pFrame->keys().canSign(); });
    settle();
    ASSERT_TRUE(isBarShown());
    EXPECT_EQ(seen(), warning + std::string("Others may read or change the private key \u201cmine.pem\u201d."));
    std::string details;
    tsScript script;
    script.waitUntil("the details have the keyboard", areDetailsUp)
        .perform("read and close them",
                 [&]
                 {
                     for (const wxWindow* pChild : tsTopModalDialog()->GetChildren())
                     {
                         const auto* pText = dynamic_cast<const wxTextCtrl*>(pChild);
                         details += pText == nullptr ? std::string() : pText->GetValue().utf8_string();
                     }
                     tsPressKeys("Escape");
                 })
        .start();
    clickButton("Details...");
    tsRunUntil("the details are closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
    EXPECT_THAT(details, StartsWith(key + "\n"));
    EXPECT_THAT(details, HasSubstr("chmod 600"));
}

TEST_F(Bars, OfferTheLastKeyAsLongAsItIsWanted)
{
    const std::string key = _folder.write("old.pem", newKeyText(1024));
    std::filesystem::create_directories(_folder.path("config/countersign"));
    _folder.write("config/countersign/settings", "recentKey.1=" + key + "\n");
    start();
    tsRunUntil("the key is offered", [this] { return isBarShown() && !seen().empty(); });
    dropNewKey();
    EXPECT_EQ(_pFrame->offer(), "") << "there is another one";
    EXPECT_FALSE(isBarShown());
    closeWindow();
    wxGetApp().OnExit();

    start();
    tsRunUntil("the key is offered", [this] { return isBarShown() && !seen().empty(); });
    tsScript script;
    script
        .waitUntil("the preferences have the keyboard",
                   []
                   {
                       const auto* pDialog = dynamic_cast<hoPreferencesDialog*>(tsTopModalDialog());
                       return pDialog != nullptr && tsHasKeyboard(*pDialog);
                   })
        .perform("do not want it", [] { tsPressKeys("alt+f"); })
        .perform("agree", [] { tsPressKeys("alt+o"); })
        .start();
    tsPressKeys("ctrl+comma");
    tsRunUntil("the preferences are closed", [&] { return script.isFinished() && tsTopModalDialog() == nullptr; });
    settle();
    EXPECT_EQ(_pFrame->offer(), "");
    EXPECT_FALSE(isBarShown());
}

TEST_F(Bars, OfferTheLastKeyAtTheNextStart)
{
    startWithKey();
    EXPECT_FALSE(isBarShown()) << "there has been no key before";
    closeWindow();
    wxGetApp().OnExit();
    start();
    tsRunUntil("the key is offered", [this] { return isBarShown() && !seen().empty(); });
    EXPECT_EQ(seen(), "No key is loaded. The last one was \u201cmine.pem\u201d.");
    // Another message comes first and leaves it.
    openAskedFor(_folder.path("missing.txt"));
    tsRunUntil("the bar tells of it", [this] { return seen().find("missing") != std::string::npos; });
    clickButton("Dismiss");
    clickButton("Load mine.pem");
    tsRunUntil("the key is loaded", [this] { return _pFrame->keys().canSign(); });
    tsRunUntil("the bar is gone", [this] { return !isBarShown(); });
    // The bar has its usual buttons again.
    openAskedFor(_folder.path("a.txt"));
    work("ctrl+s");
    openAndCloseDetails();
}

TEST_F(Bars, OfferNoKeyThatIsGoneOrNotWanted)
{
    const std::string key = _folder.write("mine.pem", newKeyText(1024));
    const std::string folder = "config/countersign";
    std::filesystem::create_directories(_folder.path(folder));
    _folder.write(folder + "/settings", "offerKey=0\nrecentKey.1=" + key + "\n");
    start();
    EXPECT_EQ(_pFrame->offer(), "");
    closeWindow();
    wxGetApp().OnExit();
    _folder.write(folder + "/settings", "recentKey.1=" + key + ".gone\n");
    start();
    EXPECT_EQ(_pFrame->offer(), "");
    closeWindow();
    wxGetApp().OnExit();
    _folder.write(folder + "/settings", "recentKey.1=" + key + "\n");
    start();
    EXPECT_NE(_pFrame->offer(), "");
    clickButton("Dismiss");
    tsRunUntil("the bar is gone", [this] { return !isBarShown(); });
    EXPECT_EQ(_pFrame->offer(), "");
}

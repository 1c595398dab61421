// SPDX-License-Identifier: Apache-2.0
// The windows in each language that there is a catalogue for.
#include "tests/host/MainFrameFixture.h"
#include "tests/host/NewKey.h"

#include "assertionReporting/arAssertionReportWindow.h"
#include "host/desktop/hoApplicationArguments.h"
#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"
#include "host/window/hoCatalogues.h"
#include "host/window/hoDetailsDialog.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoEncryptionDialog.h"
#include "host/window/hoKeyInformationDialog.h"
#include "host/window/hoMenuBar.h"
#include "host/window/hoNewKeyDialog.h"
#include "host/window/hoPassphraseDialog.h"
#include "host/window/hoPropertiesDialog.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextDirection.h"

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/stattext.h>
#include <wx/stockitem.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <fstream>
#include <map>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#endif

namespace
{

std::vector<std::string> languages()
{
    std::vector<std::string> all;
    std::ifstream list(COUNTERSIGN_LANGUAGES);
    for (std::string line; std::getline(list, line);)
    {
        all.push_back(line);
    }
    return all;
}

// The letters behind single ampersands, each once for every label that has it.
void noteMnemonic(const wxString& label, std::map<std::string, std::vector<std::string>>& labelsOf)
{
    const std::wstring& text = label.ToStdWstring();
    for (std::size_t i = 0; i + 1 < text.size(); ++i)
    {
        if (text[i] == '&')
        {
            ++i;
            if (text[i] != '&')
            {
                labelsOf[wxString(text[i]).Lower().utf8_string()].push_back(label.utf8_string());
            }
        }
    }
}

void expectEachOnce(const std::map<std::string, std::vector<std::string>>& labelsOf)
{
    EXPECT_FALSE(labelsOf.empty());
    for (const auto& [letter, labels] : labelsOf)
    {
        EXPECT_EQ(labels.size(), 1U) << labels.front() << " and " << labels.back();
        EXPECT_LT(letter[0], 0x80) << labels.front() << ": not on every keyboard";
    }
}

// Of a menu and the menus in it; the accelerators are gathered.
void expectOwnMnemonics(const wxMenu& menu, std::vector<std::string>& accelerators)
{
    std::map<std::string, std::vector<std::string>> labelsOf;
    for (const wxMenuItem* pItem : menu.GetMenuItems())
    {
        noteMnemonic(pItem->GetItemLabel(), labelsOf);
        accelerators.push_back(pItem->GetItemLabel().AfterFirst('\t').utf8_string());
        if (pItem->IsSubMenu())
        {
            expectOwnMnemonics(*pItem->GetSubMenu(), accelerators);
        }
    }
    if (menu.GetMenuItemCount() > 1)
    {
        expectEachOnce(labelsOf);
    }
}

// The labels are apart, and each is shown whole.
void expectReadable(wxDialog& dialog)
{
    std::map<std::string, std::vector<std::string>> labelsOf;
    dialog.Layout();
    for (const wxWindow* pChild : dialog.GetChildren())
    {
        const bool isText = dynamic_cast<const wxStaticText*>(pChild) != nullptr;
        const bool isLabel = isText || dynamic_cast<const wxButton*>(pChild) != nullptr ||
                             dynamic_cast<const wxCheckBox*>(pChild) != nullptr;
        if (!isLabel)
        {
            continue;
        }
        noteMnemonic(pChild->GetLabel(), labelsOf);
        // What is cut off on purpose is told apart by its style.
        if (!isText || !pChild->HasFlag(wxST_NO_AUTORESIZE))
        {
            EXPECT_GE(pChild->GetSize().x, pChild->GetBestSize().x) << pChild->GetLabel();
        }
        EXPECT_LE(pChild->GetRect().GetRight(), dialog.GetClientSize().x) << pChild->GetLabel();
    }
    expectEachOnce(labelsOf);
    EXPECT_LE(dialog.GetSize().x, 800) << dialog.GetTitle();
}

#ifdef __WXGTK__
// Of the windows that are made while it lives.
class Direction
{
public:
    explicit Direction(bool isToTheLeft) : _before(gtk_widget_get_default_direction())
    {
        gtk_widget_set_default_direction(isToTheLeft ? GTK_TEXT_DIR_RTL : GTK_TEXT_DIR_LTR);
    }
    ~Direction() { gtk_widget_set_default_direction(_before); }

private:
    const GtkTextDirection _before;
};

// How far the texts begin from the side where reading begins.
void expectBegin(wxDialog& dialog, bool isToTheLeft)
{
    dialog.Show();
    tsRunEvents();
    int amount = 0;
    for (const wxWindow* pChild : dialog.GetChildren())
    {
        if (dynamic_cast<const wxStaticText*>(pChild) == nullptr || pChild->GetLabel().empty())
        {
            continue;
        }
        ++amount;
        GtkAllocation place;
        gtk_widget_get_allocation(pChild->GetHandle(), &place);
        int begin = 0;
        gtk_label_get_layout_offsets(GTK_LABEL(pChild->GetHandle()), &begin, nullptr);
        PangoRectangle text;
        pango_layout_get_pixel_extents(gtk_label_get_layout(GTK_LABEL(pChild->GetHandle())), nullptr, &text);
        begin += text.x;
        const int gap = isToTheLeft ? place.x + place.width - (begin + text.width) : begin - place.x;
        EXPECT_LE(std::abs(gap), 2) << dialog.GetTitle() << ": " << pChild->GetLabel();
    }
    EXPECT_GT(amount, 0) << dialog.GetTitle();
    dialog.Hide();
}
#endif

class Languages : public MainFrameFixture
{
protected:
    ~Languages() override
    {
        unsetenv("LANGUAGE");
        for (const int category : {LC_CTYPE, LC_COLLATE, LC_MESSAGES, LC_TIME})
        {
            static_cast<void>(std::setlocale(category, "C"));
        }
        hoUseCatalogue("", {});
    }

    void startIn(const std::string& language)
    {
        setenv("LC_ALL", "C.UTF-8", 1);
        setenv("LANGUAGE", language.c_str(), 1);
        startUnwatched({"countersign-desktop"});
    }

    std::vector<std::string> menuTitles() const
    {
        std::vector<std::string> titles;
        for (std::size_t i = 0; i < _pFrame->GetMenuBar()->GetMenuCount(); ++i)
        {
            titles.push_back(_pFrame->GetMenuBar()->GetMenuLabelText(i).utf8_string());
        }
        return titles;
    }
};
}  // namespace

TEST(LanguagesWanted, AreThoseOfTheLocale)
{
    using Names = std::vector<gtString>;
    EXPECT_EQ(hoLanguagesWanted("de_AT.UTF-8", ""), (Names{"de_AT", "de"}));
    EXPECT_EQ(hoLanguagesWanted("fr", ""), (Names{"fr", "fr"}));
    EXPECT_EQ(hoLanguagesWanted("sr_RS.UTF-8@latin", ""), (Names{"sr_RS@latin", "sr@latin", "sr_RS", "sr"}));
    EXPECT_EQ(hoLanguagesWanted("C", ""), Names());
    EXPECT_EQ(hoLanguagesWanted("C.UTF-8", ""), Names());
}

TEST(LanguagesWanted, AreFirstThoseOfTheList)
{
    using Names = std::vector<gtString>;
    EXPECT_EQ(hoLanguagesWanted("de_DE.UTF-8", "fr:it"), (Names{"fr", "fr", "it", "it"}));
    EXPECT_EQ(hoLanguagesWanted("C.UTF-8", "de"), (Names{"de", "de"}));
    // What comes after English is not wanted.
    EXPECT_EQ(hoLanguagesWanted("de_DE.UTF-8", "en_GB:de"), (Names{"en_GB", "en"}));
    // Nothing is translated in the locale C.
    EXPECT_EQ(hoLanguagesWanted("C", "de"), Names());
    EXPECT_EQ(hoLanguagesWanted("POSIX", "de"), Names());
    EXPECT_EQ(hoLanguagesWanted("de_DE.UTF-8", "::"), Names());
}

TEST_F(Languages, GermanIsSpoken)
{
    startIn("de");
    EXPECT_EQ(menuTitles(), (std::vector<std::string>{"Datei", "Bearbeiten", "Ansicht", "Schl\u00fcssel", "Signatur",
                                                      "Entwickler", "Hilfe"}));
    EXPECT_EQ(_pFrame->GetStatusBar()->GetStatusText(2), "Keine Dokumente");
    EXPECT_EQ(hoExactSizeText(1234567), "1.234.567 Bytes");
    EXPECT_EQ(hoSizeText(1234), "1,23 kB");
    EXPECT_EQ(hoStateText(hoDocumentState::SignedByMe, true), "Von mir signiert");
    EXPECT_EQ(hoCounted("%s document", "%s documents", 1), "1 Dokument");
    EXPECT_EQ(hoCounted("%s document", "%s documents", 2000000), "2.000.000 Dokumente");
}

TEST_F(Languages, FrenchIsSpoken)
{
    startIn("fr_CA:fr");
    EXPECT_EQ(menuTitles(), (std::vector<std::string>{"Fichier", "\u00c9dition", "Affichage", "Cl\u00e9", "Signature",
                                                      "D\u00e9veloppeur", "Aide"}));
    // None is singular in French.
    EXPECT_EQ(hoCounted("%s document", "%s documents", 0), "0 document");
    EXPECT_EQ(hoCounted("%s document", "%s documents", 2), "2 documents");
}

// The texts are of one language and the numbers and dates of another country.
TEST_F(Languages, NumbersAndDatesFollowTheLocale)
{
    const std::string locale = _folder.path("de_DE.UTF-8");
    if (tsRunProgram({"localedef", "-i", "de_DE", "-f", "UTF-8", locale}) != 0)
    {
        GTEST_SKIP() << "no sources of locales (package locales)";
    }
    setenv("LOCPATH", _folder.path().c_str(), 1);
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    setenv("LANGUAGE", "fr", 1);
    hoUseLanguageOfUser(hoApplicationPath());
    unsetenv("LOCPATH");
    EXPECT_EQ(_("&File"), "&Fichier");
    EXPECT_EQ(hoExactSizeText(1234567), "1.234.567 octets");
    EXPECT_EQ(hoSizeText(1234), "1,23 ko");
    EXPECT_EQ(hoTimeText(1234567890), "13.02.2009 23:31");
    EXPECT_EQ(hoTimeText(1234567890, true), "13.02.2009 23:31:30");
    unsetenv("TZ");
    // What libraries read and write stays as it is.
    EXPECT_EQ(wxString::Format("%.1f", 1.5), "1.5");
}

TEST_F(Languages, OthersAreEnglish)
{
    startIn("xx:C");
    EXPECT_EQ(menuTitles().front(), "File");
    EXPECT_EQ(hoExactSizeText(1234567), "1,234,567 bytes");
}

TEST_F(Languages, ADamagedCatalogueIsNone)
{
    std::filesystem::create_directories(_folder.path("de/LC_MESSAGES"));
    _folder.write("de/LC_MESSAGES/countersign.mo", "no catalogue");
    hoUseCatalogue(_folder.path(), {"de"});
    EXPECT_EQ(_("&File"), "&File");
}

TEST_F(Languages, MenusHaveMnemonicsOfTheirOwn)
{
    const gtString folder = hoCatalogueFolder(hoApplicationPath());
    std::vector<std::string> english;
    std::vector<std::string> all = languages();
    ASSERT_GE(all.size(), 2U);
    all.insert(all.begin(), "en");
    for (const std::string& language : all)
    {
        SCOPED_TRACE(language);
        hoUseCatalogue(folder, {language});
        const hoMenuBar bar;
        std::vector<std::string> accelerators;
        std::map<std::string, std::vector<std::string>> titlesOf;
        for (std::size_t i = 0; i < bar.GetMenuCount(); ++i)
        {
            noteMnemonic(bar.GetMenuLabel(i), titlesOf);
            expectOwnMnemonics(*bar.GetMenu(i), accelerators);
        }
        expectEachOnce(titlesOf);
        wxMenu contextMenu;
        hoFillContextMenu(contextMenu);
        expectOwnMnemonics(contextMenu, accelerators);
        if (english.empty())
        {
            english = accelerators;
        }
        EXPECT_EQ(accelerators, english);
    }
}

TEST_F(Languages, DialogsAreReadable)
{
    const gtString folder = hoCatalogueFolder(hoApplicationPath());
    hoKeyRing keys;
    keys._private._pKey = newKey(512);
    keys._private._path = "/keys/mine.pem";
    std::vector<std::string> all = languages();
    all.insert(all.begin(), "en");
    for (const std::string& language : all)
    {
        SCOPED_TRACE(language);
        hoUseCatalogue(folder, {language});
        hoNewKeyDialog newKeyPair(nullptr, "/keys/");
        expectReadable(newKeyPair);
        hoEncryptionDialog texts(nullptr, keys);
        expectReadable(texts);
        hoKeyInformationDialog information(nullptr, keys);
        expectReadable(information);
        hoDocument document;
        document._verdict._state = hoDocumentState::Missing;
        hoPropertiesDialog properties(nullptr, document, keys);
        expectReadable(properties);
        hoDetailsDialog details(nullptr, "Details", "heading", "text");
        expectReadable(details);
    }
}

TEST_F(Languages, LeaveTheAssertionReportInEnglish)
{
    hoUseCatalogue(hoCatalogueFolder(hoApplicationPath()), {"de"});
    ASSERT_NE(wxGetStockLabel(wxID_CLOSE), "&Close");
    const arAssertionReportWindow window(nullptr, std::make_shared<arAssertionReport>());
    std::vector<wxString> labels;
    for (const wxWindow* pChild : window.GetChildren())
    {
        if (dynamic_cast<const wxButton*>(pChild) != nullptr)
        {
            labels.push_back(pChild->GetLabel());
        }
    }
    EXPECT_EQ(labels, (std::vector<wxString>{"&Copy", "&Save...", "&Close"}));
}

#ifdef __WXGTK__
TEST_F(Languages, TextsBeginAtTheSideOfTheirLanguage)
{
    hoKeyRing keys;
    keys._private._pKey = newKey(512);
    keys._private._path = "/keys/mine.pem";
    for (const bool isToTheLeft : {false, true})
    {
        SCOPED_TRACE(isToTheLeft ? "right to left" : "left to right");
        const Direction direction(isToTheLeft);
        wxFrame frame(nullptr, wxID_ANY, "parent");
        gtTakeDirection(frame);
        hoEncryptionDialog texts(&frame, keys);
        expectBegin(texts, isToTheLeft);
        hoDetailsDialog details(&frame, "Details", "heading", "text");
        expectBegin(details, isToTheLeft);
        hoKeyInformationDialog information(&frame, keys);
        expectBegin(information, isToTheLeft);
        hoNewKeyDialog newKeyPair(&frame, "/keys/");
        expectBegin(newKeyPair, isToTheLeft);
        hoPassphraseDialog passphrase(&frame, "Passphrase");
        expectBegin(passphrase, isToTheLeft);
    }
}
#endif

// On a small screen.
TEST_F(Languages, TheEmptyPageFits)
{
    for (const std::string& language : languages())
    {
        SCOPED_TRACE(language);
        startIn(language);
        const wxWindow* const pLine = wxWindow::FindWindowByName("emptyLine", _pFrame);
        ASSERT_NE(pLine, nullptr);
        EXPECT_LE(pLine->GetParent()->GetBestSize().x, 640) << pLine->GetLabel();
        closeWindow();
    }
}

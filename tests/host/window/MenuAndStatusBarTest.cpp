// SPDX-License-Identifier: Apache-2.0
// The menus' commands and conditions, and the status bar's fields.
#include "tests/host/NewKey.h"
#include "tests/host/window/BareFrame.h"

#include "host/window/hoCommands.h"
#include "host/window/hoMenuBar.h"
#include "host/window/hoStatusBar.h"

#include <wx/panel.h>

namespace
{
using MenuBar = BareFrame;
using StatusBar = BareFrame;

std::string label(const wxMenuBar& bar, int id)
{
    const wxMenuItem* const pItem = bar.FindItem(id);
    return pItem == nullptr ? "" : pItem->GetItemLabelText().utf8_string();
}
}  // namespace

TEST_F(MenuBar, ListsRecentDocuments)
{
    auto* pBar = new hoMenuBar;
    _pFrame->SetMenuBar(pBar);
    EXPECT_EQ(label(*pBar, ID_CLEAR_RECENT), "None yet");
    EXPECT_FALSE(pBar->FindItem(ID_CLEAR_RECENT)->IsEnabled());

    pBar->showRecentPaths({"/a&b", "/c\nd"}, {});
    EXPECT_EQ(label(*pBar, ID_RECENT_FIRST), "1  /a&b");
    EXPECT_EQ(label(*pBar, ID_RECENT_FIRST + 1), "2  /c\u240ad");
    EXPECT_EQ(label(*pBar, ID_CLEAR_RECENT), "Clear this list");
    pBar->showRecentPaths({}, {});
    EXPECT_EQ(pBar->FindItem(ID_RECENT_FIRST), nullptr);
}

TEST_F(MenuBar, ListsTheKeysToForget)
{
    auto* pBar = new hoMenuBar;
    _pFrame->SetMenuBar(pBar);
    EXPECT_EQ(label(*pBar, ID_FORGET_KEY_FIRST), "No key");
    EXPECT_FALSE(pBar->FindItem(ID_FORGET_KEY_FIRST)->IsEnabled());
    hoKeyRing keys;
    keys._private._pKey = newKey(512);
    keys._private._path = "/keys/mine.pem";
    keys._publics.resize(hoMostKeysToForget, keys._private);
    keys._publics[0]._path = "/keys/a&b.pem";
    pBar->showKeys(keys);
    const std::string fingerprint = hoShortFingerprint(*keys._private._pKey).asStdString();
    EXPECT_EQ(label(*pBar, ID_FORGET_KEY_FIRST), "1  512-bit private key " + fingerprint + ", mine.pem");
    EXPECT_EQ(label(*pBar, ID_FORGET_KEY_FIRST + 1), "2  512-bit public key " + fingerprint + ", a&b.pem");
    EXPECT_EQ(label(*pBar, ID_FORGET_KEY_LAST), "100  512-bit public key " + fingerprint + ", mine.pem");
    EXPECT_EQ(pBar->FindItem(ID_FORGET_KEY_LAST + 1), nullptr);
}

TEST_F(MenuBar, EnablesCommandsAsTheConditionsSay)
{
    auto* pBar = new hoMenuBar;
    _pFrame->SetMenuBar(pBar);
    bool hasDocuments = false;
    bool hasSelection = false;
    bool hasOneSelected = false;
    bool hasKeys = false;
    bool canSign = false;
    bool canTest = false;
    bool hasDialogs = false;
    hoMenuBar::followConditions(*_pFrame,
                                {[&] { return hasDocuments; }, [&] { return hasSelection; },
                                 [&] { return hasOneSelected; }, [&] { return hasKeys; }, [&] { return canSign; },
                                 [&] { return canTest; }, [&] { return hasDialogs; }});
    const std::vector<std::pair<int, bool*>> dependent = {{ID_CLOSE_ALL_DOCUMENTS, &hasDocuments},
                                                          {wxID_SELECTALL, &hasDocuments},
                                                          {ID_CLOSE_DOCUMENTS, &hasSelection},
                                                          {ID_COPY_PATH, &hasSelection},
                                                          {ID_VIEW_DOCUMENTS, &hasSelection},
                                                          {ID_SHOW_IN_FOLDER, &hasSelection},
                                                          {ID_PROPERTIES, &hasOneSelected},
                                                          {ID_FORGET_KEYS, &hasKeys},
                                                          {ID_SIGN_ALL, &canSign},
                                                          {ID_TEST_ALL, &canTest}};
    for (const bool value : {true, false})
    {
        for (bool* pCondition : {&hasDocuments, &hasSelection, &hasOneSelected, &hasKeys, &canSign, &canTest})
        {
            *pCondition = value;
            for (const auto& [id, pOther] : dependent)
            {
                wxUpdateUIEvent event(id);
                _pFrame->ProcessWindowEvent(event);
                EXPECT_TRUE(event.GetSetEnabled());
                EXPECT_EQ(event.GetEnabled(), *pOther) << label(*pBar, id);
            }
            // These two work on the selection.
            wxUpdateUIEvent sign(ID_SIGN);
            _pFrame->ProcessWindowEvent(sign);
            EXPECT_EQ(sign.GetEnabled(), canSign && hasSelection);
            wxUpdateUIEvent test(ID_TEST);
            _pFrame->ProcessWindowEvent(test);
            EXPECT_EQ(test.GetEnabled(), canTest && hasSelection);
        }
    }
    hasDialogs = true;
    wxUpdateUIEvent event(ID_ASSERTION_DIALOGS);
    _pFrame->ProcessWindowEvent(event);
    EXPECT_TRUE(event.GetChecked());
}

// The commands for documents, so that none of them needs a way to the menu bar.
TEST_F(MenuBar, HasAContextMenu)
{
    wxMenu menu;
    hoFillContextMenu(menu);
    std::vector<int> commands;
    for (const wxMenuItem* const pItem : menu.GetMenuItems())
    {
        if (!pItem->IsSeparator())
        {
            commands.push_back(pItem->GetId());
        }
    }
    EXPECT_EQ(commands, (std::vector<int>{ID_VIEW_DOCUMENTS, ID_SHOW_IN_FOLDER, ID_SIGN, ID_TEST, ID_COPY_PATH,
                                          ID_CLOSE_DOCUMENTS, ID_PROPERTIES}));
}

TEST_F(StatusBar, KeepsANoticeThatCameAfterAReason)
{
    auto* pBar = new hoStatusBar(_pFrame);
    _pFrame->SetStatusBar(pBar);
    pBar->showReason("nothing is selected");
    pBar->endReason();
    EXPECT_EQ(pBar->GetStatusText(0), "");
    pBar->showReason("nothing is selected");
    pBar->showNotice("1 path copied");
    pBar->endReason();
    EXPECT_EQ(pBar->GetStatusText(0), "1 path copied");
}

TEST_F(StatusBar, SaysWhatThereIs)
{
    auto* pBar = new hoStatusBar(_pFrame);
    _pFrame->SetStatusBar(pBar);
    hoDocumentList documents;
    pBar->showDocuments(documents, 0);
    pBar->showKeys(hoKeyRing());
    EXPECT_EQ(pBar->GetStatusText(2), "No documents");
    EXPECT_EQ(pBar->GetStatusText(1), "No key");

    documents.open(_folder.write("a", "text"));
    documents.open(_folder.write("b", "texts"));
    pBar->showDocuments(documents, 1);
    EXPECT_EQ(pBar->GetStatusText(2), "2 documents, 9 bytes, 1 selected");
    hoKeyRing keys;
    keys._private._pKey = newKey(512);
    keys._private._path = "/keys/mine.pem";
    pBar->showKeys(keys);
    showWith(new wxPanel(_pFrame));
    _pFrame->SetSize(900, 400);
    tsRunUntil("there is room", [&] { return pBar->GetStatusText(1).StartsWith("512-bit private key "); });
    pBar->showNotice("done");
    EXPECT_EQ(pBar->GetStatusText(0), "done");
}

TEST_F(StatusBar, ShowsBothKeysAtAnyWidth)
{
    auto* pBar = new hoStatusBar(_pFrame);
    _pFrame->SetStatusBar(pBar);
    showWith(new wxPanel(_pFrame));
    hoKeyRing keys;
    keys._private._pKey = newKey(512);
    keys._private._path = "/keys/mine.pem";
    keys._publics.resize(1);
    keys._publics[0]._pKey = newKey(512);
    keys._publics[0]._path = "/keys/her.pem";
    pBar->showKeys(keys);
    std::size_t longest = 0;
    for (const int width : {1200, 900, 640, 520})
    {
        _pFrame->SetSize(width, 400);
        tsRunUntil("the frame has its width", [&] { return _pFrame->GetSize().GetWidth() == width; });
        tsRunUntil("the bar has it, too",
                   [&] { return pBar->GetSize().GetWidth() == _pFrame->GetClientSize().GetWidth(); });
        tsRunUntil("the keys have their room",
                   [&]
                   {
                       wxRect field;
                       pBar->GetFieldRect(1, field);
                       return pBar->GetTextExtent(pBar->GetStatusText(1)).GetWidth() < field.GetWidth();
                   });
        const std::string text = pBar->GetStatusText(1).utf8_string();
        for (const hoLoadedKey* pKey : {&keys._private, &keys._publics[0]})
        {
            EXPECT_NE(text.find(hoShortFingerprint(*pKey->_pKey).asStdString()), std::string::npos) << text;
        }
        longest = std::max(longest, text.size());
    }
    EXPECT_GT(longest, pBar->GetStatusText(1).length()) << "a wide window tells more";
    _pFrame->SetSize(1200, 400);
    tsRunUntil("the names are back", [&] { return pBar->GetStatusText(1).Contains("her.pem"); });
}

TEST_F(StatusBar, CountsSeveralPublicKeys)
{
    auto* pBar = new hoStatusBar(_pFrame);
    _pFrame->SetStatusBar(pBar);
    showWith(new wxPanel(_pFrame));
    hoKeyRing keys;
    for (const char* pPath : {"/keys/laboratory of the south.pem", "/keys/head office.pem"})
    {
        hoLoadedKey key;
        key._pKey = newKey(512);
        key._path = pPath;
        keys._publics.push_back(key);
    }
    _pFrame->SetSize(1200, 400);
    pBar->showKeys(keys);
    tsRunUntil("there is room for the names",
               [&] { return pBar->GetStatusText(1) == "2 public keys: laboratory of the south.pem, head office.pem"; });
    _pFrame->SetSize(520, 400);
    tsRunUntil("the number is left", [&] { return pBar->GetStatusText(1) == "2 public keys"; });
    keys._private._pKey = newKey(512);
    keys._private._path = "/keys/mine.pem";
    pBar->showKeys(keys);
    const wxString fingerprint = hoShortFingerprint(*keys._private._pKey).asCharArray();
    tsRunUntil("the private key is there, too",
               [&] { return pBar->GetStatusText(1) == "Private " + fingerprint + "; 2 public keys"; });
}

TEST_F(StatusBar, ShowsTheDocumentsWholeBesideSeveralKeys)
{
    auto* pBar = new hoStatusBar(_pFrame);
    _pFrame->SetStatusBar(pBar);
    showWith(new wxPanel(_pFrame));
    hoKeyRing keys;
    keys._publics.resize(2);
    for (hoLoadedKey& key : keys._publics)
    {
        key._pKey = newKey(512);
        key._path = "/keys/her.pem";
    }
    hoDocumentList documents;
    for (int number = 0; number < 200; ++number)
    {
        documents.open(_folder.write(std::to_string(number), "text"));
    }
    // As the toolkit has painted it; a text may be newer.
    const auto isCut = [&](int number) { return pBar->GetField(number).IsEllipsized(); };
    // The keys come first.
    _pFrame->SetSize(330, 400);
    pBar->showKeys(keys);
    pBar->showDocuments(documents, 200);
    tsRunUntil("the documents have no room",
               [&] { return pBar->GetStatusText(1) == "2 public keys" && isCut(2) && !isCut(1); });
    _pFrame->SetSize(640, 400);
    tsRunUntil(
        "the documents are whole",
        [&] { return pBar->GetStatusText(2) == "200 documents, 800 bytes, 200 selected" && !isCut(2) && !isCut(1); });
    // Short words as well.
    _pFrame->SetSize(330, 400);
    tsRunUntil("the documents have no room again", [&] { return isCut(2); });
    pBar->showDocuments(hoDocumentList(), 0);
    _pFrame->SetSize(640, 400);
    tsRunUntil("short words are whole", [&] { return !isCut(2); });
}

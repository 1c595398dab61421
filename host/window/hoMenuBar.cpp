// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoMenuBar.h"

#include "host/window/hoCommands.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"

#include <wx/frame.h>

#include <algorithm>

namespace
{
const std::size_t mostPathCharacters = 120;

wxMenu* makeFileMenu(wxMenu* pRecentMenu)
{
    auto* pMenu = new wxMenu;
    pMenu->Append(wxID_OPEN, _("&Open...\tCtrl+O"), _("Open documents, several at once"));
    pMenu->AppendSubMenu(pRecentMenu, _("Open &recent"), _("Open a document that was open before"));
    pMenu->AppendSeparator();
    pMenu->Append(ID_VIEW_DOCUMENTS, _("Open in its &program\tCtrl+Return"),
                  _("Open the selected documents in the desktop's programs for them"));
    pMenu->Append(ID_SHOW_IN_FOLDER, _("Show in &folder"), _("Show the selected documents in the file manager"));
    pMenu->Append(ID_PROPERTIES, _("Propert&ies...\tAlt+Return"),
                  _("Show path, size, times, signature and digests of the selected document"));
    pMenu->AppendSeparator();
    pMenu->Append(ID_CLOSE_DOCUMENTS, _("&Close\tCtrl+W"),
                  _("Take the selected documents out of the list; the files stay"));
    pMenu->Append(ID_CLOSE_ALL_DOCUMENTS, _("Close &all\tCtrl+Shift+W"),
                  _("Take all documents out of the list; the files stay"));
    pMenu->AppendSeparator();
    pMenu->Append(wxID_EXIT, _("&Quit\tCtrl+Q"), _("Close the window and end the application"));
    return pMenu;
}

wxMenu* makeEditMenu()
{
    auto* pMenu = new wxMenu;
    pMenu->Append(ID_COPY_PATH, _("&Copy path\tCtrl+C"), _("Copy the paths of the selected documents, one a line"));
    pMenu->Append(wxID_SELECTALL, _("Select &all\tCtrl+A"), _("Select all documents"));
    pMenu->AppendSeparator();
    pMenu->Append(wxID_PREFERENCES, _("&Preferences...\tCtrl+,"),
                  _("Choose what is remembered, what Sign does, and the size of the text"));
    return pMenu;
}

wxMenu* makeViewMenu()
{
    auto* pMenu = new wxMenu;
    pMenu->AppendCheckItem(ID_SHOW_TOOL_BAR, _("&Tool bar"), _("Show buttons for the most used commands"));
    return pMenu;
}

wxMenu* makeKeyMenu(wxMenu* pRecentMenu, wxMenu* pForgetMenu)
{
    auto* pMenu = new wxMenu;
    pMenu->Append(ID_LOAD_PRIVATE_KEY, _("Load p&rivate key...\tCtrl+K"),
                  _("Load the key that signs, from a PEM file"));
    pMenu->Append(ID_LOAD_PUBLIC_KEY, _("Load p&ublic keys...\tCtrl+Shift+K"),
                  _("Load keys that test somebody's signatures, from PEM files"));
    pMenu->AppendSubMenu(pRecentMenu, _("Load r&ecent key"), _("Load a key that was loaded before"));
    pMenu->Append(ID_KEY_INFORMATION, _("&Information...\tCtrl+I"),
                  _("Show size and fingerprint of the loaded keys, and export the public half"));
    pMenu->AppendSeparator();
    pMenu->Append(ID_NEW_KEY_PAIR, _("&New key pair..."), _("Make a private key and its public partner"));
    pMenu->Append(ID_TEXTS, _("&Texts...\tCtrl+E"), _("Encrypt and decrypt short texts with the loaded keys"));
    pMenu->AppendSeparator();
    pMenu->AppendSubMenu(pForgetMenu, _("F&orget one key"), _("Take one of the loaded keys out of memory"));
    pMenu->Append(ID_FORGET_KEYS, _("&Forget all keys"), _("Take the loaded keys out of memory; their files stay"));
    return pMenu;
}

wxMenu* makeSignatureMenu()
{
    auto* pMenu = new wxMenu;
    pMenu->Append(ID_SIGN, _("&Sign\tCtrl+S"), _("Sign the selected documents"));
    pMenu->Append(ID_TEST, _("&Test\tCtrl+T"), _("Test the signatures of the selected documents"));
    pMenu->AppendSeparator();
    pMenu->Append(ID_SIGN_ALL, _("Sign &all\tCtrl+Shift+S"), _("Sign all documents"));
    pMenu->Append(ID_TEST_ALL, _("Test a&ll\tCtrl+Shift+T"), _("Test the signatures of all documents"));
    return pMenu;
}

wxMenu* makeDeveloperMenu()
{
    auto* pMenu = new wxMenu;
    pMenu->AppendCheckItem(ID_ASSERTION_DIALOGS, _("&Assertion dialogs"),
                           _("Show a dialog for each failed assertion instead of staying silent"));
    pMenu->Append(ID_FAIL_ASSERTION, _("&Fail an assertion"), _("Fail one assertion, to see what happens then"));
    pMenu->AppendSeparator();
    pMenu->Append(ID_ASSERTION_REPORT, _("Assertion &report..."),
                  _("Show where assertions have failed while there were dialogs for them"));
    return pMenu;
}

wxMenu* makeHelpMenu()
{
    auto* pMenu = new wxMenu;
    pMenu->Append(wxID_HELP, _("&Manual\tF1"), _("Open the manual in the desktop's program for it"));
    pMenu->Append(wxID_ABOUT, _("&About Countersign"), _("What this application is, and what it is not"));
    return pMenu;
}

void empty(wxMenu& menu)
{
    while (menu.GetMenuItemCount() > 0)
    {
        menu.Destroy(menu.FindItemByPosition(0));
    }
}

// The mnemonic of an entry in a list, from 0 on.
wxString numbered(int number, const wxString& label)
{
    const wxString mnemonic = number < 9    ? wxString::Format("&%d  ", number + 1)
                              : number == 9 ? wxString("1&0  ")
                                            : wxString::Format("%d  ", number + 1);
    return mnemonic + wxControl::EscapeMnemonics(label);
}

void fill(wxMenu& menu, const std::vector<gtString>& paths, int firstId, int clearId, const wxString& clearHelp)
{
    empty(menu);
    if (paths.empty())
    {
        menu.Append(clearId, _("None yet"))->Enable(false);
        return;
    }
    int number = 0;
    for (const gtString& path : paths)
    {
        menu.Append(firstId + number, numbered(number, hoDisplayText(path, mostPathCharacters)));
        ++number;
    }
    menu.AppendSeparator();
    menu.Append(clearId, _("&Clear this list"), clearHelp);
}
}  // namespace

hoMenuBar::hoMenuBar() : _pRecentMenu(new wxMenu), _pRecentKeysMenu(new wxMenu), _pForgetMenu(new wxMenu)
{
    Append(makeFileMenu(_pRecentMenu), _("&File"));
    Append(makeEditMenu(), _("&Edit"));
    Append(makeViewMenu(), _("&View"));
    Append(makeKeyMenu(_pRecentKeysMenu, _pForgetMenu), _("&Key"));
    Append(makeSignatureMenu(), _("&Signature"));
    Append(makeDeveloperMenu(), _("&Developer"));
    Append(makeHelpMenu(), _("&Help"));
    showRecentPaths({}, {});
    showKeys(hoKeyRing());
}

void hoMenuBar::showKeys(const hoKeyRing& keys)
{
    empty(*_pForgetMenu);
    const std::vector<hoLoadedKey> all = keys.keys();
    const std::size_t listed = std::min(all.size(), hoMostKeysToForget);
    for (std::size_t number = 0; number < listed; ++number)
    {
        const int position = static_cast<int>(number);
        _pForgetMenu->Append(ID_FORGET_KEY_FIRST + position,
                             numbered(position, hoKeyText(all[number], keys.isPrivate(number))));
    }
    if (all.empty())
    {
        _pForgetMenu->Append(ID_FORGET_KEY_FIRST, _("No key"))->Enable(false);
    }
}

void hoMenuBar::showRecentPaths(const std::vector<gtString>& documents, const std::vector<gtString>& keys)
{
    fill(*_pRecentMenu, documents, ID_RECENT_FIRST, ID_CLEAR_RECENT, _("Forget which documents were open before"));
    fill(*_pRecentKeysMenu, keys, ID_RECENT_KEY_FIRST, ID_CLEAR_RECENT_KEYS, _("Forget which keys were loaded before"));
}

void hoMenuBar::followConditions(wxFrame& frame, const Conditions& conditions)
{
    const auto enable = [&frame](int id, const std::function<bool()>& isEnabled)
    {
        frame.Bind(
            wxEVT_UPDATE_UI, [isEnabled](wxUpdateUIEvent& event) { event.Enable(isEnabled()); }, id);
    };

    enable(ID_CLOSE_DOCUMENTS, conditions._hasSelection);
    enable(ID_COPY_PATH, conditions._hasSelection);
    enable(ID_VIEW_DOCUMENTS, conditions._hasSelection);
    enable(ID_SHOW_IN_FOLDER, conditions._hasSelection);
    enable(ID_PROPERTIES, conditions._hasOneSelected);
    enable(ID_CLOSE_ALL_DOCUMENTS, conditions._hasDocuments);
    enable(wxID_SELECTALL, conditions._hasDocuments);
    const auto ofSelection = [hasSelection = conditions._hasSelection](const std::function<bool()>& canBegin)
    { return [hasSelection, canBegin] { return hasSelection() && canBegin(); }; };
    enable(ID_SIGN, ofSelection(conditions._canSign));
    enable(ID_SIGN_ALL, conditions._canSign);
    enable(ID_TEST, ofSelection(conditions._canTest));
    enable(ID_TEST_ALL, conditions._canTest);
    enable(ID_FORGET_KEYS, conditions._hasKeys);
    enable(ID_KEY_INFORMATION, conditions._hasKeys);
    // A list takes this key for the one that goes to the next control.
    frame.Bind(wxEVT_CHAR_HOOK,
               [&frame, hasKeys = conditions._hasKeys](wxKeyEvent& event)
               {
                   if (event.GetKeyCode() != 'I' || event.GetModifiers() != wxMOD_CONTROL)
                   {
                       event.Skip();
                   }
                   else if (hasKeys())
                   {
                       wxQueueEvent(&frame, new wxCommandEvent(wxEVT_MENU, ID_KEY_INFORMATION));
                   }
               });
    frame.Bind(
        wxEVT_UPDATE_UI,
        [isChecked = conditions._hasAssertionDialogs](wxUpdateUIEvent& event) { event.Check(isChecked()); },
        ID_ASSERTION_DIALOGS);
}

void hoMenuBar::followRecentPaths(wxFrame& frame, hoRecentDocuments& recent, int firstId, int clearId,
                                  const std::function<void(const gtString& path)>& open,
                                  const std::function<void()>& onClear)
{
    frame.Bind(
        wxEVT_MENU,
        [&recent, firstId, open](wxCommandEvent& event)
        {
            const auto number = static_cast<std::size_t>(event.GetId() - firstId);
            if (number < recent.paths().size())
            {
                // A copy: what is opened moves to the front of the list.
                const gtString path = recent.paths()[number];
                open(path);
            }
        },
        firstId, firstId + static_cast<int>(hoRecentDocuments::mostDocuments) - 1);
    frame.Bind(
        wxEVT_MENU,
        [&recent, onClear](wxCommandEvent&)
        {
            recent.clear();
            onClear();
        },
        clearId);
}

void hoFillContextMenu(wxMenu& menu)
{
    menu.Append(ID_VIEW_DOCUMENTS, _("&Open in its program"));
    menu.Append(ID_SHOW_IN_FOLDER, _("Show in &folder"));
    menu.AppendSeparator();
    menu.Append(ID_SIGN, _("&Sign"));
    menu.Append(ID_TEST, _("&Test"));
    menu.AppendSeparator();
    menu.Append(ID_COPY_PATH, _("&Copy path"));
    menu.Append(ID_CLOSE_DOCUMENTS, _("C&lose"));
    menu.AppendSeparator();
    menu.Append(ID_PROPERTIES, _("&Properties..."));
}

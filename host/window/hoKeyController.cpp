// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoKeyController.h"

#include "host/window/hoBindCommand.h"
#include "host/window/hoCommands.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoEncryptionDialog.h"
#include "host/window/hoKeyInformationDialog.h"
#include "host/window/hoKeyLoading.h"
#include "host/window/hoNewKeyDialog.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/filedlg.h>
#include <wx/msgdlg.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace
{
const std::size_t mostNameCharacters = 60;
const char* const folderSetting = "keyFolder";

void showError(wxWindow& parent, const wxString& text)
{
    wxMessageDialog(&parent, text, "Countersign", wxOK | wxICON_ERROR).ShowModal();
}
}  // namespace

hoKeyController::hoKeyController(wxWindow& parent, hoSettings& settings, Callbacks callbacks)
    : _parent(parent), _settings(settings), _callbacks(std::move(callbacks))
{
}

void hoKeyController::bindCommands(wxEvtHandler& handler)
{
    hoBindCommand(handler, ID_LOAD_PRIVATE_KEY, [this] { chooseKey(Half::Private); });
    hoBindCommand(handler, ID_LOAD_PUBLIC_KEY, [this] { chooseKey(Half::Public); });
    hoBindCommand(handler, ID_NEW_KEY_PAIR, [this] { makeKeyPair(); });
    hoBindCommand(handler, ID_TEXTS, [this] { hoEncryptionDialog(&_parent, _keys).ShowModal(); });
    hoBindCommand(handler, ID_KEY_INFORMATION, [this] { hoKeyInformationDialog(&_parent, _keys).ShowModal(); });
    hoBindCommand(handler, ID_FORGET_KEYS, [this] { setKeys(hoKeyRing()); });
    handler.Bind(
        wxEVT_MENU,
        [this](wxCommandEvent& event)
        {
            hoKeyRing keys = _keys;
            keys.forget(static_cast<std::size_t>(event.GetId() - ID_FORGET_KEY_FIRST));
            setKeys(keys);
        },
        ID_FORGET_KEY_FIRST, ID_FORGET_KEY_LAST);
}

void hoKeyController::setKeys(const hoKeyRing& keys)
{
    _keys = keys;
    _callbacks._onChange();
}

void hoKeyController::chooseKey(Half half)
{
    const bool isPrivate = half == Half::Private;
    wxFileDialog dialog(&_parent, isPrivate ? _("Load a private key") : _("Load public keys"),
                        gtPathTextFromBytes(_settings.text(folderSetting)), wxString(),
                        _("PEM files (*.pem)|*.pem;*.PEM|All files|*"),
                        wxFD_OPEN | wxFD_FILE_MUST_EXIST | (isPrivate ? 0 : wxFD_MULTIPLE));
    if (dialog.ShowModal() != wxID_OK)
    {
        return;
    }
    wxArrayString pathTexts;
    dialog.GetPaths(pathTexts);
    for (const wxString& pathText : pathTexts)
    {
        loadKey(gtPathBytesFromText(pathText), half);
    }
}

void hoKeyController::loadKey(const gtString& path, Half half)
{
    hoKeyFileFacts facts;
    const hoKeyNeed need = half == Half::Public ? hoKeyNeed::Public : hoKeyNeed::Any;
    hoLoadedKey loaded = hoLoadKeyAsking(&_parent, path, need, facts);
    if (loaded._pKey == nullptr)
    {
        if (facts._problem != hoKeyFileProblem::PassphraseNeeded)
        {
            showError(_parent, hoKeyProblemText(path, facts));
        }
        return;
    }
    if (half == Half::Private && !loaded._pKey->hasPrivateKey())
    {
        const wxString name = hoQuotedText(hoDisplayText(hoLastComponent(path), mostNameCharacters));
        showError(_parent,
                  hoFilledText(_("%s holds a public key, which cannot sign. Load it as a public key to test with it."),
                               {name}));
        return;
    }
    const std::string_view bytes = path.asStringView();
    _settings.setText(folderSetting, bytes.substr(0, bytes.rfind('/') + 1));
    hoKeyRing keys = _keys;
    const bool isPrivate = half == Half::Private || (half == Half::Any && loaded._pKey->hasPrivateKey());
    if (isPrivate)
    {
        keys._private = loaded;
    }
    else
    {
        // The private half is not needed and does not stay in memory.
        loaded._pKey = loaded._pKey->publicHalf();
        keys.addPublic(loaded);
    }
    setKeys(keys);
    if (_callbacks._onLoaded)
    {
        _callbacks._onLoaded(path);
    }
    const hoSummary warning = isPrivate ? hoKeyWarning(loaded) : hoSummary();
    if (!warning._line.empty())
    {
        _callbacks._onWarning(warning);
    }
}

void hoKeyController::makeKeyPair()
{
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error).string() + "/";
    hoNewKeyDialog dialog(&_parent, _settings.text(folderSetting, folder));
    if (dialog.ShowModal() == wxID_OK)
    {
        _callbacks._onNotice(hoFilledText(_("New key pair: %s"), {hoDisplayText(dialog.privateKeyPath())}));
        loadKey(dialog.privateKeyPath(), Half::Private);
    }
}

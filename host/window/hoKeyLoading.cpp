// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoKeyLoading.h"

#include "host/keys/hoKeyLoader.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoPassphraseDialog.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtMainThreadCall.h"

#include <wx/activityindicator.h>
#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <cerrno>
#include <chrono>
#include <system_error>

namespace
{

// Most keys are loaded in less time; no dialog flashes up for them.
constexpr std::chrono::milliseconds patience(200);

// Shown while a key takes its time. Cancel, Escape and the close box end it.
class WaitingDialog : public wxDialog
{
public:
    WaitingDialog(wxWindow* pParent, const wxString& name) : wxDialog(pParent, wxID_ANY, _("Loading the key"))
    {
        auto* pIndicator = new wxActivityIndicator(this);
        auto* pText = new wxStaticText(this, wxID_ANY,
                                       wxControl::EscapeMnemonics(hoFilledText(_("Checking the key %s..."), {name})));
        auto* pCancel = new wxButton(this, wxID_CANCEL);
        pIndicator->Start();

        auto* pLine = new wxBoxSizer(wxHORIZONTAL);
        pLine->Add(pIndicator, wxSizerFlags().CentreVertical().DoubleBorder(wxRIGHT));
        pLine->Add(pText, wxSizerFlags(1).CentreVertical());
        auto* pTop = new wxBoxSizer(wxVERTICAL);
        pTop->Add(pLine, wxSizerFlags().Expand().DoubleBorder());
        pTop->Add(pCancel, wxSizerFlags().Right().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
        SetSizerAndFit(pTop);
        CentreOnParent();
        pCancel->SetFocus();
    }
};

// One file. Main thread only.
class Asker
{
public:
    Asker(wxWindow* pParent, const gtString& path, hoKeyNeed need)
        : _pParent(pParent),
          _name(hoDisplayText(hoLastComponent(path), 60)),
          _call([this] { endWaiting(); }),
          _loader(path, need, [this] { _call.request(); })
    {
    }

    // question: with a place for the key's name. False when the user has cancelled.
    bool goOn(const wxString& question)
    {
        for (;;)
        {
            switch (_loader.waitFor(patience))
            {
            case hoKeyLoader::State::Finished:
                return true;
            case hoKeyLoader::State::PassphraseWanted:
                askForPassphrase(question);
                break;
            case hoKeyLoader::State::Busy:
                if (!wait())
                {
                    return false;
                }
                break;
            }
        }
    }

    std::unique_ptr<const hoKey> takeKey(hoKeyFileFacts& facts) { return _loader.takeKey(facts); }

private:
    void askForPassphrase(const wxString& question)
    {
        hoPassphraseDialog dialog(_pParent, hoFilledText(question, {_name}));
        if (dialog.ShowModal() == wxID_OK)
        {
            _loader.answerPassphrase(dialog.passphrase().text());
        }
        else
        {
            _loader.refusePassphrase();
        }
    }

    // Until the state changes; false when the user has cancelled.
    bool wait()
    {
        WaitingDialog dialog(_pParent, _name);
        _pDialog = &dialog;
        const int answer = dialog.ShowModal();
        _pDialog = nullptr;
        return answer == wxID_OK;
    }

    void endWaiting()
    {
        if (_pDialog != nullptr && _pDialog->IsModal())
        {
            _pDialog->EndModal(wxID_OK);
        }
    }

    wxWindow* const _pParent;
    const wxString _name;
    WaitingDialog* _pDialog = nullptr;
    gtMainThreadCall _call;
    hoKeyLoader _loader;  // the last member: its thread uses _call
};

}  // namespace

hoLoadedKey hoLoadKeyAsking(wxWindow* pParent, const gtString& path, hoKeyNeed need, hoKeyFileFacts& facts)
{
    wxString question = _("Passphrase of %s:");
    hoLoadedKey loaded;
    do
    {
        facts = hoKeyFileFacts();
        try
        {
            Asker asker(pParent, path, need);
            if (asker.goOn(question))
            {
                loaded._pKey = asker.takeKey(facts);
            }
            else
            {
                facts._problem = hoKeyFileProblem::PassphraseNeeded;
            }
        }
        catch (const std::system_error& error)
        {
            facts._problem = hoKeyFileProblem::CannotBeRead;
            facts._systemError = error.code().value();
        }
        question = _("Wrong passphrase. Passphrase of %s:");
    } while (facts._problem == hoKeyFileProblem::WrongPassphrase);
    loaded._path = path;
    loaded._isOpenToOthers = facts._isPrivate && facts._isOpenToOthers;
    loaded._isFolderOpenToOthers = facts._isPrivate && facts._isFolderOpenToOthers;
    loaded._isInMemoryForGood = facts._isPrivate && !facts._isLibcryptoMemoryWiped;
    return loaded;
}

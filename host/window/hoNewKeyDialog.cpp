// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoNewKeyDialog.h"

#include "host/messages/hoMessages.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoTypedSecret.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/button.h>
#include <wx/combobox.h>
#include <wx/filedlg.h>
#include <wx/gauge.h>
#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <system_error>

#include <sys/stat.h>

namespace
{
const int pulseInterval = 50;  // milliseconds
const int fileWidth = 380;
const int bitsOffered[] = {512, 1024, 2048, 3072, 4096};

wxString sizesAllowed()
{
    return wxString::Format("A key has %d to %d bits, a multiple of %d.", hoLeastNewKeyBits, hoMostNewKeyBits,
                            hoStepOfNewKeyBits);
}
}  // namespace

hoNewKeyDialog::hoNewKeyDialog(wxWindow* pParent, const gtString& folder)
    : wxDialog(pParent, wxID_ANY, "New key pair"),
      _mayOverwrite(false),
      _pBits(new wxComboBox(this, wxID_ANY)),
      _pFile(new wxTextCtrl(this, wxID_ANY)),
      _pPassphrase(nullptr),
      _pAgain(nullptr),
      _pGauge(nullptr),
      _pSaid(nullptr),
      _pCreate(nullptr),
      _call([this] { onFinished(); })
{
    auto* pBrowse = new wxButton(this, wxID_ANY, "&Browse...");
    _pPassphrase = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_PASSWORD);
    _pAgain = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_PASSWORD);
    _pGauge = new wxGauge(this, wxID_ANY, 100);
    _pSaid = new wxStaticText(this, wxID_ANY, "Without a passphrase the private key is not encrypted in its file.");
    _pCreate = new wxButton(this, wxID_OK, "C&reate");
    auto* pCancel = new wxButton(this, wxID_CANCEL);

    for (const int bits : bitsOffered)
    {
        _pBits->Append(wxString::Format("%d bits", bits));
    }
    _pBits->SetValue(wxString::Format("%d bits", hoUsualNewKeyBits));
    _pBits->SetToolTip(sizesAllowed());
    _pBits->SetName("bits");
    _pFile->SetName("file");
    _pPassphrase->SetName("passphrase");
    _pAgain->SetName("again");
    _pSaid->SetName("said");
    _pFile->ChangeValue(gtPathTextFromBytes(gtString(folder).append("countersign-key.pem")));
    _pFile->SetToolTip("The private key's file; the public key goes beside it, with .pub before .pem");

    pBrowse->Bind(wxEVT_BUTTON, &hoNewKeyDialog::OnBrowse, this);
    _pCreate->Bind(wxEVT_BUTTON, &hoNewKeyDialog::OnCreate, this);
    pCancel->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { cancel(); });
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { cancel(); });
    _pulse.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { _pGauge->Pulse(); });

    auto* pFileRow = new wxBoxSizer(wxHORIZONTAL);
    _pFile->SetMinSize(FromDIP(wxSize(fileWidth, -1)));
    pFileRow->Add(_pFile, wxSizerFlags(1).CentreVertical());
    pFileRow->Add(pBrowse, wxSizerFlags().Border(wxLEFT));
    auto* pGrid = new wxFlexGridSizer(2, FromDIP(wxSize(12, 8)));
    pGrid->AddGrowableCol(1);
    const auto addRow = [&](const wxString& label, auto* pWhat)
    {
        pGrid->Add(new wxStaticText(this, wxID_ANY, label), wxSizerFlags().CentreVertical());
        pGrid->Add(pWhat, wxSizerFlags().Expand());
    };
    addRow("Size", _pBits);
    addRow("Private key file", pFileRow);
    addRow("Passphrase", _pPassphrase);
    addRow("Passphrase again", _pAgain);
    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->AddStretchSpacer();
    pButtons->Add(pCancel, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(_pCreate);
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pGrid, wxSizerFlags().Expand().DoubleBorder());
    pTop->Add(_pSaid, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT));
    pTop->Add(_pGauge, wxSizerFlags().Expand().DoubleBorder());
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
    SetSizerAndFit(pTop);
    CentreOnParent();
    _pCreate->SetDefault();
    _pPassphrase->SetFocus();
}

gtString hoNewKeyDialog::privateKeyPath() const
{
    return gtPathBytesFromText(_pFile->GetValue());
}

gtString hoNewKeyDialog::publicKeyPath() const
{
    const gtString path = privateKeyPath();
    std::string_view stem = path.asStringView();
    const std::string_view ending = ".pem";
    if (stem.size() > ending.size() && stem.substr(stem.size() - ending.size()) == ending)
    {
        stem.remove_suffix(ending.size());
    }
    return gtString(stem).append(".pub").append(ending);
}

void hoNewKeyDialog::OnBrowse(wxCommandEvent&)
{
    // Replacing is asked for when the key is made, whatever way the name came.
    wxFileDialog dialog(this, "Private key file", wxString(), "countersign-key.pem",
                        "PEM files (*.pem)|*.pem|All files|*", wxFD_SAVE);
    if (dialog.ShowModal() == wxID_OK)
    {
        _pFile->ChangeValue(dialog.GetPath());
    }
}

void hoNewKeyDialog::OnCreate(wxCommandEvent&)
{
    if (_pPair != nullptr || !isInputUsable() || !askToReplace(privateKeyPath()) || !askToReplace(publicKeyPath()))
    {
        return;
    }
    say("Making the key pair...");
    try
    {
        _pPair = std::make_unique<hoNewKeyPair>(typedBits(), [this] { _call.request(); });
    }
    catch (const std::system_error& error)
    {
        say("The key pair cannot be made now: " + gtTextFromBytes(error.code().message()) + ".");
        return;
    }
    setBusy(true);
    _pulse.Start(pulseInterval);
}

void hoNewKeyDialog::onFinished()
{
    if (_pPair == nullptr || !_pPair->isFinished())
    {
        return;
    }
    _pulse.Stop();
    if (_pPair->isMade())
    {
        writeFiles();
    }
    else
    {
        say("The key pair could not be made.");
    }
    _pPair.reset();
    if (IsModal() && GetReturnCode() != wxID_OK)
    {
        setBusy(false);
    }
}

void hoNewKeyDialog::cancel()
{
    _pulse.Stop();
    _pPair.reset();
    EndModal(wxID_CANCEL);
}

int hoNewKeyDialog::typedBits() const
{
    wxString number = _pBits->GetValue().Strip(wxString::both);
    if (number.EndsWith("bits", &number))
    {
        number.Trim();
    }
    long bits = 0;
    return number.ToLong(&bits) && bits > 0 && bits <= hoMostNewKeyBits ? static_cast<int>(bits) : 0;
}

bool hoNewKeyDialog::isInputUsable()
{
    _mayOverwrite = false;
    if (!hoIsNewKeySize(typedBits()))
    {
        say(sizesAllowed());
        _pBits->SetFocus();
        return false;
    }
    if (_pFile->IsEmpty())
    {
        say("Name a file for the private key.");
        _pFile->SetFocus();
        return false;
    }
    if (hoTypedSecret(*_pPassphrase).text() != hoTypedSecret(*_pAgain).text())
    {
        say("The two passphrases differ.");
        _pAgain->SetFocus();
        return false;
    }
    return true;
}

bool hoNewKeyDialog::askToReplace(const gtString& path)
{
    struct stat entry;
    if (lstat(path.asCharArray(), &entry) != 0)
    {
        return true;
    }
    if (stat(path.asCharArray(), &entry) == 0 && !S_ISREG(entry.st_mode))
    {
        say(hoDisplayText(path, 60) +
            (S_ISDIR(entry.st_mode) ? " is a folder. Name a file." : " is a pipe, a socket or a device. Name a file."));
        return false;
    }
    wxMessageDialog question(this, hoDisplayText(path) + " is there already.", "New key pair",
                             wxYES_NO | wxNO_DEFAULT | wxICON_WARNING);
    question.SetExtendedMessage("Replacing it loses the key in it for good.");
    question.SetYesNoLabels("&Replace", "&Keep");
    _mayOverwrite = question.ShowModal() == wxID_YES;
    return _mayOverwrite;
}

void hoNewKeyDialog::writeFiles()
{
    gtString path = privateKeyPath();
    osWritingResult writing = _pPair->writePrivateKey(path, hoTypedSecret(*_pPassphrase).text(), _mayOverwrite);
    if (writing.isOk())
    {
        path = publicKeyPath();
        writing = _pPair->writePublicKey(path, _mayOverwrite);
    }
    if (writing.isOk())
    {
        EndModal(wxID_OK);
        return;
    }
    say(hoDisplayText(path, 60) + ": " + gtTextFromBytes(hoWritingReason(writing)) + ".");
}

void hoNewKeyDialog::say(const wxString& text)
{
    _pSaid->SetLabelText(text);
}

void hoNewKeyDialog::setBusy(bool isBusy)
{
    for (wxWindow* pInput :
         {static_cast<wxWindow*>(_pBits), static_cast<wxWindow*>(_pFile), static_cast<wxWindow*>(_pPassphrase),
          static_cast<wxWindow*>(_pAgain), static_cast<wxWindow*>(_pCreate)})
    {
        pInput->Enable(!isBusy);
    }
    if (!isBusy)
    {
        _pGauge->SetValue(0);
        // What was disabled has lost the keyboard, and with it Escape.
        _pFile->SetFocus();
    }
}

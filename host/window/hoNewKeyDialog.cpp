// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoNewKeyDialog.h"

#include "host/keys/hoKeyFolderTrial.h"
#include "host/messages/hoMessages.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "host/window/hoTypedSecret.h"
#include "platform/toolkit/gtReaders.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextDirection.h"

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/combobox.h>
#include <wx/filedlg.h>
#include <wx/gauge.h>
#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
const int pulseInterval = 50;  // milliseconds
const int fileWidth = 360;
const int linesSaid = 3;
const std::size_t mostPathCharacters = 60;
const int bitsOffered[] = {512, 1024, 2048, 3072, 4096};

wxString sizesAllowed()
{
    return hoFilledText(
        _("A key has %s to %s bits, a multiple of %s."),
        {hoPlainNumber(hoLeastNewKeyBits), hoPlainNumber(hoMostNewKeyBits), hoPlainNumber(hoStepOfNewKeyBits)});
}

// A key's size as it is offered. Behind the number comes the unit in the user's language.
wxString sizeText(const wxString& number)
{
    return hoFilledText(_("%s bits"), {number});
}

// The private key's name with ".pub" before ".pem".
gtString publicPathOf(const gtString& privatePath)
{
    std::string_view stem = privatePath.asStringView();
    const std::string_view ending = ".pem";
    if (stem.size() > ending.size() && stem.substr(stem.size() - ending.size()) == ending)
    {
        stem.remove_suffix(ending.size());
    }
    return gtString(stem).append(".pub").append(ending);
}
}  // namespace

hoNewKeyDialog::hoNewKeyDialog(wxWindow* pParent, const gtString& folder)
    : wxDialog(pParent, wxID_ANY, _("New key pair"), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      _folder(folder),
      _stage(Stage::Input),
      _pBits(nullptr),
      _pFile(nullptr),
      _pBrowse(nullptr),
      _pPublicFile(nullptr),
      _pPassphrase(nullptr),
      _pAgain(nullptr),
      _pShow(nullptr),
      _pSaid(nullptr),
      _pGauge(nullptr),
      _pCreate(nullptr),
      _call([this] { onFinished(); })
{
    // The order in which they are made is the keyboard's, and a label's letter leads to what is made after it.
    auto* pBitsLabel = new wxStaticText(this, wxID_ANY, _("&Size"));
    _pBits = new wxComboBox(this, wxID_ANY);
    auto* pFileLabel = new wxStaticText(this, wxID_ANY, _("Private key &file"));
    _pFile = new wxTextCtrl(this, wxID_ANY);
    _pBrowse = new wxButton(this, wxID_ANY, _("&Browse..."));
    auto* pPublicLabel = new wxStaticText(this, wxID_ANY, _("Public key file"));
    _pPublicFile = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                    wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_MIDDLE);
    auto* pPassphraseLabel = new wxStaticText(this, wxID_ANY, _("&Passphrase"));
    _pPassphrase = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_PASSWORD);
    auto* pAgainLabel = new wxStaticText(this, wxID_ANY, _("Passphrase &again"));
    _pAgain = new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxTE_PASSWORD);
    _pShow = new wxCheckBox(this, wxID_ANY, _("S&how the passphrase"));
    _pSaid = new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxST_NO_AUTORESIZE);
    _pGauge = new wxGauge(this, wxID_ANY, 100);
    auto* pCancel = new wxButton(this, wxID_CANCEL);
    _pCreate = new wxButton(this, wxID_OK, _("C&reate"));

    for (const int bits : bitsOffered)
    {
        _pBits->Append(sizeText(hoPlainNumber(bits)));
    }
    _pBits->SetValue(sizeText(hoPlainNumber(hoUsualNewKeyBits)));
    _pBits->SetToolTip(sizesAllowed());
    _pBits->SetName("bits");
    gtNameForReaders(*_pBits, wxControl::RemoveMnemonics(pBitsLabel->GetLabel()));
    _pFile->SetName("file");
    _pBrowse->SetName("browse");
    _pPublicFile->SetName("publicFile");
    _pPassphrase->SetName("passphrase");
    _pAgain->SetName("again");
    _pShow->SetName("show");
    _pSaid->SetName("said");
    _pFile->ChangeValue(gtPathTextFromBytes(gtString(folder).append("countersign-key.pem")));
    // A long path is shown by its end, where the name is.
    _pFile->SetInsertionPointEnd();
    showPublicFile();

    _pFile->Bind(wxEVT_TEXT, [this](wxCommandEvent&) { showPublicFile(); });
    _pBrowse->Bind(wxEVT_BUTTON, &hoNewKeyDialog::OnBrowse, this);
    _pShow->Bind(wxEVT_CHECKBOX,
                 [this](wxCommandEvent& event)
                 {
                     hoShowTypedSecret(*_pPassphrase, event.IsChecked());
                     hoShowTypedSecret(*_pAgain, event.IsChecked());
                 });
    _pCreate->Bind(wxEVT_BUTTON, &hoNewKeyDialog::OnCreate, this);
    pCancel->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { cancel(); });
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { cancel(); });
    _pulse.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { _pGauge->Pulse(); });

    auto* pFileRow = new wxBoxSizer(wxHORIZONTAL);
    _pFile->SetMinSize(FromDIP(wxSize(fileWidth, -1)));
    pFileRow->Add(_pFile, wxSizerFlags(1).CentreVertical());
    pFileRow->Add(_pBrowse, wxSizerFlags().Border(wxLEFT));
    auto* pGrid = new wxFlexGridSizer(2, FromDIP(wxSize(12, 8)));
    pGrid->AddGrowableCol(1);
    const auto addRow = [&](wxStaticText* pLabel, auto* pWhat)
    {
        pGrid->Add(pLabel, wxSizerFlags().CentreVertical());
        pGrid->Add(pWhat, wxSizerFlags().Expand());
    };
    addRow(pBitsLabel, _pBits);
    addRow(pFileLabel, pFileRow);
    addRow(pPublicLabel, _pPublicFile);
    addRow(pPassphraseLabel, _pPassphrase);
    addRow(pAgainLabel, _pAgain);
    pGrid->AddSpacer(0);
    pGrid->Add(_pShow);
    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->AddStretchSpacer();
    pButtons->Add(pCancel, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(_pCreate);
    _pSaid->SetMinSize(wxSize(-1, linesSaid * GetTextExtent("X").GetHeight()));
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pGrid, wxSizerFlags().Expand().DoubleBorder());
    pTop->Add(_pSaid, wxSizerFlags(1).Expand().DoubleBorder(wxLEFT | wxRIGHT));
    pTop->Add(_pGauge, wxSizerFlags().Expand().DoubleBorder());
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxBOTTOM));
    gtAlignTexts(*this);
    SetSizerAndFit(pTop);
    CentreOnParent();
    say(_("Without a passphrase the private key is not encrypted in its file."));
    _pCreate->SetDefault();
    _pPassphrase->SetFocus();
}

void hoNewKeyDialog::OnBrowse(wxCommandEvent&)
{
    // Replacing is asked for when the files are agreed, whatever way the name came.
    const gtString path = typedPath();
    const std::string_view bytes = path.asStringView();
    wxFileDialog dialog(this, _("Private key file"), gtPathTextFromBytes(bytes.substr(0, bytes.rfind('/') + 1)),
                        path.isEmpty() ? wxString() : gtPathTextFromBytes(hoLastComponent(path)),
                        _("PEM files (*.pem)|*.pem|All files|*"), wxFD_SAVE);
    if (dialog.ShowModal() == wxID_OK)
    {
        _pFile->SetValue(dialog.GetPath());
        _pFile->SetInsertionPointEnd();
    }
}

void hoNewKeyDialog::OnCreate(wxCommandEvent&)
{
    if (_stage == Stage::Making || !agree())
    {
        return;
    }
    if (_stage == Stage::Input)
    {
        beginMaking();
    }
    else
    {
        writeFiles();
    }
}

void hoNewKeyDialog::beginMaking()
{
    try
    {
        _pPair = std::make_unique<hoNewKeyPair>(typedBits(), [this] { _call.request(); });
    }
    catch (const std::system_error& error)
    {
        say(hoFilledText(_("The key pair cannot be made now: %s."), {gtTextFromBytes(error.code().message())}));
        return;
    }
    say(_("Making the key pair..."));
    showStage(Stage::Making);
    _pulse.Start(pulseInterval);
}

void hoNewKeyDialog::onFinished()
{
    if (_stage != Stage::Making || !_pPair->isFinished())
    {
        return;
    }
    _pulse.Stop();
    _pGauge->SetValue(0);
    if (_pPair->isMade())
    {
        writeFiles();
        return;
    }
    _pPair.reset();
    say(_("The key pair could not be made."));
    showStage(Stage::Input);
}

void hoNewKeyDialog::cancel()
{
    if (_stage == Stage::Unsaved)
    {
        wxMessageDialog question(this, _("The new key pair is not saved."), _("New key pair"),
                                 wxYES_NO | wxNO_DEFAULT | wxICON_WARNING);
        question.SetExtendedMessage(_("It is in memory alone. Without its files it is lost."));
        question.SetYesNoLabels(_("&Throw it away"), _("&Go back"));
        if (question.ShowModal() != wxID_YES)
        {
            return;
        }
    }
    _pulse.Stop();
    _stage = Stage::Input;
    _pPair.reset();
    EndModal(wxID_CANCEL);
}

gtString hoNewKeyDialog::typedPath() const
{
    const gtString typed = gtPathBytesFromText(_pFile->GetValue());
    const std::string_view bytes = typed.asStringView();
    if (bytes.empty() || bytes.back() == '/')
    {
        return gtString();
    }
    const std::filesystem::path folder = _folder.asStdString();
    return (folder / typed.asStdString()).lexically_normal().string();
}

int hoNewKeyDialog::typedBits() const
{
    wxString number = _pBits->GetValue().Strip(wxString::both);
    for (const wxString& unit : {sizeText(wxString()), wxString("bits")})
    {
        if (number.EndsWith(unit.Strip(wxString::both), &number))
        {
            number.Trim();
            break;
        }
    }
    long bits = 0;
    return number.ToLong(&bits) && bits > 0 && bits <= hoMostNewKeyBits ? static_cast<int>(bits) : 0;
}

bool hoNewKeyDialog::agree()
{
    if (_stage == Stage::Input && !hoIsNewKeySize(typedBits()))
    {
        say(sizesAllowed());
        _pBits->SetFocus();
        return false;
    }
    Files files;
    files._privatePath = typedPath();
    if (files._privatePath.isEmpty())
    {
        say(_("Name a file for the private key."));
        _pFile->SetFocus();
        return false;
    }
    files._publicPath = publicPathOf(files._privatePath);
    _pFile->ChangeValue(gtPathTextFromBytes(files._privatePath));
    _pFile->SetInsertionPointEnd();
    showPublicFile();
    if (_stage == Stage::Input && hoTypedSecret(*_pPassphrase).text() != hoTypedSecret(*_pAgain).text())
    {
        say(_("The two passphrases differ."));
        _pAgain->SetFocus();
        return false;
    }
    if (_stage == Stage::Input && hoTypedSecret(*_pPassphrase).text().size() > hoLongestPassphrase)
    {
        say(hoSentence(hoLongPassphraseReason()));
        _pPassphrase->SetFocus();
        return false;
    }
    const osWritingResult trial = hoTryKeyFolder(files._privatePath);
    if (!trial.isOk())
    {
        const std::string_view bytes = files._privatePath.asStringView();
        say(hoFilledText(_("No file can be made in %s: %s."),
                         {hoDisplayText(bytes.substr(0, bytes.rfind('/') + 1), mostPathCharacters),
                          gtTextFromBytes(hoSystemErrorText(trial._systemError))}));
        _pFile->SetFocus();
        return false;
    }
    if (!askToReplace(files._privatePath, files._mayReplacePrivate) ||
        !askToReplace(files._publicPath, files._mayReplacePublic))
    {
        return false;
    }
    _agreed = files;
    return true;
}

bool hoNewKeyDialog::askToReplace(const gtString& path, bool& mayReplace)
{
    struct stat entry;
    if (lstat(path.asCharArray(), &entry) != 0)
    {
        return true;
    }
    if (stat(path.asCharArray(), &entry) == 0 && !S_ISREG(entry.st_mode))
    {
        say(hoFilledText(S_ISDIR(entry.st_mode) ? _("%s is a folder. Name a file.")
                                                : _("%s is a pipe, a socket or a device. Name a file."),
                         {hoDisplayText(path, mostPathCharacters)}));
        _pFile->SetFocus();
        return false;
    }
    wxMessageDialog question(this, hoFilledText(_("%s is there already."), {hoDisplayText(path)}), _("New key pair"),
                             wxYES_NO | wxNO_DEFAULT | wxICON_WARNING);
    question.SetExtendedMessage(_("Replacing it loses the key in it for good."));
    question.SetYesNoLabels(_("&Replace"), _("&Keep"));
    mayReplace = question.ShowModal() == wxID_YES;
    return mayReplace;
}

void hoNewKeyDialog::writeFiles()
{
    // The public one first: without the private one it tells nothing, so that it can be removed again.
    gtString path = _agreed._publicPath;
    osWritingResult writing = _pPair->writePublicKey(path, _agreed._mayReplacePublic);
    if (writing.isOk())
    {
        path = _agreed._privatePath;
        writing = _pPair->writePrivateKey(path, hoTypedSecret(*_pPassphrase).text(), _agreed._mayReplacePrivate);
        if (!writing.isOk() && !_agreed._mayReplacePublic)
        {
            unlink(_agreed._publicPath.asCharArray());
        }
    }
    if (writing.isOk())
    {
        EndModal(wxID_OK);
        return;
    }
    say(hoFilledText(_("%s: %s. The key pair is made and not saved. Name another place and save it there."),
                     {hoDisplayText(path, mostPathCharacters), gtTextFromBytes(hoWritingReason(writing))}));
    showStage(Stage::Unsaved);
}

void hoNewKeyDialog::say(const wxString& text)
{
    _pSaid->SetLabelText(text);
    _pSaid->Wrap(_pSaid->GetSize().GetWidth());
    if (_pSaid->GetBestSize().GetHeight() > _pSaid->GetSize().GetHeight())
    {
        _pSaid->SetMinSize(wxSize(-1, _pSaid->GetBestSize().GetHeight()));
        Fit();
    }
}

void hoNewKeyDialog::showPublicFile()
{
    const gtString path = typedPath();
    const wxString text = path.isEmpty() ? wxString() : hoDisplayText(publicPathOf(path));
    _pPublicFile->SetLabelText(text);
    _pPublicFile->SetToolTip(text);
}

void hoNewKeyDialog::showStage(Stage stage)
{
    _stage = stage;
    for (wxWindow* pInput : {static_cast<wxWindow*>(_pBits), static_cast<wxWindow*>(_pPassphrase),
                             static_cast<wxWindow*>(_pAgain), static_cast<wxWindow*>(_pShow)})
    {
        pInput->Enable(stage == Stage::Input);
    }
    for (wxWindow* pInput :
         {static_cast<wxWindow*>(_pFile), static_cast<wxWindow*>(_pBrowse), static_cast<wxWindow*>(_pCreate)})
    {
        pInput->Enable(stage != Stage::Making);
    }
    _pCreate->SetLabel(stage == Stage::Unsaved ? _("Sa&ve") : _("C&reate"));
    // What was disabled has lost the keyboard, and with it Escape.
    wxWindow* const pNext = stage == Stage::Making ? FindWindow(wxID_CANCEL) : _pFile;
    pNext->SetFocus();
}

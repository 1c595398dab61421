// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoPropertiesDialog.h"

#include "host/keys/hoHexText.h"
#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"
#include "host/window/hoClipboard.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoScreenFit.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"

#include <wx/button.h>
#include <wx/gauge.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <system_error>

namespace
{
const wxSize usualSize(632, 100);
const int leastValueWidth = 200;
const int gaugeRange = 1000;
const int bitsPerDigit = 32;

// Whose size the exclusive-or digest depends on: the private one, or else the public one that was loaded last; null
// when there is none.
std::shared_ptr<const hoKey> digestKey(const hoKeyRing& keys)
{
    return keys.canSign() || !keys.canTest() ? keys._private._pKey : keys._publics.back()._pKey;
}
}  // namespace

hoPropertiesDialog::hoPropertiesDialog(wxWindow* pParent, const hoDocument& document, const hoKeyRing& keys)
    : wxDialog(pParent, wxID_ANY, _("Properties"), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      _document(document),
      _keys(keys),
      _pSignature(nullptr),
      _pSigner(nullptr),
      _pSigned(nullptr),
      _pSha256(nullptr),
      _pExclusiveOr(nullptr),
      _pGauge(nullptr),
      _pStop(nullptr),
      _call([this] { showProgress(); })
{
    const wxString wait = _("Reading...");
    const bool isThere = _document._verdict._state != hoDocumentState::Missing;
    const std::shared_ptr<const hoKey> pKey = digestKey(_keys);
    auto* pGrid = new wxFlexGridSizer(2, FromDIP(wxSize(12, 4)));
    addRow(*pGrid, _("&Name:"), "name", hoDisplayText(_document.name()));
    addRow(*pGrid, _("&Path:"), "path", hoDisplayText(_document._path));
    addRow(*pGrid, _("Si&ze:"), "size", gtTextFromBytes(hoExactSizeText(_document._facts._size)));
    addRow(*pGrid, _("&Modified:"), "modified", hoTimeText(_document._facts._modifiedSeconds, true));
    addRow(*pGrid, _("Ch&anged:"), "changed", hoTimeText(_document._facts._changedSeconds, true))
        ->SetToolTip(_("When the file's contents, name or permissions were last changed, by the system's clock"));
    addRow(*pGrid, _("S&tate:"), "state", hoVerdictWords(_document._verdict, _keys.canTest()));
    _pSignature = addRow(*pGrid, _("Si&gnature:"), "signature", wait);
    _pSigner = addRow(*pGrid, _("&Key:"), "key", wait);
    _pSigned = addRow(*pGrid, _("Sign&ed:"), "signed", wait);
    _pSha256 = addRow(*pGrid, _("S&HA-256:"), "sha256", wait);
    _pExclusiveOr = addRow(*pGrid, _("E&xclusive-or:"), "exclusiveOr", wait);
    _pExclusiveOr->SetToolTip(
        pKey == nullptr
            ? _("The toolkit's digest depends on the size of a key: load one first.")
            : hoFilledText(_("The toolkit's digest, for keys of %s bits. Anybody can make another file that has it."),
                           {hoPlainNumber(pKey->bits())}));
    pGrid->AddGrowableCol(1);
    _pGauge = new wxGauge(this, wxID_ANY, gaugeRange);
    _pStop = new wxButton(this, wxID_STOP, _("&Stop reading"));
    auto* pCopy = new wxButton(this, wxID_COPY, _("Copy a&ll"));
    auto* pClose = new wxButton(this, wxID_CLOSE);
    pCopy->SetToolTip(_("Copy all values to the clipboard"));
    SetEscapeId(wxID_CLOSE);
    SetAffirmativeId(wxID_CLOSE);

    _pStop->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { _pInspection->cancel(); });
    pCopy->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { hoCopyText(text()); });

    auto* pButtons = new wxBoxSizer(wxHORIZONTAL);
    pButtons->Add(_pGauge, wxSizerFlags(1).CentreVertical().Border(wxRIGHT).ReserveSpaceEvenIfHidden());
    pButtons->Add(_pStop, wxSizerFlags().Border(wxRIGHT).ReserveSpaceEvenIfHidden());
    pButtons->Add(pCopy, wxSizerFlags().Border(wxRIGHT));
    pButtons->Add(pClose);
    auto* pTop = new wxBoxSizer(wxVERTICAL);
    pTop->Add(pGrid, wxSizerFlags(1).Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(pButtons, wxSizerFlags().Expand().DoubleBorder());
    SetSizer(pTop);
    hoFitOnScreen(*this, FromDIP(usualSize));
    CentreOnParent();
    pClose->SetDefault();
    pClose->SetFocus();
    if (isThere)
    {
        begin();
    }
    else
    {
        hoInspectionFacts nothing;
        nothing._reading = hoSigningFacts(osFileResult(osFileProblem::NotThere));
        showFacts(nothing);
    }
}

wxString hoPropertiesDialog::text() const
{
    wxString text;
    for (const Row& row : _rows)
    {
        text += row._label + " " + row._pValue->GetValue() + "\n";
    }
    return text;
}

wxTextCtrl* hoPropertiesDialog::addRow(wxFlexGridSizer& grid, const wxString& label, const char* pName,
                                       const wxString& value)
{
    auto* pLabel = new wxStaticText(this, wxID_ANY, label);
    auto* pValue = new wxTextCtrl(this, wxID_ANY, value, wxDefaultPosition, wxDefaultSize, wxTE_READONLY);
    pValue->SetName(pName);
    pValue->SetMinSize(wxSize(FromDIP(leastValueWidth), -1));
    grid.Add(pLabel, wxSizerFlags().CentreVertical());
    grid.Add(pValue, wxSizerFlags(1).Expand());
    _rows.push_back({wxControl::RemoveMnemonics(label), pValue});
    return pValue;
}

void hoPropertiesDialog::begin()
{
    try
    {
        _pInspection = std::make_unique<hoInspection>(_document._path, digestKey(_keys), [this] { _call.request(); });
    }
    catch (const std::system_error& error)
    {
        hoInspectionFacts nothing;
        nothing._reading = hoSigningFacts(osFileResult(osFileProblem::CannotBeRead, error.code().value()));
        showFacts(nothing);
    }
}

void hoPropertiesDialog::showProgress()
{
    if (_pInspection->isFinished())
    {
        showFacts(_pInspection->facts());
        return;
    }
    const hoInspection::Progress progress = _pInspection->progress();
    if (progress._bytesInAll > 0)
    {
        _pGauge->SetValue(static_cast<int>(static_cast<double>(progress._bytesDone) * gaugeRange /
                                           static_cast<double>(progress._bytesInAll)));
    }
}

void hoPropertiesDialog::showFacts(const hoInspectionFacts& facts)
{
    if (_pStop->HasFocus())
    {
        FindWindow(wxID_CLOSE)->SetFocus();
    }
    _pGauge->Hide();
    _pStop->Hide();
    const wxString none = _("None");
    _pSignature->SetValue(facts._isSigned ? signatureText(facts) : none);
    _pSigner->SetValue(facts._signature.isSignature() ? signerText(facts._signature) : none);
    _pSigned->SetValue(facts._isSigned ? hoTimeText(facts._signatureFile._modifiedSeconds, true) : none);
    const wxString reason = hoSentence(hoSigningReason(facts._reading));
    const hoSha256& sha256 = facts._digests._sha256;
    _pSha256->SetValue(facts._reading.isOk() ? gtTextFromBytes(hoHexText(sha256.data(), sha256.size())) : reason);
    wxString exclusiveOr = facts._reading.isOk() ? gtTextFromBytes(facts._digests._digestText) : reason;
    if (facts._reading.isOk() && exclusiveOr.empty())
    {
        exclusiveOr = _("It depends on the size of a key, and no key for files is loaded.");
    }
    _pExclusiveOr->SetValue(exclusiveOr);
}

wxString hoPropertiesDialog::signatureText(const hoInspectionFacts& facts) const
{
    if (!facts._signatureReading.isOk())
    {
        return hoSentence(hoSignatureFileReason(facts._signatureReading));
    }
    switch (facts._signature._form)
    {
    case hoSignatureForm::Countersigned:
        return _("Countersigned");
    case hoSignatureForm::DigestOnly:
        return _("Weak: not countersigned");
    default:
        return hoSentence(hoSignatureFormReason(facts._signature._form));
    }
}

wxString hoPropertiesDialog::signerText(const hoSignatureText& signature) const
{
    const wxString bits = hoPlainNumber(signature._digits * bitsPerDigit);
    if (signature._fingerprint.isEmpty())
    {
        return hoFilledText(_("%s bits"), {bits});
    }
    const wxString fingerprint = gtTextFromBytes(signature._fingerprint);
    for (const hoLoadedKey& loaded : _keys.keys())
    {
        if (hoShortFingerprint(*loaded._pKey) == signature._fingerprint)
        {
            return hoFilledText(_("%s bits, %s, %s"),
                                {bits, fingerprint, hoDisplayText(hoLastComponent(loaded._path))});
        }
    }
    return hoFilledText(_("%s bits, %s, not loaded"), {bits, fingerprint});
}

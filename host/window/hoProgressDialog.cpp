// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoProgressDialog.h"

#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"
#include "platform/toolkit/gtTextDirection.h"

#include <algorithm>

#include <wx/button.h>
#include <wx/gauge.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

namespace
{
const int gaugeRange = 1000;
const int width = 420;
}  // namespace

double hoDonePart(const hoSigningJob::Progress& progress)
{
    return progress._bytesInAll == 0
               ? 0
               : static_cast<double>(progress._bytesDone) / static_cast<double>(progress._bytesInAll);
}

hoProgressDialog::hoProgressDialog(wxWindow* pParent, hoSigningJob& work)
    : wxDialog(pParent, wxID_ANY,
               work.kind() == hoSigningJob::Kind::Sign ? _("Signing documents") : _("Testing documents")),
      _work(work),
      _pDocument(new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                  wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_MIDDLE)),
      _pGauge(new wxGauge(this, wxID_ANY, gaugeRange)),
      _pBytes(new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize, wxST_NO_AUTORESIZE))
{
    auto* pCancel = new wxButton(this, wxID_CANCEL);
    showProgress();

    pCancel->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { cancel(); });
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { cancel(); });

    auto* pTop = new wxBoxSizer(wxVERTICAL);
    _pGauge->SetMinSize(FromDIP(wxSize(width, -1)));
    pTop->Add(_pDocument, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT | wxTOP));
    pTop->Add(_pGauge, wxSizerFlags().Expand().DoubleBorder());
    pTop->Add(_pBytes, wxSizerFlags().Expand().DoubleBorder(wxLEFT | wxRIGHT));
    pTop->Add(pCancel, wxSizerFlags().Right().DoubleBorder());
    gtAlignTexts(*this);
    SetSizerAndFit(pTop);
    CentreOnParent();
    pCancel->SetFocus();
}

void hoProgressDialog::showProgress()
{
    const hoSigningJob::Progress progress = _work.progress();
    // The number of a document, how many there are, and its name.
    _pDocument->SetLabelText(
        hoFilledText(_("%1$s of %2$s: %3$s"),
                     {hoNumber(std::min(progress._documentsDone + 1, _work.amountOfDocuments())),
                      hoNumber(_work.amountOfDocuments()), hoDisplayText(hoLastComponent(progress._path), 80)}));
    _pGauge->SetValue(static_cast<int>(hoDonePart(progress) * gaugeRange));
    _pBytes->SetLabelText(_work.isCancelled()
                              ? _("Cancelling...")
                              : hoFilledText(_("%1$s of %2$s"), {gtTextFromBytes(hoSizeText(progress._bytesDone)),
                                                                 gtTextFromBytes(hoSizeText(progress._bytesInAll))}));
}

void hoProgressDialog::cancel()
{
    _work.cancel();
    showProgress();
}

// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoProgressDialog.h"

#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSummary.h"
#include "platform/baseTools/gtNumberText.h"
#include "platform/toolkit/gtTextConversion.h"

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

hoProgressDialog::hoProgressDialog(wxWindow* pParent, hoSigningJob& work)
    : wxDialog(pParent, wxID_ANY, work.kind() == hoSigningJob::Kind::Sign ? "Signing documents" : "Testing documents"),
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
    SetSizerAndFit(pTop);
    CentreOnParent();
    pCancel->SetFocus();
}

void hoProgressDialog::showProgress()
{
    const hoSigningJob::Progress progress = _work.progress();
    const wxString number =
        gtTextFromBytes(gtNumberText(std::min(progress._documentsDone + 1, _work.amountOfDocuments())));
    _pDocument->SetLabelText(number + " of " + gtTextFromBytes(gtNumberText(_work.amountOfDocuments())) + ": " +
                             hoDisplayText(hoLastComponent(progress._path), 80));
    const double part = progress._bytesInAll == 0
                            ? 0
                            : static_cast<double>(progress._bytesDone) / static_cast<double>(progress._bytesInAll);
    _pGauge->SetValue(static_cast<int>(part * gaugeRange));
    _pBytes->SetLabelText(_work.isCancelled() ? wxString("Cancelling...")
                                              : gtTextFromBytes(hoSizeText(progress._bytesDone)) + " of " +
                                                    gtTextFromBytes(hoSizeText(progress._bytesInAll)));
}

void hoProgressDialog::cancel()
{
    _work.cancel();
    showProgress();
}

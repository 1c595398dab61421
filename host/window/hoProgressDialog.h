// SPDX-License-Identifier: Apache-2.0
// Shows how far a work on documents has got, and lets the user cancel it. Does not block the window that it belongs to.
#ifndef COUNTERSIGN_HO_PROGRESS_DIALOG_H
#define COUNTERSIGN_HO_PROGRESS_DIALOG_H

#include "host/signing/hoSigningJob.h"

#include <wx/dialog.h>

class wxGauge;
class wxStaticText;

// How much of the bytes is done, from 0 to 1.
double hoDonePart(const hoSigningJob::Progress& progress);

class hoProgressDialog : public wxDialog
{
public:
    // The work must outlive the dialog. Cancel, Escape and the close box cancel the work; whoever made the dialog
    // destroys it when the work has ended.
    hoProgressDialog(wxWindow* pParent, hoSigningJob& work);

    // Takes the work's present progress.
    void showProgress();

private:
    void cancel();

    hoSigningJob& _work;
    wxStaticText* _pDocument;
    wxGauge* _pGauge;
    wxStaticText* _pBytes;
};

#endif

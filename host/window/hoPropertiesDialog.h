// SPDX-License-Identifier: Apache-2.0
// What is known of one document: its file, its signature, and its digests, which are computed while the dialog is up.
// Each value can be selected and copied, and all of them at once.
#ifndef COUNTERSIGN_HO_PROPERTIES_DIALOG_H
#define COUNTERSIGN_HO_PROPERTIES_DIALOG_H

#include "host/keys/hoKeyRing.h"
#include "host/signing/hoDocument.h"
#include "host/signing/hoInspection.h"
#include "platform/toolkit/gtMainThreadCall.h"

#include <wx/dialog.h>

#include <memory>
#include <vector>

class wxButton;
class wxFlexGridSizer;
class wxGauge;
class wxTextCtrl;

class hoPropertiesDialog : public wxDialog
{
public:
    hoPropertiesDialog(wxWindow* pParent, const hoDocument& document, const hoKeyRing& keys);

    // All values with their labels, one a line.
    wxString text() const;

private:
    struct Row
    {
        wxString _label;
        wxTextCtrl* _pValue;
    };

    wxTextCtrl* addRow(wxFlexGridSizer& grid, const wxString& label, const char* pName, const wxString& value);
    void begin();
    void showProgress();
    void showFacts(const hoInspectionFacts& facts);
    wxString signatureText(const hoInspectionFacts& facts) const;
    wxString signerText(const hoSignatureText& signature) const;

    const hoDocument _document;
    const hoKeyRing _keys;
    std::vector<Row> _rows;
    wxTextCtrl* _pSignature;
    wxTextCtrl* _pSigner;
    wxTextCtrl* _pSigned;
    wxTextCtrl* _pSha256;
    wxTextCtrl* _pExclusiveOr;
    wxGauge* _pGauge;
    wxButton* _pStop;
    gtMainThreadCall _call;
    // The last member: its thread uses _call.
    std::unique_ptr<hoInspection> _pInspection;
};

#endif

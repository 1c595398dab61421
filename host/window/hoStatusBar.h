// SPDX-License-Identifier: Apache-2.0
// The main window's status bar: what has just been done, the loaded keys, the documents. Main thread only.
#ifndef COUNTERSIGN_HO_STATUS_BAR_H
#define COUNTERSIGN_HO_STATUS_BAR_H

#include "host/documents/hoDocumentList.h"
#include "host/keys/hoKeyRing.h"

#include <wx/statusbr.h>

#include <vector>

class hoStatusBar : public wxStatusBar
{
public:
    // For wxFrame::SetStatusBar.
    explicit hoStatusBar(wxWindow* pParent);

    // The first field stays until it is written again, or a menu is looked through.
    void showNotice(const wxString& text);
    // The same for why something cannot be done now; endReason takes it away, if it is still there.
    void showReason(const wxString& text);
    void endReason();
    // In as many words as there is room for; both keys at any width, by their fingerprints. Of several public keys the
    // number, and their names where there is room.
    void showKeys(const hoKeyRing& keys);
    // Whole, as long as the keys keep room for their shortest words.
    void showDocuments(const hoDocumentList& documents, std::size_t amountSelected);

private:
    void DoUpdateStatusText(int field) override;
    // The width that a text takes in a field.
    int roomFor(const wxString& text) const;
    void fitFields();
    void fitKeys();

    bool _areSeveralKeys;
    wxString _reason;
    std::vector<wxString> _keyTexts;  // the longest first; empty until there are some
};

#endif

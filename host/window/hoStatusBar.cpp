// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoStatusBar.h"

#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"

namespace
{
enum Field
{
    FIELD_NOTICE = 0,
    FIELD_KEYS,
    FIELD_DOCUMENTS,
    FIELD_COUNT
};
}  // namespace

hoStatusBar::hoStatusBar(wxWindow* pParent) : wxStatusBar(pParent)
{
    // Negative: shares of the width.
    const int widths[FIELD_COUNT] = {-4, -5, -4};
    SetFieldsCount(FIELD_COUNT, widths);
}

void hoStatusBar::showNotice(const wxString& text)
{
    SetStatusText(text, FIELD_NOTICE);
}

void hoStatusBar::showReason(const wxString& text)
{
    _reason = text;
    showNotice(text);
}

void hoStatusBar::endReason()
{
    if (!_reason.empty() && GetStatusText(FIELD_NOTICE) == _reason)
    {
        showNotice(wxString());
    }
    _reason.clear();
}

void hoStatusBar::showKeys(const hoKeyRing& keys)
{
    const wxString privateKey = hoKeyText(keys._private, true);
    const wxString publicKey = hoKeyText(keys._public, false);
    const bool areBoth = !privateKey.empty() && !publicKey.empty();
    // The private key and the public one.
    const wxString text = areBoth ? hoFilledText(_("%s; %s"), {privateKey, publicKey}) : privateKey + publicKey;
    SetStatusText(text.empty() ? _("No key") : text, FIELD_KEYS);
}

void hoStatusBar::showDocuments(const hoDocumentList& documents, std::size_t amountSelected)
{
    const wxString selected =
        amountSelected == 0 ? wxString() : hoCounted("%s selected", "%s selected", amountSelected);
    const wxString text = documents.isEmpty()
                              ? _("No documents")
                              : hoListed({hoCounted("%s document", "%s documents", documents.size()),
                                          gtTextFromBytes(hoSizeText(documents.totalSize())), selected});
    SetStatusText(text, FIELD_DOCUMENTS);
}

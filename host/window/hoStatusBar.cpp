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

// Negative: shares of the width.
const int usualWidths[FIELD_COUNT] = {-4, -5, -4};
const int widthsWithBothKeys[FIELD_COUNT] = {-3, -7, -4};
const int textMargin = 4;  // of a field, on each side

wxString bitsOf(const hoLoadedKey& key)
{
    return hoPlainNumber(key._pKey->bits());
}

wxString fingerprintOf(const hoLoadedKey& key)
{
    return gtTextFromBytes(hoShortFingerprint(*key._pKey));
}

// What is said of the keys, the longest text first.
std::vector<wxString> keyTexts(const hoKeyRing& keys)
{
    const bool hasPrivate = keys._private._pKey != nullptr;
    const bool hasPublic = keys._public._pKey != nullptr;
    if (hasPrivate && hasPublic)
    {
        const wxString privateKey = fingerprintOf(keys._private);
        const wxString publicKey = fingerprintOf(keys._public);
        // The private key and the public one.
        return {hoFilledText(_("%s; %s"), {hoKeyText(keys._private, true), hoKeyText(keys._public, false)}),
                hoFilledText(_("%s-bit private key %s; %s-bit public key %s"),
                             {bitsOf(keys._private), privateKey, bitsOf(keys._public), publicKey}),
                hoFilledText(_("Private %s; public %s"), {privateKey, publicKey})};
    }
    if (hasPrivate || hasPublic)
    {
        // Its end, the name of the file, may be cut.
        return {hoKeyText(hasPrivate ? keys._private : keys._public, hasPrivate)};
    }
    return {_("No key")};
}
}  // namespace

hoStatusBar::hoStatusBar(wxWindow* pParent) : wxStatusBar(pParent)
{
    SetFieldsCount(FIELD_COUNT, usualWidths);
    Bind(wxEVT_SIZE,
         [this](wxSizeEvent& event)
         {
             event.Skip();
             // The fields have their new widths once this event is dealt with.
             CallAfter(&hoStatusBar::fitKeys);
         });
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
    _keyTexts = keyTexts(keys);
    const bool areBoth = keys._private._pKey != nullptr && keys._public._pKey != nullptr;
    SetStatusWidths(FIELD_COUNT, areBoth ? widthsWithBothKeys : usualWidths);
    fitKeys();
}

void hoStatusBar::fitKeys()
{
    wxRect field;
    if (_keyTexts.empty() || !GetFieldRect(FIELD_KEYS, field))
    {
        return;
    }
    const int width = field.GetWidth() - 2 * FromDIP(textMargin);
    std::size_t fitting = 0;
    while (fitting + 1 < _keyTexts.size() && GetTextExtent(_keyTexts[fitting]).GetWidth() > width)
    {
        ++fitting;
    }
    SetStatusText(_keyTexts[fitting], FIELD_KEYS);
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

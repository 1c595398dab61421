// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoStatusBar.h"

#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtReaders.h"
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
const int widthsWithSeveralKeys[FIELD_COUNT] = {-3, -7, -4};
const int textMargin = 4;  // of a field, on each side

wxString bitsOf(const hoLoadedKey& key)
{
    return hoPlainNumber(key._pKey->bits());
}

wxString fingerprintOf(const hoLoadedKey& key)
{
    return gtTextFromBytes(hoShortFingerprint(*key._pKey));
}

// The same where there is more than one public key: how many, and which as long as there is room.
std::vector<wxString> textsOfMany(const hoKeyRing& keys)
{
    const wxString amount = hoCounted("%s public key", "%s public keys", keys._publics.size());
    std::vector<wxString> names;
    for (const hoLoadedKey& key : keys._publics)
    {
        names.push_back(hoDisplayText(hoLastComponent(key._path), 40));
    }
    const wxString listed = hoFilledText(_("%s: %s"), {amount, hoListed(names)});
    if (!keys.canSign())
    {
        return {listed, amount};
    }
    const wxString privateKey = hoKeyText(keys._private, true);
    return {hoFilledText(_("%s; %s"), {privateKey, listed}), hoFilledText(_("%s; %s"), {privateKey, amount}),
            // The fingerprint of the private key, and the number of public ones.
            hoFilledText(_("Private %s; %s"), {fingerprintOf(keys._private), amount})};
}

// What is said of the keys, the longest text first.
std::vector<wxString> keyTexts(const hoKeyRing& keys)
{
    if (keys._publics.size() > 1)
    {
        return textsOfMany(keys);
    }
    if (keys.canSign() && !keys._publics.empty())
    {
        const hoLoadedKey& other = keys._publics.front();
        const wxString privateKey = fingerprintOf(keys._private);
        const wxString publicKey = fingerprintOf(other);
        // The private key and the public one.
        return {hoFilledText(_("%s; %s"), {hoKeyText(keys._private, true), hoKeyText(other, false)}),
                hoFilledText(_("%s-bit private key %s; %s-bit public key %s"),
                             {bitsOf(keys._private), privateKey, bitsOf(other), publicKey}),
                hoFilledText(_("Private %s; public %s"), {privateKey, publicKey})};
    }
    if (keys.canTest())
    {
        // Its end, the name of the file, may be cut.
        return {hoKeyText(keys.canSign() ? keys._private : keys._publics.front(), keys.canSign())};
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
    SetStatusWidths(FIELD_COUNT, keys.keys().size() > 1 ? widthsWithSeveralKeys : usualWidths);
    fitKeys();
}

void hoStatusBar::DoUpdateStatusText(int field)
{
    wxStatusBar::DoUpdateStatusText(field);
    // The toolkit draws the fields, and a reader sees nothing of them.
    wxString all;
    for (int each = 0; each < GetFieldsCount(); ++each)
    {
        const wxString text = GetStatusText(each);
        all += (all.empty() || text.empty() ? "" : "; ") + text;
    }
    gtReadAsStatusBar(*this, all);
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

// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoStatusBar.h"

#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoSummary.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtReaders.h"
#include "platform/toolkit/gtTextConversion.h"

#include <algorithm>

namespace
{
enum Field
{
    FIELD_NOTICE = 0,
    FIELD_KEYS,
    FIELD_DOCUMENTS,
    FIELD_COUNT
};

// Of the notice and the keys, of what the documents leave.
struct Shares
{
    int _notice;
    int _keys;
};
const Shares usualShares{4, 5};
const Shares sharesWithSeveralKeys{3, 7};
// One part of so many of the whole is always left to the documents.
const int leastPartOfDocuments = 4;
const int textMargin = 4;  // of a field, on each side
// The fields keep their places while a number grows by a figure.
const int widthStep = 40;

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

hoStatusBar::hoStatusBar(wxWindow* pParent) : wxStatusBar(pParent), _areSeveralKeys(false)
{
    SetFieldsCount(FIELD_COUNT);
    Bind(wxEVT_SIZE,
         [this](wxSizeEvent& event)
         {
             event.Skip();
             // The bar has its new width once this event is dealt with.
             CallAfter(&hoStatusBar::fitFields);
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
    _areSeveralKeys = keys.keys().size() > 1;
    fitFields();
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

int hoStatusBar::roomFor(const wxString& text) const
{
    return GetTextExtent(text).GetWidth() + 2 * FromDIP(textMargin);
}

void hoStatusBar::fitFields()
{
    const Shares shares = _areSeveralKeys ? sharesWithSeveralKeys : usualShares;
    // What the window is resized by is as wide as the bar is high. The toolkit shares out the width without it, and yet
    // it covers the end of the last field.
    const int grip = GetClientSize().GetHeight();
    const int all = GetClientSize().GetWidth() - grip;
    const int borders = 2 * GetBorderX();
    // The shortest text of several keys is always there; that of one key may be cut.
    const int keys = _keyTexts.size() > 1 ? roomFor(_keyTexts.back()) + borders : 0;
    const int most =
        std::max(all / leastPartOfDocuments, all - keys * (shares._notice + shares._keys) / shares._keys - 1);
    const int step = FromDIP(widthStep);
    const int wanted = roomFor(GetStatusText(FIELD_DOCUMENTS)) + borders + grip;
    const int widths[FIELD_COUNT] = {-shares._notice, -shares._keys, std::min((wanted + step - 1) / step * step, most)};
    SetStatusWidths(FIELD_COUNT, widths);
    fitKeys();
}

void hoStatusBar::fitKeys()
{
    wxRect field;
    if (_keyTexts.empty() || !GetFieldRect(FIELD_KEYS, field))
    {
        return;
    }
    std::size_t fitting = 0;
    while (fitting + 1 < _keyTexts.size() && roomFor(_keyTexts[fitting]) > field.GetWidth())
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
    fitFields();
}

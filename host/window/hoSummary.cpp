// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoSummary.h"

#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "platform/toolkit/gtTextConversion.h"

namespace
{
wxString outcomeText(const hoSigningOutcome& outcome)
{
    if (!outcome._signing.isOk())
    {
        return gtTextFromBytes(hoSigningReason(outcome._signing));
    }
    if (!outcome._signatureFile.isOk())
    {
        return hoDisplayText(hoLastComponent(hoSignaturePath(outcome._path)), 60) + ": " +
               gtTextFromBytes(hoSignatureFileReason(outcome._signatureFile));
    }
    if (outcome._stamp._state == hoDocumentState::Bad)
    {
        return "BAD: the signature beside it is not one of this document under the loaded key";
    }
    return gtTextFromBytes(hoStateText(outcome._stamp._state, true)).Lower();
}

bool isGood(hoDocumentState state)
{
    return state == hoDocumentState::Good || state == hoDocumentState::SignedByMe;
}

class Counts
{
public:
    void add(std::size_t amount, const char* what)
    {
        if (amount > 0)
        {
            _text += (_text.empty() ? wxString() : wxString(", ")) + gtTextFromBytes(hoNumberText(amount)) + " " + what;
        }
    }
    const wxString& text() const { return _text; }

private:
    wxString _text;
};
}  // namespace

wxString hoKeyProblemText(const gtString& path, const hoKeyFileFacts& facts)
{
    const wxString name = hoQuotedText(hoDisplayText(hoLastComponent(path), 60));
    return facts._problem == hoKeyFileProblem::WrongPassphrase
               ? "Wrong passphrase for " + name + "."
               : "Cannot load " + name + ": " + gtTextFromBytes(hoKeyFileReason(facts)) + ".";
}

wxString hoKeyText(const hoLoadedKey& key, bool isPrivate)
{
    if (key._pKey == nullptr)
    {
        return wxString();
    }
    const wxString kind = isPrivate ? "private" : "public";
    return wxString::Format("%d-bit %s key ", key._pKey->bits(), kind) +
           gtTextFromBytes(hoShortFingerprint(*key._pKey)) + ", " + hoDisplayText(hoLastComponent(key._path), 40);
}

hoSummary hoKeyWarning(const hoLoadedKey& key)
{
    hoSummary warning = {wxString(), hoDisplayText(key._path) + "\n", false};
    const wxString name = hoQuotedText(hoDisplayText(hoLastComponent(key._path), 60));
    if (key._isFolderOpenToOthers)
    {
        warning._line = "Others may replace the private key " + name + ".";
        warning._details += "    " + gtTextFromBytes(hoOpenFolderWarning()) + "\n";
    }
    if (key._isOpenToOthers)
    {
        warning._line = "Others may read or change the private key " + name + ".";
        warning._details += "    " + gtTextFromBytes(hoOpenKeyWarning()) + "\n";
    }
    return warning;
}

hoSummary hoSummaryOf(hoSigningJob::Kind kind, const std::vector<hoSigningOutcome>& outcomes, bool isCancelled)
{
    std::size_t good = 0;
    std::size_t bad = 0;
    std::size_t unsignedOnes = 0;
    std::size_t kept = 0;
    std::size_t failed = 0;
    hoSummary summary;
    for (const hoSigningOutcome& outcome : outcomes)
    {
        const bool isKept = outcome._signatureFile._problem == hoSignatureFileProblem::Exists;
        const bool isFailed = !outcome._signing.isOk() || (!outcome._signatureFile.isOk() && !isKept);
        const hoDocumentState state = outcome._stamp._state;
        kept += isKept ? 1U : 0U;
        failed += isFailed || (!isKept && state == hoDocumentState::Changed) ? 1U : 0U;
        if (!isKept && !isFailed)
        {
            good += isGood(state) ? 1U : 0U;
            bad += state == hoDocumentState::Bad ? 1U : 0U;
            unsignedOnes += state == hoDocumentState::NotSigned ? 1U : 0U;
        }
        summary._details += hoDisplayText(outcome._path) + "\n    " + outcomeText(outcome) + "\n";
    }

    Counts counts;
    const bool isSigning = kind == hoSigningJob::Kind::Sign;
    counts.add(good, isSigning ? "signed" : "good");
    counts.add(bad, "bad");
    counts.add(unsignedOnes, "not signed");
    counts.add(kept, "kept as they were");
    counts.add(failed, isSigning ? "could not be signed" : "could not be tested");
    summary._line = isCancelled ? wxString("Cancelled after ") : wxString();
    summary._line += gtTextFromBytes(hoAmountText(outcomes.size(), "document", "documents"));
    if (!counts.text().empty())
    {
        summary._line += ": " + counts.text();
    }
    summary._line += ".";
    summary._isAllWell = bad == 0 && failed == 0 && !isCancelled;
    return summary;
}

gtString hoLastComponent(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    // Without a separator, from the beginning: the largest position and one are 0.
    const std::size_t start = bytes.rfind('/') + 1;
    return start == bytes.size() ? path : gtString(bytes.substr(start));
}

wxString hoQuotedText(const wxString& text)
{
    return wxUniChar(0x201C) + text + wxUniChar(0x201D);
}

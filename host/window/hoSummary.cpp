// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoSummary.h"

#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"
#include "host/window/hoDisplayText.h"
#include "platform/baseTools/gtNumberText.h"
#include "platform/toolkit/gtTextConversion.h"

#include <algorithm>

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
    const wxString state = gtTextFromBytes(hoStateText(outcome._verdict._state, true)).Lower();
    // What was found is not what there is by now.
    const bool isChanged = outcome._verdict._state == hoDocumentState::Changed;
    const wxString reason = isChanged ? wxString() : gtTextFromBytes(hoVerdictReason(outcome._signing));
    return reason.empty() ? state : state + ": " + reason;
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
            _text += (_text.empty() ? wxString() : wxString(", ")) + gtTextFromBytes(gtNumberText(amount)) + " " + what;
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
    if (key._isInMemoryForGood)
    {
        warning._line = "Traces of the private key " + name + " stay in memory.";
        warning._details += "    " + gtTextFromBytes(hoLibcryptoMemoryWarning()) + "\n";
    }
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
    std::size_t weak = 0;
    std::size_t bad = 0;
    std::size_t anothers = 0;
    std::size_t noSignatures = 0;
    std::size_t unsignedOnes = 0;
    std::size_t kept = 0;
    std::size_t failed = 0;
    const bool isSigning = kind == hoSigningJob::Kind::Sign;
    hoSummary summary;
    wxString withoutFailure;
    for (const hoSigningOutcome& outcome : outcomes)
    {
        const bool isKept = outcome._signatureFile._problem == hoSignatureFileProblem::Exists;
        const bool isFailed = !outcome._signing.isOk() || (!outcome._signatureFile.isOk() && !isKept);
        const hoDocumentState state = outcome._verdict._state;
        kept += isKept ? 1U : 0U;
        failed += isFailed || (!isKept && state == hoDocumentState::Changed) ? 1U : 0U;
        if (!isKept && !isFailed)
        {
            const bool isSigned = isSigning && state == hoDocumentState::Weak;
            good += isGood(state) || isSigned ? 1U : 0U;
            weak += state == hoDocumentState::Weak && !isSigned ? 1U : 0U;
            anothers += state == hoDocumentState::AnotherKey ? 1U : 0U;
            noSignatures += state == hoDocumentState::NotASignature ? 1U : 0U;
            bad += state == hoDocumentState::Bad ? 1U : 0U;
            unsignedOnes += state == hoDocumentState::NotSigned ? 1U : 0U;
        }
        const bool isHarmless = isKept || state == hoDocumentState::NotSigned || isGood(state) ||
                                (isSigning && state == hoDocumentState::Weak);
        (isFailed || !isHarmless ? summary._details : withoutFailure) +=
            hoDisplayText(outcome._path) + "\n    " + outcomeText(outcome) + "\n";
    }

    summary._details += withoutFailure;

    Counts counts;
    counts.add(good, isSigning ? "signed" : "good");
    counts.add(bad, "bad");
    counts.add(weak, "weak");
    counts.add(anothers, "signed with another key");
    counts.add(noSignatures, "without a signature that can be read");
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
    summary._isAllWell = bad + weak + anothers + noSignatures + failed == 0 && !isCancelled;
    return summary;
}

wxString hoReplacementQuestion(const std::vector<hoDocument>& documents)
{
    struct Concern
    {
        hoDocumentState _state;
        const char* _one;
        const char* _many;
    };
    const Concern concerns[] = {
        {hoDocumentState::Bad, "does not match its document", "do not match their documents"},
        {hoDocumentState::AnotherKey, "was made with another key", "were made with another key"},
        {hoDocumentState::Changed, "is no longer what was tested", "are no longer what was tested"},
        {hoDocumentState::NotTested, "has not been tested", "have not been tested"},
    };
    wxString text =
        "Replace " + gtTextFromBytes(hoAmountText(documents.size(), "signature", "signatures")) + wxString("?");
    for (const Concern& concern : concerns)
    {
        const auto amount = static_cast<std::size_t>(
            std::count_if(documents.begin(), documents.end(),
                          [&](const hoDocument& document) { return document._verdict._state == concern._state; }));
        if (amount > 0)
        {
            const gtString clause = documents.size() == 1 ? gtString("It ").append(concern._one)
                                                          : hoAmountText(amount, concern._one, concern._many);
            text += " " + gtTextFromBytes(clause) + ".";
        }
    }
    return text;
}

wxString hoWhyNoJob(const hoDocumentList& documents, std::size_t amountSelected, const hoKeyRing& keys, bool isAtWork)
{
    if (documents.isEmpty())
    {
        return "Nothing to sign or test: open documents first.";
    }
    if (!keys.canTest())
    {
        return "Signing and testing take a key: load one first.";
    }
    if (isAtWork)
    {
        return "Documents are being signed or tested.";
    }
    if (!keys.canSign())
    {
        return "Signing takes a private key.";
    }
    return hoWhyNoneSelected(documents, amountSelected);
}

wxString hoWhyNoneSelected(const hoDocumentList& documents, std::size_t amountSelected)
{
    if (documents.isEmpty())
    {
        return "No document is open.";
    }
    return amountSelected == 0 ? wxString("No document is selected.") : wxString();
}

wxString hoSentence(const gtString& reason)
{
    const wxString text = gtTextFromBytes(reason);
    return text.Left(1).Upper() + text.Mid(1) + ".";
}

wxString hoCopiedText(std::size_t amountOfPaths)
{
    return amountOfPaths == 0 ? wxString()
                              : gtTextFromBytes(hoAmountText(amountOfPaths, "path copied", "paths copied"));
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

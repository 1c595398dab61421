// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoSummary.h"

#include "host/messages/hoMessages.h"
#include "host/window/hoDisplayText.h"
#include "host/window/hoTexts.h"
#include "platform/toolkit/gtTextConversion.h"

#include <algorithm>

namespace
{
// A file or a state, and what is to be said of it.
wxString withReason(const wxString& what, const wxString& reason)
{
    return hoFilledText(_("%s: %s"), {what, reason});
}

// As it stands in the middle of a line.
wxString stateInDetails(hoDocumentState state)
{
    switch (state)
    {
    case hoDocumentState::NotSigned:
        return _("not signed");
    case hoDocumentState::NotTested:
        return _("not tested");
    case hoDocumentState::SignedByMe:
        return _("signed by me");
    case hoDocumentState::Good:
        return _("good");
    case hoDocumentState::Weak:
        return _("weak");
    case hoDocumentState::Bad:
        return _("bad");
    case hoDocumentState::AnotherKey:
        return _("another key");
    case hoDocumentState::NotASignature:
        return _("not a signature");
    case hoDocumentState::Changed:
        return _("changed since");
    case hoDocumentState::CannotBeRead:
        return _("cannot be read");
    case hoDocumentState::Missing:
        return _("missing");
    }
    return wxString();
}

// With the key that the state came from, where several were loaded.
wxString withKey(const wxString& state, const hoDocumentVerdict& verdict)
{
    switch (verdict._state)
    {
    case hoDocumentState::SignedByMe:
    case hoDocumentState::Good:
    case hoDocumentState::Weak:
    case hoDocumentState::Bad:
    {
        const wxUniChar middleDot(0xB7);
        return verdict._keyName.isEmpty()
                   ? state
                   : state + " " + wxString(middleDot) + " " + hoDisplayText(verdict._keyName, 40);
    }
    default:
        return state;
    }
}

wxString outcomeText(const hoSigningOutcome& outcome)
{
    if (!outcome._signing.isOk())
    {
        return gtTextFromBytes(hoSigningReason(outcome._signing));
    }
    if (!outcome._signatureFile.isOk())
    {
        return withReason(hoDisplayText(hoLastComponent(hoSignaturePath(outcome._path)), 60),
                          gtTextFromBytes(hoSignatureFileReason(outcome._signatureFile)));
    }
    const wxString state = withKey(stateInDetails(outcome._verdict._state), outcome._verdict);
    // What was found is not what there is by now.
    const bool isChanged = outcome._verdict._state == hoDocumentState::Changed;
    const wxString reason = isChanged ? wxString() : gtTextFromBytes(hoVerdictReason(outcome._signing));
    return reason.empty() ? state : withReason(state, reason);
}

bool isGood(hoDocumentState state)
{
    return state == hoDocumentState::Good || state == hoDocumentState::SignedByMe;
}

// What a job has found: amounts of documents.
struct Counts
{
    std::size_t _good = 0;
    std::size_t _weak = 0;
    std::size_t _bad = 0;
    std::size_t _anothers = 0;
    std::size_t _noSignatures = 0;
    std::size_t _unsignedOnes = 0;
    std::size_t _kept = 0;
    std::size_t _failed = 0;
};

wxString countsText(const Counts& counts, bool isSigning)
{
    const auto text = [](std::size_t amount, const wxString& counted) { return amount == 0 ? wxString() : counted; };
    return hoListed(
        {text(counts._good, isSigning ? hoCounted("%s signed", "%s signed", counts._good)
                                      : hoCounted("%s good", "%s good", counts._good)),
         text(counts._bad, hoCounted("%s bad", "%s bad", counts._bad)),
         text(counts._weak, hoCounted("%s weak", "%s weak", counts._weak)),
         text(counts._anothers,
              hoCounted("%s signed with another key", "%s signed with another key", counts._anothers)),
         text(counts._noSignatures, hoCounted("%s without a signature that can be read",
                                              "%s without a signature that can be read", counts._noSignatures)),
         text(counts._unsignedOnes, hoCounted("%s not signed", "%s not signed", counts._unsignedOnes)),
         text(counts._kept, hoCounted("%s kept as they were", "%s kept as they were", counts._kept)),
         text(counts._failed, isSigning
                                  ? hoCounted("%s could not be signed", "%s could not be signed", counts._failed)
                                  : hoCounted("%s could not be tested", "%s could not be tested", counts._failed))});
}

wxString summaryLine(std::size_t documents, const wxString& counts, bool isCancelled)
{
    if (counts.empty())
    {
        return isCancelled ? hoCounted("Cancelled after %s document.", "Cancelled after %s documents.", documents)
                           : hoCounted("%s document.", "%s documents.", documents);
    }
    // How many documents, and what was found, such as "3 good, 2 bad".
    return isCancelled ? hoCounted("Cancelled after %1$s document: %2$s.", "Cancelled after %1$s documents: %2$s.",
                                   documents, {counts})
                       : hoCounted("%1$s document: %2$s.", "%1$s documents: %2$s.", documents, {counts});
}

// What speaks against replacing the one signature that there is.
wxString concernOfTheOne(hoDocumentState state)
{
    switch (state)
    {
    case hoDocumentState::Bad:
        return _("It does not match its document.");
    case hoDocumentState::AnotherKey:
        return _("It was made with another key.");
    case hoDocumentState::Changed:
        return _("It is no longer what was tested.");
    default:
        return _("It has not been tested.");
    }
}

// The same where only some of several are in this state.
wxString concernOfSome(hoDocumentState state, std::size_t amount)
{
    switch (state)
    {
    case hoDocumentState::Bad:
        return hoCounted("%s does not match its document.", "%s do not match their documents.", amount);
    case hoDocumentState::AnotherKey:
        return hoCounted("%s was made with another key.", "%s were made with another key.", amount);
    case hoDocumentState::Changed:
        return hoCounted("%s is no longer what was tested.", "%s are no longer what was tested.", amount);
    default:
        return hoCounted("%s has not been tested.", "%s have not been tested.", amount);
    }
}
}  // namespace

wxString hoKeyProblemText(const gtString& path, const hoKeyFileFacts& facts)
{
    const wxString name = hoQuotedText(hoDisplayText(hoLastComponent(path), 60));
    return facts._problem == hoKeyFileProblem::WrongPassphrase
               ? hoFilledText(_("Wrong passphrase for %s."), {name})
               : hoFilledText(_("Cannot load %s: %s."), {name, gtTextFromBytes(hoKeyFileReason(facts))});
}

wxString hoVerdictWords(const hoDocumentVerdict& verdict, bool canTest)
{
    return withKey(gtTextFromBytes(hoStateText(verdict._state, canTest)), verdict);
}

wxString hoKeyText(const hoLoadedKey& key, bool isPrivate)
{
    if (key._pKey == nullptr)
    {
        return wxString();
    }
    // The size of a key, its fingerprint, and the name of its file.
    return hoFilledText(isPrivate ? _("%s-bit private key %s, %s") : _("%s-bit public key %s, %s"),
                        {hoPlainNumber(key._pKey->bits()), gtTextFromBytes(hoShortFingerprint(*key._pKey)),
                         hoDisplayText(hoLastComponent(key._path), 40)});
}

hoSummary hoKeyWarning(const hoLoadedKey& key)
{
    hoSummary warning;
    warning._details = hoDisplayText(key._path) + "\n";
    const wxString name = hoQuotedText(hoDisplayText(hoLastComponent(key._path), 60));
    if (key._isInMemoryForGood)
    {
        warning._line = hoFilledText(_("Traces of the private key %s stay in memory."), {name});
        warning._details += "    " + gtTextFromBytes(hoLibcryptoMemoryWarning()) + "\n";
    }
    if (key._isFolderOpenToOthers)
    {
        warning._line = hoFilledText(_("Others may replace the private key %s."), {name});
        warning._details += "    " + gtTextFromBytes(hoOpenFolderWarning()) + "\n";
    }
    if (key._isOpenToOthers)
    {
        warning._line = hoFilledText(_("Others may read or change the private key %s."), {name});
        warning._details += "    " + gtTextFromBytes(hoOpenKeyWarning()) + "\n";
    }
    return warning;
}

hoSummary hoSummaryOf(hoSigningJob::Kind kind, const std::vector<hoSigningOutcome>& outcomes, bool isCancelled)
{
    Counts counts;
    const bool isSigning = kind == hoSigningJob::Kind::Sign;
    hoSummary summary;
    wxString notSigned;
    wxString withoutFailure;
    for (const hoSigningOutcome& outcome : outcomes)
    {
        const bool isKept = outcome._signatureFile._problem == hoSignatureFileProblem::Exists;
        const bool isFailed = !outcome._signing.isOk() || (!outcome._signatureFile.isOk() && !isKept);
        const hoDocumentState state = outcome._verdict._state;
        counts._kept += isKept ? 1U : 0U;
        counts._failed += isFailed || (!isKept && state == hoDocumentState::Changed) ? 1U : 0U;
        if (!isKept && !isFailed)
        {
            const bool isSigned = isSigning && state == hoDocumentState::Weak;
            counts._good += isGood(state) || isSigned ? 1U : 0U;
            counts._weak += state == hoDocumentState::Weak && !isSigned ? 1U : 0U;
            counts._anothers += state == hoDocumentState::AnotherKey ? 1U : 0U;
            counts._noSignatures += state == hoDocumentState::NotASignature ? 1U : 0U;
            counts._bad += state == hoDocumentState::Bad ? 1U : 0U;
            counts._unsignedOnes += state == hoDocumentState::NotSigned ? 1U : 0U;
        }
        const bool isHarmless = isKept || state == hoDocumentState::NotSigned || isGood(state) ||
                                (isSigning && state == hoDocumentState::Weak);
        wxString& details = isFailed || !isHarmless               ? summary._details
                            : state == hoDocumentState::NotSigned ? notSigned
                                                                  : withoutFailure;
        details += hoDisplayText(outcome._path) + "\n    " + outcomeText(outcome) + "\n";
    }

    summary._details += notSigned + withoutFailure;

    summary._line = summaryLine(outcomes.size(), countsText(counts, isSigning), isCancelled);
    const std::size_t failures = counts._bad + counts._weak + counts._anothers + counts._noSignatures + counts._failed;
    if (failures == 0 && !isCancelled)
    {
        summary._tone = counts._unsignedOnes == 0 ? hoSummaryTone::AllWell : hoSummaryTone::NotAllSigned;
    }
    return summary;
}

wxString hoReplacementQuestion(const std::vector<hoDocument>& documents)
{
    wxString text = hoCounted("Replace %s signature?", "Replace %s signatures?", documents.size());
    for (const hoDocumentState state :
         {hoDocumentState::Bad, hoDocumentState::AnotherKey, hoDocumentState::Changed, hoDocumentState::NotTested})
    {
        const auto amount = static_cast<std::size_t>(std::count_if(documents.begin(), documents.end(),
                                                                   [&](const hoDocument& document)
                                                                   { return document._verdict._state == state; }));
        if (amount > 0)
        {
            text += " " + (documents.size() == 1 ? concernOfTheOne(state) : concernOfSome(state, amount));
        }
    }
    return text;
}

wxString hoWhyNoJob(const hoDocumentList& documents, std::size_t amountSelected, const hoKeyRing& keys, bool isAtWork)
{
    if (documents.isEmpty())
    {
        return _("Nothing to sign or test: open documents first.");
    }
    if (!keys.canTest())
    {
        return _("Signing and testing take a key: load one first.");
    }
    if (isAtWork)
    {
        return _("Documents are being signed or tested.");
    }
    if (!keys.canSign())
    {
        return _("Signing takes a private key.");
    }
    return hoWhyNoneSelected(documents, amountSelected);
}

wxString hoWhyNoneSelected(const hoDocumentList& documents, std::size_t amountSelected)
{
    if (documents.isEmpty())
    {
        return _("No document is open.");
    }
    return amountSelected == 0 ? _("No document is selected.") : wxString();
}

wxString hoSentence(const gtString& reason)
{
    const wxString text = gtTextFromBytes(reason);
    return hoFilledText(_("%s."), {text.Left(1).Upper() + text.Mid(1)});
}

wxString hoCopiedText(std::size_t amountOfPaths)
{
    return amountOfPaths == 0 ? wxString() : hoCounted("%s path copied", "%s paths copied", amountOfPaths);
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
    // The sources are ASCII, and the marks of English are not.
    const wxString plain = "\"%s\"";
    const wxString format = wxGETTEXT_IN_CONTEXT("quotation marks", "\"%s\"");
    return hoFilledText(format == plain ? wxUniChar(0x201C) + wxString("%s") + wxUniChar(0x201D) : format, {text});
}

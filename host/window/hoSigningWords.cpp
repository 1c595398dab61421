// SPDX-License-Identifier: Apache-2.0
#include "host/window/hoSigningWords.h"

#include "host/window/hoDisplayText.h"

#include <cerrno>
#include <system_error>

namespace
{
wxString systemText(int error)
{
    return wxString::FromUTF8(std::generic_category().message(error));
}

wxString signingProblemText(const hoSigningFacts& facts)
{
    switch (facts._problem)
    {
    case hoSigningProblem::None:
    case hoSigningProblem::Cancelled:
        break;
    case hoSigningProblem::NoPrivateKey:
        return "signing takes a private key";
    case hoSigningProblem::KeyTooSmall:
        return wxString::Format("the key is too small for files, which take %d bits or more", hoSmallestSigningKeyBits);
    case hoSigningProblem::FileCannotBeRead:
        return facts._fileProblem == osFileProblem::CannotBeRead
                   ? "it cannot be read: " + systemText(facts._systemError)
                   : hoFileProblemText(facts._fileProblem);
    case hoSigningProblem::FileChanged:
        return "it was changed while it was being read; try again when nothing writes to it";
    case hoSigningProblem::SelfTestFailed:
        return "the new signature did not test good and was thrown away; something is wrong with this machine";
    case hoSigningProblem::NoMemory:
        return "there is not enough memory";
    }
    return wxString();
}

wxString signatureFileProblemText(const hoSignatureFileFacts& facts)
{
    switch (facts._problem)
    {
    case hoSignatureFileProblem::None:
        break;
    case hoSignatureFileProblem::CannotBeRead:
        return "its signature cannot be read: " + systemText(facts._systemError);
    case hoSignatureFileProblem::TooLarge:
        return "the file beside it is too large for a signature";
    case hoSignatureFileProblem::Exists:
        return "it had a signature already, which was kept";
    case hoSignatureFileProblem::NotRegular:
        return "what has the signature's name is a folder or a device";
    case hoSignatureFileProblem::CannotBeWritten:
        return "its signature cannot be written: " + systemText(facts._systemError);
    case hoSignatureFileProblem::NoMemory:
        return "there is not enough memory";
    }
    return wxString();
}

wxString outcomeText(const hoWorkOutcome& outcome)
{
    if (outcome._signing._problem != hoSigningProblem::None)
    {
        return signingProblemText(outcome._signing);
    }
    if (outcome._signatureFile._problem != hoSignatureFileProblem::None)
    {
        return signatureFileProblemText(outcome._signatureFile);
    }
    if (outcome._stamp._state == hoDocumentState::Bad)
    {
        return "BAD: the signature beside it is not one of this document under the loaded key";
    }
    return hoStateText(outcome._stamp._state, true).Lower();
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
            _text += (_text.empty() ? wxString() : wxString(", ")) + hoNumberText(amount) + " " + what;
        }
    }
    const wxString& text() const { return _text; }

private:
    wxString _text;
};
}  // namespace

wxString hoFileProblemText(osFileProblem problem)
{
    switch (problem)
    {
    case osFileProblem::None:
        break;
    case osFileProblem::NoName:
        return "the name is empty";
    case osFileProblem::NotThere:
        return "there is no such file";
    case osFileProblem::NotLocal:
        return "only files can be opened, no addresses";
    case osFileProblem::NotPermitted:
        return "you are not permitted to read it";
    case osFileProblem::IsFolder:
        return "it is a folder; open the files in it instead";
    case osFileProblem::NotRegular:
        return "it is a pipe, a socket or a device and not a document";
    case osFileProblem::NameTooLong:
        return "the name is longer than the system allows";
    case osFileProblem::TooManyLinks:
        return "its symbolic links lead in a circle";
    case osFileProblem::CannotBeRead:
        return "the system cannot read it";
    }
    return wxString();
}

wxString hoStateText(hoDocumentState state, bool canTest)
{
    switch (state)
    {
    case hoDocumentState::NotSigned:
        return "Not signed";
    case hoDocumentState::NotTested:
        return canTest ? "Not tested" : "No key to tell";
    case hoDocumentState::SignedByMe:
        return "Signed by me";
    case hoDocumentState::Good:
        return "Good";
    case hoDocumentState::Bad:
        return "Bad";
    case hoDocumentState::Changed:
        return "Changed since";
    case hoDocumentState::CannotBeRead:
        return "Cannot be read";
    }
    return wxString();
}

wxString hoKeyProblemText(const gtString& path, const hoKeyFileFacts& facts)
{
    const wxString name = hoQuotedText(hoDisplayText(hoLastComponent(path), 60));
    switch (facts._problem)
    {
    case hoKeyFileProblem::None:
        break;
    case hoKeyFileProblem::CannotBeRead:
        return name + " cannot be read: " + systemText(facts._systemError) + ".";
    case hoKeyFileProblem::IsFolder:
        return name + " is a folder. Choose a PEM file.";
    case hoKeyFileProblem::NotRegular:
        return name + " is a pipe, a socket or a device. Choose a PEM file.";
    case hoKeyFileProblem::TooLarge:
        return name + " is too large for a key.";
    case hoKeyFileProblem::NoKey:
        return "There is no PEM key in " + name + ".";
    case hoKeyFileProblem::OpenSshFormat:
        return name + " is in OpenSSH's own format. A copy of it becomes PEM by: ssh-keygen -p -m PEM -f FILE";
    case hoKeyFileProblem::NotRsa:
        return name + " holds a key of another kind than RSA.";
    case hoKeyFileProblem::PassphraseNeeded:
        return name + " is encrypted, and no passphrase was given.";
    case hoKeyFileProblem::WrongPassphrase:
        return "The passphrase of " + name + " is another one.";
    case hoKeyFileProblem::Damaged:
        return "The key in " + name + " is damaged.";
    case hoKeyFileProblem::SizeNotSupported:
        return wxString::Format("The key in %s has %d bits. Only multiples of 32 up to %d can be used.", name,
                                facts._bits, hoLargestKeyBits);
    case hoKeyFileProblem::NoMemory:
        return "There is not enough memory for the key.";
    }
    return wxString();
}

wxString hoKeyText(const hoLoadedKey& key, bool isPrivate)
{
    if (key._pKey == nullptr)
    {
        return wxString();
    }
    const wxString kind = isPrivate ? "private" : "public";
    return wxString::Format("%d-bit %s key ", key._pKey->bits(), kind) + hoShortFingerprint(*key._pKey).asCharArray() +
           ", " + hoDisplayText(hoLastComponent(key._path), 40);
}

hoWorkSummary hoKeyWarning(const hoLoadedKey& key)
{
    hoWorkSummary warning = {wxString(), hoDisplayText(key._path) + "\n", false};
    const wxString name = hoQuotedText(hoDisplayText(hoLastComponent(key._path), 60));
    if (key._isFolderOpenToOthers)
    {
        warning._line = "Others than you may put another key in the place of " + name + ".";
        warning._details += "    Others may write to its folder, and so put another file in its place.\n"
                            "    Keep private keys in a folder that is yours alone (chmod 700).\n";
    }
    if (key._isOpenToOthers)
    {
        warning._line = "Others than you may read or change " + name + ", a private key.";
        warning._details += "    Whoever reads it can sign in your name. Take the rights of group\n"
                            "    and others away, in its properties or by chmod 600.\n";
    }
    return warning;
}

hoWorkSummary hoSummaryOf(hoDocumentWork::Kind kind, const std::vector<hoWorkOutcome>& outcomes, bool isCancelled)
{
    std::size_t good = 0;
    std::size_t bad = 0;
    std::size_t unsignedOnes = 0;
    std::size_t kept = 0;
    std::size_t failed = 0;
    hoWorkSummary summary;
    for (const hoWorkOutcome& outcome : outcomes)
    {
        const bool isKept = outcome._signatureFile._problem == hoSignatureFileProblem::Exists;
        const bool isFailed = outcome._signing._problem != hoSigningProblem::None ||
                              (outcome._signatureFile._problem != hoSignatureFileProblem::None && !isKept);
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
    const bool isSigning = kind == hoDocumentWork::Kind::Sign;
    counts.add(good, isSigning ? "signed" : "good");
    counts.add(bad, "bad");
    counts.add(unsignedOnes, "not signed");
    counts.add(kept, "kept as they were");
    counts.add(failed, isSigning ? "could not be signed" : "could not be tested");
    summary._line = isCancelled ? wxString("Cancelled after ") : wxString();
    summary._line += hoAmountText(outcomes.size(), "document", "documents");
    if (!counts.text().empty())
    {
        summary._line += ": " + counts.text();
    }
    summary._line += ".";
    summary._isAllWell = bad == 0 && failed == 0 && !isCancelled;
    return summary;
}

wxString hoAmountText(std::size_t amount, const char* one, const char* many)
{
    return hoNumberText(amount) + " " + (amount == 1 ? one : many);
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

// SPDX-License-Identifier: Apache-2.0
#include "host/messages/hoMessages.h"

#include "crypto/crRSAEncryptionKey.h"
#include "host/messages/hoFilledText.h"
#include "host/messages/hoLanguage.h"
#include "host/messages/hoNumbers.h"
#include "host/signing/hoCountersignature.h"

#include <cerrno>
#include <string>
#include <system_error>

namespace
{

gtString noMemory()
{
    return hoTranslated("there is not enough memory");
}

// Without marks between the digits.
gtString plainNumber(int number)
{
    return std::to_string(number);
}

gtString bytesText(int bytes)
{
    return hoExactSizeText(static_cast<std::uint64_t>(bytes));
}

// Bits of the digits that a key has.
int bitsOf(const crRSAEncryptionKey& key)
{
    const int bitsPerDigit = 32;
    return key.amountOfProductDigits() * bitsPerDigit;
}

gtString because(const gtString& format, int systemError)
{
    return hoFilledText(format, {hoSystemErrorText(systemError)});
}

}  // namespace

gtString hoSystemErrorText(int systemError)
{
    // Other than strerror, this may be called from any thread.
    return std::generic_category().message(systemError);
}

gtString hoFileReason(const osFileResult& result)
{
    switch (result._problem)
    {
    case osFileProblem::None:
        break;
    case osFileProblem::NoName:
        return hoTranslated("the name is empty");
    case osFileProblem::NotThere:
        return hoTranslated("there is no such file");
    case osFileProblem::NotLocal:
        return hoTranslated("it is not on this machine; choose a file that is");
    case osFileProblem::NotPermitted:
        return hoTranslated("you may not read it");
    case osFileProblem::IsFolder:
        return hoTranslated("it is a folder; choose the files in it");
    case osFileProblem::NotRegular:
        return hoTranslated("it is a pipe, a socket or a device, not a file");
    case osFileProblem::NameTooLong:
        return hoTranslated("the name is longer than the system allows");
    case osFileProblem::TooManyLinks:
        return hoTranslated("its symbolic links lead in a circle");
    case osFileProblem::CannotBeRead:
        return result._systemError == 0 ? hoTranslated("the system cannot read it")
                                        : because(hoTranslated("it cannot be read: %s"), result._systemError);
    }
    return gtString();
}

gtString hoKeyFileReason(const hoKeyFileFacts& facts)
{
    switch (facts._problem)
    {
    case hoKeyFileProblem::None:
        break;
    case hoKeyFileProblem::CannotBeRead:
        return because(hoTranslated("the key cannot be read: %s"), facts._systemError);
    case hoKeyFileProblem::IsFolder:
        return hoTranslated("it is a folder, not a key; choose a PEM file");
    case hoKeyFileProblem::NotRegular:
        return hoTranslated("it is a pipe, a socket or a device, not a key; choose a PEM file");
    case hoKeyFileProblem::TooLarge:
        return hoTranslated("it is too large for a key; choose a PEM file");
    case hoKeyFileProblem::NoKey:
        return hoTranslated("there is no key in it");
    case hoKeyFileProblem::OpenSshFormat:
        return hoTranslated("it is a key in OpenSSH's own format; ssh-keygen -p -m PEM -f FILE turns a copy into PEM");
    case hoKeyFileProblem::SshPublicKey:
        return hoTranslated("it is a public key for SSH; ssh-keygen -e -m PKCS8 -f FILE > key.pem turns it into PEM");
    case hoKeyFileProblem::PuttyFormat:
        return hoTranslated(
            "it is a key in PuTTY's format; puttygen FILE -O private-openssh -o key.pem turns it into another");
    case hoKeyFileProblem::OpenPgpKey:
        return hoTranslated(
            "it is a key for OpenPGP, which cannot be turned into another; openssl genrsa -out key.pem 2048 makes one");
    case hoKeyFileProblem::CertificateRequest:
        return hoTranslated(
            "it is a certificate request; openssl req -in FILE -noout -pubkey -out key.pem takes its public key out");
    case hoKeyFileProblem::Pkcs12:
        return hoTranslated(
            "it is a PKCS#12 file; openssl pkcs12 -in FILE -nocerts -out key.pem takes its private key out");
    case hoKeyFileProblem::Utf16:
        return hoTranslated("it is text in UTF-16; iconv -f UTF-16 -t ASCII FILE > key.pem turns it into ASCII");
    case hoKeyFileProblem::RsaPss:
        return hoTranslated(
            "it is a key for RSASSA-PSS alone; openssl asn1parse -in FILE -strparse $(openssl asn1parse -in FILE | awk "
            "-F: '/OCTET/{print $1; exit}') -noout -out key.der takes the mark off a private one");
    case hoKeyFileProblem::EncryptionNotSupported:
        return hoTranslated(
            "it is encrypted in a way that is not supported any more, whatever the passphrase is; openssl pkey "
            "-provider legacy -provider default -in FILE -aes256 -out key.pem encrypts it anew");
    case hoKeyFileProblem::Unsafe:
        return hoTranslated("its numbers keep nothing secret (an even number, an exponent below 3, or a modulus that "
                            "is no product of two primes)");
    case hoKeyFileProblem::NotRsa:
        return hoTranslated("it is not an RSA key");
    case hoKeyFileProblem::PassphraseNeeded:
        return hoTranslated("it is encrypted, and no passphrase was given");
    case hoKeyFileProblem::PassphraseTooLong:
        return hoLongPassphraseReason();
    case hoKeyFileProblem::WrongPassphrase:
        return hoTranslated("wrong passphrase");
    case hoKeyFileProblem::Damaged:
        return hoTranslated("the key in it is damaged");
    case hoKeyFileProblem::SizeNotSupported:
        return hoFilledText(hoTranslated("the key has %s bits; keys have a multiple of 32, up to %s"),
                            {plainNumber(facts._bits), plainNumber(hoLargestKeyBits)});
    case hoKeyFileProblem::Cancelled:
        return hoTranslated("interrupted");
    case hoKeyFileProblem::NoMemory:
        return noMemory();
    }
    return gtString();
}

gtString hoSigningReason(const hoSigningFacts& facts)
{
    switch (facts._problem)
    {
    case hoSigningProblem::None:
        break;
    case hoSigningProblem::NoPrivateKey:
        return hoTranslated("the key is a public one, and signing takes a private key");
    case hoSigningProblem::KeyTooSmall:
        return hoFilledText(hoTranslated("the key is too small for files, which take %s bits or more"),
                            {plainNumber(hoSmallestSigningKeyBits)});
    case hoSigningProblem::CannotCountersign:
        return hoFilledText(hoTranslated("the key is too small to countersign, which takes %s bits or more"),
                            {plainNumber(hoLeastCountersigningBits)});
    case hoSigningProblem::CountersigningFailed:
        return hoTranslated("libcrypto cannot countersign with this key");
    case hoSigningProblem::FileCannotBeRead:
        return hoFileReason(osFileResult(facts._fileProblem, facts._systemError));
    case hoSigningProblem::FileChanged:
        return hoTranslated("it was changed while it was being read; try again when nothing writes to it");
    case hoSigningProblem::Cancelled:
        return hoTranslated("interrupted");
    case hoSigningProblem::SelfTestFailed:
        return hoTranslated(
            "the new signature does not test good and was discarded; something is wrong with this machine");
    case hoSigningProblem::NoMemory:
        return noMemory();
    }
    return gtString();
}

gtString hoSignatureFileReason(const hoSignatureFileResult& facts)
{
    switch (facts._problem)
    {
    case hoSignatureFileProblem::None:
        break;
    case hoSignatureFileProblem::CannotBeRead:
        return facts._systemError == ENOENT
                   ? hoTranslated("there is no such signature")
                   : because(hoTranslated("the signature cannot be read: %s"), facts._systemError);
    case hoSignatureFileProblem::TooLarge:
        return hoTranslated("it is too large for a signature");
    case hoSignatureFileProblem::Exists:
        return hoTranslated("it exists already and was kept");
    case hoSignatureFileProblem::NotOurs:
        return hoTranslated(
            "it is not a signature of this program, and is never overwritten; move it away or choose another name");
    case hoSignatureFileProblem::NotRegular:
        return hoTranslated("it is a folder or a device, and is not overwritten");
    case hoSignatureFileProblem::CannotBeWritten:
        return because(hoTranslated("the signature cannot be written: %s"), facts._systemError);
    case hoSignatureFileProblem::NoMemory:
        return noMemory();
    }
    return gtString();
}

gtString hoWritingReason(const osWritingResult& result)
{
    switch (result._problem)
    {
    case osWritingProblem::None:
        break;
    case osWritingProblem::Exists:
        return hoTranslated("it exists already and was kept");
    case osWritingProblem::IsFolder:
    case osWritingProblem::NotRegular:
        return hoTranslated("it is a folder or a device, and is not overwritten");
    case osWritingProblem::CannotBeWritten:
        return because(hoTranslated("it cannot be written: %s"), result._systemError);
    }
    return gtString();
}

gtString hoEncryptionReason(hoTextProblem problem, const crRSAEncryptionKey& key, int length)
{
    switch (problem)
    {
    case hoTextProblem::TooLong:
        return hoFilledText(
            // A reader may have stopped long before the end of the text.
            length > 2 * hoLongestText(key)
                ? hoTranslated("the text has %1$s or more, and a key of %2$s bits takes %3$s at most")
                : hoTranslated("the text has %1$s, and a key of %2$s bits takes %3$s at most"),
            {bytesText(length), plainNumber(bitsOf(key)), plainNumber(hoLongestText(key))});
    case hoTextProblem::HoldsNul:
        return hoTranslated("the text holds a NUL byte, and would end there when it is decrypted");
    case hoTextProblem::TooLargeForKey:
        return hoTranslated(
            "the text is as long as the key takes, and its last byte is too high; make it one byte shorter");
    case hoTextProblem::NoMemory:
        return noMemory();
    default:
        return gtString();
    }
}

gtString hoDecryptionReason(hoTextProblem problem, const crRSAEncryptionKey& key, int length)
{
    switch (problem)
    {
    case hoTextProblem::NotACipherText:
        return hoTranslated("this is not a cipher text, which has hexadecimal characters and nothing else");
    case hoTextProblem::OtherSize:
        return hoFilledText(
            hoTranslatedPlural("the cipher text has %1$s character; one for a key of %2$s bits has %3$s and begins "
                               "with the length of its text, %4$s at most",
                               "the cipher text has %1$s characters; one for a key of %2$s bits has %3$s and begins "
                               "with the length of its text, %4$s at most",
                               static_cast<std::uint64_t>(length)),
            {hoNumberText(static_cast<std::uint64_t>(length)), plainNumber(bitsOf(key)),
             plainNumber(hoLengthOfCipherText(key)), bytesText(hoLongestText(key))});
    case hoTextProblem::DoesNotComeOut:
        return hoTranslated(
            "this text is another key's, or damaged; it takes the partner of the key that encrypted it");
    case hoTextProblem::NoMemory:
        return noMemory();
    default:
        return gtString();
    }
}

gtString hoSignatureFormReason(hoSignatureForm form)
{
    switch (form)
    {
    case hoSignatureForm::DigestOnly:
    case hoSignatureForm::Countersigned:
        break;
    case hoSignatureForm::Minisign:
        return hoTranslated("it is a signature of minisign");
    case hoSignatureForm::Signify:
        return hoTranslated("it is a signature of signify");
    case hoSignatureForm::OpenPgp:
        return hoTranslated("it is a signature of OpenPGP, as gpg makes them");
    case hoSignatureForm::Ssh:
        return hoTranslated("it is a signature of ssh-keygen");
    case hoSignatureForm::OtherPem:
        return hoTranslated("it is a PEM file of another kind, such as a key, a certificate or CMS");
    case hoSignatureForm::Empty:
        return hoTranslated("it is empty");
    case hoSignatureForm::TooLarge:
        return hoTranslated("it is too large for a signature");
    case hoSignatureForm::ByteOrderMark:
        return hoTranslated("it begins with a byte-order mark, which an editor has added; signatures are plain ASCII");
    case hoSignatureForm::OtherLineEnds:
        return hoTranslated("its lines end in carriage returns; signatures have line feeds alone");
    case hoSignatureForm::Wrapped:
        return hoTranslated("its first line is broken into several; a signature has it in one");
    case hoSignatureForm::Truncated:
        return hoTranslated("it ends before its last line does; a part of it is missing");
    case hoSignatureForm::OtherCharacters:
        return hoTranslated("its first line has other characters than 0 to 9 and a to f");
    case hoSignatureForm::OtherLength:
        return hoTranslated("its first line has not the length of a signature");
    case hoSignatureForm::OtherCountersignature:
        return hoTranslated(
            "its second line is damaged, or a countersignature of a kind that this program does not know");
    case hoSignatureForm::TrailingBytes:
        return hoTranslated("something follows the signature in it");
    }
    return gtString();
}

gtString hoVerdictText(hoVerdict verdict)
{
    switch (verdict)
    {
    case hoVerdict::Good:
        return "good";
    case hoVerdict::Bad:
        return "BAD";
    case hoVerdict::Weak:
        return "weak";
    case hoVerdict::AnotherKey:
        return "another key";
    case hoVerdict::NotASignature:
        return "not a signature";
    case hoVerdict::NotSigned:
        return "not signed";
    case hoVerdict::Missing:
        return "missing";
    case hoVerdict::Unreadable:
        return "unreadable";
    case hoVerdict::Changed:
        return "changed while read";
    case hoVerdict::NotTested:
        return "not tested";
    }
    return gtString();
}

gtString hoVerdictReason(const hoTestFacts& facts)
{
    if (!facts.isOk())
    {
        return hoSigningReason(facts);
    }
    switch (facts._verdict)
    {
    case hoVerdict::Bad:
        return hoTranslated("the document is not the one that was signed");
    case hoVerdict::Weak:
        return hoTranslated("its exclusive-or digest holds, but there is no countersignature: changes that the digest "
                            "cannot see are possible");
    case hoVerdict::AnotherKey:
        if (facts._fingerprint.isEmpty() || facts._fingerprint == facts._keyFingerprint)
        {
            return hoTranslated("the signature was made with another key, or is damaged");
        }
        return facts._amountOfKeys > 1
                   ? hoFilledText(hoTranslated("the signature was made with the key %s, which is none of those given"),
                                  {facts._fingerprint})
                   : hoFilledText(hoTranslated("the signature was made with the key %1$s, and the one given is %2$s"),
                                  {facts._fingerprint, facts._keyFingerprint});
    case hoVerdict::NotASignature:
        if (facts._signatureBits != 0 && facts._signatureBits != facts._keyBits)
        {
            return hoFilledText(
                hoTranslated("its first line has the length for a key of %1$s bits, and the one given has %2$s"),
                {plainNumber(facts._signatureBits), plainNumber(facts._keyBits)});
        }
        return facts._signatureBits == 0
                   ? hoSignatureFormReason(facts._form)
                   : hoFilledText(hoTranslated("its second line is not a countersignature of a key of %s bits"),
                                  {plainNumber(facts._keyBits)});
    default:
        return gtString();
    }
}

gtString hoLongPassphraseReason()
{
    return hoFilledText(hoTranslated("the passphrase is too long; a key file takes up to %s bytes"),
                        {std::to_string(hoLongestPassphrase)});
}

gtString hoPrivateEncryptionWarning()
{
    return "everybody with the public key can read what is encrypted with the private one";
}

gtString hoStateText(hoDocumentState state, bool canTest)
{
    switch (state)
    {
    case hoDocumentState::NotSigned:
        return hoTranslated("Not signed");
    case hoDocumentState::NotTested:
        return canTest ? hoTranslated("Not tested") : hoTranslated("No key loaded");
    case hoDocumentState::SignedByMe:
        return hoTranslated("Signed by me");
    case hoDocumentState::Good:
        return hoTranslated("Good");
    case hoDocumentState::Weak:
        return hoTranslated("Weak");
    case hoDocumentState::Bad:
        return hoTranslated("Bad");
    case hoDocumentState::AnotherKey:
        return hoTranslated("Another key");
    case hoDocumentState::NotASignature:
        return hoTranslated("Not a signature");
    case hoDocumentState::Changed:
        return hoTranslated("Changed since");
    case hoDocumentState::CannotBeRead:
        return hoTranslated("Cannot be read");
    case hoDocumentState::Missing:
        return hoTranslated("Missing");
    }
    return gtString();
}

gtString hoOpenKeyWarning()
{
    return hoTranslated("others may read or change this private key; chmod 600 keeps it to you");
}

gtString hoOpenFolderWarning()
{
    return hoTranslated(
        "others may replace this private key, because they may write to its folder; chmod 700 keeps that to you");
}

gtString hoLibcryptoMemoryWarning()
{
    return hoTranslated("traces of this private key stay in memory, because another library used libcrypto before this "
                        "program did; start it without LD_PRELOAD");
}

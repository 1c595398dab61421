// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoFileSigning.h"

#include "crypto/crDigits.h"
#include "crypto/crRSAStringEncryptor.h"
#include "host/keys/hoKeyRing.h"
#include "host/signing/hoFileDigests.h"
#include "host/signing/hoOpenedBlock.h"

#include <cerrno>
#include <new>

namespace
{

// What the signature is to the key. Good stands for "this key's".
hoVerdict examine(const hoSignatureText& signature, const hoKey& key)
{
    if (!signature.isSignature())
    {
        return hoVerdict::NotASignature;
    }
    const bool isCountersigned = signature._form == hoSignatureForm::Countersigned;
    if (isCountersigned && signature._fingerprint != hoShortFingerprint(key))
    {
        return hoVerdict::AnotherKey;
    }
    if (signature._digits != key.publicKey().amountOfProductDigits())
    {
        return hoVerdict::NotASignature;
    }
    // The fingerprint is a hint and no proof, so the length is looked at all the same. A key that is too small for
    // countersignatures has made none.
    if (isCountersigned && (!hoCanCountersign(key.bits()) ||
                            signature._countersignature.size() != static_cast<std::size_t>(key.bits()) / 8))
    {
        return hoVerdict::NotASignature;
    }
    const std::string_view line = signature._digestLine.asStringView();
    const hoOpenedBlock block(key.publicKey(), line.substr(crCharactersPerDigit));
    const std::size_t lengthOfDigest = static_cast<std::size_t>(signature._digits / 2 - 1) * crCharactersPerDigit;
    const bool isThisKeys =
        block.hasMarker() &&
        block.text().substr(0, lengthOfDigest).find_first_not_of("0123456789abcdef") == std::string_view::npos &&
        block.text().substr(lengthOfDigest).find_first_not_of(hoOpenedBlock::filler) == std::string_view::npos;
    return isThisKeys ? hoVerdict::Good : hoVerdict::AnotherKey;
}

// A signature that could not be decrypted for want of memory must not pass for a bad one.
bool isSignatureOf(const gtString& digestText, const hoKey& key, const gtString& digestLine)
{
    gtString decrypted;
    bool isShortOfMemory = false;
    const bool hasLength =
        crRSAStringEncryptor(key.publicKey()).decrypt(digestLine, decrypted, isShortOfMemory, digestText.length());
    if (isShortOfMemory)
    {
        throw std::bad_alloc();
    }
    return hasLength && decrypted == digestText;
}

hoVerdict verdictOf(const hoSigningFacts& facts)
{
    switch (facts._problem)
    {
    case hoSigningProblem::FileCannotBeRead:
        return facts._fileProblem == osFileProblem::NotThere || facts._fileProblem == osFileProblem::NotLocal ||
                       facts._fileProblem == osFileProblem::NoName
                   ? hoVerdict::Missing
                   : hoVerdict::Unreadable;
    case hoSigningProblem::FileChanged:
        return hoVerdict::Changed;
    default:
        return hoVerdict::NotTested;
    }
}

// Of a signature that is this key's.
hoTestFacts compare(const hoDocumentSource& source, const hoKey& key, const hoSignatureText& signature,
                    hoIProgress* pProgress)
{
    const bool isCountersigned = signature._form == hoSignatureForm::Countersigned;
    hoFileDigests digests;
    hoTestFacts facts(hoReadDigests(source, key.publicKey(), isCountersigned, pProgress, digests));
    if (!facts.isOk())
    {
        return facts;
    }
    if (!isSignatureOf(digests._digestText, key, signature._digestLine))
    {
        facts._verdict = hoVerdict::Bad;
        return facts;
    }
    if (!isCountersigned)
    {
        facts._verdict = hoVerdict::Weak;
        return facts;
    }
    const std::optional<bool> isGood = hoIsCountersignatureOf(digests._sha256, key, signature._countersignature);
    if (!isGood.has_value())
    {
        return hoTestFacts(hoSigningFacts(hoSigningProblem::CountersigningFailed));
    }
    facts._verdict = *isGood ? hoVerdict::Good : hoVerdict::Bad;
    return facts;
}

hoTestFacts test(const hoDocumentSource& source, const std::vector<const hoKey*>& keys, std::string_view bytes,
                 hoIProgress* pProgress)
{
    const hoSignatureText signature = hoParseSignature(bytes);
    hoTestFacts facts;
    hoVerdict found = hoVerdict::NotASignature;
    std::size_t number = 0;
    for (std::size_t i = 0; i < keys.size() && found != hoVerdict::Good; ++i)
    {
        if (keys[i]->bits() < hoSmallestSigningKeyBits)
        {
            continue;
        }
        const hoVerdict verdict = examine(signature, *keys[i]);
        if (verdict == hoVerdict::Good || found == hoVerdict::NotASignature)
        {
            found = verdict;
            number = i;
        }
    }
    if (keys[number]->bits() < hoSmallestSigningKeyBits)
    {
        return hoTestFacts(hoSigningFacts(hoSigningProblem::KeyTooSmall));
    }
    if (found == hoVerdict::Good)
    {
        facts = compare(source, *keys[number], signature, pProgress);
    }
    else
    {
        // A document that is not there is told about first.
        osFileFacts ofTheName;
        const osFileResult reading = source.hasPath() ? osReadFileFacts(source._path, ofTheName) : osFileResult();
        facts = reading.isOk() ? hoTestFacts() : hoTestFacts(hoSigningFacts(reading));
        facts._verdict = reading.isOk() ? found : facts._verdict;
        facts._file = ofTheName;
    }
    facts._form = signature._form;
    facts._signatureBits = signature._digits * 32;
    facts._fingerprint = signature._fingerprint;
    facts._key = number;
    facts._amountOfKeys = keys.size();
    facts._keyBits = keys[number]->bits();
    facts._keyFingerprint = hoShortFingerprint(*keys[number]);
    return facts;
}

hoSigningFacts sign(const hoDocumentSource& source, const hoKey& key, bool isCountersigned, hoIProgress* pProgress,
                    gtString& signature)
{
    hoFileDigests digests;
    const hoSigningFacts facts = hoReadDigests(source, key.publicKey(), isCountersigned, pProgress, digests);
    if (!facts.isOk())
    {
        return facts;
    }
    gtString text;
    if (!crRSAStringEncryptor(key.privateKey()).encrypt(digests._digestText, text))
    {
        return hoSigningProblem::NoMemory;
    }
    if (!isSignatureOf(digests._digestText, key, text))
    {
        return hoSigningProblem::SelfTestFailed;
    }
    text.append('\n');
    if (isCountersigned)
    {
        const std::vector<unsigned char> countersignature = hoMakeCountersignature(key, digests._sha256);
        if (countersignature.empty())
        {
            return hoSigningProblem::CountersigningFailed;
        }
        if (!hoIsCountersignatureOf(digests._sha256, key, countersignature).value_or(false))
        {
            return hoSigningProblem::SelfTestFailed;
        }
        text.append(hoCountersignatureLine(hoShortFingerprint(key), countersignature));
    }
    signature = text;
    return facts;
}

}  // namespace

hoTestFacts::hoTestFacts(const hoSigningFacts& facts) : hoSigningFacts(facts), _verdict(verdictOf(facts)) {}

hoTestFacts::hoTestFacts(const hoSignatureFileResult& signatureFile)
{
    switch (signatureFile._problem)
    {
    case hoSignatureFileProblem::CannotBeRead:
        _verdict = signatureFile._systemError == ENOENT ? hoVerdict::NotSigned : hoVerdict::Unreadable;
        break;
    case hoSignatureFileProblem::TooLarge:
        _verdict = hoVerdict::NotASignature;
        _form = hoSignatureForm::TooLarge;
        break;
    default:
        break;
    }
}

hoSigningFacts hoSignDocument(const hoDocumentSource& source, const hoKey& key, hoSignatureLines lines,
                              hoIProgress* pProgress, gtString& signature)
{
    if (!key.hasPrivateKey())
    {
        return hoSigningProblem::NoPrivateKey;
    }
    if (key.bits() < hoSmallestSigningKeyBits)
    {
        return hoSigningProblem::KeyTooSmall;
    }
    const bool isCountersigned = lines == hoSignatureLines::Both;
    if (isCountersigned && !hoCanCountersign(key.bits()))
    {
        return hoSigningProblem::CannotCountersign;
    }
    try
    {
        return sign(source, key, isCountersigned, pProgress, signature);
    }
    catch (const std::bad_alloc&)
    {
        return hoSigningProblem::NoMemory;
    }
}

hoTestFacts hoTestDocument(const hoDocumentSource& source, const std::vector<const hoKey*>& keys,
                           std::string_view signature, hoIProgress* pProgress)
{
    try
    {
        return test(source, keys, signature, pProgress);
    }
    catch (const std::bad_alloc&)
    {
        return hoTestFacts(hoSigningFacts(hoSigningProblem::NoMemory));
    }
}

hoSigningFacts hoDigestOfDocument(const hoDocumentSource& source, const hoKey& key, hoIProgress* pProgress,
                                  gtString& digestText)
{
    if (key.bits() < hoSmallestSigningKeyBits)
    {
        return hoSigningProblem::KeyTooSmall;
    }
    try
    {
        hoFileDigests digests;
        const hoSigningFacts facts = hoReadDigests(source, key.publicKey(), false, pProgress, digests);
        if (facts.isOk())
        {
            digestText = digests._digestText;
        }
        return facts;
    }
    catch (const std::bad_alloc&)
    {
        return hoSigningProblem::NoMemory;
    }
}

// SPDX-License-Identifier: Apache-2.0
// Makes and tests signatures of whole files: the file's bytes are folded into a short digest by exclusive-or, and the
// digest's text is encrypted (crRSAStringEncryptor.h). Signing takes a key with the private exponent, testing one with
// the public exponent.
//
// An exclusive-or digest protects against accidents, not against an adversary: swapping two runs of 4 * M bytes, or
// changing the same bit at the same place of two runs, leaves the digest as it is, and a file with a wanted digest is
// made by appending a few bytes.
//
// CONVENTIONS, for a key of D digits
//
// Digest.     M = D / 2 - 1 digits, so 4 * M bytes: 60 for a key of 1024 bits. The first 4 * M bytes of a file fall on
//             the digest's bytes in order, so do the next 4 * M, and so on; byte i of the digest lies in bits
//             8 * (i % 4) and up of digit i / 4. With a key of 32 bits M is -1: there is no digest and no signature.
//             With one of 64 or 96 bits the digest is EMPTY, and all files are equal by it.
// Text.       The digits in ascending order, eight lower-case hexadecimal characters each. It fits one block of the
//             encryptor, so it comes back exactly.
// Failure.    A bool; nothing is logged, and nothing but messageDigestToString throws. A file that cannot be opened is
//             a failure. A READ ERROR IS TAKEN FOR THE END OF THE FILE: whoever must know reads the file himself and
//             folds with addToMessageDigest.
// The key.    Is kept by reference and must outlive the signer.
// Memory.     The signer owns the digest; what it gives back it overwrites with zeros before.
// Threads.    A signer works on its own digest and is for one thread at a time; signers may share a key.
#ifndef COUNTERSIGN_CRYPTO_CRRSADIGITALSIGNER_H
#define COUNTERSIGN_CRYPTO_CRRSADIGITALSIGNER_H

#pragma GCC visibility push(default)

class crRSAEncryptionKey;
class gtString;
class osFilePath;

class crRSADigitalSigner
{
public:
    explicit crRSADigitalSigner(const crRSAEncryptionKey& key);
    // Releases the digest.
    ~crRSADigitalSigner();

    crRSADigitalSigner(const crRSADigitalSigner&) = delete;
    crRSADigitalSigner& operator=(const crRSADigitalSigner&) = delete;

    // A digest of zeros. False when M is below zero or there is no memory. Does not release a digest that is there
    // already: it is LEAKED unless deleteMessageDigestDigits comes first.
    bool createMessageDigestDigits();

    // No digest afterwards. May be called without one.
    void deleteMessageDigestDigits();

    // Folds the file into the digest as it stands: the digest is not cleared before. False when the file cannot be
    // opened, when there is no memory, and when createMessageDigestDigits has failed. Without a digest, or with an
    // empty one, nothing is folded, and the result tells whether the file can be opened.
    bool createFileMessageDigest(const osFilePath& file);

    // Folds bytes into the digest, the first of them on the digest's first byte; what is longer than the digest goes
    // round. A file may be folded piece by piece when every piece but the last is a multiple of amountOfDigestBytes()
    // long. Nothing happens without a digest.
    void addToMessageDigest(const char* pBytes, unsigned long amountOfBytes);

    // 4 * M, or 0 without a digest.
    int amountOfDigestBytes() const;

    // The digest's text, empty without a digest. Without memory for it std::bad_alloc is thrown, and output is empty.
    void messageDigestToString(gtString& output);

    // The signature of the file, for a key of 1024 bits 264 characters. The output is touched by success only. A digest
    // that createMessageDigestDigits made is leaked; the signer has none afterwards, whatever the result.
    bool getSignature(const osFilePath& file, gtString& signature);

    // Whether the signature, decrypted, is the text of the file's digest. False, too, when it is malformed or the file
    // cannot be read. The digest is dealt with as by getSignature.
    bool testSignature(const osFilePath& file, const gtString& signature);

private:
    const crRSAEncryptionKey& _key;
    unsigned int* _pDigestDigits;
    int _amountOfDigestDigits;
};

#pragma GCC visibility pop

#endif

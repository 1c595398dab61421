// SPDX-License-Identifier: Apache-2.0
// Encrypts a text into hexadecimal characters with an RSA key and decrypts it with the partner key. Whether a call
// encrypts or signs depends only on whose exponent the key holds.
//
// This is textbook RSA: a marker byte and a fixed filler are the only padding, there is no randomness, equal texts give
// equal cipher texts, and nothing tells a wrong key from a right one. It protects against accidents, not against an
// adversary (see crRSAEncryptionKey.h).
//
// CONVENTIONS, for a key of D digits
//
// Block.       D digits or B = 4 * D bytes: the lowest digit comes first, and its lowest byte.
// Layout.      Byte 0 of a block is 0x01 in front of text, the text's bytes follow, skipping byte 0 of each block, and
//              0x64 (a d) fills the last block, byte 0 of a block without text included.
// Cipher text. The text's length as eight lower-case hexadecimal characters, then every digit of the blocks, each
//              raised to the key's exponent modulo its product: eight characters a digit, the lowest first.
// ROUND TRIP.  Up to B - 1 bytes (127 with a key of 1024 bits) come back, provided that the text holds no NUL byte and
//              that the block's number is below the product (always so when the product's top bit is set and the text's
//              last byte is below 0x80). LONGER TEXTS DO NOT COME BACK: decrypt appends the text as far as it has got
//              once a block.
// Limits.      A text holds INT_MAX bytes: a longer cipher text (of some 1,000 million bytes of text) or output counts
//              as one for which there is no memory. A cipher text that does not carry all the digits that its length
//              asks for is not believed beyond maximalAmountOfClaimedBytes.
// The key.     Is kept by reference and must outlive the encryptor. With one that is not usable (isUsable()), no block
//              can be computed, which counts as a buffer for which there is no memory.
// Threads.     The operations only read the key: any number may run at once, also on one encryptor.
// Memory.      Everything is released before an operation returns; what held plain text is overwritten with zeros, also
//              memory that the output leaves when it grows.
//              Running out of memory inside the arithmetic ends the process (mpAlloc). Nothing is thrown from here.
#ifndef COUNTERSIGN_CRYPTO_CRRSASTRINGENCRYPTOR_H
#define COUNTERSIGN_CRYPTO_CRRSASTRINGENCRYPTOR_H

#include <climits>

#pragma GCC visibility push(default)

class crRSAEncryptionKey;
class gtString;

class crRSAStringEncryptor
{
public:
    // 64 MiB, for each of the buffers and for the output of decrypt where digits are missing.
    static constexpr int maximalAmountOfClaimedBytes = 64 * 1024 * 1024;

    explicit crRSAStringEncryptor(const crRSAEncryptionKey& key);
    ~crRSAStringEncryptor() = default;

    // The digits of the buffers for a text of so many bytes, a multiple of D. Computed in single precision, as ever,
    // and kept so, since cipher texts depend on it; IT CAN BE TOO SMALL from B * B bytes on (16,384 with a key of 1024
    // bits, 16 with one of 32), where there may be more markers than it allows for, and again above 16 million bytes,
    // where single precision rounds. Below zero for some lengths below zero; 0 when the key has no digits.
    int amountOfDigitsForHoldingText(int lengthOfText) const;

    // Bytes beyond what amountOfDigitsForHoldingText makes room for are not encrypted, though the length counts them.
    // The empty text gives eight zeros. output may be text itself.
    // False when there is no memory for a buffer; the output is untouched then.
    bool encrypt(const gtString& text, gtString& output) const;

    // The length at the front decides on the layout, but not on more: digits that the cipher text does not carry are
    // zero, characters behind those asked for are not looked at, and the length passes through an int (ffffffff is -1,
    // which gives an empty text).
    // LENGTH AND DIGITS ARE READ AS SSCANF READS "%8x" from eight characters: "       3", "+0000003" and "0x000003" are
    // 3, "-0000003" is -3, and what is no number is 0.
    // After each block, the buffer from byte 1 up to its first NUL byte is appended to the output.
    // False only for a cipher text of fewer than eight characters; the output is empty then. TRUE SAYS NOTHING ABOUT
    // THE TEXT: a damaged cipher text or a wrong key gives whatever the arithmetic gives, and no memory gives an
    // empty output. What output held is overwritten. output must not be cipherText itself, which would be emptied
    // before it is read.
    bool decrypt(const gtString& cipherText, gtString& output) const;

    // The same for those who must know: isShortOfMemory tells whether the output is empty for want of memory, and so
    // says nothing about the cipher text. (The limits and a key that is not usable do not count here.) As soon as the
    // output has more than enough bytes, no further block is computed: for those who know how long the text must be.
    bool decrypt(const gtString& cipherText, gtString& output, bool& isShortOfMemory, int enough = INT_MAX) const;

private:
    void transformBlock(unsigned int* pResult, const unsigned int* pBlock) const;

    const crRSAEncryptionKey& _key;
};

#pragma GCC visibility pop

#endif

// SPDX-License-Identifier: Apache-2.0
// Encrypts and decrypts short texts with the string encryptor, and refuses what could not be decrypted again.
//
// Facts come back; the wording is up to the window and the command line. Nothing here throws or prints; safe from any
// thread, any number with the same key.
#ifndef COUNTERSIGN_HO_TEXT_ENCRYPTION_H
#define COUNTERSIGN_HO_TEXT_ENCRYPTION_H

#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osResult.h"

class crRSAEncryptionKey;

enum class hoTextProblem
{
    None,
    TooLong,   // longer than hoLongestText
    HoldsNul,  // a NUL byte would end it
    // As a number, the block is not below the modulus: a text of the greatest length with a high byte last.
    TooLargeForKey,
    NotACipherText,  // another character than hexadecimal ones, or less than a length
    OtherSize,       // not as long as a cipher text of one block of this key
    DoesNotComeOut,  // another key's, or damaged
    NoMemory
};

using hoTextResult = osResult<hoTextProblem>;

// The most bytes that come back with this key: all of a block but the marker.
int hoLongestText(const crRSAEncryptionKey& key);

// The characters of a cipher text with this key, if the text is not empty.
int hoLengthOfCipherText(const crRSAEncryptionKey& key);

// cipherText is written only when there is no problem.
hoTextResult hoEncryptText(const crRSAEncryptionKey& key, const gtString& text, gtString& cipherText);

// text is written only when there is no problem. Blanks and line ends around the cipher text, as copying leaves them,
// do no harm. A wrong key is found out by the marker at the beginning of the block and by what fills it behind the
// text: for a text of the greatest length, which leaves no filler, it is missed once in some 400 times.
hoTextResult hoDecryptText(const crRSAEncryptionKey& key, const gtString& cipherText, gtString& text);

#endif

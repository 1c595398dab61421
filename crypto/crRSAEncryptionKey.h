// SPDX-License-Identifier: Apache-2.0
// One RSA key: a modulus, called the product throughout, and one exponent, called the number. Public or private makes
// no difference to the class: it is the exponent that tells.
//
// WHAT IT IS GOOD FOR. The classes of this folder do textbook RSA: no random padding, and the file signatures stand on
// an exclusive-or digest. They find accidents: a damaged file, the wrong file, the wrong key. They do not stand up to
// an adversary, who can make another file with the same digest, recognise equal texts and combine cipher texts.
//
// CONVENTIONS
//
// Digits.   Both numbers are arrays of 32-bit digits, the least significant first.
// Bits.     Sizes are counted in bits and must be multiples of 32; every other count is refused. The key keeps the two
//           counts as they were last given to a set operation, whether it took them or not.
// Text.     Eight hexadecimal characters a digit, either case, the most significant digit first, nothing before,
//           between or behind: a number of 1024 bits has exactly 256 characters.
// Failure.  A bool, and nothing else: nothing is thrown or logged.
// Memory.   The key owns both arrays, and overwrites them with zeros before it gives them back.
// Threads.  A loaded key is only read from and may be shared; loading is for one thread.
//
// A key is loaded once. A SECOND LOAD LEAKS THE ARRAYS OF THE FIRST, on purpose: pointers to the old digits stay valid.
// After a set operation has answered false, the digits must not be read by the counts, which need not fit the arrays
// any more; isUsable() tells.
#ifndef COUNTERSIGN_CRYPTO_CRRSAENCRYPTIONKEY_H
#define COUNTERSIGN_CRYPTO_CRRSAENCRYPTIONKEY_H

#pragma GCC visibility push(default)

class gtString;

class crRSAEncryptionKey
{
public:
    // An empty key: no arrays, all counts 0.
    crRSAEncryptionKey();
    ~crRSAEncryptionKey();

    crRSAEncryptionKey(const crRSAEncryptionKey&) = delete;
    crRSAEncryptionKey& operator=(const crRSAEncryptionKey&) = delete;

    // 32.
    int amountOfBitsPerDigit() const;

    // The bit counts as they were given, 0 before that. setKeyFromStringAndFermatPrime sets both to its one.
    int amountOfProductBits() const;
    int amountOfNumberBits() const;

    // The bit counts divided by 32 and rounded towards zero: 31 after a refused count of 1000, 0 after one of -31.
    int amountOfProductDigits() const;
    int amountOfNumberDigits() const;

    // Null until they have been loaded. BOTH arrays have amountOfProductDigits() digits, so that they can go to
    // mpModExp with one length; above amountOfNumberDigits() the exponent's are zero.
    const unsigned int* productDigits() const;
    const unsigned int* numberDigits() const;

    // Whether the key can be computed with: both arrays are there and as long as amountOfProductDigits() says, and
    // neither number is zero.
    bool isUsable() const;

    // Reads count digits from text of exactly 8 * count characters; with any other length (so with every count below 0)
    // the array is left alone and the result is false. A count of 0 takes the empty text and is true.
    // Each group of eight characters is read by itself, up to the first character that is not hexadecimal. It may begin
    // with 0x, as with sscanf, but not with a blank or a sign. WHERE A GROUP STARTS WITH ANY OTHER CHARACTER, ITS DIGIT
    // KEEPS ITS VALUE, and the result is true all the same. (The set operations read into arrays of zeros, so
    // such a digit of a key is 0.)
    bool readDigitsFromHexString(unsigned int* digits, int count, const gtString& hex) const;

    // Loads a modulus and an exponent. False
    // - with counts that are not multiples of 32, or an exponent longer than the modulus: nothing is allocated and only
    //   the counts are set;
    // - when there is no memory, or productBits is negative;
    // - when a text has not the length that its count asks for: its number is zero, the other one is read all the same.
    // The digits of the texts are not looked at: what readDigitsFromHexString says about odd characters holds.
    // With counts of 0 and empty texts the result is true, but there is nothing to be done with such a key.
    bool setKeyFromStrings(int productBits, const gtString& product, int numberBits, const gtString& number);

    // The same with an exponent of one digit, which is set whether or not the modulus could be read; both digit counts
    // are those of the modulus. With a count of 0 there is no digit to set.
    bool setKeyFromStringAndFermatPrime(int bits, const gtString& product, unsigned int fermatPrime);

private:
    bool allocateArrays();

    unsigned int* _pProductDigits;
    int _amountOfProductBits;
    unsigned int* _pNumberDigits;
    int _amountOfNumberBits;
    int _amountOfAllocatedDigits;  // of each array
};

#pragma GCC visibility pop

#endif

// SPDX-License-Identifier: Apache-2.0
// What the classes of this folder share below their own level, and code that works with their keys and cipher texts
// needs, too: digit arrays from the allocator, and the fixed-width hexadecimal form of a digit.
//
// A digit is 32 bits wide and has eight hexadecimal characters. No function here but crAppendDigits throws; none logs
// or keeps a pointer, and all may be called from any thread.
#ifndef COUNTERSIGN_CRYPTO_CRDIGITS_H
#define COUNTERSIGN_CRYPTO_CRDIGITS_H

#pragma GCC visibility push(default)

class gtString;

// Characters that a digit has as text.
constexpr int crCharactersPerDigit = 8;

// A new array of zeros, to be given back with array delete. Null when the amount is negative or the memory is not
// there; never an exception. An amount of 0 gives an array in which nothing may be stored.
unsigned int* crAllocateDigits(int amount);

// Wipes an array of crAllocateDigits and gives it back; the amount is the one that it was made with. Null is welcome.
void crReleaseDigits(unsigned int* pDigits, int amount);

// Whether the first character is a hexadecimal one, so that crReadDigit finds a number.
bool crBeginsWithDigit(const char* pCharacters);

// Reads one digit as sscanf reads "%8x" from a text of its own: at most eight characters of either case, with an
// optional 0x that counts among the eight; the first character that does not belong, such as the NUL behind a text,
// ends it and is the last that is looked at. 0 when the first character is not a hexadecimal one: blanks and signs
// are not skipped.
unsigned int crReadDigit(const char* pCharacters);

// The same with all that sscanf allows in front of the number: blanks (also tabs and the ends of lines), then one sign.
// They count among the eight characters, so what follows these is never drawn in. A minus gives the number's complement
// ("-0000001" is 0xffffffff). 0 where there is no number.
unsigned int crScanDigit(const char* pCharacters);

// Appends the digits in ascending order, the lowest first, each as "%08x". An amount below 1 appends nothing. Room
// for all of them is made first, so that the text does not grow with some of them in it: without memory
// std::bad_alloc is thrown, and the text is what it was. The text must not get longer than INT_MAX characters. The
// characters pass through a buffer on the stack, which is wiped.
void crAppendDigits(gtString& text, const unsigned int* pDigits, int amount);

// A digit array that lives for one operation: zero at first, wiped and given back at the end. Check digits() for null.
class crTemporaryDigits
{
public:
    explicit crTemporaryDigits(int amount) : _amount(amount), _pDigits(crAllocateDigits(amount)) {}
    ~crTemporaryDigits() { crReleaseDigits(_pDigits, _amount); }
    crTemporaryDigits(const crTemporaryDigits&) = delete;
    crTemporaryDigits& operator=(const crTemporaryDigits&) = delete;

    unsigned int* digits() { return _pDigits; }

private:
    int _amount;
    unsigned int* _pDigits;
};

#pragma GCC visibility pop

#endif

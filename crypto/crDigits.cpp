// SPDX-License-Identifier: Apache-2.0
#include "crypto/crDigits.h"

#include <cstddef>
#include <new>

#include "platform/baseTools/gtString.h"
#include "platform/baseTools/gtWipe.h"

static_assert(sizeof(unsigned int) == 4, "a digit is 32 bits wide");

namespace
{

// The value of a hexadecimal character, or -1.
int hexadecimalValue(char character)
{
    if (character >= '0' && character <= '9')
    {
        return character - '0';
    }
    if (character >= 'a' && character <= 'f')
    {
        return character - 'a' + 10;
    }
    if (character >= 'A' && character <= 'F')
    {
        return character - 'A' + 10;
    }
    return -1;
}

// What the function isspace says of it in the C locale.
bool isBlank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

// At most so many characters.
unsigned int readDigit(const char* pCharacters, int amountOfCharacters)
{
    unsigned int digit = 0;
    for (int i = 0; i < amountOfCharacters; ++i)
    {
        const bool isPrefix = i == 1 && digit == 0 && (pCharacters[i] == 'x' || pCharacters[i] == 'X');
        const int value = isPrefix ? 0 : hexadecimalValue(pCharacters[i]);
        if (value < 0)
        {
            break;
        }
        digit = (digit << 4) | static_cast<unsigned int>(value);
    }
    return digit;
}

}  // namespace

unsigned int* crAllocateDigits(int amount)
{
    // A negative amount makes g++ throw, whatever std::nothrow says.
    if (amount < 0)
    {
        return nullptr;
    }
    return new (std::nothrow) unsigned int[static_cast<std::size_t>(amount)]();
}

void crReleaseDigits(unsigned int* pDigits, int amount)
{
    // For an amount below 0 there is no array.
    gtWipe(pDigits, static_cast<std::size_t>(amount) * sizeof(unsigned int));
    delete[] pDigits;
}

bool crBeginsWithDigit(const char* pCharacters)
{
    return hexadecimalValue(*pCharacters) >= 0;
}

unsigned int crReadDigit(const char* pCharacters)
{
    return readDigit(pCharacters, crCharactersPerDigit);
}

unsigned int crScanDigit(const char* pCharacters)
{
    int taken = 0;
    while (taken < crCharactersPerDigit && isBlank(pCharacters[taken]))
    {
        ++taken;
    }
    const bool hasMinus = taken < crCharactersPerDigit && pCharacters[taken] == '-';
    const bool hasPlus = taken < crCharactersPerDigit && pCharacters[taken] == '+';
    taken += (hasMinus || hasPlus) ? 1 : 0;
    const unsigned int digit = readDigit(pCharacters + taken, crCharactersPerDigit - taken);
    return hasMinus ? 0U - digit : digit;
}

void crAppendDigits(gtString& text, const unsigned int* pDigits, int amount)
{
    if (amount <= 0)
    {
        return;
    }
    // Growing would leave pieces behind.
    text.reserve(text.length() + amount * crCharactersPerDigit);
    char characters[crCharactersPerDigit];
    for (int i = 0; i < amount; ++i)
    {
        char* pNext = characters;
        for (int shift = 28; shift >= 0; shift -= 4)
        {
            *pNext++ = "0123456789abcdef"[(pDigits[i] >> shift) & 0xfU];
        }
        text.append(characters, crCharactersPerDigit);
    }
    gtWipe(characters, sizeof(characters));
}

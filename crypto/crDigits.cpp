#include "crypto/crDigits.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/baseTools/gtString.h"

static_assert(sizeof(unsigned int) == 4, "a digit is 32 bits wide");

namespace
{

// The value of a hexadecimal character, or -1.
int hexadecimalValue(char character)
{
    if ((character >= '0') && (character <= '9'))
    {
        return character - '0';
    }
    if ((character >= 'a') && (character <= 'f'))
    {
        return character - 'a' + 10;
    }
    if ((character >= 'A') && (character <= 'F'))
    {
        return character - 'A' + 10;
    }
    return -1;
}

}  // namespace

void crWipe(void* pBytes, std::size_t amountOfBytes)
{
    if (pBytes == nullptr)
    {
        return;
    }
    std::memset(pBytes, 0, amountOfBytes);
    // The compiler must assume that the bytes are read here, so that the zeros have to be there.
    __asm__ __volatile__("" : : "r"(pBytes) : "memory");
}

void crWipe(gtString& text)
{
    // The text is not constant; it only hands out its characters as if it were.
    crWipe(const_cast<char*>(text.asCharArray()), static_cast<std::size_t>(text.length()));
    text.makeEmpty();
}

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
    crWipe(pDigits, static_cast<std::size_t>(amount) * sizeof(unsigned int));
    delete[] pDigits;
}

unsigned int crReadDigit(const char* pCharacters, int amountAvailable)
{
    const int end = std::min(amountAvailable, crCharactersPerDigit);
    int i = 0;
    if ((end > 2) && (pCharacters[0] == '0') && ((pCharacters[1] == 'x') || (pCharacters[1] == 'X')))
    {
        i = 2;
    }
    unsigned int digit = 0;
    for (; i < end; i++)
    {
        const int value = hexadecimalValue(pCharacters[i]);
        if (value < 0)
        {
            break;
        }
        digit = (digit << 4) | static_cast<unsigned int>(value);
    }
    return digit;
}

void crAppendDigits(gtString& text, const unsigned int* pDigits, int amount)
{
    constexpr int digitsAtOnce = 64;
    char characters[digitsAtOnce * crCharactersPerDigit + 1];
    for (int done = 0; done < amount; done += digitsAtOnce)
    {
        const int now = std::min(amount - done, digitsAtOnce);
        char* pNext = characters;
        for (int i = 0; i < now; i++)
        {
            for (int shift = 28; shift >= 0; shift -= 4)
            {
                *pNext++ = "0123456789abcdef"[(pDigits[done + i] >> shift) & 0xfU];
            }
        }
        *pNext = '\0';
        text.append(characters);
    }
    crWipe(characters, sizeof(characters));
}

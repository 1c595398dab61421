// SPDX-License-Identifier: Apache-2.0
//
// SECTIONS, from plain to fast; each uses those above it:
//
//   Memory         allocation, wiping of memory and of the stack
//   Rows           one digit times a number: short products and quotients, and what all faster forms are tested against
//   Squares        by rows, by 64-bit words, by limbs of 52 bits
//   Shifts         by less than a digit
//   Division       of two digits by one in halves, of a number by one digit, of a number by rows
//   Columns        products and quotients, sixteen columns of digits at once
//   Short limbs    products and quotients by limbs of 13 bits, as processors multiply many at once
//   Octets and text, Modular arithmetic, Primality
//   The functions of the interface
//
// A product (multiply) goes by short limbs where the processor multiplies and adds several of them at once and both
// factors are long enough for that (ShortLimbForms); else by columns; by rows when both factors have fewer than 16
// digits.
//
// A square (square) is free in its method: limbs of 52 bits in vectors where the processor multiplies those, else words
// of 64 bits, else rows.
//
// A division (divide) shifts the divisor in place until its top bit is set. Where divisor and quotient are long enough,
// scale prepares the divisor, and the quotient is found from the top by columns or short limbs (divideFromTheTop), at
// most as many digits at a time as the divisor has. When that meets a case that it cannot settle, it says so with the
// dividend untouched, and divideByRows does it. Powers prepare their modulus once.
//
// Digits are multiplied by their halves: no product in multiplication, division and powers is wider than 32 bits, and
// limbs of 13 bits are less than halves. Sums of products are wider. Only squares and texts use wide products.
//
// Bounds, and what keeps them:
//
//   rowsPerLane            columns: lanes of 32 bits take three halves from each row
//   longestForColumns      columns: a sum of 64 bits takes all rows of a column (see there)
//   pairsPerLane           short limbs: lanes of 32 bits take so many pairs of products
//   mostSplits             short limbs: sums of split lanes, four columns at a time, stay below 2^64
//   limbsPerBlock          limbs of 52 bits: sums of low and high halves stay below 2^64
//   unknown                division: what the window has not got (see divideFromTheTop)
#include "bigdigits.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <type_traits>
#include <utility>

#if defined(__ARM_NEON)
#include <arm_neon.h>
#endif

#if defined(__x86_64__)
#include <immintrin.h>

// A function for processors that have such features, and whether this one has a feature. Tests define them (and
// MP_EMULATED) so that every form runs on every processor, made of what all of them have.
#if !defined(MP_EMULATED)
#define MP_FOR_PROCESSORS_WITH(features) __attribute__((target(features)))
#define MP_PROCESSOR_HAS(feature) (__builtin_cpu_supports(feature) != 0)
#endif
#endif

namespace
{

constexpr mpDigit topBit = 0x80000000U;
constexpr mpDigit allOnes = 0xFFFFFFFFU;
constexpr mpDigit halfMask = 0xFFFFU;
constexpr uint32_t bitsPerDigit = 32;
constexpr uint32_t bitsPerHalf = 16;
constexpr size_t octetsPerDigit = 4;
constexpr uint32_t digitsPerLine = 8;
constexpr uint32_t moduleVersion = 2100;

static_assert(sizeof(mpDigit) == octetsPerDigit, "a digit has 32 bits");
static_assert(static_cast<mpDigit>(-1) == allOnes, "a digit is unsigned");
// Lengths become size_t before anything is computed from them. Where size_t has 32 bits, an array of 2 * n digits
// that exists has an n that can be doubled.
static_assert(sizeof(size_t) >= sizeof(uint32_t), "a length can be an index");

// The functions of the interface take 32-bit lengths. A product of two such numbers can have more digits than that,
// so what works on products takes size_t.

void setZero(mpDigit a[], size_t n)
{
    for (size_t i = n; i-- > 0;)
    {
        a[i] = 0;
    }
}

void setEqual(mpDigit a[], const mpDigit b[], size_t n)
{
    for (size_t i = 0; i < n; i++)
    {
        a[i] = b[i];
    }
}

size_t significantDigits(const mpDigit a[], size_t n)
{
    while (n > 0 && a[n - 1] == 0)
    {
        n--;
    }
    return n;
}

// d must not be 0.
uint32_t leadingZeroBits(mpDigit d)
{
    uint32_t count = 0;
    for (mpDigit mask = topBit; (d & mask) == 0; mask >>= 1)
    {
        count++;
    }
    return count;
}

// 64 bits wide, since 2^32 - 1 digits have more bits than 32 bits can count.
uint64_t bitLength(const mpDigit a[], size_t n)
{
    const size_t size = significantDigits(a, n);
    return size == 0 ? 0 : uint64_t{bitsPerDigit} * size - leadingZeroBits(a[size - 1]);
}

uint64_t octetLength(const mpDigit a[], size_t n)
{
    return (bitLength(a, n) + 7) / 8;
}

// ---------------------------------------------------------------------------------------------------------------------
// Memory

// Zeroed memory, never null. At least one element is there, so that what touches digit 0 of an empty number is safe.
template <class T>
T* allocate(uint64_t count, const char* message)
{
    const uint64_t wanted = std::max(count, uint64_t{1});
    void* pMemory = nullptr;
    if (wanted <= SIZE_MAX)
    {
        pMemory = calloc(static_cast<size_t>(wanted), sizeof(T));
    }
    else
    {
        errno = ENOMEM;
    }
    if (pMemory == nullptr)
    {
        mpFail(message);
    }
    return static_cast<T*>(pMemory);
}

mpDigit* allocateDigits(uint64_t count)
{
    return allocate<mpDigit>(count, "mpAlloc: Unable to allocate memory.");
}

// Called through a volatile pointer: the compiler cannot know the callee, so it must not drop the call as a store to
// memory that is freed next.
void* (*const volatile wipe)(void*, int, size_t) = memset;

void clearAndFree(mpDigit*& a, size_t n)
{
    wipe(a, 0, n * sizeof(mpDigit));
    mpFree(&a);
}

void clearAndFree(unsigned char* characters, size_t n)
{
    wipe(characters, 0, n);
    free(characters);
}

#if defined(__GNUC__)
#define MP_OWN_FRAME __attribute__((noinline))
#else
#define MP_OWN_FRAME
#endif

// Wipes what functions that were called before have left on the stack: limbs, slices, and what the compiler kept beside
// them. Its frame lies where theirs lay, if these have a frame of their own (MP_OWN_FRAME) and the caller has not grown
// since. The sizes are more than any way through them takes, of which numbers of few digits take less.
MP_OWN_FRAME void wipeDeepStack()
{
#if defined(__OPTIMIZE__)
    unsigned char room[49152];
#else
    // A compiler that keeps every operand of every operation on the stack may take nearly 80 KiB of it.
    unsigned char room[98304];
#endif
    wipe(room, 0, sizeof(room));
}

MP_OWN_FRAME void wipeShallowStack()
{
    unsigned char room[4096];
    wipe(room, 0, sizeof(room));
}

void wipeStack(size_t n)
{
    constexpr size_t fewDigits = 8;
    if (n <= fewDigits)
    {
        wipeShallowStack();
    }
    else
    {
        wipeDeepStack();
    }
}

// Only what is inlined into the functions for one processor is compiled for that processor.
#if defined(__GNUC__)
#define MP_INLINE inline __attribute__((always_inline))
#else
#define MP_INLINE inline
#endif

// x * y from the four products of their halves, none of which exceeds a digit.
MP_INLINE uint64_t product(mpDigit x, mpDigit y)
{
    const mpDigit xLow = x & halfMask;
    const mpDigit xHigh = x >> bitsPerHalf;
    const mpDigit yLow = y & halfMask;
    const mpDigit yHigh = y >> bitsPerHalf;
    const mpDigit low = xLow * yLow;
    const mpDigit high = xHigh * yHigh;
    const mpDigit cross = xLow * yHigh;
    const mpDigit otherCross = xHigh * yLow;
    return (uint64_t{high} << bitsPerDigit | low) + ((uint64_t{cross} + otherCross) << bitsPerHalf);
}

// ---------------------------------------------------------------------------------------------------------------------
// Rows: one digit times a number. This is how short products and quotients are formed, and what the columns below are
// tested against.

// x * d, for a d of 16 bits when isHalf.
template <bool isHalf>
MP_INLINE uint64_t productWith(mpDigit x, mpDigit d)
{
    if (isHalf)
    {
        return uint64_t{(x & halfMask) * d} + (uint64_t{(x >> bitsPerHalf) * d} << bitsPerHalf);
    }
    return product(x, d);
}

template <bool isHalf>
MP_INLINE mpDigit rowMultiplyAddWith(mpDigit w[], const mpDigit u[], size_t n, mpDigit d)
{
    mpDigit carry = 0;
    for (size_t i = 0; i < n; i++)
    {
        // At most (B-1)^2 + 2(B-1), which is B^2 - 1.
        const uint64_t t = productWith<isHalf>(u[i], d) + carry + w[i];
        w[i] = static_cast<mpDigit>(t);
        carry = static_cast<mpDigit>(t >> bitsPerDigit);
    }
    return carry;
}

template <bool isHalf>
MP_INLINE mpDigit rowMultiplySubtractWith(mpDigit w[], const mpDigit v[], size_t n, mpDigit d)
{
    mpDigit borrow = 0;
    for (size_t i = 0; i < n; i++)
    {
        const uint64_t t = productWith<isHalf>(v[i], d) + borrow;
        const auto low = static_cast<mpDigit>(t);
        borrow = static_cast<mpDigit>(t >> bitsPerDigit) + (w[i] < low ? 1 : 0);
        w[i] -= low;
    }
    return borrow;
}

// w[0..n) += u[0..n) * d. Returns the carry digit.
mpDigit rowMultiplyAdd(mpDigit w[], const mpDigit u[], size_t n, mpDigit d)
{
    return d <= halfMask ? rowMultiplyAddWith<true>(w, u, n, d) : rowMultiplyAddWith<false>(w, u, n, d);
}

// w[0..n) -= v[0..n) * d. Returns the borrow digit.
mpDigit rowMultiplySubtract(mpDigit w[], const mpDigit v[], size_t n, mpDigit d)
{
    return d <= halfMask ? rowMultiplySubtractWith<true>(w, v, n, d) : rowMultiplySubtractWith<false>(w, v, n, d);
}

int32_t compare(const mpDigit a[], const mpDigit b[], size_t n)
{
    for (size_t i = n; i-- > 0;)
    {
        if (a[i] > b[i])
        {
            return 1;
        }
        if (a[i] < b[i])
        {
            return -1;
        }
    }
    return 0;
}

mpDigit add(mpDigit w[], const mpDigit u[], const mpDigit v[], size_t n)
{
    mpDigit carry = 0;
    for (size_t i = 0; i < n; i++)
    {
        w[i] = u[i] + carry;
        carry = w[i] < carry ? 1 : 0;
        w[i] += v[i];
        carry += w[i] < v[i] ? 1 : 0;
    }
    return carry;
}

mpDigit subtract(mpDigit w[], const mpDigit u[], const mpDigit v[], size_t n)
{
    mpDigit borrow = 0;
    for (size_t i = 0; i < n; i++)
    {
        w[i] = u[i] - borrow;
        borrow = w[i] > allOnes - borrow ? 1 : 0;
        w[i] -= v[i];
        borrow += w[i] > allOnes - v[i] ? 1 : 0;
    }
    return borrow;
}

// w[0..un+vn) = u * v.
void multiplyByRows(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn)
{
    setZero(w, un + vn);
    for (size_t j = 0; j < vn; j++)
    {
        if (v[j] != 0)
        {
            w[j + un] = rowMultiplyAdd(w + j, u, un, v[j]);
        }
    }
}

// w[0..wn) += a[0..n) * B^at, or -= that: modulo B^wn.
template <class Operation>
void changeAt(mpDigit w[], size_t wn, size_t at, const mpDigit a[], size_t n, Operation operation, mpDigit lastOfCarry)
{
    if (at >= wn)
    {
        return;
    }
    const size_t count = std::min(n, wn - at);
    mpDigit carry = operation(w + at, w + at, a, count);
    for (size_t i = at + count; carry != 0 && i < wn; i++)
    {
        const mpDigit before = w[i];
        w[i] += lastOfCarry;
        carry = before == (lastOfCarry == 1 ? allOnes : 0) ? 1 : 0;
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Squares: each product of two different digits is formed once, and doubled at the end.

[[maybe_unused]] void squareByRows(mpDigit w[], const mpDigit x[], size_t n)
{
    setZero(w, 2 * n);
    for (size_t i = 0; i < n; i++)
    {
        w[i + n] = rowMultiplyAdd(w + 2 * i + 1, x + i + 1, n - i - 1, x[i]);
    }

    mpDigit carry = 0;
    mpDigit doubledBit = 0;
    for (size_t i = 0; i < n; i++)
    {
        const uint64_t t = product(x[i], x[i]);
        const mpDigit diagonal[2] = {static_cast<mpDigit>(t), static_cast<mpDigit>(t >> bitsPerDigit)};
        for (size_t half = 0; half < 2; half++)
        {
            const mpDigit digit = w[2 * i + half];
            mpDigit sum = (digit << 1 | doubledBit) + carry;
            carry = sum < carry ? 1 : 0;
            sum += diagonal[half];
            carry += sum < diagonal[half] ? 1 : 0;
            w[2 * i + half] = sum;
            doubledBit = digit >> 31;
        }
    }
}

#if defined(__SIZEOF_INT128__)

__extension__ using DoubleWord = unsigned __int128;

MP_INLINE uint64_t loadTwo(const mpDigit a[])
{
    return a[0] | uint64_t{a[1]} << 32;
}

// In one store, which compilers do not make of two by themselves.
MP_INLINE void storeTwo(mpDigit a[], uint64_t value)
{
    if constexpr (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__)
    {
        memcpy(a, &value, sizeof(value));
    }
    else
    {
        a[0] = static_cast<mpDigit>(value);
        a[1] = static_cast<mpDigit>(value >> 32);
    }
}

// Two digits make one word; with an odd n the top word has one digit.
MP_INLINE void squareByWords(mpDigit w[], const mpDigit x[], size_t n)
{
    const size_t whole = n / 2;
    const bool isOdd = n % 2 != 0;
    const uint64_t last = isOdd ? x[n - 1] : 0;
    const auto word = [x](size_t i) { return loadTwo(x + 2 * i); };
    const auto addProduct = [w](size_t i, uint64_t factor, uint64_t other, uint64_t carry)
    {
        // To add the carry to a double word, too, takes more instructions. The high word has room for both carries.
        const DoubleWord t = DoubleWord{factor} * other + loadTwo(w + 2 * i);
        const uint64_t low = static_cast<uint64_t>(t) + carry;
        storeTwo(w + 2 * i, low);
        return static_cast<uint64_t>(t >> 64) + (low < carry ? 1 : 0);
    };

    setZero(w, 2 * n);
    for (size_t i = 0; i < whole; i++)
    {
        const uint64_t factor = word(i);
        uint64_t carry = 0;
        for (size_t j = i + 1; j < whole; j++)
        {
            carry = addProduct(i + j, factor, word(j), carry);
        }
        if (isOdd)
        {
            carry = addProduct(i + whole, factor, last, carry);
        }
        storeTwo(w + 2 * (i + whole + (isOdd ? 1 : 0)), carry);
    }

    uint64_t carry = 0;
    uint64_t doubledBit = 0;
    const auto doubleAndAdd = [w, &carry, &doubledBit](size_t i, uint64_t square)
    {
        const uint64_t value = loadTwo(w + 2 * i);
        const DoubleWord t = DoubleWord{value << 1 | doubledBit} + square + carry;
        storeTwo(w + 2 * i, static_cast<uint64_t>(t));
        doubledBit = value >> 63;
        carry = static_cast<uint64_t>(t >> 64);
    };
    for (size_t i = 0; i < whole; i++)
    {
        const DoubleWord square = DoubleWord{word(i)} * word(i);
        doubleAndAdd(2 * i, static_cast<uint64_t>(square));
        doubleAndAdd(2 * i + 1, static_cast<uint64_t>(square >> 64));
    }
    if (isOdd)
    {
        doubleAndAdd(2 * whole, last * last);
    }
}

using SquareForm = void (*)(mpDigit w[], const mpDigit x[], size_t n);

// A square of two halves is made of three squares of such a length: 2 a b is a a + b b - (a - b) (a - b). Numbers of at
// most "longest" digits are squared by the form, and longest is at least 8. room has 3 n + 9 * mostHalvings digits: a
// half has at most n / 2 + 3 / 2 digits, so what is taken of it in all is less than 3 n + 9 for each time it is halved.
constexpr size_t mostHalvings = 8;

void squareByHalves(mpDigit w[], const mpDigit x[], size_t n, SquareForm form, size_t longest, mpDigit room[])
{
    if (n <= longest)
    {
        form(w, x, n);
        return;
    }
    const size_t half = (n + 3) / 4 * 2;
    const size_t rest = n - half;
    squareByHalves(w, x, half, form, longest, room);
    squareByHalves(w + 2 * half, x + half, rest, form, longest, room);

    mpDigit* difference = room;
    mpDigit* middle = room + half;
    setZero(middle, half);
    setEqual(middle, x + half, rest);
    if (subtract(difference, x, middle, half) != 0)
    {
        subtract(difference, middle, x, half);
    }
    squareByHalves(middle, difference, half, form, longest, room + 3 * half);
    // Both are less than twice a square of a half, so the digit above these may be 1.
    mpDigit sum = 0;
    mpDigit borrow = 0;
    for (size_t i = 0; i < 2 * half; i++)
    {
        const uint64_t squares = uint64_t{w[i]} + (i < 2 * rest ? w[2 * half + i] : 0) + sum;
        sum = static_cast<mpDigit>(squares >> bitsPerDigit);
        const uint64_t product = uint64_t{static_cast<mpDigit>(squares)} - middle[i] - borrow;
        borrow = static_cast<mpDigit>(product >> bitsPerDigit) & 1;
        middle[i] = static_cast<mpDigit>(product);
    }
    mpDigit carry = add(w + half, w + half, middle, 2 * half) + sum - borrow;
    for (mpDigit* above = w + 3 * half; carry != 0; above++)
    {
        *above += carry;
        carry = *above < carry ? 1 : 0;
    }
}

// Longer numbers are cut into parts of that many digits, so that little stack is needed.
constexpr size_t longestForHalves = 1024;

// Halves at most "longest" digits long, which are at least 8, are squared by the form.
MP_OWN_FRAME void squareByHalves(mpDigit w[], const mpDigit x[], size_t n, SquareForm form, size_t longest)
{
    mpDigit room[3 * longestForHalves + 9 * mostHalvings];
    squareByHalves(w, x, n, form, longest, room);
}

// Any number of parts: the square of a part counts wherever the part is a factor of a product, and the
// squares of the differences are taken away. What is between may exceed 2 n digits; the result does not.
MP_OWN_FRAME void squareByParts(mpDigit w[], const mpDigit x[], size_t n, SquareForm form, size_t longest)
{
    constexpr size_t part = longestForHalves;
    mpDigit square[2 * part];
    mpDigit difference[part];
    mpDigit padded[part];
    setZero(w, 2 * n);
    for (size_t i = 0; i < n; i += part)
    {
        const size_t size = std::min(n - i, part);
        squareByHalves(square, x + i, size, form, longest);
        for (size_t j = 0; j < n; j += part)
        {
            changeAt(w, 2 * n, i + j, square, 2 * size, add, 1);
        }
        setZero(padded, part);
        setEqual(padded, x + i, size);
        for (size_t j = 0; j < i; j += part)
        {
            if (subtract(difference, x + j, padded, part) != 0)
            {
                subtract(difference, padded, x + j, part);
            }
            squareByHalves(square, difference, part, form, longest);
            changeAt(w, 2 * n, i + j, square, 2 * part, subtract, allOnes);
        }
    }
}

// By the form, which takes at most "longest" digits at once.
MP_INLINE void squareBy(mpDigit w[], const mpDigit x[], size_t n, SquareForm form, size_t longest)
{
    if (n <= longest)
    {
        form(w, x, n);
    }
    else if (n <= longestForHalves)
    {
        squareByHalves(w, x, n, form, longest);
    }
    else
    {
        squareByParts(w, x, n, form, longest);
    }
}

// More digits are halved first.
constexpr size_t mostWordDigits = 96;

void squareByPlainWords(mpDigit w[], const mpDigit x[], size_t n)
{
    squareByWords(w, x, n);
}

// Words, and halves of them.
void squareWithWords(mpDigit w[], const mpDigit x[], size_t n)
{
    squareBy(w, x, n, squareByPlainWords, mostWordDigits);
}

#if defined(__x86_64__)

// Its multiplication leaves the flags alone.
MP_FOR_PROCESSORS_WITH("bmi2") void squareByWordsWithBmi2(mpDigit w[], const mpDigit x[], size_t n)
{
    squareByWords(w, x, n);
}

void squareWithBmi2(mpDigit w[], const mpDigit x[], size_t n)
{
    squareBy(w, x, n, squareByWordsWithBmi2, mostWordDigits);
}

// Squares by limbs of 52 bits, eight at once in a vector register: for processors that multiply such limbs.
constexpr size_t limbBits = 52;
constexpr uint64_t limbMask = (uint64_t{1} << limbBits) - 1;
constexpr size_t limbsAtOnce = 8;
// Longer numbers are cut into blocks.
constexpr size_t digitsPerBlock = 256;
// A pair of limbs has 13 octets.
constexpr size_t octetsPerLimbPair = 13;
constexpr size_t limbsPerBlock = (digitsPerBlock * bitsPerDigit / limbBits + limbsAtOnce) / limbsAtOnce * limbsAtOnce;
static_assert(2 * limbsPerBlock < (uint64_t{1} << (64 - limbBits)), "the sums of a column fit in a word");

// limbs[0..count) = a[0..n), with as many zeros below and above as a register has limbs. Returns count.
MP_INLINE size_t takeLimbs(uint64_t limbs[], const mpDigit a[], size_t n)
{
    unsigned char octets[(digitsPerBlock + 4) * octetsPerDigit];
    memcpy(octets, a, n * octetsPerDigit);
    memset(octets + n * octetsPerDigit, 0, 4 * octetsPerDigit);
    const size_t count = (n * bitsPerDigit + limbBits - 1) / limbBits;
    size_t i = 0;
    for (const unsigned char* pair = octets; i < count; i += 2, pair += octetsPerLimbPair)
    {
        uint64_t low = 0;
        uint64_t high = 0;
        memcpy(&low, pair, sizeof(low));
        memcpy(&high, pair + limbBits / 8, sizeof(high));
        limbs[i] = low & limbMask;
        limbs[i + 1] = (high >> limbBits % 8) & limbMask;
    }
    memset(limbs - limbsAtOnce, 0, limbsAtOnce * sizeof(uint64_t));
    memset(limbs + i, 0, limbsAtOnce * sizeof(uint64_t));
    return count;
}

// w[0..un+vn) = u * v, neither longer than a block. u may be v.
MP_FOR_PROCESSORS_WITH("avx512f,avx512ifma,bmi2")
void multiplyBlocks(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn)
{
    uint64_t uRoom[limbsPerBlock + 2 * limbsAtOnce];
    uint64_t vRoom[limbsPerBlock + 2 * limbsAtOnce];
    uint64_t* const uLimbs = uRoom + limbsAtOnce;
    uint64_t* const vLimbs = u == v ? uLimbs : vRoom + limbsAtOnce;
    const size_t uCount = takeLimbs(uLimbs, u, un);
    const size_t vCount = u == v ? uCount : takeLimbs(vLimbs, v, vn);

    // The low and the high limbs of the products, by columns.
    uint64_t low[2 * limbsPerBlock + limbsAtOnce];
    uint64_t high[2 * limbsPerBlock + limbsAtOnce + 1];
    high[0] = 0;
    for (size_t first = 0; first < uCount + vCount; first += limbsAtOnce)
    {
        const size_t begin = first + 1 - std::min(first + 1, uCount);
        const size_t end = std::min(first + limbsAtOnce, vCount);
        __m512i lowSum = _mm512_setzero_si512();
        __m512i highSum = _mm512_setzero_si512();
        __m512i otherLowSum = _mm512_setzero_si512();
        __m512i otherHighSum = _mm512_setzero_si512();
        // Every other row to other sums, which do not wait for each other.
        for (size_t j = begin; j < end; j += 2)
        {
            const __m512i limbs = _mm512_loadu_si512(uLimbs + first - j);
            const __m512i factor = _mm512_set1_epi64(static_cast<long long>(vLimbs[j]));
            lowSum = _mm512_madd52lo_epu64(lowSum, limbs, factor);
            highSum = _mm512_madd52hi_epu64(highSum, limbs, factor);
            if (j + 1 < end)
            {
                const __m512i nextLimbs = _mm512_loadu_si512(uLimbs + first - j - 1);
                const __m512i nextFactor = _mm512_set1_epi64(static_cast<long long>(vLimbs[j + 1]));
                otherLowSum = _mm512_madd52lo_epu64(otherLowSum, nextLimbs, nextFactor);
                otherHighSum = _mm512_madd52hi_epu64(otherHighSum, nextLimbs, nextFactor);
            }
        }
        _mm512_storeu_si512(low + first, _mm512_add_epi64(lowSum, otherLowSum));
        _mm512_storeu_si512(high + first + 1, _mm512_add_epi64(highSum, otherHighSum));
    }

    unsigned char octets[(2 * digitsPerBlock + 8) * octetsPerDigit];
    unsigned char* pair = octets;
    uint64_t carry = 0;
    for (size_t i = 0; i < uCount + vCount; i += 2, pair += octetsPerLimbPair)
    {
        const uint64_t even = low[i] + high[i] + carry;
        // Columns come in eights. NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
        const uint64_t odd = low[i + 1] + high[i + 1] + (even >> limbBits);
        carry = odd >> limbBits;
        const uint64_t lowOctets = (even & limbMask) | odd << limbBits;
        const uint64_t highOctets = (odd & limbMask) >> (64 - limbBits);
        memcpy(pair, &lowOctets, sizeof(lowOctets));
        memcpy(pair + sizeof(lowOctets), &highOctets, sizeof(highOctets));
    }
    memcpy(w, octets, (un + vn) * octetsPerDigit);
}

// Without AVX-512, forms are chosen as on a processor that does not have it.
#if defined(MP_WITHOUT_AVX512)
constexpr bool mayUse512Bits = false;
#else
constexpr bool mayUse512Bits = true;
#endif

bool has52BitLimbs()
{
    return mayUse512Bits && MP_PROCESSOR_HAS("avx512ifma") && MP_PROCESSOR_HAS("bmi2");
}

void squareByOneBlock(mpDigit w[], const mpDigit x[], size_t n)
{
    multiplyBlocks(w, x, n, x, n);
}

void squareByBlocks(mpDigit w[], const mpDigit x[], size_t n)
{
    squareBy(w, x, n, squareByOneBlock, digitsPerBlock);
}

constexpr size_t shortestForLimbs = 20;

#endif

#endif

// ---------------------------------------------------------------------------------------------------------------------
// Shifts by less than a digit

mpDigit shiftLeftBits(mpDigit a[], const mpDigit b[], uint32_t bits, size_t n)
{
    if (bits == 0)
    {
        setEqual(a, b, n);
        return 0;
    }
    mpDigit carry = 0;
    for (size_t i = 0; i < n; i++)
    {
        const mpDigit digit = b[i];
        a[i] = digit << bits | carry;
        carry = digit >> (bitsPerDigit - bits);
    }
    return carry;
}

mpDigit shiftRightBits(mpDigit a[], const mpDigit b[], uint32_t bits, size_t n)
{
    if (bits == 0)
    {
        setEqual(a, b, n);
        return 0;
    }
    mpDigit carry = 0;
    for (size_t i = n; i-- > 0;)
    {
        const mpDigit digit = b[i];
        a[i] = digit >> bits | carry;
        carry = digit << (bitsPerDigit - bits);
    }
    return carry;
}

// ---------------------------------------------------------------------------------------------------------------------
// Division

// (high, low) -= qhat * v, as far as spDivide needs it. A carry out of the sum p is not passed on to the high digit:
// its upper half alone tells whether the result went negative, and one too many does not reach that.
void spMultSub(mpDigit& high, mpDigit& low, mpDigit qhat, mpDigit vHigh, mpDigit vLow)
{
    const mpDigit upper = qhat * vHigh;
    const mpDigit p = qhat * vLow + (upper << bitsPerHalf);
    const mpDigit before = low;
    low -= p;
    high -= low > before ? 1 : 0;
    high -= upper >> bitsPerHalf;
}

// (high, low) -= qhat * v. If that is below zero, qhat is one less and v is added again.
void spSubtractProduct(mpDigit& qhat, mpDigit high, mpDigit& low, mpDigit v)
{
    spMultSub(high, low, qhat, v >> bitsPerHalf, v & halfMask);
    const mpDigit negative = (high >> bitsPerHalf) != 0 ? 1 : 0;
    qhat -= negative;
    low += negative * v;
}

// One half-digit of a quotient: (remainder, next half-digit) / v. Leaves the new remainder.
mpDigit spDivideStep(mpDigit& remainder, mpDigit next, mpDigit v)
{
    const mpDigit vHigh = v >> bitsPerHalf;
    const mpDigit vLow = v & halfMask;
    // The top bit of v is set. NOLINTNEXTLINE(clang-analyzer-core.DivideZero)
    mpDigit qhat = remainder / vHigh;
    mpDigit rhat = remainder - qhat * vHigh;
    if (qhat == halfMask + 1 || qhat * vLow > (rhat << bitsPerHalf | next))
    {
        qhat--;
        rhat += vHigh;
        if (rhat <= halfMask && qhat * vLow > (rhat << bitsPerHalf | next))
        {
            qhat--;
        }
    }
    const mpDigit high = remainder >> bitsPerHalf;
    remainder = remainder << bitsPerHalf | next;
    spSubtractProduct(qhat, high, remainder, v);
    return qhat;
}

// q = the low digit of (uHigh, uLow) / v, r = the remainder. Returns the digit above q. The top bit of v is set.
mpDigit divideTwoByOne(mpDigit& q, mpDigit& r, mpDigit uHigh, mpDigit uLow, mpDigit v)
{
    const mpDigit vHigh = v >> bitsPerHalf;
    const mpDigit vLow = v & halfMask;
    const mpDigit u3 = uHigh >> bitsPerHalf;
    const mpDigit u2 = uHigh & halfMask;

    mpDigit overflow = u3 >= vHigh ? 1 : 0;
    if (overflow == 1 && vLow > ((u3 - vHigh) << bitsPerHalf | u2))
    {
        overflow = 0;
    }
    mpDigit remainder = uHigh;
    spSubtractProduct(overflow, 0, remainder, v);

    const mpDigit upper = spDivideStep(remainder, uLow >> bitsPerHalf, v);
    const mpDigit lower = spDivideStep(remainder, uLow & halfMask, v);
    q = upper << bitsPerHalf | (lower & halfMask);
    r = remainder;
    return overflow;
}

// Whether qhat * vNext > (rhat, uNext): the estimate, seen with one more digit of the divisor, is too large.
bool qhatTooBig(mpDigit qhat, mpDigit rhat, mpDigit vNext, mpDigit uNext)
{
    return product(qhat, vNext) > (uint64_t{rhat} << bitsPerDigit | uNext);
}

mpDigit shortDivide(mpDigit q[], const mpDigit u[], mpDigit d, size_t n)
{
    if (n == 0 || d == 0)
    {
        return 0;
    }
    const uint32_t shift = leadingZeroBits(d);
    const mpDigit normalised = d << shift;
    // Less than d shifted in whole, so no quotient overflows a digit.
    mpDigit r = shiftLeftBits(q, u, shift, n);
    for (size_t j = n; j-- > 0;)
    {
        divideTwoByOne(q[j], r, r, q[j], normalised);
    }
    return r >> shift;
}

// The estimate of the quotient digit (top, uHigh, uNext, ...) / (vHigh, vNext, ...): exact or one too large.
mpDigit estimateQuotient(mpDigit top, mpDigit uHigh, mpDigit uNext, mpDigit vHigh, mpDigit vNext)
{
    mpDigit qhat = 0;
    mpDigit rhat = 0;
    const mpDigit overflow = divideTwoByOne(qhat, rhat, top, uHigh, vHigh);
    if (overflow != 0)
    {
        qhat = allOnes;
        rhat = uHigh + vHigh;
        if (rhat < vHigh)
        {
            return qhat;
        }
    }
    if (qhat != 0 && qhatTooBig(qhat, rhat, vNext, uNext))
    {
        qhat--;
        rhat += vHigh;
        if (rhat >= vHigh && qhatTooBig(qhat, rhat, vNext, uNext))
        {
            qhat--;
        }
    }
    return qhat;
}

// Quotient digits m to 0 of (top, r[0..n+m)) / v. v is normalised; n > 1. Leaves the remainder in r[0..n).
void divideByRows(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m)
{
    for (size_t j = m + 1; j-- > 0;)
    {
        mpDigit qhat = estimateQuotient(top, r[j + n - 1], r[j + n - 2], v[n - 1], v[n - 2]);
        if (qhat != 0)
        {
            top -= rowMultiplySubtract(r + j, v, n, qhat);
            if (top != 0)
            {
                qhat--;
                add(r + j, r + j, v, n);
            }
        }
        // With qhat 0 the digit is 0 and top was 0 already: (top, r[j..j+n)) is less than v.
        q[j] = qhat;
        top = r[j + n - 1];
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Columns: all products of digits that count the same power of the base, summed up for sixteen powers at once.
//
// Where a row has to carry from digit to digit, columns have nothing to carry until they are summed up, and the sums
// of neighbouring columns are independent of each other: that suits vector units. The products are still formed from
// 16-bit halves, whose products are summed in 32-bit lanes.
//
// Loops over a few vectors are unrolled, here and below, so that these stay in registers: compilers do so by themselves
// only where they are told to optimise most.

// Vectors that the compiler puts together from words, as it may on other processors of 32 bits, are slower than rows.
#if defined(__GNUC__) && (defined(__SIZEOF_INT128__) || defined(__ARM_NEON)) && !defined(MP_WITHOUT_COLUMNS)

#define MP_HAS_COLUMNS 1

constexpr bool isBigEndian = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__;
constexpr size_t columnCount = 16;
constexpr size_t shortestForColumns = columnCount;
// A column has at most that many rows. Lanes are added to its sum after rowsPerLane rows, that is 2^14 times at most;
// each time the low word gets less than 2^33, and the high word less than 2^33 and 2^16 times a lane, which is 2^48. So
// the low words stay below 2^47 and the high ones below 2^62 + 2^47, and takeDigits, which adds one of each and a
// carry, stays below 2^63.
constexpr size_t longestForColumns = size_t{1} << 28;
constexpr size_t shortestForLeavingOut = columnCount + 1;
// A lane takes three halves from each row.
constexpr size_t rowsPerLane = 16384;
static_assert(rowsPerLane * 3 * halfMask <= allOnes, "the sums fit in a lane");

using Vector16 = mpDigit __attribute__((vector_size(16)));
using Vector32 = mpDigit __attribute__((vector_size(32)));
using Vector64 = mpDigit __attribute__((vector_size(64)));

template <class Vector>
struct Widened
{
    using Type __attribute__((vector_size(sizeof(Vector)))) = uint64_t;
};

// The sum of column i is low + high * 2^32 at [i % 2][i / 2].
struct Columns
{
    uint64_t low[2][columnCount / 2];
    uint64_t high[2][columnCount / 2];
};

// The same sums, in the lanes of vectors and by half-digits: weights 1, 2^16, 2^32 and 2^48.
template <class Vector>
struct Lanes
{
    static constexpr size_t parts = columnCount * sizeof(mpDigit) / sizeof(Vector);
    Vector lowest[parts];
    Vector lower[parts];
    Vector upper[parts];
    Vector highest[parts];
};

// Sums of products of halves: modulo 2^32, and of their upper halves alone, which leaves the lower halves to be found
// by a subtraction.
template <class Vector>
struct Products
{
    MP_INLINE void add(const Vector& product)
    {
        all += product;
        upper += product >> bitsPerHalf;
    }
    MP_INLINE void addLowerTo(Vector& sums) const { sums += all - (upper << bitsPerHalf); }

    Vector all;
    Vector upper;
};

// Sixteen digits of a number from any index on, with zeros below the number and above it.
struct Slices
{
    Slices(const mpDigit a[], size_t n) : digits(a), size(n)
    {
        for (size_t i = 0; i < columnCount; i++)
        {
            lowEnd[i] = 0;
            lowEnd[columnCount + i] = a[i];
            highEnd[i] = a[n - columnCount + i];
            highEnd[columnCount + i] = 0;
        }
    }

    const mpDigit* digits;
    size_t size;
    mpDigit lowEnd[2 * columnCount];
    mpDigit highEnd[2 * columnCount];
};

// Part i of the sixteen columns: sums of products by what they count, 1, 2^16 and 2^32.
template <class Vector>
struct ProductsOfRows
{
    // += a[0..16) * d.
    MP_INLINE void addRow(const mpDigit a[], mpDigit d, size_t i)
    {
        Vector digits;
        memcpy(&digits, a + i * (sizeof(Vector) / sizeof(mpDigit)), sizeof(Vector));
        const Vector everywhere = d - Vector{};
        const Vector dLow = everywhere & halfMask;
        const Vector dHigh = everywhere >> bitsPerHalf;
        const Vector digitsLow = digits & halfMask;
        const Vector digitsHigh = digits >> bitsPerHalf;
        low.add(digitsLow * dLow);
        cross.add(digitsLow * dHigh);
        cross.add(digitsHigh * dLow);
        high.add(digitsHigh * dHigh);
    }
    MP_INLINE void addTo(Lanes<Vector>& lanes, size_t i) const
    {
        low.addLowerTo(lanes.lowest[i]);
        lanes.lower[i] += low.upper;
        cross.addLowerTo(lanes.lower[i]);
        lanes.upper[i] += cross.upper;
        high.addLowerTo(lanes.upper[i]);
        lanes.highest[i] += high.upper;
    }

    Products<Vector> low;
    Products<Vector> cross;
    Products<Vector> high;
};

// lanes += a[0..16) * d.
template <class Vector>
MP_INLINE void addRow(Lanes<Vector>& lanes, const mpDigit a[], mpDigit d)
{
#pragma GCC unroll 4
    for (size_t i = 0; i < Lanes<Vector>::parts; i++)
    {
        ProductsOfRows<Vector> row = {};
        row.addRow(a, d, i);
        row.addTo(lanes, i);
    }
}

MP_INLINE mpDigit lane(const void* vectors, size_t i)
{
    mpDigit result = 0;
    memcpy(&result, static_cast<const char*>(vectors) + i * sizeof(mpDigit), sizeof(mpDigit));
    return result;
}

// sums += lanes, in column i.
template <class Vector>
MP_INLINE void addLane(Columns& sums, const Lanes<Vector>& lanes, size_t i)
{
    const mpDigit lower = lane(lanes.lower, i);
    sums.low[i % 2][i / 2] += uint64_t{lane(lanes.lowest, i)} + (lower << bitsPerHalf);
    sums.high[i % 2][i / 2] +=
        uint64_t{lane(lanes.upper, i)} + (lower >> bitsPerHalf) + (uint64_t{lane(lanes.highest, i)} << bitsPerHalf);
}

// Part i of the sums += lanes * 2^bits: sums[0] takes the even lanes, sums[1] the odd ones.
template <class Vector>
MP_INLINE void addWidened(uint64_t sums[2][columnCount / 2], const Vector& lanes, size_t i, uint64_t bits)
{
    using Wide = typename Widened<Vector>::Type;
    constexpr size_t width = sizeof(Wide) / sizeof(uint64_t);
    // A pair of lanes as one wide lane: its low half is the even lane where the low octets come first, else the odd
    // one.
    const auto pairs = reinterpret_cast<Wide>(lanes);
    const Wide lowHalves = pairs & uint64_t{allOnes};
    const Wide highHalves = pairs >> uint64_t{bitsPerDigit};
    Wide even;
    Wide odd;
    memcpy(&even, sums[0] + i * width, sizeof(Wide));
    memcpy(&odd, sums[1] + i * width, sizeof(Wide));
    even += (isBigEndian ? highHalves : lowHalves) << bits;
    odd += (isBigEndian ? lowHalves : highHalves) << bits;
    memcpy(sums[0] + i * width, &even, sizeof(Wide));
    memcpy(sums[1] + i * width, &odd, sizeof(Wide));
}

// sums += lanes.
template <class Vector>
MP_INLINE void addLanes(Columns& sums, const Lanes<Vector>& lanes)
{
#pragma GCC unroll 4
    for (size_t i = 0; i < Lanes<Vector>::parts; i++)
    {
        const Vector lower = lanes.lower[i] << bitsPerHalf;
        const Vector upper = lanes.upper[i] + (lanes.lower[i] >> bitsPerHalf);
        addWidened(sums.low, lanes.lowest[i], i, 0);
        addWidened(sums.low, lower, i, 0);
        addWidened(sums.high, upper, i, 0);
        addWidened(sums.high, lanes.highest[i], i, bitsPerHalf);
    }
}

// rows += v[j] * a[j - begin digits down], for v[begin..end).
template <class Vector>
MP_INLINE void addRows(ProductsOfRows<Vector> rows[], const mpDigit* a, const mpDigit v[], size_t begin, size_t end)
{
    for (size_t j = begin; j < end; j++)
    {
#pragma GCC unroll 4
        for (size_t i = 0; i < Lanes<Vector>::parts; i++)
        {
            rows[i].addRow(a - (j - begin), v[j], i);
        }
    }
}

// sums += columns first to first + 15 of u * v, taking only v[begin..end), each of which must have digits in these
// columns.
template <class Vector>
MP_INLINE void addColumns(Columns& sums, const Slices& u, const mpDigit v[], size_t begin, size_t end, size_t first)
{
    // Rows below the first of these reach above the end of u, rows from the second on below its beginning.
    const size_t last = u.size - columnCount;
    const size_t whole = first - std::min(first, last);
    const size_t low = first + 1;
    for (size_t j = begin; j < end;)
    {
        const size_t stop = j + std::min(end - j, rowsPerLane);
        const size_t endOfHigh = j < whole ? (whole < stop ? whole : stop) : j;
        const size_t endOfWhole = endOfHigh < low ? (low < stop ? low : stop) : endOfHigh;
        ProductsOfRows<Vector> rows[Lanes<Vector>::parts] = {};
        if (j < endOfHigh)
        {
            addRows(rows, u.highEnd + (first - last - j), v, j, endOfHigh);
        }
        if (endOfHigh < endOfWhole)
        {
            addRows(rows, u.digits + (first - endOfHigh), v, endOfHigh, endOfWhole);
        }
        if (endOfWhole < stop)
        {
            addRows(rows, u.lowEnd + (columnCount + first - endOfWhole), v, endOfWhole, stop);
        }
        Lanes<Vector> lanes = {};
#pragma GCC unroll 4
        for (size_t i = 0; i < Lanes<Vector>::parts; i++)
        {
            rows[i].addTo(lanes, i);
        }
        addLanes(sums, lanes);
        j = stop;
    }
}

// The digits of the columns, with what is carried from the columns below them.
MP_INLINE void takeDigits(mpDigit digits[columnCount], uint64_t& carry, const Columns& sums)
{
#pragma GCC unroll 8
    for (size_t i = 0; i < columnCount / 2; i++)
    {
        const uint64_t even = carry + sums.low[0][i];
        const uint64_t odd = (even >> bitsPerDigit) + sums.high[0][i] + sums.low[1][i];
        carry = (odd >> bitsPerDigit) + sums.high[1][i];
        digits[2 * i] = static_cast<mpDigit>(even);
        digits[2 * i + 1] = static_cast<mpDigit>(odd);
    }
}

// Rows v[begin..end) that have digits of u, un long, in any of the columns first to first + 15.
MP_INLINE size_t firstRow(size_t first, size_t un)
{
    return first + 1 - std::min(first + 1, un);
}

MP_INLINE size_t endOfRows(size_t first, size_t vn)
{
    return std::min(first + columnCount, vn);
}

template <class Vector>
MP_INLINE void multiplyByColumnsWith(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn)
{
    const Slices slices(u, un);
    uint64_t carry = 0;
    for (size_t first = 0; first < un + vn; first += columnCount)
    {
        Columns sums = {};
        addColumns<Vector>(sums, slices, v, firstRow(first, un), endOfRows(first, vn), first);
        if (un + vn - first >= columnCount)
        {
            takeDigits(w + first, carry, sums);
        }
        else
        {
            mpDigit digits[columnCount];
            takeDigits(digits, carry, sums);
            setEqual(w + first, digits, un + vn - first);
        }
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Short limbs: numbers cut into pieces of 13 bits, whose products are summed up in lanes of 32 bits. Processors either
// multiply and add two limbs in each lane, or all limbs of a register by the same one.
//
// Thirteen digits are 32 limbs. A product of two limbs has 26 bits, so a lane takes the sum of 64 products before it is
// split. The limbs are as good as half-digits: no product is wider than the product of two of these.

constexpr size_t shortLimbBits = 13;
constexpr uint64_t shortLimbMask = (uint64_t{1} << shortLimbBits) - 1;
// Eight limbs have 13 octets.
constexpr size_t limbsPerGroup = 8;
constexpr size_t octetsPerGroup = 13;
constexpr size_t pairsPerLane = 32;
// Two limbs are a unit.
constexpr size_t unitBits = 2 * shortLimbBits;
constexpr uint64_t unitMask = (uint64_t{1} << unitBits) - 1;
static_assert(pairsPerLane * 2 * shortLimbMask * shortLimbMask <= allOnes, "the sums of a lane fit in it");

// Longer factors are cut into blocks of that many digits.
constexpr size_t longestForShortLimbs = 273;
constexpr size_t mostShortLimbs = longestForShortLimbs * bitsPerDigit / shortLimbBits;
static_assert(longestForShortLimbs * bitsPerDigit % (limbsPerGroup * shortLimbBits) == 0, "a block has whole groups");
// Columns that are summed up at once. Loads may reach that far out of a number, whose surroundings are zero.
constexpr size_t mostColumnsAtOnce = 64;
constexpr size_t limbMargin = mostColumnsAtOnce + limbsPerGroup;
static_assert(limbMargin % limbsPerGroup == 0, "groups are written as a whole");

MP_INLINE uint64_t loadOctets(const unsigned char* octets)
{
    uint64_t value = 0;
    memcpy(&value, octets, sizeof(value));
    return isBigEndian ? __builtin_bswap64(value) : value;
}

MP_INLINE void storeOctets(unsigned char* octets, uint64_t value)
{
    value = isBigEndian ? __builtin_bswap64(value) : value;
    memcpy(octets, &value, sizeof(value));
}

// Four limbs, the lowest in the low 16 bits, from the low 52 bits of a word.
MP_INLINE uint64_t spreadLimbs(uint64_t value)
{
    constexpr uint64_t lowHalf = (uint64_t{1} << 2 * shortLimbBits) - 1;
    constexpr uint64_t lowLimbs = shortLimbMask << 32 | shortLimbMask;
    const uint64_t halves = (value & lowHalf) | (value & lowHalf << 2 * shortLimbBits) << (32 - 2 * shortLimbBits);
    return (halves & lowLimbs) | (halves & lowLimbs << shortLimbBits) << (16 - shortLimbBits);
}

// A number in short limbs, in room of its own.
struct ShortLimbs
{
    uint16_t room[limbMargin + mostShortLimbs + limbsPerGroup + limbMargin];
    // Without the zeros that fill up a group.
    size_t size;

    MP_INLINE const uint16_t* limbs() const { return room + limbMargin; }

    MP_INLINE void clearBelow() { memset(room, 0, limbMargin * sizeof(uint16_t)); }

    // Limbs from "first" on become zero, to the end of the margin behind "end".
    MP_INLINE void clear(size_t first, size_t end)
    {
        memset(room + limbMargin + first, 0, (end - first + limbMargin) * sizeof(uint16_t));
    }

    // Takes a[0..n) as limbs from "first" on, filled up to whole groups; returns where these end. With swapped pairs,
    // limb i stands where i ^ 1 would.
    template <bool isSwapped>
    MP_INLINE size_t put(size_t first, const mpDigit a[], size_t n)
    {
        constexpr uint64_t everyOther = 0x0000FFFF0000FFFFU;
        unsigned char octets[(longestForShortLimbs + 1) * octetsPerDigit + sizeof(uint64_t) + octetsPerGroup];
        for (size_t i = 0; isBigEndian && i < n; i++)
        {
            const mpDigit digit = __builtin_bswap32(a[i]);
            memcpy(octets + i * octetsPerDigit, &digit, sizeof(digit));
        }
        if (!isBigEndian)
        {
            memcpy(octets, a, n * octetsPerDigit);
        }
        memset(octets + n * octetsPerDigit, 0, sizeof(uint64_t) + octetsPerGroup);
        const size_t end = first + (n * bitsPerDigit + shortLimbBits - 1) / shortLimbBits;
        const unsigned char* from = octets;
        size_t i = first;
        for (; i < end; i += limbsPerGroup, from += octetsPerGroup)
        {
            for (size_t half = 0; half < 2; half++)
            {
                uint64_t four = spreadLimbs(half == 0 ? loadOctets(from) : loadOctets(from + 6) >> 4);
                if (isSwapped != isBigEndian)
                {
                    four = (four >> 16 & everyOther) | (four & everyOther) << 16;
                }
                if (isBigEndian)
                {
                    four = four >> 32 | four << 32;
                }
                memcpy(room + limbMargin + i + 4 * half, &four, sizeof(four));
            }
        }
        return i;
    }

    // Limbs i and i + 1, for an even i.
    MP_INLINE void setLimbs(size_t i, uint64_t unit)
    {
        const auto lower = static_cast<mpDigit>(unit & shortLimbMask);
        const auto upper = static_cast<mpDigit>(unit >> shortLimbBits);
        setPair(i, lower, upper);
    }

    // The same where pairs are swapped.
    MP_INLINE void setSwappedLimbs(size_t i, uint64_t unit)
    {
        const auto lower = static_cast<mpDigit>(unit & shortLimbMask);
        const auto upper = static_cast<mpDigit>(unit >> shortLimbBits);
        setPair(i, upper, lower);
    }

    // At once, so that what loads both does not have to wait.
    MP_INLINE void setPair(size_t i, mpDigit first, mpDigit second)
    {
        const mpDigit pair = isBigEndian ? first << bitsPerHalf | second : second << bitsPerHalf | first;
        memcpy(room + limbMargin + i, &pair, sizeof(pair));
    }

    // Takes a[0..n) and nothing else.
    template <bool isSwapped>
    MP_INLINE void take(const mpDigit a[], size_t n)
    {
        clearBelow();
        size = (n * bitsPerDigit + shortLimbBits - 1) / shortLimbBits;
        const size_t end = put<isSwapped>(0, a, n);
        clear(end, end);
    }
};

// What a processor does with pairs of limbs: load them, put one pair into all lanes, and multiplyAdd, which adds the
// products of both halves of each lane to its sum.
template <class Vector>
struct PlainPairs
{
    static constexpr bool isByRows = false;
    using Type = Vector;
    static MP_INLINE void load(Vector& lanes, const uint16_t limbs[]) { memcpy(&lanes, limbs, sizeof(Vector)); }
    static MP_INLINE void repeat(Vector& lanes, const uint16_t limbs[])
    {
        mpDigit pair = 0;
        memcpy(&pair, limbs, sizeof(pair));
        lanes = pair - Vector{};
    }
    static MP_INLINE void multiplyAdd(Vector& sums, const Vector& a, const Vector& b)
    {
        sums += (a & halfMask) * (b & halfMask) + (a >> bitsPerHalf) * (b >> bitsPerHalf);
    }
    // For squares: adds the products of wide lanes, which have 32 bits at most.
    using Wide = typename Widened<Vector>::Type;
    static MP_INLINE void multiplyAddWide(Wide& sums, const Wide& a, const Wide& b) { sums += a * b; }
};

// For processors that multiply limbs by one and the same limb and add the products to sums of twice the width: load
// takes eight limbs, loadPair two, and multiplyAdd adds the products of the lower four to low and of the upper four to
// high. The factor is limb "row" of v, where pairs are swapped.
struct PlainRows
{
    // Unused where no other form asks for it, of which clang warns.
    [[maybe_unused]] static constexpr bool isByRows = true;
    using Type = Vector16;
    using Limbs __attribute__((vector_size(16))) = uint16_t;
    static MP_INLINE void load(Limbs& limbs, const uint16_t from[]) { memcpy(&limbs, from, sizeof(Limbs)); }
    static MP_INLINE void loadPair(Limbs& limbs, const uint16_t from[])
    {
        mpDigit pair = 0;
        memcpy(&pair, from, sizeof(pair));
        limbs = reinterpret_cast<Limbs>(Vector16{pair});
    }
    template <size_t row>
    static MP_INLINE void multiplyAdd(Vector16& low, Vector16& high, const Limbs& u, const Limbs& v)
    {
        const mpDigit factor = v[row ^ 1];
        low += Vector16{u[0], u[1], u[2], u[3]} * factor;
        high += Vector16{u[4], u[5], u[6], u[7]} * factor;
    }
    using Wide = PlainPairs<Vector16>::Wide;
    static MP_INLINE void multiplyAddWide(Wide& sums, const Wide& a, const Wide& b)
    {
        PlainPairs<Vector16>::multiplyAddWide(sums, a, b);
    }
};

#if defined(MP_EMULATED)

#define MP_HAS_NEON 1

using PairsNeon = PlainRows;

#elif defined(__ARM_NEON) && !defined(__ARM_BIG_ENDIAN)

#define MP_HAS_NEON 1

struct PairsNeon : PlainRows
{
    template <size_t row>
    static MP_INLINE void multiplyAdd(Vector16& low, Vector16& high, const Limbs& u, const Limbs& v)
    {
        const auto limbs = reinterpret_cast<uint16x8_t>(u);
        const auto factors = reinterpret_cast<uint16x8_t>(v);
        constexpr size_t lane = row ^ 1;
        const uint16x4_t four = lane < 4 ? vget_low_u16(factors) : vget_high_u16(factors);
        low = reinterpret_cast<Vector16>(
            vmlal_lane_u16(reinterpret_cast<uint32x4_t>(low), vget_low_u16(limbs), four, lane % 4));
        high = reinterpret_cast<Vector16>(
            vmlal_lane_u16(reinterpret_cast<uint32x4_t>(high), vget_high_u16(limbs), four, lane % 4));
    }
    static MP_INLINE void multiplyAddWide(Wide& sums, const Wide& a, const Wide& b)
    {
        const uint32x2_t first = vmovn_u64(reinterpret_cast<uint64x2_t>(a));
        const uint32x2_t second = vmovn_u64(reinterpret_cast<uint64x2_t>(b));
        sums = reinterpret_cast<Wide>(vmlal_u32(reinterpret_cast<uint64x2_t>(sums), first, second));
    }
};

#else

#define MP_HAS_NEON 0

#endif

#if defined(__x86_64__)

struct Pairs128Bits : PlainPairs<Vector16>
{
    static MP_INLINE void load(Vector16& lanes, const uint16_t limbs[])
    {
        PlainPairs<Vector16>::load(lanes, limbs);
        keep(lanes);
    }
    static MP_INLINE void repeat(Vector16& lanes, const uint16_t limbs[])
    {
        PlainPairs<Vector16>::repeat(lanes, limbs);
        keep(lanes);
    }
    static MP_INLINE void multiplyAdd(Vector16& sums, const Vector16& a, const Vector16& b)
    {
        // NOLINTNEXTLINE(portability-simd-intrinsics)
        const __m128i products = _mm_madd_epi16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b));
        sums += reinterpret_cast<Vector16>(products);
    }
    static MP_INLINE void multiplyAddWide(Wide& sums, const Wide& a, const Wide& b)
    {
        // NOLINTNEXTLINE(portability-simd-intrinsics)
        const __m128i products = _mm_mul_epu32(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b));
        sums += reinterpret_cast<Wide>(products);
    }

private:
    // The compiler takes it for changed, and does not load it once more.
    static MP_INLINE void keep(Vector16& lanes) { asm("" : "+x"(lanes)); }
};

#else

using Pairs128Bits = PlainPairs<Vector16>;

#endif

#if defined(MP_EMULATED)

#define MP_HAS_WIDE_PAIRS 1

using Pairs256Bits = PlainPairs<Vector32>;
using Pairs512Bits = PlainPairs<Vector64>;

#elif defined(__x86_64__) && !defined(__clang__)

// In assembly: the compiler inlines an intrinsic only into a function that is compiled for its processor, and what is
// between that function and this one is for all processors. clang does not take such assembly, either.
#define MP_HAS_WIDE_PAIRS 1

template <class Vector>
struct __attribute__((may_alias)) Octets
{
    unsigned char octets[sizeof(Vector)];
};

struct Pairs256Bits
{
    static constexpr bool isByRows = false;
    using Type = Vector32;
    static MP_INLINE void load(Vector32& lanes, const uint16_t limbs[])
    {
        asm("vmovdqu %1, %0" : "=x"(lanes) : "m"(*reinterpret_cast<const Octets<Vector32>*>(limbs)));
    }
    static MP_INLINE void repeat(Vector32& lanes, const uint16_t limbs[])
    {
        asm("vpbroadcastd %1, %0" : "=x"(lanes) : "m"(*reinterpret_cast<const Octets<mpDigit>*>(limbs)));
    }
    static MP_INLINE void multiplyAdd(Vector32& sums, const Vector32& a, const Vector32& b)
    {
        Vector32 products;
        asm("vpmaddwd %2, %1, %0" : "=x"(products) : "x"(a), "x"(b));
        sums += products;
    }
    using Wide = Widened<Vector32>::Type;
    static MP_INLINE void multiplyAddWide(Wide& sums, const Wide& a, const Wide& b)
    {
        Wide products;
        asm("vpmuludq %2, %1, %0" : "=x"(products) : "x"(a), "x"(b));
        sums += products;
    }
};

struct Pairs512Bits
{
    static constexpr bool isByRows = false;
    using Type = Vector64;
    static MP_INLINE void load(Vector64& lanes, const uint16_t limbs[])
    {
        asm("vmovdqu32 %1, %0" : "=v"(lanes) : "m"(*reinterpret_cast<const Octets<Vector64>*>(limbs)));
    }
    static MP_INLINE void repeat(Vector64& lanes, const uint16_t limbs[])
    {
        asm("vpbroadcastd %1, %0" : "=v"(lanes) : "m"(*reinterpret_cast<const Octets<mpDigit>*>(limbs)));
    }
    static MP_INLINE void multiplyAdd(Vector64& sums, const Vector64& a, const Vector64& b)
    {
        Vector64 products;
        asm("vpmaddwd %2, %1, %0" : "=v"(products) : "v"(a), "v"(b));
        sums += products;
    }
};

#else

#define MP_HAS_WIDE_PAIRS 0

#endif

// sums += the even lanes, or the odd ones, as wide lanes, times 2^bits.
template <class Wide, class Vector>
MP_INLINE void addEveryOther(Wide& sums, const Vector& lanes, size_t isOdd, uint64_t bits)
{
    const auto pairs = reinterpret_cast<Wide>(lanes);
    sums += ((isOdd != 0) != isBigEndian ? pairs >> uint64_t{bitsPerDigit} : pairs & uint64_t{allOnes}) << bits;
}

// a[0], a[2] and so on += even; a[1], a[3] and so on += odd.
template <class Wide>
MP_INLINE void addInterleaved(uint64_t a[], const Wide& even, const Wide& odd)
{
    constexpr size_t width = sizeof(Wide) / sizeof(uint64_t);
    Wide sums[2];
    memcpy(sums, a, sizeof(sums));
    if constexpr (width == 2)
    {
        sums[0] += __builtin_shufflevector(even, odd, 0, 2);
        sums[1] += __builtin_shufflevector(even, odd, 1, 3);
    }
    else if constexpr (width == 4)
    {
        sums[0] += __builtin_shufflevector(even, odd, 0, 4, 1, 5);
        sums[1] += __builtin_shufflevector(even, odd, 2, 6, 3, 7);
    }
    else
    {
        static_assert(width == 8, "vectors have 128, 256 or 512 bits");
        sums[0] += __builtin_shufflevector(even, odd, 0, 8, 1, 9, 2, 10, 3, 11);
        sums[1] += __builtin_shufflevector(even, odd, 4, 12, 5, 13, 6, 14, 7, 15);
    }
    memcpy(a, sums, sizeof(sums));
}

// Sums of columns of limbs. Element i belongs to columns 2i and 2i + 1: even and above count 2^(26i), odd counts
// 2^(26i + 13).
struct LimbSums
{
    static constexpr size_t most = mostShortLimbs + mostColumnsAtOnce;
    mpDigit even[most];
    mpDigit odd[most];
    mpDigit above[most];
};

// The columns that are summed up at once, at most wanted: some blocks of the columns of two vectors, which hold the
// even and the odd ones.
template <class Pairs, size_t wanted = mostColumnsAtOnce>
struct LimbColumns
{
    using Vector = typename Pairs::Type;
    static constexpr size_t lanes = sizeof(Vector) / sizeof(mpDigit);
    static constexpr size_t blocks = std::min<size_t>(4, wanted / (2 * lanes));
    static constexpr size_t columns = blocks * 2 * lanes;

    // What of the sums belongs to the limb of the column, and what is above it.
    Vector evenLow[blocks];
    Vector evenHigh[blocks];
    Vector oddLow[blocks];
    Vector oddHigh[blocks];
    // Sums that are not split yet, and how many pairs of products they still have room for. Where pairs go by rows,
    // "even" has the lower half of the block's columns and "odd" the upper half.
    Vector even[blocks];
    Vector odd[blocks];
    size_t pairsLeft;

    MP_INLINE void clear()
    {
#pragma GCC unroll 4
        for (size_t k = 0; k < blocks; k++)
        {
            evenLow[k] = evenHigh[k] = oddLow[k] = oddHigh[k] = even[k] = odd[k] = Vector{};
        }
        pairsLeft = pairsPerLane;
    }

    MP_INLINE void split()
    {
        constexpr auto mask = static_cast<mpDigit>(shortLimbMask);
        constexpr auto bits = static_cast<mpDigit>(shortLimbBits);
#pragma GCC unroll 4
        for (size_t k = 0; k < blocks; k++)
        {
            if constexpr (Pairs::isByRows)
            {
                const Vector low = even[k];
                even[k] = __builtin_shufflevector(low, odd[k], 0, 2, 4, 6);
                odd[k] = __builtin_shufflevector(low, odd[k], 1, 3, 5, 7);
            }
            evenLow[k] += even[k] & mask;
            evenHigh[k] += even[k] >> bits;
            oddLow[k] += odd[k] & mask;
            oddHigh[k] += odd[k] >> bits;
            even[k] = odd[k] = Vector{};
        }
        pairsLeft = pairsPerLane;
    }

    // What addRows does, for rows that the sums have room for.
    template <size_t First, size_t End>
    static MP_INLINE void addPairsOfRows(Vector evens[], Vector odds[], const uint16_t* u, const uint16_t* v,
                                         std::ptrdiff_t& j, std::ptrdiff_t stop)
    {
        for (; j < stop; j += 2)
        {
            Vector belowLimbs;
            Vector ownLimbs;
            Pairs::load(belowLimbs, u - j - 1);
            Pairs::load(ownLimbs, u - j);
#pragma GCC unroll 4
            for (size_t k = First; k < End; k++)
            {
                Vector everywhere;
                Pairs::repeat(everywhere, v + j + static_cast<std::ptrdiff_t>(2 * lanes * k));
                Pairs::multiplyAdd(evens[k], belowLimbs, everywhere);
                Pairs::multiplyAdd(odds[k], ownLimbs, everywhere);
            }
        }
    }

    // Rows "row" to rows - 1. factors are the limbs of v for each block.
    template <size_t First, size_t End, size_t row, size_t rows, class Limbs>
    static MP_INLINE void multiplyRows(Vector lows[], Vector highs[], const uint16_t* u, const Limbs factors[])
    {
        Limbs limbs;
        Pairs::load(limbs, u - row);
#pragma GCC unroll 4
        for (size_t k = First; k < End; k++)
        {
            Pairs::template multiplyAdd<row>(lows[k], highs[k], limbs, factors[k]);
        }
        if constexpr (row + 1 < rows)
        {
            multiplyRows<First, End, row + 1, rows>(lows, highs, u, factors);
        }
    }

    // The same where pairs go by rows. Eight at a time, so that a limb of v need not be loaded for itself.
    template <size_t First, size_t End>
    static MP_INLINE void addSingleRows(Vector lows[], Vector highs[], const uint16_t* u, const uint16_t* v,
                                        std::ptrdiff_t& j, std::ptrdiff_t stop)
    {
        constexpr std::ptrdiff_t atOnce = 8;
        typename Pairs::Limbs factors[blocks];
        for (; j + atOnce <= stop; j += atOnce)
        {
#pragma GCC unroll 4
            for (size_t k = First; k < End; k++)
            {
                Pairs::load(factors[k], v + j + static_cast<std::ptrdiff_t>(2 * lanes * k));
            }
            multiplyRows<First, End, 0, atOnce>(lows, highs, u - j, factors);
        }
        for (; j < stop; j += 2)
        {
#pragma GCC unroll 4
            for (size_t k = First; k < End; k++)
            {
                Pairs::loadPair(factors[k], v + j + static_cast<std::ptrdiff_t>(2 * lanes * k));
            }
            multiplyRows<First, End, 0, 2>(lows, highs, u - j, factors);
        }
    }

    // Adds rows j to end - 1 in blocks First to End - 1. u is where the limbs for row 0 of the first column are. Leaves
    // j at the next row.
    template <size_t First, size_t End>
    MP_INLINE void addRows(const uint16_t* u, const uint16_t* v, std::ptrdiff_t& j, std::ptrdiff_t end)
    {
        while (j < end)
        {
            const std::ptrdiff_t stop = std::min(end, j + static_cast<std::ptrdiff_t>(2 * pairsLeft));
            pairsLeft -= static_cast<size_t>(stop - j + 1) / 2;
            // Copies, which the compiler keeps in registers.
            Vector evens[blocks];
            Vector odds[blocks];
#pragma GCC unroll 4
            for (size_t k = First; k < End; k++)
            {
                evens[k] = even[k];
                odds[k] = odd[k];
            }
            if constexpr (Pairs::isByRows)
            {
                addSingleRows<First, End>(evens, odds, u, v, j, stop);
            }
            else
            {
                addPairsOfRows<First, End>(evens, odds, u, v, j, stop);
            }
#pragma GCC unroll 4
            for (size_t k = First; k < End; k++)
            {
                even[k] = evens[k];
                odd[k] = odds[k];
            }
            if (pairsLeft == 0)
            {
                split();
            }
        }
    }

    // Adds the columns from "first" on of u * v. v has swapped pairs.
    MP_INLINE void add(const uint16_t u[], size_t un, const uint16_t v[], size_t vn, size_t first)
    {
        // Block k takes row j + step * k, so all blocks multiply the same limbs of u. Rows below the first one and
        // above the last one are zero; most of them are left out.
        constexpr auto step = static_cast<std::ptrdiff_t>(2 * lanes);
        constexpr auto reach = step * static_cast<std::ptrdiff_t>(blocks - 1);
        const auto from = static_cast<std::ptrdiff_t>(first);
        const auto rows = static_cast<std::ptrdiff_t>(vn);
        const uint16_t* own = u + first;
        const std::ptrdiff_t end = std::min(rows, from + step);
        std::ptrdiff_t j = std::max(-reach, from - static_cast<std::ptrdiff_t>(un)) & ~std::ptrdiff_t{1};
        if constexpr (blocks == 4)
        {
            addRows<3, 4>(own, v, j, std::min(-2 * step, end));
            addRows<2, 4>(own, v, j, std::min(-step, end));
        }
        if constexpr (blocks >= 2)
        {
            addRows<1, blocks>(own, v, j, std::min(std::ptrdiff_t{0}, end));
        }
        addRows<0, blocks>(own, v, j, std::min(std::max(rows - reach, std::ptrdiff_t{0}), end));
        if constexpr (blocks == 4)
        {
            addRows<0, 3>(own, v, j, std::min(std::max(rows - 2 * step, std::ptrdiff_t{0}), end));
            addRows<0, 2>(own, v, j, std::min(std::max(rows - step, std::ptrdiff_t{0}), end));
        }
        if constexpr (blocks >= 2)
        {
            addRows<0, 1>(own, v, j, end);
        }
    }

    // Adds the sums to units of two columns.
    MP_INLINE void addTo(uint64_t units[]) const
    {
        using Wide = typename Widened<Vector>::Type;
#pragma GCC unroll 4
        for (size_t k = 0; k < blocks; k++)
        {
            const Vector between = evenHigh[k] + oddLow[k];
            Wide sums[2] = {};
            for (size_t i = 0; i < 2; i++)
            {
                addEveryOther(sums[i], evenLow[k], i, 0);
                addEveryOther(sums[i], between, i, shortLimbBits);
                addEveryOther(sums[i], oddHigh[k], i, unitBits);
            }
            addInterleaved(units + lanes * k, sums[0], sums[1]);
        }
    }

    // Stores the sums, columns from "first" on. What is above the limb of an odd column counts as the next even column.
    // above[0] is left alone.
    MP_INLINE void put(LimbSums& sums, size_t first) const
    {
#pragma GCC unroll 4
        for (size_t k = 0; k < blocks; k++)
        {
            const size_t i = first / 2 + lanes * k;
            const Vector aboveEven = evenHigh[k] + oddLow[k];
            memcpy(sums.even + i, &evenLow[k], sizeof(Vector));
            memcpy(sums.odd + i, &aboveEven, sizeof(Vector));
            memcpy(sums.above + i + 1, &oddHigh[k], sizeof(Vector));
        }
    }
};

// A lane is split that many times at most, into 13 bits and 19 bits. So sums of these stay below 2^23, and what they
// amount to, four columns at a time, stays below 2^64.
constexpr uint64_t mostSplits = mostShortLimbs / (2 * pairsPerLane) + 1;
static_assert((mostSplits + 1) << (bitsPerDigit - shortLimbBits) <= uint64_t{1} << 23, "sums of parts stay short");

// octets = the number that the sums of so many columns make, the lowest octet first: four columns are 52 bits. Returns
// what is carried to the column above these.
template <class Vector>
MP_INLINE uint64_t takeOctets(unsigned char octets[], const LimbSums& sums, size_t columns)
{
    using Wide = typename Widened<Vector>::Type;
    uint64_t fours[LimbSums::most / 2];
    for (size_t i = 0; i < columns / 2; i += sizeof(Vector) / sizeof(mpDigit))
    {
        Vector even;
        Vector odd;
        Vector above;
        memcpy(&even, sums.even + i, sizeof(Vector));
        memcpy(&odd, sums.odd + i, sizeof(Vector));
        memcpy(&above, sums.above + i, sizeof(Vector));
        const auto evens = reinterpret_cast<Wide>(even + above);
        const auto odds = reinterpret_cast<Wide>(odd);
        const Wide lowEvens = isBigEndian ? evens >> uint64_t{bitsPerDigit} : evens & uint64_t{allOnes};
        const Wide highEvens = isBigEndian ? evens & uint64_t{allOnes} : evens >> uint64_t{bitsPerDigit};
        const Wide lowOdds = isBigEndian ? odds >> uint64_t{bitsPerDigit} : odds & uint64_t{allOnes};
        const Wide highOdds = isBigEndian ? odds & uint64_t{allOnes} : odds >> uint64_t{bitsPerDigit};
        const Wide four = lowEvens + (lowOdds << uint64_t{shortLimbBits}) + (highEvens << uint64_t{2 * shortLimbBits}) +
                          (highOdds << uint64_t{3 * shortLimbBits});
        memcpy(fours + i / 2, &four, sizeof(four));
    }
    constexpr uint64_t bits = 4 * shortLimbBits;
    constexpr uint64_t mask = (uint64_t{1} << bits) - 1;
    uint64_t carry = 0;
    for (size_t i = 0; i < columns / 4; i += 2, octets += octetsPerGroup)
    {
        const uint64_t low = fours[i] + carry;
        const uint64_t high = fours[i + 1] + (low >> bits);
        carry = high >> bits;
        storeOctets(octets, (low & mask) | high << bits);
        storeOctets(octets + sizeof(uint64_t), (high & mask) >> (64 - bits));
    }
    return carry + sums.above[columns / 2];
}

MP_INLINE void lowOctetsFromDigits(unsigned char octets[], const mpDigit a[], size_t n)
{
    for (size_t i = 0; isBigEndian && i < n; i++)
    {
        const mpDigit digit = __builtin_bswap32(a[i]);
        memcpy(octets + i * octetsPerDigit, &digit, sizeof(digit));
    }
    if (!isBigEndian)
    {
        memcpy(octets, a, n * octetsPerDigit);
    }
}

// a[0..n) = the number in octets, the lowest octet first.
MP_INLINE void digitsFromLowOctets(mpDigit a[], size_t n, const unsigned char octets[])
{
    memcpy(a, octets, n * octetsPerDigit);
    for (size_t i = 0; isBigEndian && i < n; i++)
    {
        a[i] = __builtin_bswap32(a[i]);
    }
}

// w[0..wn) = u * v modulo B^wn, neither factor longer than a block. wn is at most un + vn.
template <class Pairs>
MP_INLINE void multiplyShortLimbs(mpDigit w[], size_t wn, const mpDigit u[], size_t un, const mpDigit v[], size_t vn)
{
    ShortLimbs uLimbs;
    ShortLimbs vLimbs;
    uLimbs.take<false>(u, un);
    vLimbs.take<true>(v, vn);
    LimbSums sums;
    sums.above[0] = 0;
    size_t columns = 0;
    for (; columns * shortLimbBits < wn * bitsPerDigit; columns += LimbColumns<Pairs>::columns)
    {
        LimbColumns<Pairs> due;
        due.clear();
        due.add(uLimbs.limbs(), uLimbs.size, vLimbs.limbs(), vLimbs.size, columns);
        due.split();
        due.put(sums, columns);
    }
    unsigned char octets[LimbSums::most * 2 / limbsPerGroup * octetsPerGroup + sizeof(uint64_t)];
    takeOctets<typename Pairs::Type>(octets, sums, columns);
    digitsFromLowOctets(w, wn, octets);
}

// w[0..un+vn) = u * v.
template <class Pairs>
MP_INLINE void multiplyByShortLimbsWith(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn)
{
    if (std::max(un, vn) <= longestForShortLimbs)
    {
        multiplyShortLimbs<Pairs>(w, un + vn, u, un, v, vn);
        return;
    }
    setZero(w, un + vn);
    for (size_t i = 0; i < un; i += longestForShortLimbs)
    {
        const size_t in = std::min(un - i, longestForShortLimbs);
        for (size_t j = 0; j < vn; j += longestForShortLimbs)
        {
            const size_t jn = std::min(vn - j, longestForShortLimbs);
            mpDigit block[2 * longestForShortLimbs];
            multiplyShortLimbs<Pairs>(block, in + jn, u + i, in, v + j, jn);
            // The sum of the blocks so far is not more than the product, so the carry ends within it.
            mpDigit* above = w + i + j + in + jn;
            for (mpDigit carry = add(w + i + j, w + i + j, block, in + jn); carry != 0; above++)
            {
                *above += carry;
                carry = *above == 0 ? 1 : 0;
            }
        }
    }
}

// A divisor v of n digits is multiplied by a number so that B^(n+2) is hardly more than the product. Then a quotient
// digit can be read off: it is the highest digit of what is left of the dividend, multiplied by the same number (the
// method is Svoboda's, 1963).
//
// The factor f. Let H be one more than the three highest digits of v. As the top bit of v is set, B^3/2 < H <= B^3. For
// H = B^3 the factor is B^2, else f = floor((B^5 - 1) / H): at least B^2 and less than 2 B^2, so its highest digit is
// 1.
//
// The complement c = B^(n+2) - f v. Write f = (B^5 - 1 - rest) / H with rest < H, and v = (H - 1 + part) B^(n-3) with
// part < 1. Then
//
//   c  =  (1 + rest + (B^5 - 1 - rest) (1 - part) / H) B^(n-3),
//
// which is above 0, and below (H + B^5 / H) B^(n-3), since rest is at most H - 1. That is less than B^n unless H
// exceeds B^3 - B^5 / H, which is about B^3 - B^2: at most one divisor in 2^31 has such an H, and scaleWith looks at c
// itself. It returns false when c has more than n digits. With H = B^3, c is at most B^2 B^(n-3).
//
// The lowest digits of c may be left out (skipped of them, 0 or 1): digit a of the quotient times that digit counts
// column a, which is below n; and columns below n are missing from the window anyway (see divideFromTheTop).
struct Scaling
{
    // The number. Its highest digit is 1.
    mpDigit factor[3];
    // B^(n+2) - factor * v, but for its lowest digits. It is less than B^n.
    const mpDigit* complement;
    size_t skipped;
};

// The top bit of v is set. complement gets n - skipped digits. False when n digits are not enough, which happens to
// one divisor of some 2^31.
template <class Vector>
MP_INLINE bool scaleWith(Scaling& scaling, mpDigit complement[], size_t skipped, const mpDigit v[], size_t n)
{
    // The three highest digits of v, and one added: factor = (B^5 - 1) / these.
    mpDigit divisor[3];
    mpDigit carry = 1;
    for (size_t i = 0; i < 3; i++)
    {
        divisor[i] = v[n - 3 + i] + carry;
        carry = divisor[i] < carry ? 1 : 0;
    }
    setZero(scaling.factor, 2);
    scaling.factor[2] = 1;
    if (carry == 0)
    {
        mpDigit dividend[4] = {allOnes, allOnes, ~divisor[0], ~divisor[1]};
        divideByRows(scaling.factor, dividend, ~divisor[2], divisor, 3, 1);
    }
    scaling.complement = complement;
    scaling.skipped = skipped;

    // The complement is what factor * v lacks: all its digits inverted, and one added.
    const Slices slices(v, n);
    uint64_t carried = 0;
    bool isEnough = false;
    carry = 1;
    for (size_t first = 0; first <= n; first += columnCount)
    {
        Columns sums = {};
        addColumns<Vector>(sums, slices, scaling.factor, firstRow(first, n), 3, first);
        mpDigit digits[columnCount];
        takeDigits(digits, carried, sums);
        for (size_t i = 0; i < columnCount && first + i <= n; i++)
        {
            const mpDigit digit = ~digits[i] + carry;
            carry = digit < carry ? 1 : 0;
            if (first + i == n)
            {
                isEnough = digit == 0 && carry == 0;
            }
            else if (first + i >= skipped)
            {
                complement[first + i - skipped] = digit;
            }
        }
    }
    return isEnough;
}

// A block of the quotient has that many digits, which are whole limbs, so that the quotient is cut into limbs block by
// block.
constexpr size_t quotientDigitsPerBlock = 13;
constexpr size_t limbsPerBlockOfQuotient = 32;
static_assert(quotientDigitsPerBlock * bitsPerDigit == limbsPerBlockOfQuotient * shortLimbBits,
              "a block has whole limbs");

// What is due to the next columns for the known digits of a quotient, by limbs of 13 bits.
//
// With j the first unknown digit of the quotient q and w the complement of n digits, these are columns j + n - 13 to
// j + n - 1. The lowest digit of the block that j begins is j - 12, so the columns are n - 1 digits above it; hence w
// is shifted so that its digit n - 1 begins with a limb. Limbs of the last block of q come first; limbs that are not
// known yet are zero.
//
// Limbs lie across digits, so products of limbs in the columns wanted are not the products of digits in these columns:
// some were counted when the columns above were summed up, and some of those were not. That concerns the digits of the
// block before alone, for which products of digits were counted, since it is limbs for all digits before. So the
// products of limbs of that block that count a column above are added, and its products of digits that were counted are
// subtracted; both modulo B^2, for the difference is short.
template <class Pairs>
class DueByShortLimbs
{
public:
    // w[0..wn) are the digits of the complement, of which the top one is its digit n - 1. The quotient has qn digits.
    // None has more than a block.
    MP_INLINE DueByShortLimbs(const mpDigit w[], size_t wn, size_t qn)
        : _belowTop(((wn - 1) * bitsPerDigit + shortLimbBits - 1) / shortLimbBits),
          _end((qn + quotientDigitsPerBlock - 1) / quotientDigitsPerBlock * limbsPerBlockOfQuotient),
          _known(_end)
    {
        mpDigit shifted[longestForShortLimbs + 1];
        const size_t bits = _belowTop * shortLimbBits - (wn - 1) * bitsPerDigit;
        shifted[wn] = shiftLeftBits(shifted, w, static_cast<uint32_t>(bits), wn);
        _complement.take<false>(shifted, wn + 1);
        _quotient.clearBelow();
        _quotient.clear(0, _end);
    }

    // digits[0..13) = the columns, lowest first. Returns what is carried to the column above these, modulo 2^64; it is
    // negative when what the columns below would carry is missed. counted is the sum of the products of digits of the
    // block before that count column j + n or j + n + 1, modulo B^2.
    MP_INLINE uint64_t next(mpDigit digits[quotientDigitsPerBlock], uint64_t counted)
    {
        if (_known == _end)
        {
            return 0;
        }
        unsigned char octets[limbsPerBlockOfQuotient / limbsPerGroup * octetsPerGroup + sizeof(uint64_t)];
        sum(octets, _known, limbsPerBlockOfQuotient, _belowTop);
        const uint64_t countedHere = loadOctets(octets);
        const uint64_t carry = sum(octets, 0, _end, _belowTop + _known - limbsPerBlockOfQuotient);
        digitsFromLowOctets(digits, quotientDigitsPerBlock, octets);
        return carry + countedHere - counted;
    }

    // The next 13 digits of the quotient are known: q[0..13).
    MP_INLINE void take(const mpDigit q[])
    {
        _known -= limbsPerBlockOfQuotient;
        _quotient.template put<true>(_known, q, quotientDigitsPerBlock);
    }

private:
    // octets = 32 columns from "first" on of the product of the complement and so many limbs of the quotient. Returns
    // what is carried. The limbs are whole blocks, so that no block of columns takes limbs beside them.
    MP_INLINE uint64_t sum(unsigned char octets[], size_t begin, size_t count, size_t first) const
    {
        LimbColumns<Pairs, limbsPerBlockOfQuotient> columns;
        columns.clear();
        columns.add(_complement.limbs(), _complement.size, _quotient.limbs() + begin, count, first);
        columns.split();
        LimbSums sums;
        sums.above[0] = 0;
        columns.put(sums, 0);
        return takeOctets<typename Pairs::Type>(octets, sums, limbsPerBlockOfQuotient);
    }

    // Limbs of the complement below its top digit, and limbs of the quotient: all, and from where on they are known.
    size_t _belowTop;
    size_t _end;
    size_t _known;
    ShortLimbs _complement;
    ShortLimbs _quotient;
};

// Instead of pairs of limbs, where columns of digits are used.
struct NoPairs
{
};

template <>
class DueByShortLimbs<NoPairs>
{
public:
    DueByShortLimbs(const mpDigit[], size_t, size_t) {}
    uint64_t next(mpDigit[], uint64_t) { return 0; }
    void take(const mpDigit[]) {}
};

// Does what divideByRows does, for m < n. Of the multiplied dividend only two digits are known at any time; the others
// get what is due to them when they come into reach, column by column, and without what columns below would carry to
// them. So a quotient digit may be one too small, which is seen at the end or, when the next digit does not fit in a
// digit, at once: then the result is false, and r is untouched.
//
// What is left of the multiplied dividend. With u the dividend and q the digits of the quotient that are known, it is
// L = f u - q f v = f u - q B^(n+2) + q c. A digit q_j is read off at column j + n + 2 and left out of the window
// there; q_j c is then due to column j + n - 1 and those below it. What the window does not have is only ever due to
// it, so no digit is too large.
//
// What the window misses at the end, in units of its lower digit, which is column n + 1. "low" is not added: it has the
// low words of column n, which are summed up three times (due to f u, to q and to the last digits), below 2^33 in 2^14
// rows, and the low word of one more product: less than n / 2^13 + 7 units. Columns below n are missing as far as they
// are not settled: each has at most n products of q c and 3 of f u, so together they are less than (n + 3) (B - 1)^2
// (B^(n-1) + B^(n-2) + ...), less than n + 3 units. c times the last digit is less than one unit. As n is at least 16,
// all this is less than 2n + 8 units, which is "unknown". (By short limbs more is settled: below the columns summed up
// there are at most 2^10 products of 26 bits a column of limbs, together less than 2^24 units of the lowest of these
// columns, so less than one of a digit above it.)
//
// So L is at least the lower digit of the window, and less than that plus "unknown", in these units. If that is at most
// B - 1, then L < B^(n+2) - B^(n+1) < f v: the quotient is exact. If not, L differs from B^(n+2), and from f v, by at
// most unknown + 1 units of B^(n+1). As f is at least B^2, the remainder differs from v by at most (unknown + 1)
// B^(n-1), which is far below v / 2, for v is at least B^n / 2 and n at most 2^28. So after v is subtracted, the top
// bit tells whether the result is negative, and then the quotient was exact; else it was one too small, and not more.
//
// Pairs and ProductPairs say how limbs are multiplied, one to find the quotient and one to take its product with v.
template <class Vector, class Pairs, class ProductPairs>
MP_INLINE bool divideFromTheTop(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,
                                const Scaling& scaling)
{
    constexpr bool isByLimbs = !std::is_same<Pairs, NoPairs>::value;
    constexpr bool isProductByLimbs = !std::is_same<ProductPairs, NoPairs>::value;
    constexpr size_t step = isByLimbs ? quotientDigitsPerBlock : columnCount;
    DueByShortLimbs<Pairs> dueByLimbs(scaling.complement, n - scaling.skipped, m + 1);
    uint64_t counted = 0;
    const Slices u(r, n + m);
    const Slices w(scaling.complement, n - scaling.skipped);
    const mpDigit wTop = w.highEnd[columnCount - 1];

    // Columns j + n + 2 and j + n + 1 of what is left of factor * u, and the low halves of column j + n.
    const uint64_t second = product(scaling.factor[1], r[n + m - 1]);
    const uint64_t third = product(scaling.factor[0], top);
    uint64_t window = (uint64_t{top} << bitsPerDigit) + r[n + m - 1] + product(scaling.factor[1], top) +
                      (second >> bitsPerDigit) + (third >> bitsPerDigit);
    uint64_t low = uint64_t{r[n + m - 2]} + static_cast<mpDigit>(second) + static_cast<mpDigit>(third);
    for (size_t j = m; j > 0;)
    {
        // Columns j + n - 1 and below, with what is due to the digits of the quotient that are known.
        const size_t first = j + n - columnCount;
        Columns due = {};
        addColumns<Vector>(due, u, scaling.factor, 0, 3, first);
        if (isByLimbs)
        {
            mpDigit digits[quotientDigitsPerBlock] = {};
            const uint64_t above = dueByLimbs.next(digits, counted);
            if (above >> 63 != 0)
            {
                return false;
            }
            for (size_t k = 0; k < quotientDigitsPerBlock; k++)
            {
                const size_t i = columnCount - quotientDigitsPerBlock + k;
                due.low[i % 2][i / 2] += digits[k];
            }
            due.high[(columnCount - 1) % 2][(columnCount - 1) / 2] += above;
        }
        else
        {
            addColumns<Vector>(due, w, q, j + 1, m + 1, first - scaling.skipped);
        }
        Lanes<Vector> dueSince = {};
        for (size_t i = columnCount; i > columnCount - step && j > 0; j--)
        {
            i--;
            const auto qhat = static_cast<mpDigit>(window >> bitsPerDigit);
            q[j] = qhat;
            addLane(due, dueSince, i);
            addRow(dueSince, w.highEnd + (columnCount - 1 - i), qhat);

            const uint64_t ownDue = product(qhat, wTop);
            const uint64_t shifted = window << bitsPerDigit;
            window = shifted + low + due.high[i % 2][i / 2] + (ownDue >> bitsPerDigit);
            low = due.low[i % 2][i / 2] + static_cast<mpDigit>(ownDue);
            if (window < shifted)
            {
                return false;
            }
        }
        if (isByLimbs && j > 0)
        {
            dueByLimbs.take(q + j + 1);
            constexpr size_t i = columnCount - step;
            Columns sums = {};
            addLane(sums, dueSince, i);
            addLane(sums, dueSince, i + 1);
            counted = sums.low[i % 2][i / 2] + (sums.high[i % 2][i / 2] << bitsPerDigit) +
                      (sums.low[(i + 1) % 2][(i + 1) / 2] << bitsPerDigit);
        }
    }
    q[0] = static_cast<mpDigit>(window >> bitsPerDigit);

    // r -= q * v, in the n digits of a remainder.
    mpDigit borrow = 0;
    if constexpr (isProductByLimbs)
    {
        mpDigit digits[longestForShortLimbs];
        multiplyShortLimbs<ProductPairs>(digits, n, v, n, q, m + 1);
        subtract(r, r, digits, n);
    }
    const Slices slices(v, n);
    uint64_t carry = 0;
    for (size_t first = isProductByLimbs ? n : 0; first < n; first += columnCount)
    {
        Columns sums = {};
        addColumns<Vector>(sums, slices, q, 0, endOfRows(first, m + 1), first);
        mpDigit digits[columnCount];
        takeDigits(digits, carry, sums);
        for (size_t i = 0; i < columnCount && first + i < n; i++)
        {
            const uint64_t difference = uint64_t{r[first + i]} - digits[i] - borrow;
            borrow = static_cast<mpDigit>(difference >> bitsPerDigit) & 1;
            r[first + i] = static_cast<mpDigit>(difference);
        }
    }
    // What the window did not get is less than this.
    const size_t unknown = 2 * n + 8;
    if (static_cast<mpDigit>(window) > allOnes - unknown)
    {
        // The remainder differs from v by little, in either direction.
        subtract(r, r, v, n);
        if ((r[n - 1] & topBit) != 0)
        {
            add(r, r, v, n);
        }
        else
        {
            for (size_t j = 0; ++q[j] == 0;)
            {
                j++;
            }
        }
    }
    return true;
}

template <class Vector>
MP_INLINE bool divideByColumnsWith(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,
                                   const Scaling& scaling)
{
    return divideFromTheTop<Vector, NoPairs, NoPairs>(q, r, top, v, n, m, scaling);
}

// n is at most longestForShortLimbs.
template <class Vector, class Pairs>
MP_INLINE bool divideByShortLimbsWith(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,
                                      const Scaling& scaling)
{
    return divideFromTheTop<Vector, Pairs, Pairs>(q, r, top, v, n, m, scaling);
}

// The same, but the digits of the quotient are found by columns of digits.
template <class Vector, class Pairs>
MP_INLINE bool divideByBothWith(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,
                                const Scaling& scaling)
{
    return divideFromTheTop<Vector, NoPairs, Pairs>(q, r, top, v, n, m, scaling);
}

// Squares by units: products of units have 52 bits and are summed up in wide lanes. mpSquare need not work by halves of
// digits, as products do, and units are what a power has its value in.

constexpr size_t mostUnitsToSquare = mostShortLimbs / 2;
constexpr size_t unitRowsAtOnce = 4;
// A column has the doubled products of half as many pairs as there are units.
static_assert(uint64_t{mostUnitsToSquare} << 2 * unitBits <= uint64_t{1} << 61, "sums of a column stay below 2^61");

template <class Pairs>
MP_INLINE void multiplyAddUnits(typename Pairs::Wide& sum, const typename Pairs::Wide& factor, const uint64_t units[])
{
    typename Pairs::Wide others;
    memcpy(&others, units, sizeof(others));
    Pairs::multiplyAddWide(sum, factor, others);
}

// sums[0..2 * count + 8) = the columns of the square of units[0..count), which has room for three more, which are zero.
template <class Pairs>
MP_INLINE void squareUnits(uint64_t sums[], const uint64_t units[], size_t count)
{
    using Wide = typename Pairs::Wide;
    constexpr size_t width = sizeof(Wide) / sizeof(uint64_t);
    constexpr size_t margin = 8;
    uint64_t room[margin + mostUnitsToSquare + unitRowsAtOnce + margin];
    // What is still to be multiplied by the units below it, twice. Loads reach that far out of it.
    uint64_t* const doubled = room + margin;
    for (size_t i = 0; i < margin; i++)
    {
        room[i] = 0;
    }
    for (size_t i = 0; i < count; i++)
    {
        doubled[i] = 2 * units[i];
    }
    for (size_t i = count; i < count + unitRowsAtOnce + margin; i++)
    {
        doubled[i] = 0;
    }
    for (size_t i = 0; i < 2 * count + 2 * unitRowsAtOnce; i++)
    {
        sums[i] = 0;
    }
    for (size_t b = 0; b < count; b += unitRowsAtOnce)
    {
        const uint64_t* u = units + b;
        uint64_t* own = sums + 2 * b;
        own[0] += u[0] * u[0];
        own[1] += 2 * (u[0] * u[1]);
        own[2] += 2 * (u[0] * u[2]) + u[1] * u[1];
        own[3] += 2 * (u[0] * u[3] + u[1] * u[2]);
        own[4] += 2 * (u[1] * u[3]) + u[2] * u[2];
        own[5] += 2 * (u[2] * u[3]);
        own[6] += u[3] * u[3];
        for (size_t r = 0; r < unitRowsAtOnce; r++)
        {
            doubled[b + r] = 0;
        }
        const Wide first = u[0] - Wide{};
        const Wide second = u[1] - Wide{};
        const Wide third = u[2] - Wide{};
        const Wide fourth = u[3] - Wide{};
        for (size_t column = 2 * b + unitRowsAtOnce; column < b + unitRowsAtOnce - 1 + count; column += width)
        {
            Wide sum;
            memcpy(&sum, sums + column, sizeof(sum));
            const uint64_t* others = doubled + column - b;
            multiplyAddUnits<Pairs>(sum, first, others);
            multiplyAddUnits<Pairs>(sum, second, others - 1);
            multiplyAddUnits<Pairs>(sum, third, others - 2);
            multiplyAddUnits<Pairs>(sum, fourth, others - 3);
            memcpy(sums + column, &sum, sizeof(sum));
        }
    }
}

// units[0..count), whole fours of them, = a[0..n), and zeros above it.
MP_INLINE void unitsFromDigits(uint64_t units[], size_t count, const mpDigit a[], size_t n)
{
    unsigned char octets[2 * (longestForShortLimbs + 1) * octetsPerDigit + octetsPerGroup + sizeof(uint64_t)];
    lowOctetsFromDigits(octets, a, n);
    memset(octets + n * octetsPerDigit, 0, octetsPerGroup + sizeof(uint64_t));
    const size_t used = (n * bitsPerDigit + unitBits - 1) / unitBits;
    const unsigned char* from = octets;
    size_t i = 0;
    for (; i < used; i += 4, from += octetsPerGroup)
    {
        const uint64_t low = loadOctets(from);
        const uint64_t high = loadOctets(from + 6) >> 4;
        units[i] = low & unitMask;
        units[i + 1] = low >> unitBits & unitMask;
        units[i + 2] = high & unitMask;
        units[i + 3] = high >> unitBits & unitMask;
    }
    for (; i < count; i++)
    {
        units[i] = 0;
    }
}

// w[0..2n) = x * x, n at most longestForShortLimbs.
template <class Pairs>
MP_INLINE void squareByUnitsWith(mpDigit w[], const mpDigit x[], size_t n)
{
    uint64_t units[mostUnitsToSquare + unitRowsAtOnce];
    // Two zeros below the columns.
    uint64_t room[2 + 2 * mostUnitsToSquare + 4 * unitRowsAtOnce];
    uint64_t* const sums = room + 2;
    const size_t count = (n * bitsPerDigit + unitBits - 1) / unitBits;
    room[0] = room[1] = 0;
    unitsFromDigits(units, count, x, n);
    squareUnits<Pairs>(sums, units, count);

    unsigned char octets[2 * (longestForShortLimbs + 1) * octetsPerDigit + 2 * octetsPerGroup + sizeof(uint64_t)];
    unsigned char* to = octets;
    constexpr uint64_t mask = (uint64_t{1} << 2 * unitBits) - 1;
    // Each unit takes its share of three columns, so that what is carried is short.
    const auto unit = [&room](size_t i)
    { return (room[i + 2] & unitMask) + (room[i + 1] >> unitBits & unitMask) + (room[i] >> 2 * unitBits); };
    uint64_t carry = 0;
    for (size_t i = 0; i < 2 * count; i += 4, to += octetsPerGroup)
    {
        const uint64_t low = unit(i) + (unit(i + 1) << unitBits) + carry;
        const uint64_t high = unit(i + 2) + (unit(i + 3) << unitBits) + (low >> 2 * unitBits);
        carry = high >> 2 * unitBits;
        storeOctets(to, (low & mask) | high << 2 * unitBits);
        storeOctets(to + sizeof(uint64_t), (high & mask) >> (64 - 2 * unitBits));
    }
    digitsFromLowOctets(w, 2 * n, octets);
}

// For this processor and that many digits; see below.
void square(mpDigit w[], const mpDigit x[], size_t n);

// Powers by short limbs: the modulus, made ready, and the running value, both in limbs over all steps of a power.
//
// The divisor of every step is a multiple of the modulus, M = base^size - c. Its highest "spare" limbs are all ones,
// for c is the remainder of base^size by the modulus, and so has no more limbs than that; size is these and the spare
// ones. What is left of a dividend D, with the limbs q of the quotient that are known, is L = D - q base^size + q c. So
// a limb of the quotient can be read off at the top of what is left, and its product with c concerns columns at least
// "spare" below the one where it is read. That is why the sums of the columns are formed for "atOnce" limbs of the
// quotient at a time.
//
// Two limbs are a unit of 26 bits, S_i is the sum of the columns of unit i. A unit of the quotient is read off as
//
//   q_i  =  S_i + carry_i - carry_(i+1) 2^26,   carry_i = floor((S_(i-1) + floor(S_(i-2) / 2^26)) / 2^26),
//
// that is what is left of the digits above (nothing but minus the carry that they got in advance), the unit's own sum,
// and what two units below carry to it. These two get nothing from the limbs that are read at once, since the lower one
// is "spare" limbs below the highest of these. A sum has at most mostShortLimbs products of 26 bits for each of its
// columns, less than 2^50, and the dividend's own, less than 2^61 (see squareUnits): so it stays below 2^62, and what
// the units below S_(i-2) carry is less than 2^-15 of unit i - 1. Hence carry_i is what the exact carry is, or one
// less, and the rest is left for the next units: what is left after unit i is below base^size 2^(26 i) (1 + 2^-25). As
// S_(i-2) counts less than 2^10 in unit i, q_i is less than 2^26 + 2^11: its upper limb may be 2^13, with a lower one
// below 2^11. Both limbs together are never more than two full ones, which is what pairsPerLane rests on.
//
// In the end L is at least 0 and less than 2 base^size: where it does not fit, c instead of base^size makes it fit.
// It is below base^size, no more; the value of the power is reduced to the modulus when all steps are done.
constexpr size_t longestForPowers = 256;
static_assert(longestForPowers * bitsPerDigit + (mostColumnsAtOnce / 2 + 6) * shortLimbBits <=
                  mostShortLimbs * shortLimbBits,
              "a multiple of the modulus has as many limbs as there is room for");

template <class Pairs, class BlockPairs>
class PowerByShortLimbs
{
public:
    // v is the modulus, its top bit set. n is at most longestForPowers.
    MP_INLINE void setModulus(const mpDigit v[], size_t n)
    {
        constexpr size_t spare = atOnce + limbsPerCarry;
        _size = (limbsFor(n) + spare + 1) / 2 * 2;
        _digits = (_size * shortLimbBits + bitsPerDigit - 1) / bitsPerDigit;

        // The remainder of base^size - 1, and one added.
        mpDigit complement[mostDigits];
        mpDigit quotient[mostDigits];
        for (size_t i = 0; i < _digits; i++)
        {
            complement[i] = allOnes;
        }
        // All digits are set, of which there are some. NOLINTBEGIN(clang-analyzer-core.uninitialized.Assign)
        complement[_digits - 1] >>= _digits * bitsPerDigit - _size * shortLimbBits;
        divideByRows(quotient, complement, 0, v, n, _digits - n);
        for (size_t i = 0; ++complement[i] == 0;)
        {
            i++;
        }
        // NOLINTEND(clang-analyzer-core.uninitialized.Assign)
        _complement.template take<false>(complement, n);
        _quotient.clearBelow();
        _quotient.clear(0, mostShortLimbs + limbsPerGroup);
    }

    // The base of the power, which is not more than the modulus has digits.
    MP_INLINE void setBase(const mpDigit x[], size_t n) { _base.template take<true>(x, n); }

    MP_INLINE size_t digits() const { return _digits; }

    // The value becomes its square, modulo the modulus. By digits where the processor has a faster form for these.
    MP_INLINE void squareValue(bool isByDigits)
    {
        const size_t end = unitsOfDividend();
        if (isByDigits)
        {
            mpDigit digits[mostDigits];
            mpDigit squared[2 * mostDigits];
            value(digits);
            square(squared, digits, _digits);
            unitsFromDigits(_units, end, squared, 2 * _digits);
        }
        else
        {
            squareUnits<BlockPairs>(_units, _valueUnits, _size / 2);
            for (size_t i = _size + 2 * unitRowsAtOnce; i < end; i++)
            {
                _units[i] = 0;
            }
        }
        reduce();
    }

    // The value becomes its product with the base, modulo the modulus.
    MP_INLINE void multiplyByBase()
    {
        const size_t end = unitsOfDividend();
        const size_t used = (_size + _base.size + 1) / 2;
        for (size_t i = 0; i < end; i++)
        {
            _units[i] = 0;
        }
        addProduct(_value, _base, _base.size, 2 * used);
        reduce();
    }

    // a[0..digits()) = the value.
    MP_INLINE void value(mpDigit a[]) const
    {
        unsigned char octets[(mostShortLimbs / limbsPerGroup + 1) * octetsPerGroup + sizeof(uint64_t)];
        unsigned char* to = octets;
        for (size_t i = 0; 2 * i < _size; i += 4, to += octetsPerGroup)
        {
            const uint64_t low = _valueUnits[i] | _valueUnits[i + 1] << unitBits;
            const uint64_t high = _valueUnits[i + 2] | _valueUnits[i + 3] << unitBits;
            storeOctets(to, low | high << 2 * unitBits);
            storeOctets(to + sizeof(uint64_t), high >> (64 - 2 * unitBits));
        }
        digitsFromLowOctets(a, _digits, octets);
    }

    // The value becomes a[0..n), which is less than base^size.
    MP_INLINE void setValue(const mpDigit a[], size_t n)
    {
        _value.template take<false>(a, n);
        _value.clear((_value.size + limbsPerGroup - 1) / limbsPerGroup * limbsPerGroup, mostShortLimbs + limbsPerGroup);
        _value.size = _size;
        for (uint64_t& unit : _valueUnits)
        {
            unit = 0;
        }
        for (size_t i = 0; 2 * i < _size; i++)
        {
            setUnitFromLimbs(i);
        }
    }

protected:
    using Columns = LimbColumns<Pairs>;
    using Block = LimbColumns<BlockPairs, std::max<size_t>(16, sizeof(typename BlockPairs::Type) / sizeof(uint16_t))>;
    static constexpr size_t atOnce = Block::columns;
    static constexpr size_t unitsAtOnce = atOnce / 2;
    static constexpr size_t limbsPerCarry = 4;
    static constexpr size_t mostDigits = longestForShortLimbs + 1;
    static constexpr size_t mostUnits = mostShortLimbs + 2 * mostColumnsAtOnce;

    static constexpr size_t limbsFor(size_t n) { return (n * bitsPerDigit + shortLimbBits - 1) / shortLimbBits; }

    // Limbs of the quotient, in whole blocks.
    MP_INLINE size_t quotientLimbs() const { return (_size + atOnce - 1) / atOnce * atOnce; }
    MP_INLINE size_t unitsOfDividend() const { return (_size + quotientLimbs()) / 2; }

    // units += so many columns as are formed at once of u * v, from the first one on.
    MP_INLINE static void addColumns(const ShortLimbs& u, const uint16_t v[], size_t vn, size_t first, uint64_t units[])
    {
        Columns columns;
        columns.clear();
        columns.add(u.limbs(), u.size, v, vn, first);
        columns.split();
        columns.addTo(units);
    }

    // _units += the columns of u * v below "end".
    MP_INLINE void addProduct(const ShortLimbs& u, const ShortLimbs& v, size_t vn, size_t end)
    {
        size_t first = 0;
        for (; first + Columns::columns / 2 < end; first += Columns::columns)
        {
            addColumns(u, v.limbs(), vn, first, _units + first / 2);
        }
        for (; first < end; first += atOnce)
        {
            Block columns;
            columns.clear();
            columns.add(u.limbs(), u.size, v.limbs(), vn, first);
            columns.split();
            columns.addTo(_units + first / 2);
        }
    }

    MP_INLINE void reduce()
    {
        const size_t end = quotientLimbs();
        // The units where the quotient is read, and two below them.
        uint64_t sums[unitsAtOnce + 2];
        copyUnits(sums + 2, _units + (_size + end) / 2 - unitsAtOnce);
        uint64_t carry = 0;
        // Limbs from there on are added to all columns that the next blocks need.
        size_t added = end;
        for (size_t known = end; known > 0;)
        {
            const size_t first = known - atOnce;
            // What the block below gets from the limbs that are known already.
            const uint64_t* units = _units + (_size + first) / 2 - unitsAtOnce;
            if ((end - first) % Columns::columns == 0 && first >= Columns::columns)
            {
                const size_t column = _size + first - Columns::columns;
                addColumns(_complement, _quotient.limbs() + known, end - known, column - known, _units + column / 2);
                added = known;
            }
            else if ((end - first) % Columns::columns == 0 || first < atOnce)
            {
                added = end;
            }
            Block next;
            next.clear();
            // Where there are limbs, they are no fewer than the columns, so nothing beside them is taken.
            if (added > known)
            {
                next.add(_complement.limbs(), _complement.size, _quotient.limbs() + known, added - known,
                         _size - 2 * atOnce);
            }
            next.split();
            uint64_t below[unitsAtOnce];
            copyUnits(below, units);
            next.addTo(below);
            sums[0] = below[unitsAtOnce - 2];
            sums[1] = below[unitsAtOnce - 1];
            for (size_t i = unitsAtOnce; i-- > 0;)
            {
                const uint64_t above = carry << unitBits;
                carry = (sums[i + 1] + (sums[i] >> unitBits)) >> unitBits;
                _quotient.setSwappedLimbs(first + 2 * i, sums[i + 2] + carry - above);
            }
            next.add(_complement.limbs(), _complement.size, _quotient.limbs() + first, atOnce, _size - atOnce);
            next.split();
            copyUnits(sums + 2, units);
            next.addTo(sums + 2);
            known = first;
        }
        addProduct(_complement, _quotient, end, _size);

        uint64_t carried = 0;
        for (size_t i = 0; 2 * i < _size; i++)
        {
            const uint64_t sum = _units[i] + carried;
            carried = sum >> unitBits;
            _valueUnits[i] = sum & unitMask;
            _value.setLimbs(2 * i, sum & unitMask);
        }
        // The quotient has got "carry" of this.
        if (carried != carry)
        {
            addComplement();
        }
    }

    MP_INLINE void addComplement()
    {
        mpDigit carried = 0;
        for (size_t i = 0; i < _size; i++)
        {
            const mpDigit sum =
                mpDigit{_value.limbs()[i]} + (i < _complement.size ? _complement.limbs()[i] : 0) + carried;
            _value.room[limbMargin + i] = static_cast<uint16_t>(sum & shortLimbMask);
            carried = sum >> shortLimbBits;
        }
        for (size_t i = 0; 2 * i < _size; i++)
        {
            setUnitFromLimbs(i);
        }
    }

    MP_INLINE void setUnitFromLimbs(size_t i)
    {
        const uint16_t* limbs = _value.limbs() + 2 * i;
        _valueUnits[i] = limbs[0] | uint64_t{limbs[1]} << shortLimbBits;
    }

    static MP_INLINE void copyUnits(uint64_t to[], const uint64_t from[])
    {
        for (size_t i = 0; i < unitsAtOnce; i++)
        {
            to[i] = from[i];
        }
    }

    // Limbs of M, and digits of a value.
    size_t _size;
    size_t _digits;
    ShortLimbs _complement;
    ShortLimbs _base;
    ShortLimbs _quotient;
    // The value in limbs, and in units, above which there are zeros.
    ShortLimbs _value;
    uint64_t _valueUnits[mostUnitsToSquare + unitRowsAtOnce];
    // The dividend, then with what is due to the quotient.
    uint64_t _units[mostUnits];
};

// y = x^e, congruent to it modulo v and less than base^size: as many digits as digits() says. The top bit of v is set,
// and x has n digits as v has. e has so many bits, of which the top one is set.
template <class Pairs, class BlockPairs>
MP_INLINE void powerByShortLimbsWith(mpDigit y[], const mpDigit x[], const mpDigit e[], uint64_t bits,
                                     const mpDigit v[], size_t n)
{
    PowerByShortLimbs<Pairs, BlockPairs> power;
    power.setModulus(v, n);
    power.setBase(x, n);
    power.setValue(x, n);
#if defined(__x86_64__)
    const bool isByDigits = has52BitLimbs();
#else
    const bool isByDigits = false;
#endif
    for (uint64_t i = bits - 1; i-- > 0;)
    {
        power.squareValue(isByDigits);
        if ((e[i / bitsPerDigit] >> i % bitsPerDigit & 1) != 0)
        {
            power.multiplyByBase();
        }
    }
    power.value(y);
}

using QuotientForm = bool (*)(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,
                              const Scaling& scaling);

struct ShortLimbForms
{
    void (*multiply)(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn);
    void (*power)(mpDigit y[], const mpDigit x[], const mpDigit e[], uint64_t bits, const mpDigit v[], size_t n);
    // For divisors of at most longestForShortLimbs digits: by limbs, and by both limbs and columns of digits.
    QuotientForm divide;
    QuotientForm divideByBoth;
    // From that many digits on they pay: of both factors; of the divisor and of the quotient.
    size_t shortest;
    size_t shortestToDivide;
    size_t shortestToDivideByBoth;
    // Of the modulus of a power.
    size_t shortestForPowers;
};

// The same for each kind of processor: MP_SHORT_LIMBS(the name's end, the vector, the pairs for quotients, the pairs
// for products, the attributes, from where on they pay).
// NOLINTBEGIN(bugprone-macro-parentheses)
#define MP_SHORT_LIMBS(Name, Vector, Pairs, ProductPairs, BlockPairs, attributes, ...)                                 \
    attributes void multiplyShortLimbsBy##Name(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[],           \
                                               size_t vn)                                                              \
    {                                                                                                                  \
        multiplyByShortLimbsWith<ProductPairs>(w, u, un, v, vn);                                                       \
    }                                                                                                                  \
    attributes bool divideShortLimbsBy##Name(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n,       \
                                             size_t m, const Scaling& scaling)                                         \
    {                                                                                                                  \
        return divideByShortLimbsWith<Vector, Pairs>(q, r, top, v, n, m, scaling);                                     \
    }                                                                                                                  \
    attributes bool divideBothBy##Name(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,   \
                                       const Scaling& scaling)                                                         \
    {                                                                                                                  \
        return divideByBothWith<Vector, Pairs>(q, r, top, v, n, m, scaling);                                           \
    }                                                                                                                  \
    attributes void powerShortLimbsBy##Name(mpDigit y[], const mpDigit x[], const mpDigit e[], uint64_t bits,          \
                                            const mpDigit v[], size_t n)                                               \
    {                                                                                                                  \
        powerByShortLimbsWith<ProductPairs, BlockPairs>(y, x, e, bits, v, n);                                          \
    }                                                                                                                  \
    [[maybe_unused]] constexpr ShortLimbForms shortLimbForms##Name = {                                                 \
        multiplyShortLimbsBy##Name, powerShortLimbsBy##Name, divideShortLimbsBy##Name, divideBothBy##Name,             \
        __VA_ARGS__};
// NOLINTEND(bugprone-macro-parentheses)

MP_SHORT_LIMBS(128Bits, Vector16, Pairs128Bits, Pairs128Bits, Pairs128Bits, , 24, 56, 20, 48)

#if MP_HAS_WIDE_PAIRS

MP_SHORT_LIMBS(256Bits, Vector32, Pairs256Bits, Pairs256Bits, Pairs256Bits, MP_FOR_PROCESSORS_WITH("avx2,bmi2"), 24,
               192, 72, 40)
MP_SHORT_LIMBS(512Bits, Vector64, Pairs512Bits, Pairs512Bits, Pairs256Bits,
               MP_FOR_PROCESSORS_WITH("avx512f,avx512bw,avx512dq,avx512vl,bmi2"), 16, 192, 40, 24)

#endif

#if MP_HAS_NEON

MP_SHORT_LIMBS(Neon, Vector16, PairsNeon, PairsNeon, PairsNeon, , 12, 104, 17, 17)

#endif

// The same for each width of the registers: MP_COLUMNS(the name's end, the vector, the functions' attributes).
// Attributes cannot stand in parentheses. NOLINTBEGIN(bugprone-macro-parentheses)
#define MP_COLUMNS(Bits, Vector, attributes)                                                                           \
    attributes void multiplyBy##Bits(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn)          \
    {                                                                                                                  \
        multiplyByColumnsWith<Vector>(w, u, un, v, vn);                                                                \
    }                                                                                                                  \
    attributes bool scaleBy##Bits(Scaling& scaling, mpDigit complement[], size_t skipped, const mpDigit v[], size_t n) \
    {                                                                                                                  \
        return scaleWith<Vector>(scaling, complement, skipped, v, n);                                                  \
    }                                                                                                                  \
    attributes bool divideBy##Bits(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,       \
                                   const Scaling& scaling)                                                             \
    {                                                                                                                  \
        return divideByColumnsWith<Vector>(q, r, top, v, n, m, scaling);                                               \
    }                                                                                                                  \
    constexpr ColumnForms columnForms##Bits = {multiplyBy##Bits, scaleBy##Bits, divideBy##Bits};

// NOLINTEND(bugprone-macro-parentheses)

struct ColumnForms
{
    void (*multiply)(mpDigit w[], const mpDigit u[], size_t un, const mpDigit v[], size_t vn);
    bool (*scale)(Scaling& scaling, mpDigit complement[], size_t skipped, const mpDigit v[], size_t n);
    bool (*divide)(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,
                   const Scaling& scaling);
};

MP_COLUMNS(128Bits, Vector16, )

#if defined(__x86_64__)

MP_COLUMNS(256Bits, Vector32, MP_FOR_PROCESSORS_WITH("avx2,bmi2"))
MP_COLUMNS(512Bits, Vector64, MP_FOR_PROCESSORS_WITH("avx512f,avx512bw,avx512dq,avx512vl,bmi2"))

bool has512Bits()
{
    // Each of these comes with the basic part, avx512f.
    return mayUse512Bits && MP_PROCESSOR_HAS("avx512bw") && MP_PROCESSOR_HAS("avx512dq") &&
           MP_PROCESSOR_HAS("avx512vl") && MP_PROCESSOR_HAS("bmi2");
}

bool has256Bits()
{
    return MP_PROCESSOR_HAS("avx2") && MP_PROCESSOR_HAS("bmi2");
}

#endif

// For this processor; null where columns of digits are faster.
const ShortLimbForms* shortLimbForms()
{
#if MP_HAS_WIDE_PAIRS
    return has512Bits() ? &shortLimbForms512Bits : has256Bits() ? &shortLimbForms256Bits : &shortLimbForms128Bits;
#elif defined(__x86_64__)
    return &shortLimbForms128Bits;
#elif MP_HAS_NEON
    return &shortLimbFormsNeon;
#else
    return nullptr;
#endif
}

// For this processor.
const ColumnForms& columnForms()
{
#if defined(__x86_64__)
    return has512Bits() ? columnForms512Bits : has256Bits() ? columnForms256Bits : columnForms128Bits;
#else
    return columnForms128Bits;
#endif
}

#else

#define MP_HAS_COLUMNS 0

constexpr size_t shortestForColumns = SIZE_MAX;
constexpr size_t longestForColumns = 0;
constexpr size_t shortestForLeavingOut = 1;

struct Scaling
{
};

constexpr size_t longestForShortLimbs = 0;
constexpr size_t longestForPowers = 0;

struct ColumnForms
{
    void multiply(mpDigit[], const mpDigit[], size_t, const mpDigit[], size_t) const {}
    bool scale(Scaling&, mpDigit[], size_t, const mpDigit[], size_t) const { return false; }
    static bool divide(mpDigit[], mpDigit[], mpDigit, const mpDigit[], size_t, size_t, const Scaling&) { return false; }
};

ColumnForms columnForms()
{
    return {};
}

using QuotientForm = bool (*)(mpDigit q[], mpDigit r[], mpDigit top, const mpDigit v[], size_t n, size_t m,
                              const Scaling& scaling);

struct ShortLimbForms
{
    void multiply(mpDigit[], const mpDigit[], size_t, const mpDigit[], size_t) const {}
    void power(mpDigit[], const mpDigit[], const mpDigit[], uint64_t, const mpDigit[], size_t) const {}
    QuotientForm divide;
    QuotientForm divideByBoth;
    size_t shortest;
    size_t shortestToDivide;
    size_t shortestToDivideByBoth;
    size_t shortestForPowers;
};

const ShortLimbForms* shortLimbForms()
{
    return nullptr;
}

#endif

#if defined(__SIZEOF_INT128__)

#if MP_HAS_COLUMNS && MP_HAS_WIDE_PAIRS

MP_FOR_PROCESSORS_WITH("avx2,bmi2") void squareUnitsBy256Bits(mpDigit w[], const mpDigit x[], size_t n)
{
    squareByUnitsWith<Pairs256Bits>(w, x, n);
}

constexpr size_t shortestForUnits = 44;
// More digits are halved first.
constexpr size_t mostUnitDigits = 256;

void squareByUnits(mpDigit w[], const mpDigit x[], size_t n)
{
    squareBy(w, x, n, squareUnitsBy256Bits, mostUnitDigits);
}

#endif

// For this processor and that many digits.
SquareForm squareForm([[maybe_unused]] size_t n)
{
#if defined(__x86_64__)
    if (n >= shortestForLimbs && has52BitLimbs())
    {
        return squareByBlocks;
    }
#if MP_HAS_COLUMNS && MP_HAS_WIDE_PAIRS
    if (n >= shortestForUnits && has256Bits())
    {
        return squareByUnits;
    }
#endif
    if (MP_PROCESSOR_HAS("bmi2"))
    {
        return squareWithBmi2;
    }
#endif
    return squareWithWords;
}

void square(mpDigit w[], const mpDigit x[], size_t n)
{
    squareForm(n)(w, x, n);
}

#else

void square(mpDigit w[], const mpDigit x[], size_t n)
{
    squareByRows(w, x, n);
}

#endif

// w[0..2n) = u * v.
void multiply(mpDigit w[], const mpDigit u[], const mpDigit v[], size_t n)
{
    const size_t un = significantDigits(u, n);
    const size_t vn = significantDigits(v, n);
    const bool fits = std::max(un, vn) <= longestForColumns;
    const ShortLimbForms* pLimbs = shortLimbForms();
    if (pLimbs != nullptr && std::min(un, vn) >= pLimbs->shortest)
    {
        pLimbs->multiply(w, u, un, v, vn);
    }
    else if (fits && un >= shortestForColumns)
    {
        columnForms().multiply(w, u, un, v, vn);
    }
    else if (fits && vn >= shortestForColumns)
    {
        columnForms().multiply(w, v, vn, u, un);
    }
    else
    {
        multiplyByRows(w, u, un, v, vn);
    }
    setZero(w + un + vn, 2 * n - un - vn);
}

// Columns take some preparation, which the two or three rows of a step of Euclid's algorithm are not worth.
constexpr size_t fewestDigitsForColumns = 4;

// A divisor of at least two digits, made ready. Its digits are shifted, in place, so that the top bit is set.
struct Divisor
{
    mpDigit* digits;
    size_t size;
    uint32_t shift;
    bool isScaled;
    Scaling scaling;
};

Divisor normalise(mpDigit v[], size_t n)
{
    Divisor divisor = {v, n, leadingZeroBits(v[n - 1]), false, {}};
    shiftLeftBits(v, v, divisor.shift, n);
    return divisor;
}

// Takes room for one digit less than the divisor has, or, if that is very short, for all digits in shortRoom.
void scale(Divisor& divisor, mpDigit room[], mpDigit shortRoom[shortestForLeavingOut])
{
    const size_t n = divisor.size;
    // Without columns there is no such n. NOLINTNEXTLINE(misc-redundant-expression)
    if (n >= shortestForColumns && n <= longestForColumns)
    {
        const bool isShort = n < shortestForLeavingOut;
        divisor.isScaled =
            columnForms().scale(divisor.scaling, isShort ? shortRoom : room, isShort ? 0 : 1, divisor.digits, n);
    }
}

// For a scaled divisor of n digits and a quotient of so many.
QuotientForm quotientForm(size_t n, size_t quotientDigits)
{
    const ShortLimbForms* pLimbs = shortLimbForms();
    const size_t shorter = std::min(n, quotientDigits);
    if (pLimbs != nullptr && n <= longestForShortLimbs && shorter >= pLimbs->shortestToDivide)
    {
        return pLimbs->divide;
    }
    if (pLimbs != nullptr && n <= longestForShortLimbs && shorter >= pLimbs->shortestToDivideByBoth)
    {
        return pLimbs->divideByBoth;
    }
    return columnForms().divide;
}

// q[0..udigits-n] and r[0..udigits) = (top, r) / divisor, for a divisor of n <= udigits digits. (top, r) is the
// dividend, shifted as the divisor is.
void divideBy(const Divisor& divisor, mpDigit q[], mpDigit top, mpDigit r[], size_t udigits)
{
    const mpDigit* v = divisor.digits;
    const size_t n = divisor.size;
    size_t count = udigits - n + 1;
    if (top == 0 && r[udigits - 1] < v[n - 1])
    {
        count--;
        q[count] = 0;
        top = r[udigits - 1];
    }
    // At most n digits of the quotient at a time.
    while (count > 0)
    {
        const size_t part = std::min(count, n);
        count -= part;
        if (!divisor.isScaled || part < fewestDigitsForColumns ||
            !quotientForm(n, part)(q + count, r + count, top, v, n, part - 1, divisor.scaling))
        {
            divideByRows(q + count, r + count, top, v, n, part - 1);
        }
        top = r[count + n - 1];
    }

    setZero(r + n, udigits - n);
    shiftRightBits(r, r, divisor.shift, n);
}

int32_t divide(mpDigit q[], mpDigit r[], const mpDigit u[], size_t udigits, mpDigit v[], size_t vdigits)
{
    setZero(q, udigits);
    setZero(r, udigits);

    const size_t n = significantDigits(v, vdigits);
    const size_t size = significantDigits(u, udigits);
    if (n == 0)
    {
        return -1;
    }
    if (n == 1)
    {
        r[0] = shortDivide(q, u, v[0], udigits);
        return 0;
    }
    if (size < n)
    {
        setEqual(r, u, udigits);
        return 0;
    }

    const size_t m = size - n;
    if (m == 0)
    {
        const int32_t order = compare(u, v, n);
        if (order < 0)
        {
            setEqual(r, u, udigits);
            return 0;
        }
        if (order == 0)
        {
            q[0] = 1;
            return 0;
        }
    }

    // Before the divisor is shifted: u may be the same array.
    const mpDigit top = shiftLeftBits(r, u, leadingZeroBits(v[n - 1]), size);
    Divisor divisor = normalise(v, n);
    mpDigit shortRoom[shortestForLeavingOut];
    if (m >= fewestDigitsForColumns)
    {
        // Where the quotient has no digits.
        scale(divisor, q + m + 1, shortRoom);
    }
    divideBy(divisor, q, top, r, size);
    setZero(q + m + 1, n - 1);
    shiftRightBits(v, v, divisor.shift, n);
    return 0;
}

// ---------------------------------------------------------------------------------------------------------------------
// Octets and text

// The most significant octet first.
size_t digitsFromOctets(mpDigit a[], size_t n, const unsigned char octets[], size_t count)
{
    setZero(a, n);
    size_t i = 0;
    for (; i < n && count > 0; i++)
    {
        for (uint32_t bit = 0; bit < bitsPerDigit && count > 0; bit += 8)
        {
            a[i] |= mpDigit{octets[--count]} << bit;
        }
    }
    return i;
}

void octetsFromDigits(const mpDigit a[], size_t n, unsigned char octets[], size_t count)
{
    for (size_t i = 0; i < n && count > 0; i++)
    {
        for (uint32_t bit = 0; bit < bitsPerDigit && count > 0; bit += 8)
        {
            octets[--count] = static_cast<unsigned char>(a[i] >> bit);
        }
    }
    while (count > 0)
    {
        octets[--count] = 0;
    }
}

// length * factor, rounded up. The product is rounded to a double before, whatever the processor computes with.
uint64_t octetsOrDigitsFor(uint64_t length, double factor)
{
    const volatile double product = static_cast<double>(length) * factor;
    const double exact = product;
    const auto whole = static_cast<uint64_t>(exact);
    return whole + (exact > static_cast<double>(whole) ? 1 : 0);
}

// The value of a digit character, or base for any other character.
uint32_t digitValue(char ch, uint32_t base)
{
    uint32_t value = base;
    if (ch >= '0' && ch <= '9')
    {
        value = static_cast<uint32_t>(ch - '0');
    }
    else if (ch >= 'a' && ch <= 'f')
    {
        value = static_cast<uint32_t>(ch - 'a') + 10;
    }
    else if (ch >= 'A' && ch <= 'F')
    {
        value = static_cast<uint32_t>(ch - 'A') + 10;
    }
    return std::min(value, base);
}

constexpr uint32_t hexDigitsPerDigit = 8;

#if defined(__SIZEOF_INT128__)

// As many decimal digits as a word can hold are dealt with at once: nineteen. The top bit of their scale is set.
constexpr uint32_t decimalGroup = 19;
constexpr uint64_t decimalScale = 10000000000000000000U;
static_assert(decimalScale >> 63 == 1, "the scale is a normalised divisor");
// That many fives make a factor of a word.
constexpr size_t fivesAtOnce = 27;
constexpr auto decimalReciprocal = static_cast<uint64_t>(~DoubleWord{0} / decimalScale);

// Two digits as a word, of which the last may have one digit only.
MP_INLINE uint64_t loadWord(const mpDigit a[], size_t n, size_t i)
{
    return 2 * i + 1 < n ? loadTwo(a + 2 * i) : a[2 * i];
}

MP_INLINE void storeWord(mpDigit a[], size_t n, size_t i, uint64_t word)
{
    a[2 * i] = static_cast<mpDigit>(word);
    if (2 * i + 1 < n)
    {
        a[2 * i + 1] = static_cast<mpDigit>(word >> bitsPerDigit);
    }
}

// (remainder, word) / decimalScale, by its reciprocal: returns the quotient, leaves the remainder. The estimate is one
// too small or exact after the first correction, which tells by the remainder, and the second one is rare (Moeller and
// Granlund, 2011).
MP_INLINE uint64_t divideByDecimalScale(uint64_t& remainder, uint64_t word)
{
    const DoubleWord estimate = DoubleWord{decimalReciprocal} * remainder + (DoubleWord{remainder} << 64 | word);
    auto quotient = static_cast<uint64_t>(estimate >> 64) + 1;
    uint64_t rest = word - quotient * decimalScale;
    if (rest > static_cast<uint64_t>(estimate))
    {
        quotient--;
        rest += decimalScale;
    }
    if (rest >= decimalScale)
    {
        quotient++;
        rest -= decimalScale;
    }
    remainder = rest;
    return quotient;
}

// digits[0..count) = a, the highest first; they are zero before, and there are enough. a is zero afterwards.
void writeDecimal(unsigned char digits[], size_t count, mpDigit a[], size_t n)
{
    // So many divisions at once, each a word behind the one before: no step waits for another one of its round.
    constexpr size_t divisions = 4;
    for (size_t size = significantDigits(a, n); size > 0; size = significantDigits(a, size))
    {
        uint64_t remainders[divisions] = {};
        const size_t words = (size + 1) / 2;
        for (size_t step = words + divisions - 1; step-- > 0;)
        {
            for (size_t k = 0; k < divisions; ++k)
            {
                const size_t i = step + k - (divisions - 1);
                if (i < words)
                {
                    storeWord(a, size, i, divideByDecimalScale(remainders[k], loadWord(a, size, i)));
                }
            }
        }
        for (uint64_t group : remainders)
        {
            for (uint32_t i = 0; i < decimalGroup && count > 0; ++i)
            {
                digits[--count] = static_cast<unsigned char>(group % 10);
                group /= 10;
            }
        }
    }
}

// a[0..n) = a * scale + group, modulo 2^(32n), for an a of so many words, which may become one more.
MP_INLINE void takeDecimalGroup(mpDigit a[], size_t n, size_t& words, uint64_t scale, uint64_t group)
{
    uint64_t carry = group;
    for (size_t i = 0; i < words; ++i)
    {
        const DoubleWord t = DoubleWord{loadWord(a, n, i)} * scale + carry;
        storeWord(a, n, i, static_cast<uint64_t>(t));
        carry = static_cast<uint64_t>(t >> 64);
    }
    if (carry != 0 && 2 * words < n)
    {
        storeWord(a, n, words, carry);
        words++;
    }
}

#else

// As many decimal digits as a digit array's digit can hold are dealt with at once.
constexpr uint32_t decimalGroup = 9;
constexpr uint32_t decimalScale = 1000000000U;
// That many fives make a factor of a digit.
constexpr size_t fivesAtOnce = 13;

// digits[0..count) = a, the highest first; they are zero before, and there are enough. a is zero afterwards.
void writeDecimal(unsigned char digits[], size_t count, mpDigit a[], size_t n)
{
    for (size_t size = significantDigits(a, n); size > 0; size = significantDigits(a, size))
    {
        uint64_t remainder = 0;
        for (size_t i = size; i-- > 0;)
        {
            remainder = remainder << bitsPerDigit | a[i];
            a[i] = static_cast<mpDigit>(remainder / decimalScale);
            remainder %= decimalScale;
        }
        auto group = static_cast<uint32_t>(remainder);
        for (uint32_t i = 0; i < decimalGroup && count > 0; i++)
        {
            digits[--count] = static_cast<unsigned char>(group % 10);
            group /= 10;
        }
    }
}

// a[0..n) = a * scale + group, modulo 2^(32n), for an a of so many digits, which may become one more.
void takeDecimalGroup(mpDigit a[], size_t n, size_t& used, uint64_t scale, uint64_t group)
{
    uint64_t carry = group;
    for (size_t i = 0; i < used; i++)
    {
        carry += a[i] * scale;
        a[i] = static_cast<mpDigit>(carry);
        carry >>= bitsPerDigit;
    }
    if (carry != 0 && used < n)
    {
        a[used++] = static_cast<mpDigit>(carry);
    }
}

#endif

void writeHex(unsigned char digits[], size_t count, const mpDigit a[], size_t n)
{
    for (size_t i = 0; i < n; i++)
    {
        for (uint32_t bit = 0; bit < bitsPerDigit && count > 0; bit += 4)
        {
            digits[--count] = static_cast<unsigned char>(a[i] >> bit & 0xFU);
        }
    }
}

// a[0..n), which is zero before, becomes the number that the first "count" decimal digits in s make, modulo 2^(32n).
// Returns where s goes on.
const char* readDecimal(mpDigit a[], size_t n, const char* s, size_t count)
{
    size_t used = 0;
    uint64_t scale = 1;
    uint64_t group = 0;
    for (; count > 0; ++s)
    {
        const uint32_t digit = digitValue(*s, 10);
        if (digit < 10)
        {
            group = group * 10 + digit;
            scale *= 10;
            count--;
        }
        if (scale == decimalScale)
        {
            takeDecimalGroup(a, n, used, scale, group);
            scale = 1;
            group = 0;
        }
    }
    takeDecimalGroup(a, n, used, scale, group);
    return s;
}

// Decimal text by halving. A text is cut into leaves, and pairs of these are joined to a leaf of twice the length
// until one is left; a number is divided into such leaves. Between two of them stands 10^characters = 5^characters *
// B^(characters / 32), for which the characters of a leaf are a multiple of 32; so the factor is shorter by almost a
// third.
constexpr size_t charactersPerDigit = 32;

// As many digits as so many characters can need: 1 / 32 of them times the binary logarithm of 10, rounded up.
constexpr size_t digitsOfLeaf(size_t characters)
{
    constexpr uint64_t logarithm = 3321928095U;
    constexpr uint64_t unit = 1000000000U;
    return static_cast<size_t>((characters / charactersPerDigit * logarithm + unit - 1) / unit);
}

// Of this many characters a leaf leaves only 0.02 percent of its digits unused.
constexpr size_t mostLeafCharacters = 992;
constexpr size_t mostLeafDigits = digitsOfLeaf(mostLeafCharacters);
static_assert(mostLeafDigits == 103, "a leaf of 992 characters has 103 digits");
// Shorter texts are not halved. Longer ones give all the room that halving takes; see there.
constexpr size_t fewestHalvedCharacters = 4 * mostLeafCharacters + 1;

constexpr uint64_t powerOfFive(size_t exponent)
{
    uint64_t result = 1;
    for (; exponent > 0; exponent--)
    {
        result *= 5;
    }
    return result;
}

// a[0..n) = 5^exponent, which fits. Returns its significant digits.
size_t setPowerOfFive(mpDigit a[], size_t n, size_t exponent)
{
    setZero(a, n);
    a[0] = 1;
    size_t used = 1;
    constexpr uint64_t most = powerOfFive(fivesAtOnce);
    for (; exponent > fivesAtOnce; exponent -= fivesAtOnce)
    {
        takeDecimalGroup(a, n, used, most, 0);
    }
    takeDecimalGroup(a, n, used, powerOfFive(exponent), 0);
    return significantDigits(a, n);
}

// pieces = "leaves" leaves of mostLeafDigits digits, the lowest first, in groups of 2 * half, each of them a number
// below 10^(its characters): now in groups of half. power has room for half * 72 + 1 digits, and room is described
// below.
MP_OWN_FRAME void halvePieces(mpDigit pieces[], size_t leaves, size_t half, mpDigit power[], mpDigit room[])
{
    // Squares go to and fro between power and room; the last one is in power.
    bool isInRoom = false;
    for (size_t i = 1; i < half; i *= 2)
    {
        isInRoom = !isInRoom;
    }
    size_t n = setPowerOfFive(isInRoom ? room : power, mostLeafDigits - mostLeafCharacters / charactersPerDigit,
                              mostLeafCharacters);
    for (size_t i = 1; i < half; i *= 2)
    {
        square(isInRoom ? power : room, isInRoom ? room : power, n);
        isInRoom = !isInRoom;
        n = significantDigits(isInRoom ? room : power, 2 * n);
    }

    Divisor divisor = normalise(power, n);
    mpDigit shortRoom[shortestForLeavingOut];
    scale(divisor, room, shortRoom);
    mpDigit* quotient = room + n;
    const size_t below = half * (mostLeafCharacters / charactersPerDigit);
    for (size_t first = 0; first + half < leaves; first += 2 * half)
    {
        mpDigit* piece = pieces + first * mostLeafDigits;
        const size_t size = std::min(2 * half, leaves - first) * mostLeafDigits;
        mpDigit* dividend = piece + below;
        const size_t dividendSize = significantDigits(dividend, size - below);
        if (dividendSize >= n)
        {
            const mpDigit top = shiftLeftBits(dividend, dividend, divisor.shift, dividendSize);
            divideBy(divisor, quotient, top, dividend, dividendSize);
            // The remainder ends where the upper half begins, or below that.
            const size_t quotientSize = significantDigits(quotient, dividendSize - n + 1);
            setEqual(piece + half * mostLeafDigits, quotient, quotientSize);
        }
    }
}

// The same as writeDecimal, for at least fewestHalvedCharacters; the top digit of a is not 0. a is used up. A digit
// of a gives some 9.63 characters, which are memory for 2.4 digits, and this is enough:
//
// The leaves take 103 digits for each 992 characters. With L leaves, of which "half" are split off, the power has at
// most 72 half + 1 digits and stands in a. Room is needed for its complement, one digit less, and for a quotient of
// at most 103 (L - half) + 2 or 103 half + 2 digits, whichever is less: with half at least L / 2, or a half of that,
// and so on, these are less than 88 L + 3 digits, and less than 191 L + 3 with the leaves. From 5 leaves on, there are
// as many, for all characters are memory for more than 248 (L - 1) digits.
MP_OWN_FRAME void writeDecimalByHalving(unsigned char digits[], size_t count, mpDigit a[], size_t n)
{
    const size_t leaves = (count + mostLeafCharacters - 1) / mostLeafCharacters;
    // Allocated memory is aligned for anything.
    auto* pieces = static_cast<mpDigit*>(static_cast<void*>(digits));
    setEqual(pieces, a, n);
    size_t half = 1;
    while (2 * half < leaves)
    {
        half *= 2;
    }
    for (; half > 0; half /= 2)
    {
        halvePieces(pieces, leaves, half, a, pieces + leaves * mostLeafDigits);
    }

    // The highest leaf is put first, as the characters are written from the end: those of a leaf take 992 octets, the
    // leaf itself 412, so they do not reach a leaf that is still to be written, except the highest one.
    for (size_t i = 0; i < leaves / 2; i++)
    {
        mpDigit* leaf = pieces + i * mostLeafDigits;
        std::swap_ranges(leaf, leaf + mostLeafDigits, pieces + (leaves - 1 - i) * mostLeafDigits);
    }
    mpDigit highest[mostLeafDigits];
    setEqual(highest, pieces, mostLeafDigits);
    for (size_t i = leaves; i-- > 0;)
    {
        mpDigit leaf[mostLeafDigits];
        setEqual(leaf, i == 0 ? highest : pieces + i * mostLeafDigits, mostLeafDigits);
        const size_t length = std::min(count, mostLeafCharacters);
        count -= length;
        memset(digits + count, 0, length);
        writeDecimal(digits + count, length, leaf, mostLeafDigits);
    }
}

// w[0..wn) += high * power * B^at, modulo B^wn. high may be digits of w from at + pn on or above; it is zero
// afterwards.
MP_OWN_FRAME void moveProduct(mpDigit w[], size_t wn, mpDigit high[], size_t hn, const mpDigit power[], size_t pn,
                              size_t at)
{
    constexpr size_t part = 1024;
    mpDigit factor[part];
    mpDigit other[part];
    mpDigit product[2 * part];
    for (size_t i = 0; i < hn; i += part)
    {
        const size_t size = std::min(part, hn - i);
        setEqual(factor, high + i, size);
        setZero(high + i, size);
        for (size_t j = 0; j < pn; j += part)
        {
            const size_t otherSize = std::min(part, pn - j);
            const size_t n = std::max(size, otherSize);
            setZero(factor + size, n - size);
            setEqual(other, power + j, otherSize);
            setZero(other + otherSize, n - otherSize);
            multiply(product, factor, other, n);
            // What w holds by now is less than B^(at + pn + i + size), so no carry reaches what is left of high.
            changeAt(w, wn, at + i + j, product, size + otherSize, add, 1);
        }
    }
}

// The same as readDecimal, for count at least fewestHalvedCharacters, the digits in s; n is not less than 0.1038 count.
// room is zero before. False, with nothing changed, when it has too few digits; else these are used up.
//
// The lower half of the leaves stands in a, the upper one in room, and behind each of them is room for a power.
MP_OWN_FRAME bool readDecimalByHalving(mpDigit a[], size_t n, mpDigit room[], size_t roomSize, const char* s,
                                       size_t count)
{
    size_t leaves = 2;
    while (count / leaves > mostLeafCharacters)
    {
        leaves *= 2;
    }
    const size_t half = leaves / 2;
    const size_t below = (count / leaves + charactersPerDigit) / charactersPerDigit;
    const size_t characters = below * charactersPerDigit;
    const size_t leafSize = digitsOfLeaf(characters);
    if (half * (leafSize + leafSize - below) > roomSize || half * leafSize + leaves / 4 * (leafSize - below) > n)
    {
        return false;
    }

    // The highest leaf may be shorter, and those above it empty.
    for (size_t rest = count; rest > 0;)
    {
        const size_t leaf = (rest - 1) / characters;
        const size_t length = rest - leaf * characters;
        s = readDecimal(leaf < half ? a + leaf * leafSize : room + (leaf - half) * leafSize, leafSize, s, length);
        rest -= length;
    }

    // The last power is in room.
    bool isInRoom = true;
    for (size_t i = 1; i < half; i *= 2)
    {
        isInRoom = !isInRoom;
    }
    mpDigit* powerInRoom = room + half * leafSize;
    mpDigit* powerInNumber = a + half * leafSize;
    size_t powerSize = setPowerOfFive(isInRoom ? powerInRoom : powerInNumber, leafSize - below, characters);
    for (size_t step = 1; step < half; step *= 2)
    {
        const mpDigit* power = isInRoom ? powerInRoom : powerInNumber;
        const size_t size = step * leafSize;
        for (size_t first = 0; first < half; first += 2 * step)
        {
            for (mpDigit* lower : {a + first * leafSize, room + first * leafSize})
            {
                moveProduct(lower, 2 * size, lower + size, size, power, powerSize, step * below);
            }
        }
        square(isInRoom ? powerInNumber : powerInRoom, power, powerSize);
        isInRoom = !isInRoom;
        powerSize = significantDigits(isInRoom ? powerInRoom : powerInNumber, 2 * powerSize);
    }
    setZero(powerInNumber, n - half * leafSize);
    moveProduct(a, n, room, half * leafSize, powerInRoom, powerSize, half * below);
    return true;
}

void readHex(mpDigit a[], size_t n, const char* s, size_t length)
{
    size_t count = 0;
    while (length > 0 && count / hexDigitsPerDigit < n)
    {
        const uint32_t digit = digitValue(s[--length], 16);
        if (digit < 16)
        {
            a[count / hexDigitsPerDigit] |= digit << 4 * (count % hexDigitsPerDigit);
            count++;
        }
    }
}

uint32_t digitsFromText(mpDigit a[], uint32_t ndigits, const char* s, uint32_t base, double factor, const char* message)
{
    setZero(a, ndigits);
    const size_t length = strlen(s);
    if (length == 0)
    {
        return 0;
    }
    const auto size = static_cast<size_t>(octetsOrDigitsFor(length, factor));
    const size_t n = size / octetsPerDigit + (size % octetsPerDigit != 0 ? 1 : 0);
    auto* value = allocate<mpDigit>(n, message);

    const size_t written = std::min<size_t>(n, ndigits);
    bool isHalved = false;
    if (base == 10)
    {
        const auto count =
            static_cast<size_t>(std::count_if(s, s + length, [](char ch) { return digitValue(ch, 10) < 10; }));
        isHalved = count >= fewestHalvedCharacters && readDecimalByHalving(value, n, a, written, s, count);
        if (!isHalved)
        {
            readDecimal(value, n, s, count);
        }
    }
    else
    {
        readHex(value, n, s, length);
    }

    // What is above the octets set aside is lost, wherever in a digit they end.
    if (size % octetsPerDigit != 0)
    {
        value[n - 1] &= ~(allOnes << 8 * (size % octetsPerDigit));
    }
    setEqual(a, value, written);
    clearAndFree(value, n);
    if (isHalved)
    {
        wipeStack(n);
    }
    return static_cast<uint32_t>(written);
}

// ---------------------------------------------------------------------------------------------------------------------
// Modular arithmetic

MP_OWN_FRAME void modulo(mpDigit r[], const mpDigit u[], size_t udigits, mpDigit v[], size_t vdigits)
{
    const size_t rdigits = udigits > vdigits ? udigits : vdigits;
    mpDigit* quotient = allocateDigits(udigits);
    mpDigit* remainder = allocateDigits(rdigits);

    divide(quotient, remainder, u, udigits, v, vdigits);
    setEqual(r, remainder, vdigits);

    clearAndFree(quotient, udigits);
    clearAndFree(remainder, rdigits);
}

MP_OWN_FRAME void modularProduct(mpDigit a[], const mpDigit x[], const mpDigit y[], const mpDigit m[], uint32_t ndigits)
{
    const size_t n = ndigits;
    mpDigit* product = allocateDigits(uint64_t{2} * ndigits);
    mpDigit* modulus = allocateDigits(n);

    setEqual(modulus, m, n);
    multiply(product, x, y, n);
    modulo(a, product, 2 * n, modulus, n);

    clearAndFree(product, 2 * n);
    clearAndFree(modulus, n);
}

// From that many bits of the exponent on, powers by short limbs pay.
constexpr uint64_t fewestBitsForPowers = 5;

// ndigits is not 0.
MP_OWN_FRAME void modularPower(mpDigit y[], const mpDigit x[], const mpDigit e[], const mpDigit m[], uint32_t ndigits)
{
    const size_t n = ndigits;
    mpDigit* product = allocateDigits(uint64_t{2} * ndigits);
    mpDigit* remainder = allocateDigits(uint64_t{2} * ndigits);
    mpDigit* quotient = allocateDigits(uint64_t{2} * ndigits);
    mpDigit* modulus = allocateDigits(n);
    mpDigit* value = allocateDigits(n);
    setEqual(modulus, m, n);
    const size_t modulusSize = significantDigits(modulus, n);
    Divisor divisor = {};
    mpDigit shortRoom[shortestForLeavingOut];
    if (modulusSize > 1)
    {
        divisor = normalise(modulus, modulusSize);
        // No quotient reaches the top of its array.
        scale(divisor, quotient + 2 * n - (modulusSize - 1), shortRoom);
    }
    // value = product modulo the modulus.
    const auto reduce = [=]
    {
        const size_t productSize = significantDigits(product, 2 * n);
        if (modulusSize < 2)
        {
            divide(quotient, remainder, product, 2 * n, modulus, n);
        }
        else if (productSize < modulusSize)
        {
            setEqual(remainder, product, n);
        }
        else
        {
            const mpDigit top = shiftLeftBits(remainder, product, divisor.shift, productSize);
            divideBy(divisor, quotient, top, remainder, productSize);
        }
        setEqual(value, remainder, n);
    };

    size_t size = significantDigits(e, n);
    if (size == 0)
    {
        // Nothing to begin with.
        product[0] = 1;
        reduce();
    }
    else
    {
        mpDigit mask = topBit >> leadingZeroBits(e[size - 1]);
        const auto nextBit = [&size, &mask]
        {
            if (mask == 1)
            {
                size--;
                mask = topBit;
            }
            else
            {
                mask >>= 1;
            }
        };

        const ShortLimbForms* pLimbs = shortLimbForms();
        const uint64_t bits = bitLength(e, n);
        if (pLimbs != nullptr && modulusSize >= pLimbs->shortestForPowers && modulusSize <= longestForPowers &&
            bits >= fewestBitsForPowers && significantDigits(x, n) <= modulusSize)
        {
            mpDigit power[longestForShortLimbs + 1] = {};
            pLimbs->power(power, x, e, bits, divisor.digits, modulusSize);
            const size_t powerSize = std::max(significantDigits(power, longestForShortLimbs), modulusSize);
            const mpDigit top = shiftLeftBits(remainder, power, divisor.shift, powerSize);
            divideBy(divisor, quotient, top, remainder, powerSize);
            setEqual(value, remainder, n);
        }
        else
        {
            // The first step, for the top bit of e, is a copy.
            setEqual(value, x, n);
            nextBit();
            while (size != 0)
            {
                mpSquare(product, value, ndigits);
                reduce();
                if ((e[size - 1] & mask) != 0)
                {
                    mpMultiply(product, value, x, ndigits);
                    reduce();
                }
                nextBit();
            }
        }
    }
    setEqual(y, value, n);

    clearAndFree(product, 2 * n);
    clearAndFree(remainder, 2 * n);
    clearAndFree(quotient, 2 * n);
    clearAndFree(modulus, n);
    clearAndFree(value, n);
}

// A step of Euclid's algorithm whose quotient is a single digit, as nearly all are: u = u modulo v, in place, without
// shifting either. u and v have n digits. False, with nothing done, when v has less than two digits or the quotient may
// be longer.
bool divideByShortQuotient(mpDigit& q, mpDigit u[], const mpDigit v[], size_t n)
{
    const size_t vn = significantDigits(v, n);
    const size_t un = significantDigits(u, n);
    // A digit of u above v that is no less than the highest digit of v would be cut off by the shift.
    if (vn < 2 || un > vn + 1 || (un > vn && u[vn] >= v[vn - 1]))
    {
        return false;
    }
    // The highest digits, as they would stand when v is shifted until its top bit is set.
    const uint32_t shift = leadingZeroBits(v[vn - 1]);
    const auto shifted = [shift](const mpDigit a[], size_t i, size_t size)
    {
        const mpDigit high = i < size ? a[i] : 0;
        return shift == 0 || i == 0 ? high << shift : high << shift | a[i - 1] >> (bitsPerDigit - shift);
    };
    const mpDigit vHigh = shifted(v, vn - 1, vn);
    const mpDigit top = shifted(u, vn, un);
    if (top >= vHigh)
    {
        return false;
    }
    q = estimateQuotient(top, shifted(u, vn - 1, un), shifted(u, vn - 2, un), vHigh, shifted(v, vn - 2, vn));
    if (q != 0)
    {
        const mpDigit borrow = rowMultiplySubtract(u, v, vn, q);
        const mpDigit above = un > vn ? u[vn] : 0;
        if (un > vn)
        {
            u[vn] = 0;
        }
        if (above != borrow)
        {
            // Once too often.
            q--;
            add(u, u, v, vn);
        }
    }
    return true;
}

MP_OWN_FRAME int32_t modularInverse(mpDigit inv[], const mpDigit u[], const mpDigit v[], uint32_t ndigits)
{
    const size_t n = ndigits;
    mpDigit* ucoef = allocateDigits(n);
    mpDigit* urem = allocateDigits(n);
    mpDigit* vcoef = allocateDigits(n);
    mpDigit* vrem = allocateDigits(n);
    mpDigit* tcoef = allocateDigits(n);
    mpDigit* trem = allocateDigits(n);
    mpDigit* q = allocateDigits(n);
    mpDigit* w = allocateDigits(uint64_t{2} * ndigits);

    ucoef[0] = 1;
    setEqual(urem, u, n);
    setEqual(vrem, v, n);
    // The coefficients change their sign with every round, so one flag stands for all signs.
    bool negative = false;
    while (significantDigits(vrem, n) != 0)
    {
        negative = !negative;
        // No coefficient exceeds v before the last round, and what that one forms for vcoef is not used.
        mpDigit digit = 0;
        if (divideByShortQuotient(digit, urem, vrem, n))
        {
            const size_t size = significantDigits(vcoef, n);
            mpDigit carry = rowMultiplyAdd(ucoef, vcoef, size, digit);
            for (size_t i = size; carry != 0 && i < n; i++)
            {
                ucoef[i] += carry;
                carry = ucoef[i] < carry ? 1 : 0;
            }
        }
        else
        {
            divide(q, trem, urem, n, vrem, n);
            multiply(w, vcoef, q, n);
            add(tcoef, ucoef, w, n);
            std::swap(urem, trem);
            std::swap(ucoef, tcoef);
        }
        std::swap(ucoef, vcoef);
        std::swap(urem, vrem);
    }
    if (negative)
    {
        subtract(inv, v, ucoef, n);
    }
    else
    {
        setEqual(inv, ucoef, n);
    }
    int32_t result = 0;
    if (mpShortCmp(urem, 1, ndigits) != 0)
    {
        setZero(inv, n);
        result = 1;
    }

    clearAndFree(ucoef, n);
    clearAndFree(urem, n);
    clearAndFree(vcoef, n);
    clearAndFree(vrem, n);
    clearAndFree(tcoef, n);
    clearAndFree(trem, n);
    clearAndFree(q, n);
    clearAndFree(w, 2 * n);
    return result;
}

MP_OWN_FRAME void greatestCommonDivisor(mpDigit g[], const mpDigit x[], const mpDigit y[], uint32_t ndigits)
{
    const size_t n = ndigits;
    mpDigit* xx = allocateDigits(n);
    mpDigit* yy = allocateDigits(n);
    setEqual(xx, x, n);
    setEqual(yy, y, n);
    if (significantDigits(xx, n) != 0)
    {
        // For remainders, once for all rounds.
        mpDigit* quotient = allocateDigits(n);
        mpDigit* remainder = allocateDigits(n);
        do
        {
            mpDigit digit = 0;
            if (!divideByShortQuotient(digit, yy, xx, n))
            {
                divide(quotient, remainder, yy, n, xx, n);
                std::swap(yy, remainder);
            }
            std::swap(xx, yy);
        } while (significantDigits(xx, n) != 0);
        clearAndFree(quotient, n);
        clearAndFree(remainder, n);
    }
    setEqual(g, yy, n);

    clearAndFree(xx, n);
    clearAndFree(yy, n);
}

// ---------------------------------------------------------------------------------------------------------------------
// Primality

// The odd primes below 1000.
constexpr mpDigit smallPrimes[] = {
    3,   5,   7,   11,  13,  17,  19,  23,  29,  31,  37,  41,  43,  47,  53,  59,  61,  67,  71,  73,  79,
    83,  89,  97,  101, 103, 107, 109, 113, 127, 131, 137, 139, 149, 151, 157, 163, 167, 173, 179, 181, 191,
    193, 197, 199, 211, 223, 227, 229, 233, 239, 241, 251, 257, 263, 269, 271, 277, 281, 283, 293, 307, 311,
    313, 317, 331, 337, 347, 349, 353, 359, 367, 373, 379, 383, 389, 397, 401, 409, 419, 421, 431, 433, 439,
    443, 449, 457, 461, 463, 467, 479, 487, 491, 499, 503, 509, 521, 523, 541, 547, 557, 563, 569, 571, 577,
    587, 593, 599, 601, 607, 613, 617, 619, 631, 641, 643, 647, 653, 659, 661, 673, 677, 683, 691, 701, 709,
    719, 727, 733, 739, 743, 751, 757, 761, 769, 773, 787, 797, 809, 811, 821, 823, 827, 829, 839, 853, 857,
    859, 863, 877, 881, 883, 887, 907, 911, 919, 929, 937, 941, 947, 953, 967, 971, 977, 983, 991, 997,
};
constexpr mpDigit largestSmallPrime = 997;
static_assert(smallPrimes[sizeof(smallPrimes) / sizeof(smallPrimes[0]) - 1] == largestSmallPrime, "the table is whole");

bool generatorIsSeeded = false;

void seedGenerator()
{
    srand(static_cast<unsigned int>(time(nullptr)));
}

bool isEven(const mpDigit a[])
{
    return (a[0] & 1) == 0;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------
// Setting and copying

void mpSetZero(mpDigit a[], uint32_t ndigits)
{
    setZero(a, ndigits);
}

void mpSetDigit(mpDigit a[], mpDigit d, uint32_t ndigits)
{
    setZero(a, ndigits);
    a[0] = d;
}

void mpSetEqual(mpDigit a[], const mpDigit b[], uint32_t ndigits)
{
    setEqual(a, b, ndigits);
}

// ---------------------------------------------------------------------------------------------------------------------
// Sizes and comparisons

uint32_t mpSizeof(const mpDigit a[], uint32_t ndigits)
{
    return static_cast<uint32_t>(significantDigits(a, ndigits));
}

uint32_t mpBitLength(const mpDigit a[], uint32_t ndigits)
{
    return a == nullptr ? 0 : static_cast<uint32_t>(bitLength(a, ndigits));
}

int32_t mpCompare(const mpDigit a[], const mpDigit b[], uint32_t ndigits)
{
    return compare(a, b, ndigits);
}

int32_t mpEqual(const mpDigit a[], const mpDigit b[], uint32_t ndigits)
{
    if (ndigits == 0)
    {
        return -1;
    }
    return mpCompare(a, b, ndigits) == 0 ? 1 : 0;
}

int32_t mpIsZero(const mpDigit a[], uint32_t ndigits)
{
    if (ndigits == 0)
    {
        return -1;
    }
    for (size_t i = 0; i < ndigits; i++)
    {
        if (a[i] != 0)
        {
            return 0;
        }
    }
    return 1;
}

// ---------------------------------------------------------------------------------------------------------------------
// Addition, subtraction, products

mpDigit mpAdd(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits)
{
    return add(w, u, v, ndigits);
}

mpDigit mpSubtract(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits)
{
    return subtract(w, u, v, ndigits);
}

int32_t mpMultiply(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits)
{
    multiply(w, u, v, ndigits);
    return 0;
}

int32_t mpSquare(mpDigit w[], const mpDigit x[], uint32_t ndigits)
{
    if (ndigits == 1)
    {
        return spMultiply(w, x[0], x[0]);
    }
    square(w, x, ndigits);
    return 0;
}

// ---------------------------------------------------------------------------------------------------------------------
// Shifts and bits

mpDigit mpShiftLeft(mpDigit a[], const mpDigit b[], uint32_t shift, uint32_t ndigits)
{
    const size_t n = ndigits;
    const size_t whole = shift / bitsPerDigit;
    const uint32_t bits = shift % bitsPerDigit;
    if (whole == 0)
    {
        return shiftLeftBits(a, b, bits, n);
    }
    for (size_t i = n; i-- > 0;)
    {
        a[i] = i >= whole ? b[i - whole] : 0;
    }
    const mpDigit carry = whole <= n ? b[n - whole] << bits : 0;
    return carry | shiftLeftBits(a, a, bits, n);
}

mpDigit mpShiftRight(mpDigit a[], const mpDigit b[], uint32_t shift, uint32_t ndigits)
{
    const size_t n = ndigits;
    const size_t whole = shift / bitsPerDigit;
    const uint32_t bits = shift % bitsPerDigit;
    if (whole == 0)
    {
        return shiftRightBits(a, b, bits, n);
    }
    const size_t kept = n - std::min(n, whole);
    for (size_t i = 0; i < n; i++)
    {
        a[i] = i < kept ? b[i + whole] : 0;
    }
    const mpDigit carry = b[whole - 1] >> bits;
    return carry | shiftRightBits(a, a, bits, n);
}

void mpModPowerOf2(mpDigit a[], uint32_t ndigits, uint32_t L)
{
    const size_t whole = L / bitsPerDigit;
    for (size_t i = whole + 1; i < ndigits; i++)
    {
        a[i] = 0;
    }
    if (whole < ndigits)
    {
        a[whole] &= ~(allOnes << L % bitsPerDigit);
    }
}

void mpXorBits(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits)
{
    for (size_t i = 0; i < ndigits; i++)
    {
        w[i] = u[i] ^ v[i];
    }
}

void mpOrBits(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits)
{
    for (size_t i = 0; i < ndigits; i++)
    {
        w[i] = u[i] | v[i];
    }
}

void mpAndBits(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits)
{
    for (size_t i = 0; i < ndigits; i++)
    {
        w[i] = u[i] & v[i];
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// A number and a single digit

mpDigit mpShortAdd(mpDigit w[], const mpDigit u[], mpDigit d, uint32_t ndigits)
{
    w[0] = u[0] + d;
    mpDigit carry = w[0] < d ? 1 : 0;
    for (size_t i = 1; i < ndigits; i++)
    {
        w[i] = u[i] + carry;
        carry = w[i] < carry ? 1 : 0;
    }
    return carry;
}

mpDigit mpShortSub(mpDigit w[], const mpDigit u[], mpDigit d, uint32_t ndigits)
{
    w[0] = u[0] - d;
    mpDigit borrow = w[0] > allOnes - d ? 1 : 0;
    for (size_t i = 1; i < ndigits; i++)
    {
        w[i] = u[i] - borrow;
        borrow = w[i] > allOnes - borrow ? 1 : 0;
    }
    return borrow;
}

mpDigit mpShortMult(mpDigit w[], const mpDigit u[], mpDigit d, uint32_t ndigits)
{
    if (d == 0)
    {
        setZero(w, ndigits);
        return 0;
    }
    mpDigit carry = 0;
    for (size_t i = 0; i < ndigits; i++)
    {
        const uint64_t t = product(u[i], d) + carry;
        w[i] = static_cast<mpDigit>(t);
        carry = static_cast<mpDigit>(t >> bitsPerDigit);
    }
    return carry;
}

int32_t mpShortCmp(const mpDigit a[], mpDigit d, uint32_t ndigits)
{
    if (ndigits == 0)
    {
        return d == 0 ? 0 : -1;
    }
    for (size_t i = 1; i < ndigits; i++)
    {
        if (a[i] != 0)
        {
            return 1;
        }
    }
    return compare(a, &d, 1);
}

int32_t spMultiply(mpDigit p[2], mpDigit x, mpDigit y)
{
    const uint64_t t = product(x, y);
    p[0] = static_cast<mpDigit>(t);
    p[1] = static_cast<mpDigit>(t >> bitsPerDigit);
    return 0;
}

// ---------------------------------------------------------------------------------------------------------------------
// Division

int32_t mpDivide(mpDigit q[], mpDigit r[], const mpDigit u[], uint32_t udigits, mpDigit v[], uint32_t vdigits)
{
    return divide(q, r, u, udigits, v, vdigits);
}

mpDigit mpShortDiv(mpDigit q[], const mpDigit u[], mpDigit d, uint32_t ndigits)
{
    return shortDivide(q, u, d, ndigits);
}

mpDigit mpShortMod(const mpDigit u[], mpDigit d, uint32_t ndigits)
{
    mpDigit* quotient = allocateDigits(uint64_t{2} * ndigits);
    const mpDigit remainder = shortDivide(quotient, u, d, ndigits);
    clearAndFree(quotient, ndigits);
    return remainder;
}

mpDigit spDivide(mpDigit* q, mpDigit* r, const mpDigit u[2], mpDigit v)
{
    if ((v & topBit) == 0)
    {
        *q = 0;
        *r = 0;
        return allOnes;
    }
    return divideTwoByOne(*q, *r, u[1], u[0], v);
}

// ---------------------------------------------------------------------------------------------------------------------
// Memory, version

void mpFail(const char* msg)
{
    perror(msg);
    exit(EXIT_FAILURE);
}

mpDigit* mpAlloc(uint32_t ndigits)
{
    return allocateDigits(ndigits);
}

void mpFree(mpDigit** p)
{
    if (p != nullptr)
    {
        free(*p);
        *p = nullptr;
    }
}

uint32_t mpVersion()
{
    return moduleVersion;
}

const char* copyright_notice()
{
    return "Multiple-precision arithmetic by the authors of Countersign.";
}

// ---------------------------------------------------------------------------------------------------------------------
// Conversions

uint32_t mpConvFromOctets(mpDigit a[], uint32_t ndigits, const unsigned char octets[], uint32_t nbytes)
{
    return static_cast<uint32_t>(digitsFromOctets(a, ndigits, octets, nbytes));
}

uint32_t mpConvToOctets(const mpDigit a[], uint32_t ndigits, unsigned char octets[], uint32_t nbytes)
{
    const auto length = static_cast<uint32_t>(octetLength(a, ndigits));
    octetsFromDigits(a, ndigits, octets, nbytes);
    return length;
}

uint32_t mpConvToDecimal(const mpDigit a[], uint32_t ndigits, char* s, uint32_t smax)
{
    return conv_to_base(a, ndigits, s, smax, 10);
}

uint32_t mpConvToHex(const mpDigit a[], uint32_t ndigits, char* s, uint32_t smax)
{
    return conv_to_base(a, ndigits, s, smax, 16);
}

uint32_t conv_to_base(const mpDigit a[], uint32_t ndigits, char* s, uint32_t smax, uint32_t base)
{
    constexpr double decimalDigitsPerOctet = 2.40824;
    constexpr double hexDigitsPerOctet = 2.0;
    constexpr const char* table = "0123456789abcdef";
    constexpr const char* outOfMemory = "conv_to_base: Not enough memory: src/bigdigits";
    if (base != 10 && base != 16)
    {
        return 0;
    }

    const bool wanted = s != nullptr && smax != 0;
    if (wanted)
    {
        memset(s, '0', smax - 1);
        s[smax - 1] = '\0';
    }
    if (mpIsZero(a, ndigits) == 1)
    {
        if (wanted)
        {
            s[1] = '\0';
        }
        return 1;
    }

    auto* value = allocate<mpDigit>(ndigits, outOfMemory);
    setEqual(value, a, ndigits);

    const double factor = base == 10 ? decimalDigitsPerOctet : hexDigitsPerOctet;
    const auto digitCount = static_cast<size_t>(octetsOrDigitsFor(octetLength(a, ndigits), factor));
    auto* digits = allocate<unsigned char>(digitCount, outOfMemory);
    if (base == 10 && digitCount >= fewestHalvedCharacters)
    {
        writeDecimalByHalving(digits, digitCount, value, significantDigits(value, ndigits));
        wipeStack(ndigits);
    }
    else if (base == 10)
    {
        writeDecimal(digits, digitCount, value, ndigits);
    }
    else
    {
        writeHex(digits, digitCount, value, ndigits);
    }

    size_t first = 0;
    while (first < digitCount && digits[first] == 0)
    {
        first++;
    }
    const size_t length = digitCount - first;
    if (wanted)
    {
        const size_t copied = length < smax ? length : smax - 1;
        for (size_t i = 0; i < copied; i++)
        {
            s[i] = table[digits[first + i]];
        }
        s[copied] = '\0';
    }

    clearAndFree(value, ndigits);
    clearAndFree(digits, digitCount);
    return static_cast<uint32_t>(length);
}

uint32_t mpConvFromDecimal(mpDigit a[], uint32_t ndigits, const char* s)
{
    constexpr double octetsPerDecimalDigit = 0.41524;
    return digitsFromText(a, ndigits, s, 10, octetsPerDecimalDigit,
                          "mpConvFromDecimal: Not enough memory: src/bigdigits");
}

uint32_t mpConvFromHex(mpDigit a[], uint32_t ndigits, const char* s)
{
    constexpr double octetsPerHexDigit = 0.5;
    return digitsFromText(a, ndigits, s, 16, octetsPerHexDigit, "mpConvFromHex: Not enough memory: src/bigdigits");
}

uint32_t ceilToUnsigned(double x)
{
    // Also what is not a number is answered here.
    if (!(x >= 0))
    {
        return 0;
    }
    if (x >= static_cast<double>(UINT32_MAX))
    {
        return UINT32_MAX;
    }
    const auto whole = static_cast<uint32_t>(x);
    return whole + (x > whole ? 1 : 0);
}

// ---------------------------------------------------------------------------------------------------------------------
// Printing

void mpPrint(const mpDigit a[], uint32_t ndigits)
{
    for (size_t i = ndigits; i-- > 0;)
    {
        printf("%08x ", a[i]);
    }
}

void mpPrintNL(const mpDigit a[], uint32_t ndigits)
{
    for (size_t i = 0; i < ndigits; i++)
    {
        if (i != 0 && i % digitsPerLine == 0)
        {
            printf("\n");
        }
        printf("%08x ", a[ndigits - 1 - i]);
    }
    printf("\n");
}

void mpPrintTrim(const mpDigit a[], uint32_t ndigits)
{
    const uint32_t size = mpSizeof(a, ndigits);
    mpPrint(a, size == 0 ? 1 : size);
}

void mpPrintTrimNL(const mpDigit a[], uint32_t ndigits)
{
    const uint32_t size = mpSizeof(a, ndigits);
    mpPrintNL(a, size == 0 ? 1 : size);
}

// ---------------------------------------------------------------------------------------------------------------------
// Modular arithmetic

int32_t mpModulo(mpDigit r[], const mpDigit u[], uint32_t udigits, mpDigit v[], uint32_t vdigits)
{
    modulo(r, u, udigits, v, vdigits);
    wipeStack(std::max(udigits, vdigits));
    return 0;
}

int32_t mpModMult(mpDigit a[], const mpDigit x[], const mpDigit y[], const mpDigit m[], uint32_t ndigits)
{
    modularProduct(a, x, y, m, ndigits);
    wipeStack(ndigits);
    return 0;
}

int32_t mpModExp(mpDigit y[], const mpDigit x[], const mpDigit e[], const mpDigit m[], uint32_t ndigits)
{
    if (ndigits == 0)
    {
        return -1;
    }
    modularPower(y, x, e, m, ndigits);
    wipeStack(ndigits);
    return 0;
}

int32_t mpModInv(mpDigit inv[], const mpDigit u[], const mpDigit v[], uint32_t ndigits)
{
    const int32_t result = modularInverse(inv, u, v, ndigits);
    wipeStack(ndigits);
    return result;
}

int32_t mpGcd(mpDigit g[], const mpDigit x[], const mpDigit y[], uint32_t ndigits)
{
    greatestCommonDivisor(g, x, y, ndigits);
    wipeStack(ndigits);
    return 0;
}

int32_t mpSqrt(mpDigit s[], const mpDigit x[], uint32_t ndigits)
{
    if (mpShortCmp(x, 1, ndigits) <= 0)
    {
        setEqual(s, x, ndigits);
        return 0;
    }
    mpDigit* xMinus1 = mpAlloc(ndigits);
    mpDigit* q = mpAlloc(ndigits);
    mpDigit* g = mpAlloc(ndigits);
    mpDigit* h = mpAlloc(ndigits);
    mpDigit* t = mpAlloc(ndigits);

    mpShortSub(xMinus1, x, 1, ndigits);
    mpShortDiv(g, x, 2, ndigits);
    for (;;)
    {
        mpDivide(q, t, xMinus1, ndigits, g, ndigits);
        mpAdd(t, g, q, ndigits);
        mpShortDiv(h, t, 2, ndigits);
        if (mpCompare(q, g, ndigits) >= 0)
        {
            break;
        }
        mpSetEqual(g, h, ndigits);
    }
    mpSetEqual(s, h, ndigits);

    mpFree(&xMinus1);
    mpFree(&q);
    mpFree(&g);
    mpFree(&h);
    mpFree(&t);
    return 0;
}

// ---------------------------------------------------------------------------------------------------------------------
// Random numbers and primality

uint32_t spSimpleRand(uint32_t lower, uint32_t upper)
{
    if (!generatorIsSeeded)
    {
        seedGenerator();
        generatorIsSeeded = true;
    }
    return spRandBetween(lower, upper);
}

uint32_t spRandBetween(uint32_t lower, uint32_t upper)
{
    if (upper <= lower)
    {
        return lower;
    }
    const uint32_t range = upper - lower;
    const uint32_t mask = allOnes >> leadingZeroBits(range);
    uint32_t value = 0;
    do
    {
        // One call a statement: the order of the calls decides which byte is which.
        uint32_t word = static_cast<uint32_t>(rand()) & 0xFFU;
        word |= (static_cast<uint32_t>(rand()) & 0xFFU) << 8;
        word |= (static_cast<uint32_t>(rand()) & 0xFFU) << 16;
        word |= (static_cast<uint32_t>(rand()) & 0xFFU) << 24;
        value = word & mask;
    } while (value > range);
    return lower + value;
}

int32_t mpRabinMiller(const mpDigit w[], uint32_t ndigits, uint32_t t)
{
    if (mpShortCmp(w, 1, ndigits) <= 0)
    {
        return 0;
    }
    mpDigit* m = mpAlloc(ndigits);
    mpDigit* a = mpAlloc(ndigits);
    mpDigit* b = mpAlloc(ndigits);
    mpDigit* z = mpAlloc(ndigits);
    mpDigit* wMinus1 = mpAlloc(ndigits);
    mpDigit* j = mpAlloc(ndigits);
    seedGenerator();

    // w - 1 = 2^a * m with an odd m.
    mpShortSub(wMinus1, w, 1, ndigits);
    mpSetEqual(m, wMinus1, ndigits);
    while (isEven(m))
    {
        mpShiftRight(m, m, 1, ndigits);
        mpShortAdd(a, a, 1, ndigits);
    }
    const mpDigit bound = mpSizeof(w, ndigits) == 1 ? w[0] - 2 : allOnes;

    int32_t result = 1;
    for (uint32_t round = 0; round < t && result == 1; round++)
    {
        mpSetZero(b, ndigits);
        do
        {
            b[0] = spRandBetween(2, bound);
        } while (mpCompare(b, w, ndigits) >= 0);

        mpSetZero(j, ndigits);
        mpModExp(z, b, m, w, ndigits);
        while (mpIsZero(j, ndigits) == 0 || mpShortCmp(z, 1, ndigits) != 0)
        {
            if (mpCompare(z, wMinus1, ndigits) == 0)
            {
                break;
            }
            if (mpIsZero(j, ndigits) == 0 && mpShortCmp(z, 1, ndigits) == 0)
            {
                result = 0;
                break;
            }
            mpShortAdd(j, j, 1, ndigits);
            if (mpCompare(j, a, ndigits) >= 0)
            {
                result = 0;
                break;
            }
            mpModMult(z, z, z, w, ndigits);
        }
    }

    clearAndFree(m, ndigits);
    clearAndFree(a, ndigits);
    clearAndFree(b, ndigits);
    clearAndFree(z, ndigits);
    clearAndFree(wMinus1, ndigits);
    clearAndFree(j, ndigits);
    return result;
}

int32_t mpIsPrime(const mpDigit w[], uint32_t ndigits, uint32_t t)
{
    if (ndigits == 0 || isEven(w))
    {
        return 0;
    }
    if (mpShortCmp(w, largestSmallPrime, ndigits) <= 0)
    {
        for (const mpDigit prime : smallPrimes)
        {
            if (w[0] == prime)
            {
                return 1;
            }
        }
        return 0;
    }
    for (const mpDigit prime : smallPrimes)
    {
        if (mpShortMod(w, prime, ndigits) == 0)
        {
            return 0;
        }
    }
    return mpRabinMiller(w, ndigits, t);
}

/* SPDX-License-Identifier: Apache-2.0 */
/* Multiple-precision arithmetic on natural numbers: plain functions over arrays that the caller owns.
 *
 * CONVENTIONS
 *
 * Numbers.   A number is an array of 32-bit digits (mpDigit), the least significant first: digit i counts 2^(32*i).
 *            The array knows neither its length nor a sign; each function takes the length beside it. High digits of
 *            zero are welcome everywhere. A double digit is an array of two, low digit first.
 * Lengths.   ndigits counts digits, not bytes. One length holds for all operands and the result of a call unless the
 *            function takes two. A product has 2 * ndigits digits.
 *            A length of 0 is allowed and stands for an empty array that is neither read nor written, save where a
 *            function below says that it touches digit 0 all the same.
 * Memory.    Results are arrays of the caller, large enough for the digits named. No function keeps a pointer. Null
 *            pointers are not checked for, except by mpBitLength, mpFree and the text converters.
 *            What a function allocates, it frees before it returns. Running out of memory never comes back: it ends
 *            the process (mpFail).
 * Overlap.   Where a result may be the same array as another argument, it is said. Inputs may always be the same array
 *            as other inputs, also with different lengths. Arrays that overlap in any other way are never allowed.
 * Results.   Carries and borrows come back as digits. Comparisons answer 1, 0 or -1. There is no error reporting
 *            beyond the results named.
 * Threads.   Functions work on their arguments alone and may run on any number of threads at once, provided that no
 *            array that one thread writes is used by another. Mind that mpDivide and mpModulo write to their divisor
 *            while they run. The random numbers and the primality test share rand() with the whole process and are
 *            for one thread at a time; the printing functions share standard output.
 * Secrets.   Temporaries are zeroed before they are freed (not by mpSqrt), and the functions of modular arithmetic but
 *            mpSqrt zero the stack that they used. Running times do depend on the values: nothing here hides a secret
 *            from somebody with a stopwatch.
 *
 * The header can be used from C (C99) and from C++.
 */
#ifndef COUNTERSIGN_BIGDIGITS_H
#define COUNTERSIGN_BIGDIGITS_H

#include <stdint.h>

#if defined(__GNUC__)
#define MP_NORETURN __attribute__((noreturn))
#else
#define MP_NORETURN
#endif

#ifdef __cplusplus
#define MP_BEGIN_C_LINKAGE                                                                                             \
    extern "C"                                                                                                         \
    {
#define MP_END_C_LINKAGE }
#else
#define MP_BEGIN_C_LINKAGE
#define MP_END_C_LINKAGE
#endif

MP_BEGIN_C_LINKAGE
#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

/* One digit of base 2^32. */
typedef uint32_t mpDigit;

/* ---- Setting and copying ---- */

/* a = 0. */
void mpSetZero(mpDigit a[], uint32_t ndigits);

/* a = d. Writes a[0] even when ndigits is 0: a must hold one digit at least. */
void mpSetDigit(mpDigit a[], mpDigit d, uint32_t ndigits);

/* a = b. a and b may be the same. */
void mpSetEqual(mpDigit a[], const mpDigit b[], uint32_t ndigits);

/* ---- Sizes and comparisons ---- */

/* The number of digits without the zeros at the top; 0 for the number 0. */
uint32_t mpSizeof(const mpDigit a[], uint32_t ndigits);

/* The number of bits without the zeros at the top; 0 for the number 0, for a length of 0 and for a null pointer.
 * From 2^32 bits on (arrays of half a gigabyte) the count is taken modulo 2^32. */
uint32_t mpBitLength(const mpDigit a[], uint32_t ndigits);

/* 1 when a > b, -1 when a < b, 0 when they are equal or ndigits is 0. */
int32_t mpCompare(const mpDigit a[], const mpDigit b[], uint32_t ndigits);

/* 1 when a = b, 0 when not, and -1 when ndigits is 0: compare the answer with 1 or with 0, it is no truth value. */
int32_t mpEqual(const mpDigit a[], const mpDigit b[], uint32_t ndigits);

/* 1 when a = 0, 0 when not, and -1 when ndigits is 0: as with mpEqual, compare the answer with 1 or with 0. */
int32_t mpIsZero(const mpDigit a[], uint32_t ndigits);

/* ---- Addition, subtraction, products ----
 *
 * Knuth, The Art of Computer Programming, vol. 2, 4.3.1, algorithms A, S and M.
 */

/* w = u + v modulo 2^(32*ndigits). w may be u, but not v. Returns the carry out of the top digit, 0 or 1. */
mpDigit mpAdd(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits);

/* w = u - v modulo 2^(32*ndigits). w may be u, but not v. Returns the borrow out of the top digit, 0 or 1. */
mpDigit mpSubtract(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits);

/* w = u * v. w has 2 * ndigits digits and must not overlap u or v. Zeros at the top of either factor cost next to
 * nothing. Zero digits elsewhere in v are skipped only when both factors have fewer than 16 significant digits.
 * Returns 0. */
int32_t mpMultiply(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits);

/* w = x * x. w has 2 * ndigits digits and must not overlap x. Faster than mpMultiply of x by itself: several times
 * on processors that multiply limbs of 52 bits, less on others. Returns 0. */
int32_t mpSquare(mpDigit w[], const mpDigit x[], uint32_t ndigits);

/* ---- Shifts and bits ---- */

/* a = b * 2^shift modulo 2^(32*ndigits). a and b may be the same.
 *
 * shift < 32: returns the bits pushed out of the top, at the low end of the digit.
 * shift >= 32: what comes back is made of two terms joined by "or", and is not all that was pushed out. With
 *     nw = shift / 32 and bits = shift % 32, one term is b[ndigits - nw] << bits, read when a is already moved up by
 *     whole digits (so from the moved number when a is b; and 0 when nw > ndigits); the other is what a shift of a by
 *     the remaining bits pushes out. Whoever needs the carry shifts by less than 32 at a time. */
mpDigit mpShiftLeft(mpDigit a[], const mpDigit b[], uint32_t shift, uint32_t ndigits);

/* a = b / 2^shift, rounded down. a and b may be the same.
 *
 * shift < 32: returns the bits pushed out of the bottom, at the high end of the digit.
 * shift >= 32: with nw = shift / 32 and bits = shift % 32 the result is b[nw - 1] >> bits, read when a is already
 *     moved down by whole digits, joined by "or" with what a shift of a by the remaining bits pushes out. b[nw - 1]
 *     is read whatever ndigits says, even 0: the caller must see to it that b holds nw digits at least. */
mpDigit mpShiftRight(mpDigit a[], const mpDigit b[], uint32_t shift, uint32_t ndigits);

/* a = a modulo 2^L, in place. An L of 32 * ndigits or more changes nothing. */
void mpModPowerOf2(mpDigit a[], uint32_t ndigits, uint32_t L);

/* w = u xor v, u or v, u and v, digit by digit. w may be u or v or both. */
void mpXorBits(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits);
void mpOrBits(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits);
void mpAndBits(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t ndigits);

/* ---- A number and a single digit ---- */

/* w = u + d modulo 2^(32*ndigits). w may be u. Returns the carry, 0 or 1.
 * Digit 0 is added and its carry returned even when ndigits is 0: both arrays must hold one digit at least. */
mpDigit mpShortAdd(mpDigit w[], const mpDigit u[], mpDigit d, uint32_t ndigits);

/* w = u - d modulo 2^(32*ndigits). w may be u. Returns the borrow, 0 or 1.
 * As with mpShortAdd, digit 0 is written even when ndigits is 0. */
mpDigit mpShortSub(mpDigit w[], const mpDigit u[], mpDigit d, uint32_t ndigits);

/* w = u * d modulo 2^(32*ndigits). w may be u. Returns the digit that overflows. */
mpDigit mpShortMult(mpDigit w[], const mpDigit u[], mpDigit d, uint32_t ndigits);

/* 1 when a > d, -1 when a < d, 0 when they are equal. An empty array counts as 0. */
int32_t mpShortCmp(const mpDigit a[], mpDigit d, uint32_t ndigits);

/* p = x * y, a double digit, formed from 16-bit halves. Returns 0. */
int32_t spMultiply(mpDigit p[2], mpDigit x, mpDigit y);

/* ---- Division ----
 *
 * Knuth, vol. 2, 4.3.1, algorithm D.
 */

/* q = u / v and r = u modulo v, both udigits digits long. udigits should be no less than mpSizeof(v, vdigits).
 *
 * v is WRITTEN TO: it is shifted up for the time of the call and holds its old value again on return. Hence it must be
 * writable, and it must not be in use by another thread; a divisor that is shared is copied first.
 * q and r must be different from each other, from u and from v. u may be v, also with another length; then u is
 * written to and restored with v.
 * Returns 0, or -1 when v is zero or vdigits is 0; q and r are zero then.
 * When v has one significant digit, r[0] is written even if udigits is 0. */
int32_t mpDivide(mpDigit q[], mpDigit r[], const mpDigit u[], uint32_t udigits, mpDigit v[], uint32_t vdigits);

/* q = u / d. q may be u. Returns the remainder. When d or ndigits is 0, q is left alone and the result is 0. */
mpDigit mpShortDiv(mpDigit q[], const mpDigit u[], mpDigit d, uint32_t ndigits);

/* Returns u modulo d; 0 when d or ndigits is 0. Allocates 2 * ndigits digits. */
mpDigit mpShortMod(const mpDigit u[], mpDigit d, uint32_t ndigits);

/* Divides the double digit u by the digit v, whose top bit must be set: *q is the low digit of the quotient, *r the
 * remainder, and the result is the digit of the quotient above *q, 0 or 1 (0 when u[1] < v). Works on 16-bit
 * halves. q and r may point into u. With the top bit of v clear, *q and *r are 0 and the result is 0xFFFFFFFF. */
mpDigit spDivide(mpDigit* q, mpDigit* r, const mpDigit u[2], mpDigit v);

/* ---- Memory, version ---- */

/* Prints msg, a colon and the text of errno to standard error, then ends the process with status 1 (exit). */
MP_NORETURN void mpFail(const char* msg);

/* A new array of ndigits digits, all zero, to be released with mpFree. Never null: without memory the process ends
 * through mpFail. A length of 0 gives an array in which nothing may be stored. */
mpDigit* mpAlloc(uint32_t ndigits);

/* Releases *p and sets it to null. Does nothing when p or *p is null, so releasing twice is harmless. The digits
 * are not zeroed. */
void mpFree(mpDigit** p);

/* The version of the module: 2100. */
uint32_t mpVersion(void);

/* A sentence that says whose work the module is. Constant, never to be freed. */
const char* copyright_notice(void);

/* ---- Conversions ----
 *
 * Octets are bytes, the most significant first. Text is NUL-terminated; written digits are lower case.
 */

/* a = the number in octets[0..nbytes). What does not fit into ndigits digits is dropped at the top without notice.
 * Returns how many digits of a the octets reached: the smaller of ndigits and nbytes / 4 rounded up. */
uint32_t mpConvFromOctets(mpDigit a[], uint32_t ndigits, const unsigned char octets[], uint32_t nbytes);

/* octets[0..nbytes) = a, with zeros in front; what does not fit is dropped at the top without notice. Returns the
 * number of octets that a needs, 0 for zero, whatever nbytes is. The result is found before an octet is written. */
uint32_t mpConvToOctets(const mpDigit a[], uint32_t ndigits, unsigned char octets[], uint32_t nbytes);

/* Writes a as decimal or hexadecimal text without leading zeros into s[0..smax), the final NUL included; a text
 * that is too long is cut behind its first smax - 1 characters. Returns the length of the whole text, so a call
 * with a null s (or an smax of 0), which writes nothing, tells the room needed, less one for the NUL.
 *
 * Zero gives "0" and writes s[0] and s[1] EVEN WHEN smax IS 1. What is left of s behind the NUL is overwritten,
 * too: with '0' up to s[smax - 2] and a NUL in s[smax - 1]. An ndigits of 0 gives an empty text and the result 0.
 * Takes time in proportion to the square of the length; from 3969 characters on, decimal text is made by halving the
 * number, in a fraction of the time. Allocates the octets of a and the digits of the text. */
uint32_t mpConvToDecimal(const mpDigit a[], uint32_t ndigits, char* s, uint32_t smax);
uint32_t mpConvToHex(const mpDigit a[], uint32_t ndigits, char* s, uint32_t smax);

/* What stands behind the two above. base is 10 or 16; any other gives 0 and writes nothing. */
uint32_t conv_to_base(const mpDigit a[], uint32_t ndigits, char* s, uint32_t smax, uint32_t base);

/* a = the number that the digits of s make, decimal or hexadecimal of either case. All other characters are skipped
 * without notice: blanks, signs, separators, the x of "0x", bytes from 0x80. What does not fit into ndigits digits
 * is dropped at the top without notice. Returns what mpConvFromOctets returns for the octets set aside for the
 * text, so it tells an upper bound of the digits used; 0 for an empty text.
 *
 * The octets set aside are strlen(s) * 0.41524 for decimal text, rounded up, which is a little less than the most
 * that so many digits can need: of a text from some 1800 characters on, THE TOP OCTET CAN BE LOST (it is of 1811
 * nines). Leading zeros or blanks make room. Hexadecimal text always fits.
 *
 * All digits of a may be written to before the result is. Decimal text from 3969 digits on is read by halving, in a
 * fraction of the time, when a has as many digits as the text needs. */
uint32_t mpConvFromDecimal(mpDigit a[], uint32_t ndigits, const char* s);
uint32_t mpConvFromHex(mpDigit a[], uint32_t ndigits, const char* s);

/* x rounded up to a whole number; 0 for what is below 0 and for not-a-number, 0xFFFFFFFF for what is above that. */
uint32_t ceilToUnsigned(double x);

/* ---- Printing ----
 *
 * To standard output, the most significant digit first, each digit as eight hexadecimal characters and a blank.
 */

/* All digits in one line, which is not ended. */
void mpPrint(const mpDigit a[], uint32_t ndigits);

/* All digits, eight a line, and a newline at the end. */
void mpPrintNL(const mpDigit a[], uint32_t ndigits);

/* The same without the zero digits at the top, but always one digit at least: with a length of 0, too, a[0] is
 * printed and must be there. */
void mpPrintTrim(const mpDigit a[], uint32_t ndigits);
void mpPrintTrimNL(const mpDigit a[], uint32_t ndigits);

/* ---- Modular arithmetic ----
 *
 * These allocate temporaries of a few times ndigits digits.
 */

/* r = u modulo v. u has udigits digits, r and v have vdigits. r may be u or v, and u may be v.
 * v is WRITTEN TO, as by mpDivide: it must be writable and not in use by another thread. This is the only function of
 * this section of which that is true; the others divide by a copy of their modulus.
 * r is zero when v is. Returns 0. */
int32_t mpModulo(mpDigit r[], const mpDigit u[], uint32_t udigits, mpDigit v[], uint32_t vdigits);

/* a = x * y modulo m. a may be x, y or m. m is only read. a is zero when m is. Returns 0. */
int32_t mpModMult(mpDigit a[], const mpDigit x[], const mpDigit y[], const mpDigit m[], uint32_t ndigits);

/* y = x^e modulo m, by squaring and multiplying from the top bit of e down (Knuth, vol. 2, 4.6.3). y may be x, e or m,
 * all of which are only read.
 *
 * x need not be below m; but with an e of 1 it is handed on as it is, not reduced. e and m must not be zero; should one
 * be, no other memory is touched, and y is 1 modulo m for an e of 0, and 0 for an m of 0 and an e of 2 or more.
 * Returns 0, or -1 when ndigits is 0 (then nothing is touched). */
int32_t mpModExp(mpDigit y[], const mpDigit x[], const mpDigit e[], const mpDigit m[], uint32_t ndigits);

/* inv = the inverse of u modulo v (Knuth, vol. 2, 4.5.2, algorithm X, with the coefficient of u only). inv may be u or
 * v, both of which are only read.
 * Returns 0, or 1 when u and v have a common divisor above 1; inv is zero then. With a v of 0 only 1 has an inverse,
 * which is 1. */
int32_t mpModInv(mpDigit inv[], const mpDigit u[], const mpDigit v[], uint32_t ndigits);

/* g = the greatest common divisor of x and y; of 0 and y it is y. g may be x or y. Returns 0. */
int32_t mpGcd(mpDigit g[], const mpDigit x[], const mpDigit y[], uint32_t ndigits);

/* s = the square root of x, rounded down, by Newton's method. s may be x. Returns 0.
 * Its temporaries are freed with their digits left in them: not for secrets. */
int32_t mpSqrt(mpDigit s[], const mpDigit x[], uint32_t ndigits);

/* ---- Random numbers and primality ----
 *
 * All of this draws on rand(): good enough to pick witnesses, useless for keys; and for one thread at a time.
 */

/* A random digit from lower to upper, both included. The first call in the process seeds rand() with the time. When
 * upper is not above lower, the result is lower. */
uint32_t spSimpleRand(uint32_t lower, uint32_t upper);

/* The same without seeding; meant for this module. Each try takes four calls of rand(), low byte first. When upper
 * is not above lower, there is none. */
uint32_t spRandBetween(uint32_t lower, uint32_t upper);

/* Whether w passes t rounds of the Rabin-Miller test (Knuth, vol. 2, 4.5.4, algorithm P): 1 when it does, 0 when w
 * is composite or at most 1. w must be odd: a w of 2 NEVER COMES BACK. A t of 0 lets every w above 1 pass.
 * Witnesses are single digits. rand() is seeded with the time on every call, so that two calls within a second use
 * the same witnesses, and whoever uses rand() for other things finds it restarted. */
int32_t mpRabinMiller(const mpDigit w[], uint32_t ndigits, uint32_t t);

/* Whether w is taken for a prime: 1 or 0. Up to 997 the answer is exact, but 2 IS SAID TO BE NONE, like every even
 * number. Above that, what has an odd prime factor below 1000 is none, and the rest is left to t rounds of
 * mpRabinMiller; with a t of 0 it is all taken for prime. */
int32_t mpIsPrime(const mpDigit w[], uint32_t ndigits, uint32_t t);

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif
MP_END_C_LINKAGE

#endif

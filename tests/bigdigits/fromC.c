/* SPDX-License-Identifier: Apache-2.0 */
/* Everything in the header, called from C: the names must link as they stand. Run by a test in printing.cpp. */
#include "bigdigits.h"

int usedFromC(void);
extern void (*const failFromC)(const char*);
extern uint32_t (*const simpleRandFromC)(uint32_t, uint32_t);
/* These two are not called: one ends the process, the other is for a test that sees its first call. */
void (*const failFromC)(const char*) = mpFail;
uint32_t (*const simpleRandFromC)(uint32_t, uint32_t) = spSimpleRand;

/* Returns the number of the first step that went wrong, or 0. */
int usedFromC(void)
{
    mpDigit u[2] = {7, 0}, v[2] = {3, 0}, w[4] = {0, 0, 0, 0}, q[2], r[2];
    unsigned char octets[8];
    char text[24];
    mpDigit* a = mpAlloc(2);

    mpSetZero(w, 4);
    mpSetDigit(a, 5, 2);
    mpSetEqual(q, a, 2);
    if (mpSizeof(u, 2) != 1 || mpBitLength(u, 2) != 3 || mpCompare(u, v, 2) != 1 || mpEqual(u, v, 2) != 0 ||
        mpIsZero(u, 2) != 0 || mpShortCmp(u, 7, 2) != 0)
    {
        return 1;
    }
    if (mpAdd(w, u, v, 2) != 0 || w[0] != 10 || mpSubtract(w, u, v, 2) != 0 || w[0] != 4)
    {
        return 2;
    }
    if (mpMultiply(w, u, v, 2) != 0 || w[0] != 21 || mpSquare(w, u, 2) != 0 || w[0] != 49)
    {
        return 3;
    }
    if (mpShiftLeft(w, u, 1, 2) != 0 || w[0] != 14 || mpShiftRight(w, u, 1, 2) != 0x80000000U || w[0] != 3)
    {
        return 4;
    }
    mpXorBits(w, u, v, 2);
    mpOrBits(w + 1, u, v, 1);
    mpAndBits(w + 2, u, v, 1);
    mpModPowerOf2(w, 1, 2);
    if (w[0] != 0 || w[1] != 7 || w[2] != 3)
    {
        return 5;
    }
    if (mpShortAdd(w, u, 1, 2) != 0 || w[0] != 8 || mpShortSub(w, u, 1, 2) != 0 || w[0] != 6 ||
        mpShortMult(w, u, 2, 2) != 0 || w[0] != 14 || spMultiply(w, 5, 6) != 0 || w[0] != 30)
    {
        return 6;
    }
    if (mpDivide(q, r, u, 2, v, 2) != 0 || q[0] != 2 || r[0] != 1 || mpShortDiv(q, u, 2, 2) != 1 || q[0] != 3 ||
        mpShortMod(u, 4, 2) != 3 || spDivide(q, r, u, 0x80000000U) != 0 || r[0] != 7)
    {
        return 7;
    }
    if (mpVersion() != 2100 || copyright_notice() == 0 || ceilToUnsigned(1.5) != 2)
    {
        return 8;
    }
    if (mpConvToOctets(u, 2, octets, 8) != 1 || mpConvFromOctets(w, 2, octets, 8) != 2 || w[0] != 7 ||
        mpConvToDecimal(u, 2, text, 24) != 1 || mpConvFromDecimal(w, 2, text) != 1 ||
        mpConvToHex(u, 2, text, 24) != 1 || mpConvFromHex(w, 2, text) != 1 || conv_to_base(u, 2, text, 24, 10) != 1 ||
        text[0] != '7' || w[0] != 7)
    {
        return 9;
    }
    mpPrint(u, 0);
    mpPrintNL(u, 2);
    mpPrintTrim(u, 2);
    mpPrintTrimNL(u, 2);
    if (mpModulo(r, u, 2, v, 2) != 0 || r[0] != 1 || mpModMult(w, u, u, v, 2) != 0 || w[0] != 1 ||
        mpModExp(w, v, v, u, 2) != 0 || w[0] != 6 || mpModInv(w, v, u, 2) != 0 || w[0] != 5 || mpGcd(w, u, v, 2) != 0 ||
        w[0] != 1 || mpSqrt(w, u, 2) != 0 || w[0] != 2)
    {
        return 10;
    }
    if (spRandBetween(4, 4) != 4 || mpRabinMiller(u, 2, 3) != 1 || mpIsPrime(u, 2, 3) != 1)
    {
        return 11;
    }
    mpFree(&a);
    return a == 0 ? 0 : 12;
}

/* SPDX-License-Identifier: Apache-2.0 */
/* Prints 3 to the power of 100, modulo 2 to the power of 127 minus 1, which is prime, and 3 to the power of that
   minus 1. */
#include <stdio.h>

#include "bigdigits.h"

#define DIGITS 4

static void printPower(const mpDigit base[DIGITS], const mpDigit exponent[DIGITS], const mpDigit modulus[DIGITS])
{
    mpDigit power[DIGITS];
    char text[64];
    if (mpModExp(power, base, exponent, modulus, DIGITS) == 0)
    {
        mpConvToDecimal(power, DIGITS, text, sizeof text);
        printf("%s\n", text);
    }
}

int main(void)
{
    const mpDigit three[DIGITS] = {3};
    const mpDigit hundred[DIGITS] = {100};
    /* The least significant digit comes first. */
    const mpDigit prime[DIGITS] = {0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0x7FFFFFFFu};
    const mpDigit primeMinusOne[DIGITS] = {0xFFFFFFFEu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0x7FFFFFFFu};

    printPower(three, hundred, prime);
    printPower(three, primeMinusOne, prime);
    return 0;
}

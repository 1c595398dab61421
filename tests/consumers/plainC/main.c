/* SPDX-License-Identifier: Apache-2.0 */
/* An outside program in plain C that uses the multiple-precision module alone. */
#include <stdio.h>

#include "bigdigits.h"

int main(void)
{
    mpDigit u[2] = {0xFFFFFFFFu, 0xFFFFFFFFu};
    mpDigit w[4];
    char text[64];

    mpMultiply(w, u, u, 2);
    printf("%u %s\n", (unsigned)mpConvToDecimal(w, 4, text, sizeof text), text);
    return 0;
}

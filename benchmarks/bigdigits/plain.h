// SPDX-License-Identifier: Apache-2.0
// The algorithms of the module, step by step and digit by digit as its header's sources describe them, without any
// attempt at speed: what the module's speed is measured against.
#ifndef COUNTERSIGN_BENCHMARKS_PLAIN_H
#define COUNTERSIGN_BENCHMARKS_PLAIN_H

#include "bigdigits.h"

namespace plain
{

void multiply(mpDigit w[], const mpDigit u[], const mpDigit v[], uint32_t n);
void square(mpDigit w[], const mpDigit x[], uint32_t n);
void divide(mpDigit q[], mpDigit r[], const mpDigit u[], uint32_t udigits, mpDigit v[], uint32_t vdigits);
void modExp(mpDigit y[], const mpDigit x[], const mpDigit e[], const mpDigit m[], uint32_t n);

}  // namespace plain

#endif

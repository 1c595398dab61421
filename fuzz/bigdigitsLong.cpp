// SPDX-License-Identifier: Apache-2.0
// Long numbers as this processor computes with them.
#include "longNumbers.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    checkLongNumbers(input);
    return 0;
}

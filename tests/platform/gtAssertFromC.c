/* SPDX-License-Identifier: Apache-2.0 */
#include "tests/platform/gtAssertFromC.h"

#include "platform/baseTools/gtAssert.h"

int checkFromC(int value)
{
    const int* pValue = value == -5 ? (const int*)0 : &value;
    GT_ASSERT(value > 0);
    GT_ASSERT_EX(value != -5, "minus five");
    return GT_ASSERT(pValue) ? value : 0;
}

const char* fileOfChecksFromC(void)
{
    return __FILE__;
}

/* SPDX-License-Identifier: Apache-2.0 */
#include "tests/assertionReporting/checkLast.h"

#include "platform/baseTools/gtAssert.h"

void checkLastInC(int value)
{
    GT_ASSERT(value > 0);
}

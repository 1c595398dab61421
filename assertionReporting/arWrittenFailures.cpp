// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arWrittenFailures.h"

namespace
{
thread_local unsigned long amount = 0;
}

unsigned long arAmountOfWrittenFailures()
{
    return amount;
}

void arCountWrittenFailure()
{
    ++amount;
}

// SPDX-License-Identifier: Apache-2.0
#ifndef COUNTERSIGN_TESTS_TS_ENVIRONMENT_H
#define COUNTERSIGN_TESTS_TS_ENVIRONMENT_H

#include <cstdlib>

// The decimal number in the variable; what is usual where there is no such variable, and 0 where it is no number.
inline unsigned long tsNumberFromEnvironment(const char* pName, unsigned long usual)
{
    const char* const pText = std::getenv(pName);
    return pText == nullptr ? usual : std::strtoul(pText, nullptr, 10);
}

#endif

/* SPDX-License-Identifier: Apache-2.0 */
/* Checks in code that a C compiler has compiled. */
#ifndef TESTS_PLATFORM_GT_ASSERT_FROM_C_H
#define TESTS_PLATFORM_GT_ASSERT_FROM_C_H

#ifdef __cplusplus
extern "C"
{
#endif

    /* Fails three checks for -5, and no check for 5. Gives the value, or 0 if a check has failed. */
    int checkFromC(int value);

    const char* fileOfChecksFromC(void);

#ifdef __cplusplus
}
#endif

#endif

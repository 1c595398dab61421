/* SPDX-License-Identifier: Apache-2.0 */
/* Functions that end with a check, which holds for values above zero. Compiled with optimisation. */
#ifndef CHECK_LAST_H
#define CHECK_LAST_H

#ifdef __cplusplus
void checkLast(int value);

extern "C"
{
#endif

    void checkLastInC(int value);

#ifdef __cplusplus
}
#endif

#endif

// SPDX-License-Identifier: Apache-2.0
// Any bytes as one line of printable ASCII and back: '%' and two hexadecimal digits stand for a byte, as in URIs.
// Plain functions, safe from any thread.
#ifndef COUNTERSIGN_HO_PERCENT_TEXT_H
#define COUNTERSIGN_HO_PERCENT_TEXT_H

#include "platform/baseTools/gtString.h"

// Every byte that is not a letter or digit of ASCII or one of "-._~/" as an escape of upper-case digits: the result is
// safe as a value in a line of text and as the path of a URI.
gtString hoToPercentText(const gtString& bytes);

// Escapes become bytes; a '%' without two hexadecimal digits behind it stands for itself, as does every other byte.
gtString hoFromPercentText(const gtString& text);

#endif

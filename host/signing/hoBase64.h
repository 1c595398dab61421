// SPDX-License-Identifier: Apache-2.0
#ifndef COUNTERSIGN_HO_BASE64_H
#define COUNTERSIGN_HO_BASE64_H

#include "platform/baseTools/gtString.h"

#include <string_view>

// The bytes in base64 on one line, with padding and without a line end. At most 1 GiB of them. Throws std::bad_alloc.
gtString hoBase64(std::string_view bytes);

#endif

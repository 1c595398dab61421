// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoBase64.h"

#include <openssl/evp.h>

#include <vector>

gtString hoBase64(std::string_view bytes)
{
    // libcrypto writes a NUL, too.
    std::vector<unsigned char> text((bytes.size() + 2) / 3 * 4 + 1);
    const int length = EVP_EncodeBlock(text.data(), reinterpret_cast<const unsigned char*>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    return gtString(reinterpret_cast<const char*>(text.data()), length);
}

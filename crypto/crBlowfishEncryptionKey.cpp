// SPDX-License-Identifier: Apache-2.0
// The cipher is marked as deprecated in libcrypto 3; here it is wanted.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "crypto/crBlowfishEncryptionKey.h"

#include <new>

#include <openssl/blowfish.h>

#include "platform/baseTools/gtWipe.h"

namespace
{

constexpr int amountOfKeyBytes = 16;

}  // namespace

static_assert(sizeof(BF_KEY) == sizeof(unsigned int) * (18 + 4 * 256), "eighteen words and four boxes of 256");

crBlowfishEncryptionKey::crBlowfishEncryptionKey(unsigned char const* pKeyBytes)
    : _pKeyRecord(new (std::nothrow) BF_KEY)
{
    if (_pKeyRecord != nullptr)
    {
        BF_set_key(_pKeyRecord, amountOfKeyBytes, pKeyBytes);
    }
}

crBlowfishEncryptionKey::~crBlowfishEncryptionKey()
{
    gtWipe(_pKeyRecord, sizeof(BF_KEY));
    delete _pKeyRecord;
}

// SPDX-License-Identifier: Apache-2.0
// Any bytes as a key file: a key that can be used, or a problem; never both.
#include <string>

#include <openssl/crypto.h>
#include <openssl/err.h>

#include "fuzzInput.h"
#include "host/keys/hoKeyFile.h"

namespace
{

class AnyPassphrase : public hoIPassphraseSource
{
public:
    int getPassphrase(char* pBuffer, int size) override
    {
        FUZZ_CHECK(size >= 6);
        pBuffer[0] = 'x';
        return 1;
    }
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    if (size > 65536)
    {
        return 0;
    }
    AnyPassphrase passphrase;
    hoKeyFileFacts facts;
    const std::unique_ptr<const hoKey> pKey =
        hoLoadKey(reinterpret_cast<const char*>(pBytes), static_cast<int>(size), &passphrase, facts);
    FUZZ_CHECK((pKey != nullptr) == (facts._problem == hoKeyFileProblem::None));
    FUZZ_CHECK(ERR_peek_error() == 0);
    if (pKey != nullptr)
    {
        FUZZ_CHECK(pKey->publicKey().isUsable());
        FUZZ_CHECK(pKey->hasPrivateKey() == facts._isPrivate);
        FUZZ_CHECK(!pKey->hasPrivateKey() || pKey->privateKey().isUsable());
        FUZZ_CHECK(pKey->bits() % 32 == 0 && pKey->bits() > 0 && pKey->bits() <= hoLargestKeyBits);
        FUZZ_CHECK(pKey->ownKey().amountOfProductDigits() == pKey->bits() / 32);
    }
    return 0;
}

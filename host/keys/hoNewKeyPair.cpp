// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoNewKeyPair.h"

#include <openssl/pem.h>
#include <openssl/rsa.h>

#include <cerrno>
#include <new>
#include <utility>

#include "host/keys/hoLibcryptoObjects.h"

namespace
{
int goesOn(EVP_PKEY_CTX* pContext)
{
    const auto* pIsCancelled = static_cast<const std::atomic<bool>*>(EVP_PKEY_CTX_get_app_data(pContext));
    return *pIsCancelled ? 0 : 1;
}

hoBio secureMemory()
{
    return hoBio(BIO_new(BIO_s_secmem()));
}

osWritingResult noMemory()
{
    return osWritingResult(osWritingProblem::CannotBeWritten, ENOMEM);
}

osWritingResult writeFile(const gtString& path, unsigned int rights, bool mayOverwrite, const hoBio& pText)
{
    char* pBytes = nullptr;
    const long length = BIO_get_mem_data(pText.get(), &pBytes);
    try
    {
        return osWriteFileAtomically(path, std::string_view(pBytes, static_cast<std::size_t>(length)), mayOverwrite,
                                     rights);
    }
    catch (const std::bad_alloc&)
    {
        return noMemory();
    }
}
}  // namespace

void hoNewKeyPair::Deleter::operator()(void* pKey) const
{
    EVP_PKEY_free(static_cast<EVP_PKEY*>(pKey));
}

hoNewKeyPair::hoNewKeyPair(int bits, std::function<void()> onFinished)
    : _bits(bits), _onFinished(std::move(onFinished)), _isCancelled(false), _isFinished(false)
{
    _thread = std::thread(&hoNewKeyPair::run, this);
}

hoNewKeyPair::~hoNewKeyPair()
{
    cancel();
    _thread.join();
}

void hoNewKeyPair::run()
{
    EVP_PKEY* pKey = nullptr;
    const hoKeyContext pContext(EVP_PKEY_CTX_new_id(EVP_PKEY_RSA, nullptr));
    if (pContext != nullptr && EVP_PKEY_keygen_init(pContext.get()) > 0 &&
        EVP_PKEY_CTX_set_rsa_keygen_bits(pContext.get(), _bits) > 0)
    {
        EVP_PKEY_CTX_set_app_data(pContext.get(), &_isCancelled);
        EVP_PKEY_CTX_set_cb(pContext.get(), &goesOn);
        if (EVP_PKEY_keygen(pContext.get(), &pKey) <= 0)
        {
            pKey = nullptr;
        }
    }
    _pKey.reset(pKey);
    if (_isCancelled)
    {
        _pKey.reset();
    }
    _isFinished = true;
    if (_onFinished)
    {
        _onFinished();
    }
}

osWritingResult hoNewKeyPair::writePrivateKey(const gtString& path, std::string_view passphrase,
                                              bool mayOverwrite) const
{
    const hoBio pText = secureMemory();
    const EVP_CIPHER* const pCipher = passphrase.empty() ? nullptr : EVP_aes_256_cbc();
    if (pText == nullptr ||
        PEM_write_bio_PKCS8PrivateKey(pText.get(), static_cast<EVP_PKEY*>(_pKey.get()), pCipher, passphrase.data(),
                                      static_cast<int>(passphrase.size()), nullptr, nullptr) != 1)
    {
        return noMemory();
    }
    return writeFile(path, 0600, mayOverwrite, pText);
}

osWritingResult hoNewKeyPair::writePublicKey(const gtString& path, bool mayOverwrite) const
{
    const hoBio pText = secureMemory();
    if (pText == nullptr || PEM_write_bio_PUBKEY(pText.get(), static_cast<EVP_PKEY*>(_pKey.get())) != 1)
    {
        return noMemory();
    }
    return writeFile(path, 0644, mayOverwrite, pText);
}

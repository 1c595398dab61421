#include "host/hoNewKeyPair.h"

#include "host/hoBytes.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
int goesOn(EVP_PKEY_CTX* pContext)
{
    const auto* pIsCancelled = static_cast<const std::atomic<bool>*>(EVP_PKEY_CTX_get_app_data(pContext));
    return *pIsCancelled ? 0 : 1;
}

struct BioDeleter
{
    // Memory of this kind is overwritten when it is freed.
    void operator()(BIO* pBio) const { BIO_free(pBio); }
};
using Bio = std::unique_ptr<BIO, BioDeleter>;

Bio secureMemory()
{
    return Bio(BIO_new(BIO_s_secmem()));
}

bool writeAll(int file, const char* pBytes, long length)
{
    long done = 0;
    while (done < length)
    {
        const ssize_t written = write(file, pBytes + done, static_cast<std::size_t>(length - done));
        if (written < 0 && errno != EINTR)
        {
            return false;
        }
        done += written > 0 ? written : 0;
    }
    return fsync(file) == 0;
}
}  // namespace

void hoNewKeyPair::Deleter::operator()(void* pKey) const
{
    EVP_PKEY_free(static_cast<EVP_PKEY*>(pKey));
}

hoNewKeyPair::hoNewKeyPair(int bits) : _bits(bits), _systemError(0), _isCancelled(false), _isFinished(false)
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
    EVP_PKEY_CTX* const pContext = EVP_PKEY_CTX_new_id(EVP_PKEY_RSA, nullptr);
    if (pContext != nullptr && EVP_PKEY_keygen_init(pContext) > 0 &&
        EVP_PKEY_CTX_set_rsa_keygen_bits(pContext, _bits) > 0)
    {
        EVP_PKEY_CTX_set_app_data(pContext, &_isCancelled);
        EVP_PKEY_CTX_set_cb(pContext, &goesOn);
        if (EVP_PKEY_keygen(pContext, &pKey) <= 0)
        {
            pKey = nullptr;
        }
    }
    EVP_PKEY_CTX_free(pContext);
    _pKey.reset(pKey);
    if (_isCancelled)
    {
        _pKey.reset();
    }
    _isFinished = true;
}

hoNewKeyPair::Writing hoNewKeyPair::writePrivateKey(const gtString& path, std::string_view passphrase,
                                                    bool mayOverwrite)
{
    const Bio pText = secureMemory();
    const EVP_CIPHER* const pCipher = passphrase.empty() ? nullptr : EVP_aes_256_cbc();
    char* pBytes = nullptr;
    if (pText == nullptr ||
        PEM_write_bio_PKCS8PrivateKey(pText.get(), static_cast<EVP_PKEY*>(_pKey.get()), pCipher, passphrase.data(),
                                      static_cast<int>(passphrase.size()), nullptr, nullptr) != 1)
    {
        _systemError = ENOMEM;
        return Writing::Failed;
    }
    const long length = BIO_get_mem_data(pText.get(), &pBytes);
    return writeFile(path, 0600, mayOverwrite, pBytes, length);
}

hoNewKeyPair::Writing hoNewKeyPair::writePublicKey(const gtString& path, bool mayOverwrite)
{
    const Bio pText = secureMemory();
    char* pBytes = nullptr;
    if (pText == nullptr || PEM_write_bio_PUBKEY(pText.get(), static_cast<EVP_PKEY*>(_pKey.get())) != 1)
    {
        _systemError = ENOMEM;
        return Writing::Failed;
    }
    const long length = BIO_get_mem_data(pText.get(), &pBytes);
    return writeFile(path, 0644, mayOverwrite, pBytes, length);
}

hoNewKeyPair::Writing hoNewKeyPair::writeFile(const gtString& path, unsigned int mode, bool mayOverwrite,
                                              const char* pBytes, long length)
{
    std::string beside = hoToBytes(path) + ".XXXXXX";
    const int file = mkstemp(beside.data());
    if (file < 0)
    {
        _systemError = errno;
        return Writing::Failed;
    }
    bool isWritten = fchmod(file, mode) == 0 && writeAll(file, pBytes, length);
    _systemError = isWritten ? 0 : errno;
    isWritten = close(file) == 0 && isWritten;
    if (isWritten)
    {
        // A link to a name that is taken fails, where renaming would replace.
        isWritten = (mayOverwrite ? std::rename(beside.c_str(), path.asCharArray())
                                  : link(beside.c_str(), path.asCharArray())) == 0;
        _systemError = isWritten ? 0 : errno;
    }
    unlink(beside.c_str());
    if (isWritten)
    {
        return Writing::Done;
    }
    return _systemError == EEXIST ? Writing::Exists : Writing::Failed;
}

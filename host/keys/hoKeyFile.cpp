// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyFile.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/decoder.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include "crypto/crDigits.h"
#include "host/keys/hoLibcryptoMemory.h"
#include "platform/baseTools/gtWipe.h"

namespace
{

constexpr int bitsPerDigit = 32;

template <class T, void (*release)(T*)>
struct Releaser
{
    void operator()(T* pObject) const { release(pObject); }
};
void releaseBio(BIO* pBio)
{
    BIO_free(pBio);
}
using Bio = std::unique_ptr<BIO, Releaser<BIO, releaseBio>>;
using Number = std::unique_ptr<BIGNUM, Releaser<BIGNUM, BN_clear_free>>;
using NumberContext = std::unique_ptr<BN_CTX, Releaser<BN_CTX, BN_CTX_free>>;
using Decoder = std::unique_ptr<OSSL_DECODER_CTX, Releaser<OSSL_DECODER_CTX, OSSL_DECODER_CTX_free>>;
using AnyKey = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY, EVP_PKEY_free>>;

// Bytes that are overwritten at the end.
class SecretBytes
{
public:
    explicit SecretBytes(std::size_t size) : _size(size), _pBytes(new (std::nothrow) char[size]) {}
    ~SecretBytes() { gtWipe(_pBytes.get(), _size); }
    SecretBytes(const SecretBytes&) = delete;
    SecretBytes& operator=(const SecretBytes&) = delete;
    char* bytes() { return _pBytes.get(); }
    std::size_t size() const { return _size; }

private:
    std::size_t _size;
    std::unique_ptr<char[]> _pBytes;
};

class OpenDescriptor
{
public:
    explicit OpenDescriptor(const char* pPath)
    {
        do
        {
            // A pipe without a writer must not hold anybody up, nor a terminal become the program's own.
            _descriptor = ::open(pPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        } while ((_descriptor < 0) && (errno == EINTR));
    }
    ~OpenDescriptor()
    {
        if (_descriptor >= 0)
        {
            ::close(_descriptor);
        }
    }
    OpenDescriptor(const OpenDescriptor&) = delete;
    OpenDescriptor& operator=(const OpenDescriptor&) = delete;
    int get() const { return _descriptor; }

private:
    int _descriptor = -1;
};

constexpr std::string_view beginOfPem = "-----BEGIN ";

// The first PEM block that is called some kind of key.
struct PemBlock
{
    std::string_view _label;
    std::string_view _text;
};

bool endsWith(std::string_view text, std::string_view end)
{
    return (text.size() >= end.size()) && (text.substr(text.size() - end.size()) == end);
}

PemBlock findKeyBlock(std::string_view text)
{
    constexpr std::string_view dashes = "-----";
    std::size_t position = text.find(beginOfPem);
    while (position != std::string_view::npos)
    {
        const std::string_view block = text.substr(position);
        const std::string_view rest = block.substr(beginOfPem.size());
        const std::string_view line = rest.substr(0, rest.find('\n'));
        const std::string_view label = line.substr(0, line.find(dashes));
        if (endsWith(label, "PRIVATE KEY") || endsWith(label, "PUBLIC KEY"))
        {
            return {label, block};
        }
        position = text.find(beginOfPem, position + beginOfPem.size());
    }
    return {};
}

struct PassphraseQuestion
{
    hoIPassphraseSource* _pSource = nullptr;
    bool _isAsked = false;
    bool _isAnswered = false;
};

extern "C" int hoAnswerPassphraseQuestion(char* pBuffer, int size, int /*isForWriting*/, void* pQuestionAsVoid)
{
    auto* pQuestion = static_cast<PassphraseQuestion*>(pQuestionAsVoid);
    // A second question is about the same file with the same passphrase; there is no better answer to it.
    if (pQuestion->_isAsked || (pQuestion->_pSource == nullptr))
    {
        pQuestion->_isAsked = true;
        return -1;
    }
    pQuestion->_isAsked = true;
    const int length = pQuestion->_pSource->getPassphrase(pBuffer, size);
    pQuestion->_isAnswered = (length >= 0) && (length <= size);
    return pQuestion->_isAnswered ? length : -1;
}

AnyKey readPrivateKey(std::string_view pem, PassphraseQuestion& question)
{
    const Bio bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    return AnyKey((bio == nullptr)
                      ? nullptr
                      : PEM_read_bio_PrivateKey(bio.get(), nullptr, hoAnswerPassphraseQuestion, &question));
}

AnyKey readPublicKey(std::string_view pem)
{
    EVP_PKEY* pKey = nullptr;
    const Decoder decoder(
        OSSL_DECODER_CTX_new_for_pkey(&pKey, "PEM", nullptr, nullptr, EVP_PKEY_PUBLIC_KEY, nullptr, nullptr));
    const auto* pBytes = reinterpret_cast<const unsigned char*>(pem.data());
    std::size_t amountOfBytes = pem.size();
    if (decoder != nullptr)
    {
        OSSL_DECODER_from_data(decoder.get(), &pBytes, &amountOfBytes);
    }
    return AnyKey(pKey);
}

Number numberOfKey(const AnyKey& key, const char* pName)
{
    BIGNUM* pNumber = nullptr;
    EVP_PKEY_get_bn_param(key.get(), pName, &pNumber);
    return Number(pNumber);
}

// Whether the private exponent undoes the public one, tried on one number.
bool exponentsFit(const BIGNUM* pModulus, const BIGNUM* pPublicExponent, BIGNUM* pPrivateExponent)
{
    const NumberContext context(BN_CTX_new());
    const Number number(BN_new());
    BN_set_flags(pPrivateExponent, BN_FLG_CONSTTIME);
    return (context != nullptr) && (number != nullptr) && (BN_set_word(number.get(), 2) == 1) &&
           (BN_mod_exp(number.get(), number.get(), pPublicExponent, pModulus, context.get()) == 1) &&
           (BN_mod_exp(number.get(), number.get(), pPrivateExponent, pModulus, context.get()) == 1) &&
           (BN_is_word(number.get(), 2) == 1);
}

// Of so many digits, which the number must fit. To be wiped when it is secret.
void fixedWidthText(const BIGNUM* pNumber, int amountOfDigits, gtString& text)
{
    const int amountOfBytes = amountOfDigits * 4;
    SecretBytes bytes(static_cast<std::size_t>(amountOfBytes));
    if (bytes.bytes() == nullptr)
    {
        throw std::bad_alloc();
    }
    BN_bn2binpad(pNumber, reinterpret_cast<unsigned char*>(bytes.bytes()), amountOfBytes);
    text.reserve(amountOfBytes * 2);
    for (int i = 0; i < amountOfBytes; i++)
    {
        const auto byte = static_cast<unsigned char>(bytes.bytes()[i]);
        text.append("0123456789abcdef"[byte >> 4]);
        text.append("0123456789abcdef"[byte & 0xf]);
    }
}

class WipedText
{
public:
    WipedText() = default;
    ~WipedText() { gtWipe(_text); }
    WipedText(const WipedText&) = delete;
    WipedText& operator=(const WipedText&) = delete;
    gtString& text() { return _text; }

private:
    gtString _text;
};

// Whether the number is an exponent that a key of the modulus can have.
bool isExponent(const Number& number, const Number& modulus)
{
    return (number != nullptr) && (BN_is_negative(number.get()) == 0) && (BN_is_zero(number.get()) == 0) &&
           (BN_cmp(number.get(), modulus.get()) < 0);
}

bool isFolderOpenToOthers(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    const std::size_t slash = bytes.rfind('/');
    const gtString folder = (slash == std::string_view::npos) ? gtString(".") : gtString(bytes.substr(0, slash + 1));
    struct stat status = {};
    if (::stat(folder.asCharArray(), &status) != 0)
    {
        return false;
    }
    if ((status.st_uid != ::geteuid()) && (status.st_uid != 0))
    {
        return true;
    }
    const bool isGroupsOwn = status.st_gid == ::getegid();
    const mode_t others = S_IWOTH | (isGroupsOwn ? 0 : S_IWGRP);
    return ((status.st_mode & others) != 0) && ((status.st_mode & S_ISVTX) == 0);
}

hoKeyFileProblem readWholeFile(int descriptor, long size, char* pBytes, int& systemError)
{
    long done = 0;
    while (done < size)
    {
        const ssize_t amount = ::read(descriptor, pBytes + done, static_cast<std::size_t>(size - done));
        if ((amount < 0) && (errno == EINTR))
        {
            continue;
        }
        if (amount < 0)
        {
            systemError = errno;
            return hoKeyFileProblem::CannotBeRead;
        }
        if (amount == 0)
        {
            break;
        }
        done += amount;
    }
    // Nothing of an older file may stand behind what was read.
    std::memset(pBytes + done, 0, static_cast<std::size_t>(size - done));
    return hoKeyFileProblem::None;
}

// The bytes of the file; null, and the facts say why, when they cannot be had or are too many.
std::unique_ptr<SecretBytes> readKeyFile(const gtString& path, hoKeyFileFacts& facts)
{
    if (std::strlen(path.asCharArray()) != static_cast<std::size_t>(path.length()))
    {
        facts._problem = hoKeyFileProblem::CannotBeRead;
        facts._systemError = EINVAL;
        return nullptr;
    }
    const OpenDescriptor file(path.asCharArray());
    struct stat status = {};
    if ((file.get() < 0) || (::fstat(file.get(), &status) != 0))
    {
        facts._problem = hoKeyFileProblem::CannotBeRead;
        facts._systemError = errno;
        return nullptr;
    }
    if (!S_ISREG(status.st_mode))
    {
        facts._problem = S_ISDIR(status.st_mode) ? hoKeyFileProblem::IsFolder : hoKeyFileProblem::NotRegular;
        return nullptr;
    }
    if (status.st_size > hoLargestKeyFile)
    {
        facts._problem = hoKeyFileProblem::TooLarge;
        return nullptr;
    }
    auto pBytes = std::make_unique<SecretBytes>(static_cast<std::size_t>(status.st_size));
    if (pBytes->bytes() == nullptr)
    {
        throw std::bad_alloc();
    }
    facts._problem = readWholeFile(file.get(), status.st_size, pBytes->bytes(), facts._systemError);
    if (facts._problem != hoKeyFileProblem::None)
    {
        return nullptr;
    }
    facts._isOpenToOthers = (status.st_mode & (S_IRWXG | S_IRWXO)) != 0;
    facts._isFolderOpenToOthers = isFolderOpenToOthers(path);
    return pBytes;
}

}  // namespace

hoIPassphraseSource::~hoIPassphraseSource() = default;

// Makes a key of what libcrypto has read.
class hoKeyFileReader
{
public:
    static std::unique_ptr<const hoKey> makeKey(const AnyKey& anyKey, hoKeyFileFacts& facts);

private:
    static bool load(crRSAEncryptionKey& key, const Number& modulus, const Number& exponent, int bits);
};

std::unique_ptr<const hoKey> hoKeyFileReader::makeKey(const AnyKey& anyKey, hoKeyFileFacts& facts)
{
    const Number modulus = numberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_N);
    const Number publicExponent = numberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_E);
    if ((modulus == nullptr) || !isExponent(publicExponent, modulus))
    {
        facts._problem = hoKeyFileProblem::Damaged;
        return nullptr;
    }
    facts._bits = BN_num_bits(modulus.get());
    if ((facts._bits % bitsPerDigit != 0) || (facts._bits > hoLargestKeyBits))
    {
        facts._problem = hoKeyFileProblem::SizeNotSupported;
        return nullptr;
    }
    Number privateExponent;
    if (facts._isPrivate)
    {
        privateExponent = numberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_D);
        if (!isExponent(privateExponent, modulus) ||
            !exponentsFit(modulus.get(), publicExponent.get(), privateExponent.get()))
        {
            facts._problem = hoKeyFileProblem::Damaged;
            return nullptr;
        }
    }

    auto pKey = std::make_unique<hoKey>();
    pKey->_bits = facts._bits;
    const auto pPublicKey = std::make_shared<crRSAEncryptionKey>();
    bool isLoaded = load(*pPublicKey, modulus, publicExponent, facts._bits);
    pKey->_pPublicKey = pPublicKey;
    if (facts._isPrivate)
    {
        pKey->_pPrivateKey = std::make_unique<crRSAEncryptionKey>();
        isLoaded = load(*pKey->_pPrivateKey, modulus, privateExponent, facts._bits) && isLoaded;
    }
    if (!isLoaded)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
        return nullptr;
    }
    return pKey;
}

bool hoKeyFileReader::load(crRSAEncryptionKey& key, const Number& modulus, const Number& exponent, int bits)
{
    const int digitsOfExponent = (BN_num_bits(exponent.get()) + bitsPerDigit - 1) / bitsPerDigit;
    WipedText modulusText;
    WipedText exponentText;
    fixedWidthText(modulus.get(), bits / bitsPerDigit, modulusText.text());
    fixedWidthText(exponent.get(), digitsOfExponent, exponentText.text());
    return key.setKeyFromStrings(bits, modulusText.text(), digitsOfExponent * bitsPerDigit, exponentText.text());
}

std::unique_ptr<const hoKey> hoLoadKey(const char* pBytes, int amountOfBytes, hoIPassphraseSource* pSource,
                                       hoKeyFileFacts& facts)
{
    hoKeyFileFacts begun;
    begun._isOpenToOthers = facts._isOpenToOthers;
    begun._isFolderOpenToOthers = facts._isFolderOpenToOthers;
    begun._isLibcryptoMemoryWiped = hoIsLibcryptoMemoryWiped();
    facts = begun;
    const PemBlock block = findKeyBlock(std::string_view(pBytes, static_cast<std::size_t>(amountOfBytes)));
    if (block._label.empty())
    {
        facts._problem = hoKeyFileProblem::NoKey;
        return nullptr;
    }
    facts._isPrivate = endsWith(block._label, "PRIVATE KEY");
    if (block._label == "OPENSSH PRIVATE KEY")
    {
        facts._problem = hoKeyFileProblem::OpenSshFormat;
        return nullptr;
    }

    PassphraseQuestion question;
    question._pSource = pSource;
    ERR_set_mark();
    const AnyKey anyKey = facts._isPrivate ? readPrivateKey(block._text, question) : readPublicKey(block._text);
    facts._isEncrypted = question._isAsked;
    std::unique_ptr<const hoKey> pKey;
    if (anyKey == nullptr)
    {
        facts._problem = !question._isAsked     ? hoKeyFileProblem::Damaged
                         : question._isAnswered ? hoKeyFileProblem::WrongPassphrase
                                                : hoKeyFileProblem::PassphraseNeeded;
    }
    else if (EVP_PKEY_is_a(anyKey.get(), "RSA") != 1)
    {
        facts._problem = hoKeyFileProblem::NotRsa;
    }
    else
    {
        try
        {
            pKey = hoKeyFileReader::makeKey(anyKey, facts);
        }
        catch (const std::bad_alloc&)
        {
            facts._problem = hoKeyFileProblem::NoMemory;
        }
    }
    ERR_pop_to_mark();
    return pKey;
}

std::unique_ptr<const hoKey> hoLoadKeyFile(const gtString& path, hoIPassphraseSource* pSource, hoKeyFileFacts& facts)
{
    facts = hoKeyFileFacts();
    std::unique_ptr<SecretBytes> pBytes;
    try
    {
        pBytes = readKeyFile(path, facts);
        return pBytes == nullptr ? nullptr
                                 : hoLoadKey(pBytes->bytes(), static_cast<int>(pBytes->size()), pSource, facts);
    }
    catch (const std::bad_alloc&)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
        return nullptr;
    }
}

bool hoIsKeyFile(const gtString& path)
{
    hoKeyFileFacts facts;
    const std::unique_ptr<SecretBytes> pBytes = readKeyFile(path, facts);
    if (pBytes == nullptr)
    {
        return false;
    }
    const std::string_view text(pBytes->bytes(), pBytes->size());
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text.substr(first, beginOfPem.size()) == beginOfPem &&
           !findKeyBlock(text)._label.empty();
}

std::unique_ptr<const hoKey> hoKey::publicHalf() const
{
    auto pHalf = std::make_unique<hoKey>();
    pHalf->_bits = _bits;
    pHalf->_pPublicKey = _pPublicKey;
    return pHalf;
}

gtString hoFixedWidthText(const unsigned int* pDigits, int amountOfDigits)
{
    gtString text;
    text.reserve(amountOfDigits * crCharactersPerDigit);
    for (int i = amountOfDigits - 1; i >= 0; i--)
    {
        crAppendDigits(text, pDigits + i, 1);
    }
    return text;
}

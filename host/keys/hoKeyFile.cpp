// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyFile.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/decoder.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/pem.h>
#include <openssl/pkcs12.h>
#include <openssl/proverr.h>
#include <openssl/x509.h>

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
using NumberParameters = std::unique_ptr<OSSL_PARAM_BLD, Releaser<OSSL_PARAM_BLD, OSSL_PARAM_BLD_free>>;
using Parameters = std::unique_ptr<OSSL_PARAM, Releaser<OSSL_PARAM, OSSL_PARAM_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, Releaser<EVP_PKEY_CTX, EVP_PKEY_CTX_free>>;
using Certificate = std::unique_ptr<X509, Releaser<X509, X509_free>>;
using Request = std::unique_ptr<X509_REQ, Releaser<X509_REQ, X509_REQ_free>>;
using Pkcs12 = std::unique_ptr<PKCS12, Releaser<PKCS12, PKCS12_free>>;
using AnyKey = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY, EVP_PKEY_free>>;

// Bytes that are overwritten at the end.
class SecretBytes
{
public:
    explicit SecretBytes(std::size_t size) : _size(size), _pBytes(new (std::nothrow) char[size]) {}
    ~SecretBytes()
    {
        if (_pBytes != nullptr)
        {
            OPENSSL_cleanse(_pBytes.get(), _size);
        }
    }
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
        } while (_descriptor < 0 && errno == EINTR);
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

bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool beginsWith(std::string_view text, std::string_view begin)
{
    return text.substr(0, begin.size()) == begin;
}

struct PemBlock
{
    std::string_view _label;
    std::string_view _text;  // from its first line to its last one

    bool isPrivateKey() const { return endsWith(_label, "PRIVATE KEY"); }
    bool isPublicKey() const { return endsWith(_label, "PUBLIC KEY"); }
    bool isCertificate() const { return endsWith(_label, "CERTIFICATE"); }
};

// The blocks that begin on a line of their own.
std::vector<PemBlock> findPemBlocks(std::string_view text)
{
    constexpr std::string_view dashes = "-----";
    std::vector<PemBlock> blocks;
    for (std::size_t begin = text.find(beginOfPem); begin != std::string_view::npos;
         begin = text.find(beginOfPem, begin + 1))
    {
        if (begin != 0 && text[begin - 1] != '\n' && text[begin - 1] != '\r')
        {
            continue;
        }
        const std::string_view rest = text.substr(begin);
        const std::string_view label = rest.substr(beginOfPem.size(), rest.find('\n') - beginOfPem.size());
        const std::size_t end = rest.find(beginOfPem, beginOfPem.size());
        blocks.push_back({label.substr(0, label.find(dashes)), rest.substr(0, end)});
    }
    return blocks;
}

// One question a file. Whoever asks again gets the same answer.
struct PassphraseQuestion
{
    PassphraseQuestion() = default;
    ~PassphraseQuestion() { OPENSSL_cleanse(_answer, sizeof(_answer)); }
    PassphraseQuestion(const PassphraseQuestion&) = delete;
    PassphraseQuestion& operator=(const PassphraseQuestion&) = delete;

    hoIPassphraseSource* _pSource = nullptr;
    bool _isAsked = false;
    bool _isAnswered = false;
    int _length = 0;
    char _answer[PEM_BUFSIZE] = {};
};

extern "C" int hoAnswerPassphraseQuestion(char* pBuffer, int size, int /*isForWriting*/, void* pQuestionAsVoid)
{
    auto* pQuestion = static_cast<PassphraseQuestion*>(pQuestionAsVoid);
    if (!pQuestion->_isAsked && pQuestion->_pSource != nullptr)
    {
        const int room = PEM_BUFSIZE;
        pQuestion->_length = pQuestion->_pSource->getPassphrase(pQuestion->_answer, room);
        pQuestion->_isAnswered = pQuestion->_length >= 0 && pQuestion->_length <= room;
    }
    pQuestion->_isAsked = true;
    if (!pQuestion->_isAnswered || pQuestion->_length > size)
    {
        return -1;
    }
    std::memcpy(pBuffer, pQuestion->_answer, static_cast<std::size_t>(pQuestion->_length));
    return pQuestion->_length;
}

// pType: of the key; null for any.
AnyKey decodeKey(std::string_view bytes, const char* pForm, const char* pType, PassphraseQuestion& question)
{
    EVP_PKEY* pKey = nullptr;
    const Decoder decoder(OSSL_DECODER_CTX_new_for_pkey(&pKey, pForm, nullptr, pType, 0, nullptr, nullptr));
    const auto* pBytes = reinterpret_cast<const unsigned char*>(bytes.data());
    std::size_t amountOfBytes = bytes.size();
    if (decoder != nullptr &&
        OSSL_DECODER_CTX_set_pem_password_cb(decoder.get(), hoAnswerPassphraseQuestion, &question) == 1)
    {
        OSSL_DECODER_from_data(decoder.get(), &pBytes, &amountOfBytes);
    }
    return AnyKey(pKey);
}

AnyKey decodeCertificate(std::string_view bytes, bool isPem)
{
    const Bio bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    const Certificate certificate(bio == nullptr ? nullptr
                                  : isPem        ? PEM_read_bio_X509_AUX(bio.get(), nullptr, nullptr, nullptr)
                                                 : d2i_X509_bio(bio.get(), nullptr));
    return AnyKey(certificate == nullptr ? nullptr : X509_get_pubkey(certificate.get()));
}

// Why a key was not decoded.
hoKeyFileProblem decodingProblem(const PassphraseQuestion& question)
{
    bool isMemory = false;
    bool isWrong = false;
    bool isUnsupported = false;
    for (unsigned long error = ERR_get_error(); error != 0; error = ERR_get_error())
    {
        const int library = ERR_GET_LIB(error);
        const int reason = ERR_GET_REASON(error);
        isMemory = isMemory || reason == ERR_R_MALLOC_FAILURE;
        isWrong = isWrong || (library == ERR_LIB_EVP && reason == EVP_R_BAD_DECRYPT) ||
                  (library == ERR_LIB_PROV && reason == PROV_R_BAD_DECRYPT);
        isUnsupported =
            isUnsupported ||
            (library == ERR_LIB_EVP && (reason == ERR_R_UNSUPPORTED || reason == EVP_R_UNKNOWN_PBE_ALGORITHM ||
                                        reason == EVP_R_UNSUPPORTED_ALGORITHM || reason == EVP_R_UNSUPPORTED_PRF ||
                                        reason == EVP_R_UNSUPPORTED_CIPHER)) ||
            (library == ERR_LIB_PEM && reason == PEM_R_UNSUPPORTED_ENCRYPTION);
    }
    if (isMemory)
    {
        return hoKeyFileProblem::NoMemory;
    }
    if (!question._isAsked)
    {
        return isUnsupported ? hoKeyFileProblem::EncryptionNotSupported : hoKeyFileProblem::Damaged;
    }
    if (!question._isAnswered)
    {
        return hoKeyFileProblem::PassphraseNeeded;
    }
    return isUnsupported && !isWrong ? hoKeyFileProblem::EncryptionNotSupported : hoKeyFileProblem::WrongPassphrase;
}

// What a file without a key that can be tried is.
hoKeyFileProblem problemOfOther(std::string_view bytes, const std::vector<PemBlock>& blocks)
{
    using namespace std::string_view_literals;
    const std::string_view begin = bytes.substr(
        bytes.find_first_not_of(" \t\r\n") == std::string_view::npos ? 0 : bytes.find_first_not_of(" \t\r\n"));
    if (beginsWith(bytes, "\xFF\xFE") || beginsWith(bytes, "\xFE\xFF") || beginsWith(bytes, "-\0-\0"sv) ||
        beginsWith(bytes, "\0-\0-"sv))
    {
        return hoKeyFileProblem::Utf16;
    }
    if (beginsWith(begin, "ssh-") || beginsWith(begin, "ecdsa-sha2-") ||
        beginsWith(begin, "---- BEGIN SSH2 PUBLIC KEY"))
    {
        return hoKeyFileProblem::SshPublicKey;
    }
    if (beginsWith(begin, "PuTTY-User-Key-File-"))
    {
        return hoKeyFileProblem::PuttyFormat;
    }
    for (const PemBlock& block : blocks)
    {
        if (endsWith(block._label, "CERTIFICATE REQUEST"))
        {
            return hoKeyFileProblem::CertificateRequest;
        }
        if (beginsWith(block._label, "PGP ") && endsWith(block._label, "KEY BLOCK"))
        {
            return hoKeyFileProblem::OpenPgpKey;
        }
    }
    const Bio bio(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    if (bio == nullptr)
    {
        return hoKeyFileProblem::NoMemory;
    }
    if (const Pkcs12 pkcs12(d2i_PKCS12_bio(bio.get(), nullptr)); pkcs12 != nullptr)
    {
        return hoKeyFileProblem::Pkcs12;
    }
    const Bio again(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
    const Request request(again == nullptr ? nullptr : d2i_X509_REQ_bio(again.get(), nullptr));
    return request != nullptr ? hoKeyFileProblem::CertificateRequest : hoKeyFileProblem::NoKey;
}

Number numberOfKey(const AnyKey& key, const char* pName)
{
    BIGNUM* pNumber = nullptr;
    EVP_PKEY_get_bn_param(key.get(), pName, &pNumber);
    return Number(pNumber);
}

// libcrypto's key of these two numbers alone; null without memory.
AnyKey makePublicHalf(const Number& modulus, const Number& exponent)
{
    const NumberParameters list(OSSL_PARAM_BLD_new());
    if (list == nullptr || OSSL_PARAM_BLD_push_BN(list.get(), OSSL_PKEY_PARAM_RSA_N, modulus.get()) != 1 ||
        OSSL_PARAM_BLD_push_BN(list.get(), OSSL_PKEY_PARAM_RSA_E, exponent.get()) != 1)
    {
        return nullptr;
    }
    const Parameters parameters(OSSL_PARAM_BLD_to_param(list.get()));
    const KeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
    EVP_PKEY* pKey = nullptr;
    if (parameters != nullptr && context != nullptr && EVP_PKEY_fromdata_init(context.get()) > 0 &&
        EVP_PKEY_fromdata(context.get(), &pKey, EVP_PKEY_PUBLIC_KEY, parameters.get()) <= 0)
    {
        pKey = nullptr;
    }
    return AnyKey(pKey);
}

// Whether the private exponent undoes the public one, tried on one number.
bool exponentsFit(const BIGNUM* pModulus, const BIGNUM* pPublicExponent, BIGNUM* pPrivateExponent)
{
    const NumberContext context(BN_CTX_new());
    const Number number(BN_new());
    BN_set_flags(pPrivateExponent, BN_FLG_CONSTTIME);
    return context != nullptr && number != nullptr && BN_set_word(number.get(), 2) == 1 &&
           BN_mod_exp(number.get(), number.get(), pPublicExponent, pModulus, context.get()) == 1 &&
           BN_mod_exp(number.get(), number.get(), pPrivateExponent, pModulus, context.get()) == 1 &&
           BN_is_word(number.get(), 2) == 1;
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
    for (int i = 0; i < amountOfBytes; ++i)
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
    return number != nullptr && BN_is_negative(number.get()) == 0 && BN_is_zero(number.get()) == 0 &&
           BN_cmp(number.get(), modulus.get()) < 0;
}

bool holdsBy(int (*check)(EVP_PKEY_CTX*), const AnyKey& key)
{
    const KeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key.get(), nullptr));
    if (context == nullptr)
    {
        throw std::bad_alloc();
    }
    return check(context.get()) == 1;
}

// Whether texts under the key are no longer what they were, and cannot be had back by everybody. libcrypto's check
// knows no modulus of less than 512 bits.
bool isSafe(const Number& modulus, const Number& exponent, const AnyKey& publicHalf, int bits)
{
    const int leastCheckedBits = 512;
    return BN_is_odd(modulus.get()) == 1 && BN_is_odd(exponent.get()) == 1 && BN_is_one(exponent.get()) == 0 &&
           (bits < leastCheckedBits || bits > hoMostCheckedBits || holdsBy(EVP_PKEY_public_check, publicHalf));
}

bool isFolderOpenToOthers(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    const std::size_t slash = bytes.rfind('/');
    const gtString folder = slash == std::string_view::npos ? gtString(".") : gtString(bytes.substr(0, slash + 1));
    struct stat status = {};
    if (::stat(folder.asCharArray(), &status) != 0)
    {
        return false;
    }
    if (status.st_uid != ::geteuid() && status.st_uid != 0)
    {
        return true;
    }
    const bool isGroupsOwn = status.st_gid == ::getegid();
    const mode_t others = S_IWOTH | (isGroupsOwn ? 0 : S_IWGRP);
    return (status.st_mode & others) != 0 && (status.st_mode & S_ISVTX) == 0;
}

hoKeyFileProblem readWholeFile(int descriptor, long size, char* pBytes, int& systemError)
{
    long done = 0;
    while (done < size)
    {
        const ssize_t amount = ::read(descriptor, pBytes + done, static_cast<std::size_t>(size - done));
        if (amount < 0 && errno == EINTR)
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
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0)
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
    static std::unique_ptr<const hoKey> makeKey(AnyKey& anyKey, hoKeyFileFacts& facts);

private:
    static bool load(crRSAEncryptionKey& key, const Number& modulus, const Number& exponent, int bits);
};

std::unique_ptr<const hoKey> hoKeyFileReader::makeKey(AnyKey& anyKey, hoKeyFileFacts& facts)
{
    const Number modulus = numberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_N);
    const Number publicExponent = numberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_E);
    if (modulus == nullptr || !isExponent(publicExponent, modulus))
    {
        facts._problem = hoKeyFileProblem::Damaged;
        return nullptr;
    }
    facts._bits = BN_num_bits(modulus.get());
    if (facts._bits % bitsPerDigit != 0 || facts._bits > hoLargestKeyBits)
    {
        facts._problem = hoKeyFileProblem::SizeNotSupported;
        return nullptr;
    }
    AnyKey publicHalf = makePublicHalf(modulus, publicExponent);
    if (publicHalf == nullptr)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
        return nullptr;
    }
    if (!isSafe(modulus, publicExponent, publicHalf, facts._bits))
    {
        facts._problem = hoKeyFileProblem::Unsafe;
        return nullptr;
    }
    Number privateExponent;
    if (facts._isPrivate)
    {
        privateExponent = numberOfKey(anyKey, OSSL_PKEY_PARAM_RSA_D);
        if (!isExponent(privateExponent, modulus) ||
            !exponentsFit(modulus.get(), publicExponent.get(), privateExponent.get()) ||
            (facts._bits <= hoMostCheckedBits && !holdsBy(EVP_PKEY_check, anyKey)))
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
    pKey->_pLibcryptoPublicKey = std::shared_ptr<EVP_PKEY>(std::move(publicHalf));
    if (facts._isPrivate)
    {
        pKey->_pLibcryptoPrivateKey = std::shared_ptr<EVP_PKEY>(std::move(anyKey));
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

namespace
{

// A piece of the file that may be the key: a PEM block, or all of it.
std::unique_ptr<const hoKey> loadCandidate(const PemBlock& block, PassphraseQuestion& question, hoKeyFileFacts& facts)
{
    const bool isPem = !block._label.empty();
    if (block._label == "OPENSSH PRIVATE KEY")
    {
        facts._isPrivate = true;
        facts._problem = hoKeyFileProblem::OpenSshFormat;
        return nullptr;
    }
    const char* const pForm = isPem ? "PEM" : "DER";
    AnyKey key =
        block.isCertificate() ? decodeCertificate(block._text, true) : decodeKey(block._text, pForm, "RSA", question);
    if (key == nullptr && !block.isCertificate())
    {
        // Only after that: the numbers of a key without a name are those of other kinds, too.
        key = decodeKey(block._text, pForm, nullptr, question);
    }
    facts._isEncrypted = question._isAsked;
    facts._isPrivate = block.isPrivateKey();
    if (key == nullptr)
    {
        facts._problem = decodingProblem(question);
        if (!isPem && facts._problem == hoKeyFileProblem::Damaged)
        {
            key = decodeCertificate(block._text, false);
        }
        if (key == nullptr)
        {
            return nullptr;
        }
    }
    facts._problem = hoKeyFileProblem::None;
    if (EVP_PKEY_is_a(key.get(), "RSA") != 1)
    {
        facts._problem = EVP_PKEY_is_a(key.get(), "RSA-PSS") == 1 ? hoKeyFileProblem::RsaPss : hoKeyFileProblem::NotRsa;
        return nullptr;
    }
    if (!isPem)
    {
        facts._isPrivate = numberOfKey(key, OSSL_PKEY_PARAM_RSA_D) != nullptr;
    }
    return hoKeyFileReader::makeKey(key, facts);
}

// The pieces in the order in which they are tried.
std::vector<PemBlock> findCandidates(std::string_view bytes, const std::vector<PemBlock>& blocks, hoKeyNeed need)
{
    std::vector<PemBlock> candidates;
    const bool isPublicFirst = need == hoKeyNeed::Public;
    for (const bool isPrivateWanted : {!isPublicFirst, isPublicFirst})
    {
        for (const PemBlock& block : blocks)
        {
            const bool isPublic = block.isPublicKey() || block.isCertificate();
            if (isPrivateWanted ? block.isPrivateKey() : isPublic)
            {
                candidates.push_back(block);
            }
        }
    }
    const char beginOfDer = 0x30;
    if (blocks.empty() && beginsWith(bytes, std::string_view(&beginOfDer, 1)))
    {
        candidates.push_back({{}, bytes});
    }
    return candidates;
}

std::unique_ptr<const hoKey> loadFrom(std::string_view bytes, hoKeyNeed need, hoIPassphraseSource* pSource,
                                      hoKeyFileFacts& facts)
{
    const std::vector<PemBlock> blocks = findPemBlocks(bytes);
    const std::vector<PemBlock> candidates = findCandidates(bytes, blocks, need);
    const hoKeyFileFacts begun = facts;
    PassphraseQuestion question;
    question._pSource = pSource;
    hoKeyFileFacts first;
    for (const PemBlock& candidate : candidates)
    {
        facts = begun;
        std::unique_ptr<const hoKey> pKey = loadCandidate(candidate, question, facts);
        if (pKey != nullptr)
        {
            return pKey;
        }
        if (&candidate == &candidates.front())
        {
            first = facts;
        }
        // Beside a key of another kind there may be one that fits; a key that is spoilt is told about.
        if (facts._problem != hoKeyFileProblem::NotRsa && facts._problem != hoKeyFileProblem::RsaPss)
        {
            break;
        }
    }
    facts = candidates.empty() || facts._problem != hoKeyFileProblem::NotRsa ? facts : first;
    const bool isUnknownDer =
        !candidates.empty() && candidates.front()._label.empty() && facts._problem == hoKeyFileProblem::Damaged;
    if (candidates.empty() || isUnknownDer)
    {
        facts._problem = problemOfOther(bytes, blocks);
    }
    return nullptr;
}

}  // namespace

std::unique_ptr<const hoKey> hoLoadKey(const char* pBytes, int amountOfBytes, hoIPassphraseSource* pSource,
                                       hoKeyFileFacts& facts, hoKeyNeed need)
{
    hoKeyFileFacts begun;
    begun._isOpenToOthers = facts._isOpenToOthers;
    begun._isFolderOpenToOthers = facts._isFolderOpenToOthers;
    begun._isLibcryptoMemoryWiped = hoIsLibcryptoMemoryWiped();
    facts = begun;
    ERR_clear_error();
    std::unique_ptr<const hoKey> pKey;
    try
    {
        pKey = loadFrom(std::string_view(pBytes, static_cast<std::size_t>(amountOfBytes)), need, pSource, facts);
    }
    catch (const std::bad_alloc&)
    {
        facts._problem = hoKeyFileProblem::NoMemory;
    }
    ERR_clear_error();
    return pKey;
}

std::unique_ptr<const hoKey> hoLoadKeyFile(const gtString& path, hoIPassphraseSource* pSource, hoKeyFileFacts& facts,
                                           hoKeyNeed need)
{
    facts = hoKeyFileFacts();
    std::unique_ptr<SecretBytes> pBytes;
    try
    {
        pBytes = readKeyFile(path, facts);
        return pBytes == nullptr ? nullptr
                                 : hoLoadKey(pBytes->bytes(), static_cast<int>(pBytes->size()), pSource, facts, need);
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
    if (first == std::string_view::npos || text.substr(first, beginOfPem.size()) != beginOfPem)
    {
        return false;
    }
    const std::vector<PemBlock> blocks = findPemBlocks(text);
    return std::any_of(blocks.begin(), blocks.end(),
                       [](const PemBlock& block) { return block.isPrivateKey() || block.isPublicKey(); });
}

std::unique_ptr<const hoKey> hoKey::publicHalf() const
{
    auto pHalf = std::make_unique<hoKey>();
    pHalf->_bits = _bits;
    pHalf->_pPublicKey = _pPublicKey;
    pHalf->_pLibcryptoPublicKey = _pLibcryptoPublicKey;
    return pHalf;
}

gtString hoFixedWidthText(const unsigned int* pDigits, int amountOfDigits)
{
    gtString text;
    text.reserve(amountOfDigits * crCharactersPerDigit);
    for (int i = amountOfDigits - 1; i >= 0; --i)
    {
        crAppendDigits(text, pDigits + i, 1);
    }
    return text;
}

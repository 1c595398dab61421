// SPDX-License-Identifier: Apache-2.0
#include "cryptoTestSupport.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <map>
#include <pthread.h>
#include <sstream>
#include <stdexcept>
#include <sys/mman.h>

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include "tests/support/tsProcess.h"

namespace
{

BigNumber newNumber()
{
    return BigNumber(BN_new(), BN_free);
}

using Context = std::unique_ptr<BN_CTX, decltype(&BN_CTX_free)>;

TestKeyPair makeKeyWithOpenSSL(int bits)
{
    const TemporaryFolder folder;
    const std::string file = folder / "key.pem";
    if (tsRun({"openssl", "genrsa", "-out", file, std::to_string(bits)})._exitStatus != 0)
    {
        throw std::runtime_error("openssl genrsa failed");
    }
    BIO* pFile = BIO_new_file(file.c_str(), "r");
    EVP_PKEY* pKey = PEM_read_bio_PrivateKey(pFile, nullptr, nullptr, nullptr);
    BIO_free(pFile);
    TestKeyPair pair;
    pair.bits = bits;
    BIGNUM* pNumber = nullptr;
    EVP_PKEY_get_bn_param(pKey, OSSL_PKEY_PARAM_RSA_N, &pNumber);
    pair.modulus.reset(pNumber);
    pNumber = nullptr;
    EVP_PKEY_get_bn_param(pKey, OSSL_PKEY_PARAM_RSA_E, &pNumber);
    pair.publicExponent.reset(pNumber);
    pNumber = nullptr;
    EVP_PKEY_get_bn_param(pKey, OSSL_PKEY_PARAM_RSA_D, &pNumber);
    pair.privateExponent.reset(pNumber);
    EVP_PKEY_free(pKey);
    return pair;
}

TestKeyPair makeKeyOfPrimes(int bits)
{
    const Context context(BN_CTX_new(), BN_CTX_free);
    TestKeyPair pair;
    pair.bits = bits;
    pair.modulus = newNumber();
    pair.publicExponent = newNumber();
    pair.privateExponent = newNumber();
    const BigNumber p = newNumber();
    const BigNumber q = newNumber();
    const BigNumber phi = newNumber();
    BN_set_word(pair.publicExponent.get(), 65537);
    for (;;)
    {
        BN_generate_prime_ex(p.get(), bits / 2, 0, nullptr, nullptr, nullptr);
        BN_generate_prime_ex(q.get(), bits - bits / 2, 0, nullptr, nullptr, nullptr);
        BN_mul(pair.modulus.get(), p.get(), q.get(), context.get());
        BN_sub_word(p.get(), 1);
        BN_sub_word(q.get(), 1);
        BN_mul(phi.get(), p.get(), q.get(), context.get());
        if (BN_num_bits(pair.modulus.get()) == bits && BN_cmp(p.get(), q.get()) != 0 &&
            (BN_mod_inverse(pair.privateExponent.get(), pair.publicExponent.get(), phi.get(), context.get()) !=
             nullptr))
        {
            return pair;
        }
    }
}

const TestKeyPair& madeOnce(int bits, TestKeyPair (*make)(int), std::map<int, TestKeyPair>& made)
{
    auto found = made.find(bits);
    if (found == made.end())
    {
        found = made.emplace(bits, make(bits)).first;
    }
    return found->second;
}

}  // namespace

void TestKeyPair::loadPublic(crRSAEncryptionKey& key) const
{
    if (!key.setKeyFromStrings(bits, toText(fixedWidthHex(modulus.get(), digits())), bits,
                               toText(fixedWidthHex(publicExponent.get(), digits()))))
    {
        throw std::runtime_error("the public key was refused");
    }
}

void TestKeyPair::loadPrivate(crRSAEncryptionKey& key) const
{
    if (!key.setKeyFromStrings(bits, toText(fixedWidthHex(modulus.get(), digits())), bits,
                               toText(fixedWidthHex(privateExponent.get(), digits()))))
    {
        throw std::runtime_error("the private key was refused");
    }
}

const TestKeyPair& keyFromOpenSSL(int bits)
{
    static std::map<int, TestKeyPair> made;
    return madeOnce(bits, makeKeyWithOpenSSL, made);
}

const TestKeyPair& keyOfPrimes(int bits)
{
    static std::map<int, TestKeyPair> made;
    return madeOnce(bits, makeKeyOfPrimes, made);
}

std::string hexOf(unsigned int value, int characters)
{
    std::ostringstream text;
    text << std::hex << std::setw(characters) << std::setfill('0') << value;
    return text.str();
}

std::string fixedWidthHex(const BIGNUM* pNumber, int digits)
{
    std::string bytes(static_cast<std::size_t>(digits) * 4, '\0');
    BN_bn2binpad(pNumber, reinterpret_cast<unsigned char*>(bytes.data()), digits * 4);
    std::string hex;
    for (const char byte : bytes)
    {
        hex += hexOf(static_cast<unsigned char>(byte), 2);
    }
    return hex;
}

int expectedDigits(int lengthOfText, int digitsPerBlock)
{
    const auto up = [](long long value, long long by) { return (value + by - 1) / by; };
    const long long markers = up(up(lengthOfText, 4), digitsPerBlock);
    return static_cast<int>(digitsPerBlock * up(up(lengthOfText + markers, 4), digitsPerBlock));
}

std::string expectedCipherText(const std::string& text, const TestKeyPair& pair, const BIGNUM* pExponent)
{
    const auto blockBytes = static_cast<std::size_t>(pair.blockBytes());
    std::string plain;
    for (const char character : text)
    {
        if (plain.size() % blockBytes == 0)
        {
            plain += '\1';
        }
        plain += character;
    }
    plain.resize(static_cast<std::size_t>(expectedDigits(static_cast<int>(text.size()), pair.digits())) * 4, 'd');

    std::string cipher = hexOf(static_cast<unsigned int>(text.size()), 8);
    const Context context(BN_CTX_new(), BN_CTX_free);
    const BigNumber number = newNumber();
    for (std::size_t block = 0; block < plain.size(); block += blockBytes)
    {
        BN_lebin2bn(reinterpret_cast<const unsigned char*>(plain.data()) + block, pair.blockBytes(), number.get());
        BN_mod_exp(number.get(), number.get(), pExponent, pair.modulus.get(), context.get());
        const std::string highFirst = fixedWidthHex(number.get(), pair.digits());
        for (int digit = pair.digits() - 1; digit >= 0; --digit)
        {
            cipher += highFirst.substr(static_cast<std::size_t>(digit) * 8, 8);
        }
    }
    return cipher;
}

gtString toText(const std::string& bytes)
{
    return gtString(bytes.data(), static_cast<int>(bytes.size()));
}

std::string toBytes(const gtString& text)
{
    return std::string(text.asCharArray(), static_cast<std::size_t>(text.length()));
}

std::string scrambledBytes(std::size_t amount, unsigned int seed)
{
    std::string bytes(amount, '\0');
    unsigned int state = seed * 2654435761U + 1;
    for (char& byte : bytes)
    {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

std::string stackLeftBy(const std::function<void()>& operation)
{
    constexpr std::size_t size = 1024 * 1024;
    void* const pStack = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    pthread_attr_t attributes;
    pthread_t thread = {};
    void* (*const pRun)(void*) = [](void* pOperation) -> void*
    {
        // Further down than what the thread does to end, which would write over what is looked for.
        char distance[128 * 1024];
        __asm__ __volatile__("" : : "r"(distance) : "memory");
        (*static_cast<const std::function<void()>*>(pOperation))();
        return nullptr;
    };
    std::function<void()> copy = operation;
    if (pStack == MAP_FAILED || pthread_attr_init(&attributes) != 0 ||
        pthread_attr_setstack(&attributes, pStack, size) != 0 ||
        pthread_create(&thread, &attributes, pRun, &copy) != 0 || pthread_join(thread, nullptr) != 0)
    {
        throw std::runtime_error("no thread with a stack of its own");
    }
    pthread_attr_destroy(&attributes);
    std::string left(static_cast<const char*>(pStack), size);
    munmap(pStack, size);
    return left;
}

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "countersign-crypto-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::runtime_error("no temporary folder");
    }
    _path = pattern;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
}

osFilePath TemporaryFolder::write(const std::string& name, const std::string& contents) const
{
    const std::string path = *this / name;
    std::ofstream(path, std::ios::binary) << contents;
    return osFilePath(toText(path));
}

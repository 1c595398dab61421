// After a key is used and gone, nothing of it stands anywhere in the process's memory: not in freed blocks, not in
// libcrypto's, not on the stack.
//
// What is looked for must not be in memory for any other reason, so it is kept masked, and a process of its own reads it
// from the key.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "host/keys/hoKeyFile.h"
#include "host/signing/hoFileSigning.h"
#include "host/signing/hoTextEncryption.h"

namespace
{

constexpr unsigned char mask = 0x5A;

using Masked = std::vector<unsigned char>;

Masked masked(const void* pBytes, std::size_t size)
{
    Masked result(size);
    const auto* pNext = static_cast<const unsigned char*>(pBytes);
    for (unsigned char& byte : result)
    {
        byte = *pNext++ ^ mask;
    }
    return result;
}

// "correct horse battery staple", masked.
constexpr std::array<unsigned char, 28> maskedPassphrase = []
{
    std::array<unsigned char, 28> result = {};
    constexpr char text[] = "correct horse battery staple";
    for (std::size_t i = 0; i < result.size(); i++)
    {
        result[i] = static_cast<unsigned char>(text[i]) ^ mask;
    }
    return result;
}();

class Passphrase : public hoIPassphraseSource
{
public:
    int getPassphrase(char* pBuffer, int size) override
    {
        EXPECT_GE(static_cast<std::size_t>(size), maskedPassphrase.size());
        for (std::size_t i = 0; i < maskedPassphrase.size(); i++)
        {
            pBuffer[i] = static_cast<char>(maskedPassphrase[i] ^ mask);
        }
        return static_cast<int>(maskedPassphrase.size());
    }
};

// Whether the bytes stand here. Memory is compared where it lies: a copy would be a find.
bool standsAt(const unsigned char* pMemory, const Masked& wanted)
{
    for (std::size_t i = 0; i < wanted.size(); i++)
    {
        if ((pMemory[i] ^ mask) != wanted[i])
        {
            return false;
        }
    }
    return true;
}

// How often the bytes stand in what this process may write to.
int timesInMemory(const Masked& wanted)
{
    std::ifstream maps("/proc/self/maps");
    std::vector<std::pair<std::uintptr_t, std::uintptr_t>> areas;
    for (std::string line; std::getline(maps, line);)
    {
        std::istringstream fields(line);
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        std::string rights;
        fields >> std::hex >> begin >> dash >> end >> rights;
        if (rights.substr(0, 2) == "rw")
        {
            areas.emplace_back(begin, end);
        }
    }
    int times = 0;
    for (const auto& [begin, end] : areas)
    {
        const auto* pBegin = reinterpret_cast<const unsigned char*>(begin);
        const auto* pEnd = reinterpret_cast<const unsigned char*>(end) - wanted.size();
        const unsigned char first = wanted[0] ^ mask;
        for (const auto* pNext = pBegin; pNext <= pEnd; pNext++)
        {
            pNext = static_cast<const unsigned char*>(
                std::memchr(pNext, first, static_cast<std::size_t>(pEnd - pNext) + 1));
            if (pNext == nullptr)
            {
                break;
            }
            times += standsAt(pNext, wanted) ? 1 : 0;
        }
    }
    return times;
}

class Secrets : public ::testing::Test
{
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "a sanitizer's memory is too large to be looked through";
#endif
        makeKeys(_folder, 1024);
        runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes256", "-passout", "pass:correct horse battery staple",
                             "-out", "locked.pem"});
        _folder.write("report", std::string(100000, 'r'));
    }

    // What must not be found, read by a process of its own: digits as they lie in memory, bytes the highest first, the
    // hexadecimal text and a line of the file.
    std::vector<Masked> secretsOf(const std::string& name) const
    {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe(ends), 0);
        const pid_t process = fork();
        if (process == 0)
        {
            writeSecrets(name, ends[1]);
            _exit(0);
        }
        close(ends[1]);
        std::vector<Masked> result;
        unsigned char size = 0;
        while (read(ends[0], &size, 1) == 1)
        {
            Masked secret(size);
            EXPECT_EQ(read(ends[0], secret.data(), size), size);
            result.push_back(secret);
        }
        close(ends[0]);
        waitpid(process, nullptr, 0);
        return result;
    }

    TemporaryFolder _folder;

private:
    static void send(int descriptor, const void* pBytes, std::size_t size)
    {
        Masked bytes = masked(pBytes, size);
        bytes.insert(bytes.begin(), static_cast<unsigned char>(size));
        EXPECT_EQ(write(descriptor, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    void writeSecrets(const std::string& name, int descriptor) const
    {
        hoKeyFileFacts facts;
        Passphrase passphrase;
        const std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(gtString((_folder / name).c_str()), &passphrase, facts);
        if (pKey == nullptr)
        {
            return;
        }
        const unsigned int* pDigits = pKey->privateKey().numberDigits() + 12;
        send(descriptor, pDigits, 16);
        std::string bytes(reinterpret_cast<const char*>(pDigits), 16);
        std::reverse(bytes.begin(), bytes.end());
        send(descriptor, bytes.data(), bytes.size());
        const gtString text = hoFixedWidthText(pDigits, 4);
        send(descriptor, text.asCharArray(), 32);
        // The private numbers begin behind the modulus: some line of the middle.
        const std::string pem = _folder.read(name);
        send(descriptor, pem.data() + pem.size() / 2, 40);
    }
};

}  // namespace

TEST_F(Secrets, OfAKeyAreGoneWithIt)
{
    for (const char* pName : {"private.pem", "locked.pem"})
    {
        const std::vector<Masked> secrets = secretsOf(pName);
        ASSERT_EQ(secrets.size(), 4U);
        hoKeyFileFacts facts;
        Passphrase passphrase;
        std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(gtString((_folder / pName).c_str()), &passphrase, facts);
        ASSERT_NE(pKey, nullptr);
        // The search finds what is there.
        EXPECT_EQ(timesInMemory(secrets[0]), 1);
        gtString signature;
        EXPECT_EQ(hoSignFile(gtString((_folder / "report").c_str()), *pKey, nullptr, signature)._problem,
                  hoSigningProblem::None);
        gtString cipher;
        EXPECT_EQ(hoEncryptText(pKey->privateKey(), "text", cipher), hoTextProblem::None);
        EXPECT_EQ(timesInMemory(secrets[0]), 1) << "there is one place for a private exponent";
        pKey.reset();
        const char* const names[] = {"digits", "bytes", "hexadecimal text", "file"};
        for (std::size_t i = 0; i < secrets.size(); i++)
        {
            EXPECT_EQ(timesInMemory(secrets[i]), 0) << pName << ": " << names[i];
        }
        EXPECT_EQ(timesInMemory(Masked(maskedPassphrase.begin(), maskedPassphrase.end())), 0) << pName;
    }
}

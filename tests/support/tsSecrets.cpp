// SPDX-License-Identifier: Apache-2.0
#include "tests/support/tsSecrets.h"
#include "platform/baseTools/gtWipe.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Bytes = std::vector<unsigned char>;

constexpr unsigned char mask = 0x5A;

// Masked. It is so long that blocks of its size are rare, and are not soon given out again and written over by chance.
constexpr auto maskedPassphrase = []
{
    constexpr char text[] = "correct horse battery staple, seven candles by the river, two lamps and a quiet old mule";
    std::array<unsigned char, sizeof(text) - 1> result = {};
    for (std::size_t i = 0; i < result.size(); ++i)
    {
        result[i] = static_cast<unsigned char>(text[i]) ^ mask;
    }
    return result;
}();

const char* const namesOfKeysSecrets[] = {"digits", "bytes", "hexadecimal text", "file"};

// Whether the bytes stand here. Memory is compared where it lies: a copy would be a find.
bool standsAt(const unsigned char* pMemory, const Bytes& wanted)
{
    for (std::size_t i = 0; i < wanted.size(); ++i)
    {
        if ((pMemory[i] ^ mask) != wanted[i])
        {
            return false;
        }
    }
    return true;
}

int timesBetween(const unsigned char* pBegin, const unsigned char* pEnd, const Bytes& wanted)
{
    int times = 0;
    if (static_cast<std::size_t>(pEnd - pBegin) < wanted.size())
    {
        return 0;
    }
    const auto* const pLast = pEnd - wanted.size();
    for (const auto* pNext = pBegin; pNext <= pLast; ++pNext)
    {
        pNext = static_cast<const unsigned char*>(
            std::memchr(pNext, wanted[0] ^ mask, static_cast<std::size_t>(pLast - pNext) + 1));
        if (pNext == nullptr)
        {
            break;
        }
        times += standsAt(pNext, wanted) ? 1 : 0;
    }
    return times;
}

std::string contentsOf(const std::string& path)
{
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

void send(int descriptor, const void* pBytes, std::size_t size)
{
    const auto* pNext = static_cast<const unsigned char*>(pBytes);
    Bytes message(1, static_cast<unsigned char>(size));
    for (std::size_t i = 0; i < size; ++i)
    {
        message.push_back(pNext[i] ^ mask);
    }
    if (write(descriptor, message.data(), message.size()) != static_cast<ssize_t>(message.size()))
    {
        _exit(1);
    }
}

void sendSecrets(const std::string& path, int descriptor)
{
    hoKeyFileFacts facts;
    tsPassphraseSource passphrase;
    const std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(gtString(path.c_str()), &passphrase, facts);
    if (pKey == nullptr || !pKey->hasPrivateKey())
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
    const std::string pem = contentsOf(path);
    send(descriptor, pem.data() + pem.size() / 2, 40);
}

}  // namespace

std::vector<tsSecret> tsSecretsOfKey(const std::string& path)
{
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0)
    {
        return {};
    }
    const pid_t process = fork();
    if (process == 0)
    {
        sendSecrets(path, ends[1]);
        _exit(0);
    }
    close(ends[1]);
    std::vector<tsSecret> secrets;
    unsigned char size = 0;
    while (read(ends[0], &size, 1) == 1)
    {
        tsSecret secret = {namesOfKeysSecrets[secrets.size() % std::size(namesOfKeysSecrets)], Bytes(size)};
        if (read(ends[0], secret._bytes.data(), size) != size)
        {
            break;
        }
        secrets.push_back(std::move(secret));
    }
    close(ends[0]);
    waitpid(process, nullptr, 0);
    return secrets;
}

std::vector<tsSecret> tsSecretsOfPassphrase()
{
    constexpr std::size_t first = 40;
    constexpr std::size_t length = 16;
    const auto* const pPiece = maskedPassphrase.begin() + first;
    tsSecret narrow = {"passphrase", Bytes(pPiece, pPiece + length)};
    tsSecret wide = {"passphrase in wide characters", {}};
    for (const unsigned char byte : narrow._bytes)
    {
        wide._bytes.insert(wide._bytes.end(), {byte, mask, mask, mask});
    }
    return {narrow, wide};
}

int tsPassphraseSource::getPassphrase(char* pBuffer, int size)
{
    if (static_cast<std::size_t>(size) < maskedPassphrase.size())
    {
        return -1;
    }
    for (std::size_t i = 0; i < maskedPassphrase.size(); ++i)
    {
        pBuffer[i] = static_cast<char>(maskedPassphrase[i] ^ mask);
    }
    return static_cast<int>(maskedPassphrase.size());
}

void tsWritePassphrase(const std::string& path)
{
    // One by one: together they would be in memory.
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    for (const unsigned char masked : maskedPassphrase)
    {
        unsigned char byte = masked ^ mask;
        if (write(file, &byte, 1) != 1)
        {
            break;
        }
        gtWipe(&byte, 1);
    }
    close(file);
}

int tsTimesInMemory(const tsSecret& secret)
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
        // A device's memory may have effects when it is read.
        if (rights.substr(0, 2) == "rw" && line.find(" /dev/") == std::string::npos)
        {
            areas.emplace_back(begin, end);
        }
    }
    int times = 0;
    for (const auto& [begin, end] : areas)
    {
        times += timesBetween(reinterpret_cast<const unsigned char*>(begin),
                              reinterpret_cast<const unsigned char*>(end), secret._bytes);
    }
    return times;
}

bool tsStandsInFile(const tsSecret& secret, const std::string& path)
{
    const std::string bytes = contentsOf(path);
    const auto* pBegin = reinterpret_cast<const unsigned char*>(bytes.data());
    return timesBetween(pBegin, pBegin + bytes.size(), secret._bytes) > 0;
}

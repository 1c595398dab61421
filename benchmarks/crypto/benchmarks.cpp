// SPDX-License-Identifier: Apache-2.0
// Texts, keys and files: what the crypto toolkit takes for them, files beside the programs that merely read them.
// Names are <operation>/<size>/<who>; "ours" is the toolkit.
#include "crypto/crRSADigitalSigner.h"
#include "crypto/crRSAEncryptionKey.h"
#include "crypto/crRSAStringEncryptor.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osFilePath.h"

#include <benchmark/benchmark.h>
#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace
{

constexpr const char* signOption = "--sign-this-file";
constexpr const char* testOption = "--test-this-file";
constexpr const char* keyOption = "--key";

void check(bool isTrue)
{
    if (!isTrue)
    {
        std::abort();
    }
}

// A pair of keys as the toolkit's hexadecimal text.
struct KeyTexts
{
    int bits;
    std::string product;
    std::string publicNumber;
    std::string privateNumber;
};

std::string hexOf(EVP_PKEY* pKey, const char* name, int bits)
{
    BIGNUM* pNumber = nullptr;
    check(EVP_PKEY_get_bn_param(pKey, name, &pNumber) == 1);
    std::vector<unsigned char> octets(static_cast<size_t>(bits / 8));
    check(BN_bn2binpad(pNumber, octets.data(), bits / 8) == bits / 8);
    BN_free(pNumber);
    std::string result;
    for (const unsigned char octet : octets)
    {
        constexpr const char* digits = "0123456789abcdef";
        result += digits[octet >> 4];
        result += digits[octet & 15];
    }
    return result;
}

KeyTexts makeKey(int bits)
{
    EVP_PKEY* pKey = EVP_RSA_gen(static_cast<unsigned>(bits));
    check(pKey != nullptr);
    KeyTexts texts{bits, hexOf(pKey, "n", bits), hexOf(pKey, "e", bits), hexOf(pKey, "d", bits)};
    EVP_PKEY_free(pKey);
    return texts;
}

struct Keys
{
    explicit Keys(const KeyTexts& texts)
    {
        check(publicKey.setKeyFromStrings(texts.bits, gtString(texts.product.c_str()), texts.bits,
                                          gtString(texts.publicNumber.c_str())));
        check(privateKey.setKeyFromStrings(texts.bits, gtString(texts.product.c_str()), texts.bits,
                                           gtString(texts.privateNumber.c_str())));
    }
    crRSAEncryptionKey publicKey;
    crRSAEncryptionKey privateKey;
};

void addOperation(const std::string& name, const std::function<void()>& operation)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [operation](benchmark::State& state)
                                 {
                                     for (auto _ : state)
                                     {
                                         operation();
                                     }
                                 });
}

void addTexts(const KeyTexts& texts)
{
    const auto keys = std::make_shared<Keys>(texts);
    const std::string key = ", key of " + std::to_string(texts.bits) + " bits";
    for (const int length : {0, 100, 1000, 10000})
    {
        const auto text = std::make_shared<gtString>(std::string(static_cast<size_t>(length), 'x').c_str());
        const auto cipher = std::make_shared<gtString>();
        check(crRSAStringEncryptor(keys->publicKey).encrypt(*text, *cipher));
        const std::string rest = key + "/" + std::to_string(length) + " characters/ours";
        addOperation("encrypt" + rest,
                     [keys, text]
                     {
                         gtString output;
                         check(crRSAStringEncryptor(keys->publicKey).encrypt(*text, output));
                     });
        addOperation("decrypt" + rest,
                     [keys, text, cipher]
                     {
                         gtString output;
                         check(crRSAStringEncryptor(keys->privateKey).decrypt(*cipher, output));
                     });
    }
    addOperation("load a pair of keys/" + std::to_string(texts.bits) + " bits/ours",
                 [texts] { const Keys loaded(texts); });
}

struct Usage
{
    double seconds;  // of the processor
    long peakKiB;
};

// Runs a program with its output thrown away.
Usage run(const std::vector<std::string>& command)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& one : command)
    {
        arguments.push_back(const_cast<char*>(one.c_str()));
    }
    arguments.push_back(nullptr);
    const pid_t child = fork();
    check(child >= 0);
    if (child == 0)
    {
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    check(wait4(child, &status, 0, &usage) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0);
    const auto seconds = [](const timeval& time)
    { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6; };
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss};
}

void addProgram(const std::string& name, const std::vector<std::string>& command)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [command](benchmark::State& state)
                                 {
                                     long peak = 0;
                                     for (auto _ : state)
                                     {
                                         const Usage usage = run(command);
                                         state.SetIterationTime(usage.seconds);
                                         peak = std::max(peak, usage.peakKiB);
                                     }
                                     state.counters["peakKiB"] = static_cast<double>(peak);
                                 })
        ->UseManualTime();
}

void writeFile(const std::string& path, const std::string& text)
{
    FILE* pFile = fopen(path.c_str(), "w");
    check(pFile != nullptr);
    check(fputs(text.c_str(), pFile) >= 0 && fclose(pFile) == 0);
}

void addFiles(const std::string& self, const std::string& folder, const KeyTexts& texts)
{
    const std::string keyFile = folder + "/key";
    writeFile(keyFile, texts.product + "\n" + texts.publicNumber + "\n");
    const Keys keys(texts);

    const std::pair<const char*, long> sizes[] = {
        {"empty", 0}, {"1 MB", 1L << 20}, {"64 MB", 64L << 20}, {"1 GB", 1L << 30}};
    for (const auto& [name, size] : sizes)
    {
        const std::string file = folder + "/" + std::to_string(size);
        std::vector<char> block(1 << 20);
        FILE* pFile = fopen(file.c_str(), "w");
        check(pFile != nullptr);
        for (long written = 0; written < size; written += static_cast<long>(block.size()))
        {
            for (size_t i = 0; i < block.size(); i += 64)
            {
                block[i] = static_cast<char>(written / 1048576 + static_cast<long>(i));
            }
            check(fwrite(block.data(), 1, block.size(), pFile) == block.size());
        }
        check(fclose(pFile) == 0);
        gtString signature;
        crRSADigitalSigner signer(keys.privateKey);
        check(signer.getSignature(osFilePath(gtString(file.c_str())), signature));
        writeFile(file + ".sig", signature.asCharArray());
        const std::string ending = std::string(" a file, exponent 65537, key of 1024 bits/") + name + "/";
        addProgram("fold and sign" + ending + "ours", {self, signOption, file, keyOption, keyFile});
        addProgram("test the signature of" + ending + "ours", {self, testOption, file, keyOption, keyFile});
        for (const std::string operation : {"fold and sign", "test the signature of"})
        {
            for (const std::string other : {"cat", "sha256sum", "cksum"})
            {
                std::string title = operation;
                title.append(ending).append(other);
                addProgram(title, {other, file});
            }
        }
    }
}

// The program that is measured on files: loads the key, signs the file or tests its signature.
int workOnFile(const std::string& option, const std::string& file, const char* keyFile)
{
    const auto readWords = [](const std::string& path, std::vector<std::string> words)
    {
        FILE* pFile = fopen(path.c_str(), "r");
        check(pFile != nullptr);
        for (std::string& word : words)
        {
            char text[600];
            check(fscanf(pFile, "%599s", text) == 1);
            word = text;
        }
        check(fclose(pFile) == 0);
        return words;
    };
    const std::vector<std::string> numbers = readWords(keyFile, std::vector<std::string>(2));
    crRSAEncryptionKey key;
    check(key.setKeyFromStrings(1024, gtString(numbers[0].c_str()), 1024, gtString(numbers[1].c_str())));
    crRSADigitalSigner signer(key);
    const osFilePath path(gtString(file.c_str()));
    if (option == testOption)
    {
        const std::string signature = readWords(file + ".sig", std::vector<std::string>(1))[0];
        return signer.testSignature(path, gtString(signature.c_str())) ? 0 : 1;
    }
    gtString signature;
    check(signer.getSignature(path, signature));
    puts(signature.asCharArray());
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 5 && std::string(argv[3]) == keyOption)
    {
        return workOnFile(argv[1], argv[2], argv[4]);
    }
    const char* temporary = std::getenv("TMPDIR");
    std::string folder = std::string(temporary != nullptr ? temporary : "/tmp") + "/countersign-benchmark.XXXXXX";
    check(mkdtemp(folder.data()) != nullptr);

    const KeyTexts key1024 = makeKey(1024);
    addTexts(key1024);
    addTexts(makeKey(2048));
    addFiles("/proc/self/exe", folder, key1024);
    benchmark::Initialize(&argc, argv);
    const bool isUnderstood = !benchmark::ReportUnrecognizedArguments(argc, argv);
    if (isUnderstood)
    {
        benchmark::RunSpecifiedBenchmarks();
    }
    benchmark::Shutdown();
    run({"rm", "-r", folder});
    return isUnderstood ? 0 : 1;
}

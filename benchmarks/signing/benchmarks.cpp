// SPDX-License-Identifier: Apache-2.0
// Signing and testing a cached file, both lines of its signature, beside openssl, which makes one signature of it.
// Whole programs are measured, in processor time; the program itself is the one that signs and tests.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

#include "benchmarks/childProcess.h"
#include "host/signing/hoFileSigning.h"

namespace
{

const std::string signOption = "--sign";
const std::string testOption = "--test";

void add(const std::string& name, const std::vector<std::string>& words)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [words](benchmark::State& state)
                                 {
                                     long peak = 0;
                                     for (auto _ : state)
                                     {
                                         const ProcessCost cost = runProcess(words);
                                         state.SetIterationTime(cost._processorSeconds);
                                         peak = cost._peakKiB;
                                     }
                                     state.counters["peakKiB"] = static_cast<double>(peak);
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

void addFile(const std::string& folder, const std::string& keyFile, const std::string& publicFile,
             const std::string& name, long size)
{
    const std::string file = folder + "/" + name.substr(0, name.find(' ')) + std::to_string(size);
    FILE* pFile = fopen(file.c_str(), "w");
    check(pFile != nullptr);
    std::vector<char> block(1000 * 1000);
    unsigned int state = 1;
    for (long written = 0; written < size; written += static_cast<long>(block.size()))
    {
        for (std::size_t i = 0; i < block.size(); i += 16)
        {
            state = state * 1664525U + 1013904223U;
            block[i] = static_cast<char>(state >> 24);
        }
        check(fwrite(block.data(), 1, block.size(), pFile) == block.size());
    }
    check(fclose(pFile) == 0);
    // openssl's own process first: /proc/self/exe would be another one there.
    char self[4096] = {};
    check(readlink("/proc/self/exe", self, sizeof(self) - 1) > 0);
    const std::string ending = " a file, key of 2048 bits/" + name + "/";
    add("sign" + ending + "ours", {self, signOption, file, keyFile});
    add("sign" + ending + "openssl dgst",
        {"openssl", "dgst", "-sha256", "-sign", keyFile, "-out", file + ".openssl", file});
    runProcess({self, signOption, file, keyFile});
    runProcess({"openssl", "dgst", "-sha256", "-sign", keyFile, "-out", file + ".openssl", file});
    add("test the signature of" + ending + "ours", {self, testOption, file, publicFile});
    add("test the signature of" + ending + "openssl dgst",
        {"openssl", "dgst", "-sha256", "-verify", publicFile, "-signature", file + ".openssl", file});
}

// What is measured.
int workOnFile(const std::string& option, const gtString& file, const gtString& keyFile)
{
    hoKeyFileFacts facts;
    const std::unique_ptr<const hoKey> pKey = hoLoadKeyFile(keyFile, nullptr, facts);
    check(pKey != nullptr);
    const gtString path = hoSignaturePath(file);
    gtString signature;
    if (option == signOption)
    {
        check(hoSignFile(file, *pKey, hoSignatureLines::Both, nullptr, signature).isOk());
        return hoWriteSignatureFile(path, signature, true).isOk() ? 0 : 1;
    }
    check(hoReadSignatureFile(path, signature).isOk());
    return hoTestFile(file, {pKey.get()}, signature.asStringView(), nullptr)._verdict == hoVerdict::Good ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && (argv[1] == signOption || argv[1] == testOption))
    {
        return workOnFile(argv[1], argv[2], argv[3]);
    }
    const char* const pTemporary = std::getenv("TMPDIR");
    std::string folder = std::string(pTemporary != nullptr ? pTemporary : "/tmp") + "/countersign-benchmark.XXXXXX";
    check(mkdtemp(folder.data()) != nullptr);
    const std::string keyFile = folder + "/private.pem";
    const std::string publicFile = folder + "/public.pem";
    runProcess({"openssl", "genrsa", "-out", keyFile, "2048"});
    runProcess({"openssl", "rsa", "-in", keyFile, "-pubout", "-out", publicFile});
    addFile(folder, keyFile, publicFile, "1 MB", 1000L * 1000);
    addFile(folder, keyFile, publicFile, "1 GB", 1000L * 1000 * 1000);
    benchmark::Initialize(&argc, argv);
    const bool isUnderstood = !benchmark::ReportUnrecognizedArguments(argc, argv);
    if (isUnderstood)
    {
        benchmark::RunSpecifiedBenchmarks();
    }
    benchmark::Shutdown();
    runProcess({"rm", "-r", folder});
    return isUnderstood ? 0 : 1;
}

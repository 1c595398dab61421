// SPDX-License-Identifier: Apache-2.0
// The command line with a thousand small files and with a large one, beside programs that are started once a file; and
// how it grows with the number of jobs.
//
//   benchmark_cli PROGRAM [OPTION...]        PROGRAM: countersign
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "benchmarks/childProcess.h"

namespace
{

using Words = std::vector<std::string>;

enum class Measure
{
    Processor,
    Clock
};

void add(const std::string& name, const Words& words, Measure measure = Measure::Processor)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [words, measure](benchmark::State& state)
                                 {
                                     long peak = 0;
                                     for (auto _ : state)
                                     {
                                         const ProcessCost cost = runProcess(words);
                                         state.SetIterationTime(measure == Measure::Clock ? cost._clockSeconds
                                                                                          : cost._processorSeconds);
                                         peak = cost._peakKiB;
                                     }
                                     state.counters["peakKiB"] = static_cast<double>(peak);
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

// The shell runs the command for each of the files, whose names begin so; "$f" is one of them.
Words inALoop(const std::string& folder, const std::string& beginning, const std::string& command)
{
    return {"sh", "-c", "cd " + folder + " && for f in " + beginning + "[0-9]; do " + command + " || exit 1; done"};
}

// Ours takes all of them at once.
Words inShell(const std::string& folder, const std::string& command)
{
    return {"sh", "-c", "cd " + folder + " && " + command};
}

void addSize(const std::string& program, const std::string& folder, const std::string& size,
             const std::string& beginning)
{
    const std::string files = " " + beginning + "[0-9]";
    const std::string sign = program + " sign --force --key k.pem";
    const std::string test = program + " test --key p.pem";
    const std::string minisign = "minisign -S -s k.minisign -m \"$f\"";
    const std::string minisignTest = "minisign -V -q -p p.minisign -m \"$f\"";
    const std::string openssl = "openssl dgst -sha256 -sign k.pem -out \"$f.openssl\" \"$f\"";
    const std::string opensslTest = "openssl dgst -sha256 -verify p.pem -signature \"$f.openssl\" \"$f\"";
    // The signatures that are tested are there.
    for (const Words& words :
         {inShell(folder, sign + files), inALoop(folder, beginning, minisign), inALoop(folder, beginning, openssl)})
    {
        runProcess(words);
    }
    add("sign on the command line, key of 2048 bits/" + size + "/ours", inShell(folder, sign + files));
    add("sign on the command line, key of 2048 bits/" + size + "/minisign", inALoop(folder, beginning, minisign));
    add("sign on the command line, key of 2048 bits/" + size + "/openssl dgst", inALoop(folder, beginning, openssl));
    add("test on the command line, key of 2048 bits/" + size + "/ours", inShell(folder, test + files));
    add("test on the command line, key of 2048 bits/" + size + "/minisign", inALoop(folder, beginning, minisignTest));
    add("test on the command line, key of 2048 bits/" + size + "/openssl dgst",
        inALoop(folder, beginning, opensslTest));
}

void addJobs(const std::string& program, const std::string& folder, const std::string& jobs)
{
    const std::string begin = program + " sign --force --key k.pem --jobs ";
    const std::string name = "1000 files of 1 kB signed by several jobs, by the clock/" + jobs + " jobs/";
    add(name + "ours", inShell(folder, begin + jobs + " small[0-9]*[0-9]"), Measure::Clock);
    // Beside it at the same time of the same machine.
    add(name + "one job", inShell(folder, begin + "1 small[0-9]*[0-9]"), Measure::Clock);
}

}  // namespace

int main(int argc, char** argv)
{
    check(argc > 1);
    const std::string program = argv[1];
    const char* const pTemporary = std::getenv("TMPDIR");
    std::string folder = std::string(pTemporary != nullptr ? pTemporary : "/tmp") + "/countersign-benchmark.XXXXXX";
    check(mkdtemp(folder.data()) != nullptr);
    runProcess(inShell(
        folder, "openssl genrsa -out k.pem 2048 && openssl rsa -in k.pem -pubout -out p.pem && "
                "minisign -G -W -p p.minisign -s k.minisign && "
                "i=1000 && while [ $i -lt 2000 ]; do head -c 1000 /dev/urandom >small$i && i=$((i + 1)); done && "
                "head -c 1000000000 /dev/urandom >large1"));
    addSize(program, folder, "1000 files of 1 kB", "small[0-9]*");
    addSize(program, folder, "1 file of 1 GB", "large");
    for (const char* pJobs : {"1", "2", "4"})
    {
        addJobs(program, folder, pJobs);
    }
    argv[1] = argv[0];
    int amountOfOptions = argc - 1;
    benchmark::Initialize(&amountOfOptions, argv + 1);
    const bool isUnderstood = !benchmark::ReportUnrecognizedArguments(amountOfOptions, argv + 1);
    if (isUnderstood)
    {
        benchmark::RunSpecifiedBenchmarks();
    }
    benchmark::Shutdown();
    runProcess({"rm", "-r", folder});
    return isUnderstood ? 0 : 1;
}

// SPDX-License-Identifier: Apache-2.0
// What a check costs that holds, beside the language's own assert and no check at all. Every size is a thousand checks,
// so a microsecond here is a nanosecond for a check.
//
// A check that fails ends the run: it would be measured for what it is not.
#undef NDEBUG
#include <cassert>
#include <cstdlib>
#include <vector>

#include <benchmark/benchmark.h>

#include "platform/baseTools/gtAssert.h"
#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"

namespace
{

const int amountOfChecks = 1000;

class EndsTheRun : public gtIAssertionFailureHandler
{
public:
    void onAssertionFailure(const char*, const char*, int, const char*) override { std::abort(); }
};

struct None
{
    static void check(int, int) {}
};

struct Assert
{
    static void check(int value, int limit) { assert(value < limit); }
};

struct GtAssert
{
    static void check(int value, int limit) { GT_ASSERT(value < limit); }
};

struct GtAssertEx
{
    static void check(int value, int limit) { GT_ASSERT_EX(value < limit, "too large"); }
};

template <class Check>
void run(benchmark::State& state)
{
    std::vector<int> values(amountOfChecks);
    for (int i = 0; i < amountOfChecks; ++i)
    {
        values[static_cast<std::size_t>(i)] = i;
    }
    int limit = amountOfChecks;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(limit);
        for (int value : values)
        {
            // Otherwise the compiler checks the values all together, or not at all.
            benchmark::DoNotOptimize(value);
            Check::check(value, limit);
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    EndsTheRun handler;
    gtRegisterAssertionFailureHandler(&handler);
    benchmark::RegisterBenchmark("a thousand checks that hold/GT_ASSERT/ours", run<GtAssert>);
    benchmark::RegisterBenchmark("a thousand checks that hold/GT_ASSERT/assert", run<Assert>);
    benchmark::RegisterBenchmark("a thousand checks that hold/GT_ASSERT/no check", run<None>);
    benchmark::RegisterBenchmark("a thousand checks that hold/GT_ASSERT_EX/ours", run<GtAssertEx>);
    benchmark::RegisterBenchmark("a thousand checks that hold/GT_ASSERT_EX/assert", run<Assert>);
    benchmark::RegisterBenchmark("a thousand checks that hold/GT_ASSERT_EX/no check", run<None>);
    benchmark::Initialize(&argc, argv);
    const bool isUnderstood = !benchmark::ReportUnrecognizedArguments(argc, argv);
    if (isUnderstood)
    {
        benchmark::RunSpecifiedBenchmarks();
    }
    benchmark::Shutdown();
    gtUnRegisterAssertionFailureHandler(&handler);
    return isUnderstood ? 0 : 1;
}

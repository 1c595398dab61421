// SPDX-License-Identifier: Apache-2.0
// The program is asked to end at any moment of its work, again and again.
//
// COUNTERSIGN_SHUTDOWNS: how often (default 120; scripts/soak.sh: 1000). The moments are random; COUNTERSIGN_SEED
// repeats them.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "tests/support/tsEnvironment.h"
#include "tests/support/tsSignalled.h"

TEST(Interrupts, LeaveAWholeSignatureOrNoneAtAnyMoment)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the thread sanitizer's runtime holds signals back";
#endif
    const TemporaryFolder folder;
    makeKeys(folder, 1024);
    folder.write("report", "");
    ASSERT_EQ(truncate((folder / "report").c_str(), 16L * 1000 * 1000), 0);
    tsCommand sign;
    sign._folder = folder.path();
    sign._arguments = {COUNTERSIGN_PROGRAM, "sign", "-k", "private.pem", "report"};

    // How long it takes when nobody interrupts it and little else is going on, and the signature.
    std::chrono::microseconds longest = std::chrono::hours(1);
    for (int number = 0; number < 5; ++number)
    {
        static_cast<void>(unlink((folder / "report.sig").c_str()));
        const auto start = std::chrono::steady_clock::now();
        ASSERT_EQ(tsRun(sign)._exitStatus, 0);
        longest = std::min(
            longest, std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start));
    }
    // A countersignature is another one each time.
    const std::string signature = folder.read("report.sig");
    const std::string digestLine = signature.substr(0, signature.find('\n') + 1);
    const std::vector<std::string> names = {"private.pem", "public.pem", "report"};
    std::vector<std::string> namesWithSignature = names;
    namesWithSignature.emplace_back("report.sig");

    const std::string oldSignature = "00000078" + std::string(256, '0') + "\n";

    const unsigned long seed = tsNumberFromEnvironment("COUNTERSIGN_SEED", std::random_device()());
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(seed));
    std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
    // Somewhat longer, so that the end is among the moments.
    std::uniform_int_distribution<long> moments(0, longest.count() * 5 / 4);
    const unsigned long amount = tsNumberFromEnvironment("COUNTERSIGN_SHUTDOWNS", 120);
    unsigned long interrupted = 0;
    for (unsigned long number = 0; number < amount && !HasFailure(); ++number)
    {
        const int signals[] = {SIGINT, SIGTERM, SIGHUP};
        const int signal = signals[number % 3];
        const bool mayOverwrite = number % 2 == 0;
        sign._arguments = {COUNTERSIGN_PROGRAM, "sign", "-k", "private.pem", "report"};
        if (mayOverwrite)
        {
            sign._arguments.insert(sign._arguments.begin() + 2, "--force");
            folder.write("report.sig", oldSignature);
        }
        else
        {
            static_cast<void>(unlink((folder / "report.sig").c_str()));
        }

        const std::chrono::microseconds moment(moments(random));
        const tsOutcome outcome = tsRunSignalled(sign, signal, moment, false);
        SCOPED_TRACE(std::to_string(number) + ": after " + std::to_string(moment.count()) + " us: " + outcome._errors);
        // Whoever was not interrupted has done the work.
        EXPECT_THAT(outcome._signal, ::testing::AnyOf(0, signal));
        EXPECT_EQ(outcome._exitStatus, outcome._signal == 0 ? 0 : -1);
        interrupted += (outcome._signal == signal) ? 1U : 0U;
        const bool isThere = folder.has("report.sig");
        EXPECT_EQ(folder.names(), isThere ? namesWithSignature : names);
        EXPECT_TRUE(isThere || (outcome._signal != 0 && !mayOverwrite));
        if (isThere)
        {
            const std::string found = folder.read("report.sig");
            const bool isWhole = found.size() == signature.size() && found.substr(0, digestLine.size()) == digestLine &&
                                 found.back() == '\n';
            EXPECT_TRUE(isWhole || (mayOverwrite && outcome._signal != 0 && found == oldSignature)) << found;
        }
    }
    EXPECT_GT(interrupted, 0U);
}

// SPDX-License-Identifier: Apache-2.0
// Several files at a time: the same results in the same order as one after the other, and all signatures are told of.
//
// COUNTERSIGN_SHUTDOWNS: how often the program is interrupted (default 40). The moments are random; COUNTERSIGN_SEED
// repeats them.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Program.h"
#include "tests/support/tsEnvironment.h"
#include "tests/support/tsSignalled.h"

namespace
{

using Arguments = std::vector<std::string>;

constexpr std::size_t amountOfDocuments = 40;

class Jobs : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        for (std::size_t number = 0; number < amountOfDocuments; ++number)
        {
            // The first take longest.
            const std::string name = "d" + std::to_string(100 + number);
            _folder.write(name, std::string(number < 3 ? 3000000 : 10, 'x') + name);
            _documents.push_back(name);
        }
    }

    void removeSignatures() const
    {
        for (const std::string& name : _folder.names())
        {
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".sig") == 0)
            {
                ASSERT_EQ(unlink((_folder / name).c_str()), 0);
            }
        }
    }

    static Arguments with(Arguments arguments, const std::string& jobs, const Arguments& documents)
    {
        arguments.insert(arguments.end(), {"-j", jobs});
        arguments.insert(arguments.end(), documents.begin(), documents.end());
        return arguments;
    }

    // Runs it with one job and with several, from the same beginning: both do the same.
    void expectSame(const Arguments& arguments, const Arguments& documents) const
    {
        const bool isSigning = arguments.front() == "sign";
        if (isSigning)
        {
            removeSignatures();
        }
        const tsOutcome one = run(with(arguments, "1", documents));
        const std::vector<std::string> names = _folder.names();
        for (const char* pJobs : {"2", "8", "1000"})
        {
            if (isSigning)
            {
                removeSignatures();
            }
            const tsOutcome several = run(with(arguments, pJobs, documents));
            EXPECT_EQ(several._exitStatus, one._exitStatus) << pJobs;
            EXPECT_EQ(several._output, one._output) << pJobs;
            EXPECT_EQ(several._errors, one._errors) << pJobs;
            EXPECT_EQ(_folder.names(), names) << pJobs;
        }
    }

    std::vector<std::string> _documents;
};

}  // namespace

TEST_F(Jobs, DoTheSameAsOne)
{
    Arguments some = _documents;
    // Failures hide no others.
    some.insert(some.begin(), "missing first");
    some.insert(some.begin() + 9, {"missing", "."});
    some.emplace_back("missing last");
    expectSame({"sign", "--summary", "-k", "private.pem"}, some);
    expectSame({"sign", "-k", "public.pem"}, _documents);
    expectSame({"digest", "-k", "public.pem"}, some);
    run(with({"sign", "-f", "-k", "private.pem"}, "2", _documents));
    _folder.write(_documents[5], "changed");
    _folder.write(_documents[6] + ".sig", "no signature");
    expectSame({"test", "--summary", "-k", "public.pem"}, some);
    expectSame({"test", "--json", "-k", "public.pem"}, some);
    EXPECT_EQ(run(with({"test", "-q", "-k", "public.pem"}, "4", _documents))._output,
              _documents[5] + ": BAD\n" + _documents[6] + ": not a signature\n");
}

TEST_F(Jobs, MeetAFileUnderTwoNames)
{
    const Arguments twice = {"d110", "./d110", "d111", "./d111", "d112", "./d112", "../" + _folder.path().substr(5)};
    for (const char* pOption : {"--no-warnings", "--force", "--skip-signed", "--also-signatures"})
    {
        SCOPED_TRACE(pOption);
        expectSame({"sign", pOption, "-k", "private.pem"}, twice);
    }
    // A signature that is a document, once it is there.
    expectSame({"sign", "--also-signatures", "-k", "private.pem"}, {"d110", "d110.sig", "d111", "d111.sig"});
    EXPECT_TRUE(_folder.has("d110.sig.sig"));
    removeSignatures();
    EXPECT_EQ(outputOf({"sign", "-n", "-j", "8", "-k", "private.pem", "d110", "./d110"}),
              "d110: signed, d110.sig\n./d110: already signed, ./d110.sig\n");
}

TEST_F(Jobs, TakePipesOneAfterTheOther)
{
    ASSERT_EQ(mkfifo((_folder / "pipe").c_str(), 0600), 0);
    expectSame({"digest", "-k", "public.pem"}, {"d110", "/dev/null", "d111"});
}

TEST_F(Jobs, AreThatManyThreads)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the thread sanitizer's runtime has a thread of its own";
#endif
    Arguments documents;
    for (const char* pName : {"large 1", "large 2", "large 3", "large 4", "large 5"})
    {
        // Holes, which take no room on the disk, and are read for longer than it takes until the progress appears.
        _folder.write(pName, "");
        ASSERT_EQ(truncate((_folder / pName).c_str(), off_t{1} << 36), 0);
        documents.emplace_back(pName);
    }
    struct Case
    {
        const char* _pJobs;
        std::ptrdiff_t _threads;  // the first one prints; a single job is its own
    };
    for (const Case& wanted : {Case{"1", 1}, Case{"3", 4}, Case{"4", 5}})
    {
        std::ptrdiff_t threads = 0;
        tsCommand sign = command(with({"sign", "-k", "private.pem"}, wanted._pJobs, documents));
        sign._hasTerminal = true;
        sign._type = [&threads](const std::string& printed, pid_t process)
        {
            if (threads != 0 || printed.find(" % of ") == std::string::npos)
            {
                return "";
            }
            const std::filesystem::path folder = "/proc/" + std::to_string(process) + "/task";
            threads = std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
            return "\x03";
        };
        EXPECT_EQ(tsRun(sign)._signal, SIGINT);
        EXPECT_EQ(threads, wanted._threads) << wanted._pJobs;
    }
}

TEST_F(Jobs, LetFewSignaturesWaitForALongDocument)
{
    Arguments documents = {"large"};
    _folder.write("large", "");
    ASSERT_EQ(truncate((_folder / "large").c_str(), off_t{1} << 36), 0);
    for (int number = 0; number < 200; ++number)
    {
        documents.push_back("s" + std::to_string(number));
        _folder.write(documents.back(), "short");
    }
    const std::size_t namesBefore = _folder.names().size();
    std::size_t mostNames = 0;
    tsCommand sign = command(with({"sign", "-k", "private.pem"}, "2", documents));
    sign._hasTerminal = true;
    std::size_t looks = 0;
    sign._type = [&](const std::string& printed, pid_t)
    {
        // The progress comes a second after the beginning, and then again and again.
        const bool isAtWork = printed.find(" % of ") != std::string::npos;
        mostNames = std::max(mostNames, isAtWork ? _folder.names().size() : 0);
        looks += isAtWork ? 1U : 0U;
        return looks == 10 ? "\x03" : "";
    };
    EXPECT_EQ(tsRun(sign)._signal, SIGINT);
    EXPECT_GE(looks, 10U);
    EXPECT_GT(mostNames, namesBefore) << "signatures of the short ones";
    EXPECT_LE(mostNames, namesBefore + 32) << "sixteen for each job";
}

TEST_F(Jobs, AreANumber)
{
    for (const char* pNumber : {"0", "-1", "two", "2x", "1025", "99999999999999999999", " 2"})
    {
        const tsOutcome outcome = run({"sign", "-k", "private.pem", std::string("--jobs=") + pNumber, "d110"});
        expectFailure(outcome, {"--jobs takes a number from 1 to 1024"});
        EXPECT_EQ(outcome._output, "");
    }
    EXPECT_FALSE(_folder.has("d110.sig"));
    expectFailure(run({"sign", "-k", "private.pem", "d110", "--jobs"}), {"--jobs"});
}

TEST_F(Jobs, BeginNothingMoreWhenNobodyCanBeTold)
{
    tsCommand toFull = command(with({"sign", "-k", "private.pem"}, "4", _documents));
    toFull._outputPath = "/dev/full";
    const tsOutcome outcome = tsRun(toFull);
    expectFailure(outcome, {"standard output"});
    EXPECT_TRUE(_folder.has(_documents[0] + ".sig"));
    for (std::size_t number = 1; number < amountOfDocuments; ++number)
    {
        EXPECT_FALSE(_folder.has(_documents[number] + ".sig")) << number;
    }
}

TEST_F(Jobs, LeaveNoSignatureThatIsNotTold)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the thread sanitizer's runtime holds signals back";
#endif
    const unsigned long seed = tsNumberFromEnvironment("COUNTERSIGN_SEED", std::random_device()());
    const unsigned long amount = tsNumberFromEnvironment("COUNTERSIGN_SHUTDOWNS", 40);
    SCOPED_TRACE("COUNTERSIGN_SEED=" + std::to_string(seed));
    std::mt19937 random(static_cast<std::mt19937::result_type>(seed));

    const tsCommand sign = command(with({"sign", "-k", "private.pem"}, "3", _documents));
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(tsRun(sign)._exitStatus, 0);
    const auto longest =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    std::uniform_int_distribution<long> moments(0, longest.count());
    unsigned long interrupted = 0;
    for (unsigned long number = 0; number < amount && !HasFailure(); ++number)
    {
        removeSignatures();
        const tsOutcome outcome = tsRunSignalled(sign, SIGINT, std::chrono::microseconds(moments(random)), false);
        interrupted += outcome._signal == SIGINT ? 1U : 0U;
        std::vector<std::string> told;
        std::istringstream lines(outcome._output);
        for (std::string line; std::getline(lines, line);)
        {
            const std::size_t begin = line.find(": signed, ");
            ASSERT_NE(begin, std::string::npos) << line;
            told.push_back(line.substr(begin + 10));
        }
        std::vector<std::string> there;
        for (const std::string& name : _folder.names())
        {
            EXPECT_THAT(name, ::testing::Not(::testing::HasSubstr("tmp")));
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".sig") == 0)
            {
                there.push_back(name);
            }
        }
        EXPECT_EQ(told, there);
    }
    EXPECT_GT(interrupted, 0U);
}

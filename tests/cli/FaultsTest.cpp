// SPDX-License-Identifier: Apache-2.0
// Every system call and every allocation of the program goes wrong in turn: it does its work all the same or says that
// it did not, leaves no half file, and never calls good what is not.
#include <cerrno>
#include <functional>
#include <string>
#include <vector>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "tests/support/tsProcess.h"

namespace
{

struct Fault
{
    std::string call;
    int error;
    bool isHarmless;  // the work must be done in spite of it
};

const std::vector<Fault> faults = {
    {"open", EACCES, false}, {"open", EMFILE, false},   {"open", EINTR, true}, {"read", EIO, false},
    {"read", EINTR, true},   {"read", 0, true},         {"write", EIO, false}, {"write", ENOSPC, false},
    {"write", EINTR, true},  {"write", 0, true},        {"fsync", EIO, false}, {"fsync", ENOSPC, false},
    {"close", EIO, false},   {"close", EINTR, true},    {"link", EPERM, true}, {"link", EACCES, true},
    {"rename", EIO, false},  {"fstat", EIO, false},     {"stat", EIO, false},  {"realpath", EACCES, false},
    {"new", ENOMEM, false},  {"renameat2", EIO, false},
};

// What file systems lack: nothing; hard links; also renaming that replaces nothing.
#if defined(__SANITIZE_ADDRESS__)
// The last way goes through the code of all.
const std::vector<std::string> fileSystems = {"link,renameat2"};
#else
const std::vector<std::string> fileSystems = {"", "link", "link,renameat2"};
#endif

// By its form one of a key of 1024 bits.
const std::string oldSignature = "00000078" + std::string(256, '0') + "\n";

class Faults : public ::testing::Test
{
protected:
    void SetUp() override
    {
        makeKeys(_folder, 1024);
        // More than is read at once.
        _folder.write("report", std::string(1500000, 'r'));
        _folder.write("changed", std::string(1500000, 'c'));
        ASSERT_EQ(tsRun(command({"sign", "-k", "private.pem", "report"}))._exitStatus, 0);
        _signature = _folder.read("report.sig");
        _folder.write("changed.sig", _signature);
    }

    tsCommand command(const std::vector<std::string>& arguments) const
    {
        tsCommand result;
        result._arguments = {COUNTERSIGN_FAULTY_PROGRAM};
        result._arguments.insert(result._arguments.end(), arguments.begin(), arguments.end());
        result._folder = _folder.path();
        return result;
    }

    // Calls check with the outcome for the first, the second and every further call of the kind that goes wrong, and
    // returns how many there were.
    int failEach(const Fault& fault, const std::vector<std::string>& arguments, const std::string& input,
                 const std::function<void(const tsOutcome&)>& check, int step = 1) const
    {
        for (int number = 1;; number += step)
        {
            const std::string text = fault.call + ":" + std::to_string(number) + ":" + std::to_string(fault.error);
            SCOPED_TRACE(arguments.front() + " with " + text);
            static_cast<void>(unlink((_folder / "mark").c_str()));
            tsCommand faulty = command(arguments);
            faulty._input = input;
            faulty._prepare = [&]
            {
                setenv("COUNTERSIGN_FAULT", text.c_str(), 1);
                setenv("COUNTERSIGN_FAULT_MARK", (_folder / "mark").c_str(), 1);
                setenv("COUNTERSIGN_WITHOUT", _without.c_str(), 1);
            };
            const tsOutcome outcome = tsRun(faulty);
            if (!_folder.has("mark"))
            {
                return number - 1;
            }
            EXPECT_EQ(outcome._signal, 0);
            if (fault.isHarmless)
            {
                EXPECT_THAT(outcome._exitStatus, ::testing::Lt(2)) << outcome._errors;
            }
            // Whoever does not do the work says so; but the complaint itself may be what could not be written.
            if (outcome._exitStatus == 2 && fault.call != "write")
            {
                EXPECT_THAT(outcome._errors, ::testing::StartsWith("countersign: "));
            }
            check(outcome);
            if (HasFatalFailure() || HasNonfatalFailure())
            {
                return number;
            }
        }
    }

    // A countersignature is another one each time.
    void expectAWholeSignature(const std::string& signature) const
    {
        const std::string digestLine = _signature.substr(0, _signature.find('\n') + 1);
        EXPECT_EQ(signature.substr(0, digestLine.size()), digestLine);
        EXPECT_EQ(signature.size(), _signature.size());
        EXPECT_EQ(signature.back(), '\n');
    }

    // Signs with one call going wrong after the other.
    void expectAWholeSignatureOrNone()
    {
        int amount = 0;
        for (const Fault& fault : faults)
        {
            static_cast<void>(unlink((_folder / "report.sig").c_str()));
            amount += failEach(fault, {"sign", "-k", "private.pem", "report"}, "",
                               [&](const tsOutcome& outcome)
                               {
                                   const bool isThere = _folder.has("report.sig");
                                   if (isThere)
                                   {
                                       expectAWholeSignature(_folder.read("report.sig"));
                                   }
                                   EXPECT_TRUE(isThere || outcome._exitStatus == 2) << outcome._errors;
                                   static_cast<void>(unlink((_folder / "report.sig").c_str()));
                                   EXPECT_EQ(_folder.names(),
                                             (std::vector<std::string>{"changed", "changed.sig", "mark", "private.pem",
                                                                       "public.pem", "report"}));
                               });
        }
        // Fewer would mean that the program's calls are not met any more.
        EXPECT_GT(amount, 60);
    }

    TemporaryFolder _folder;
    std::string _signature;
    std::string _without;  // that the file system lacks
};

}  // namespace

TEST_F(Faults, LeaveAWholeSignatureOrNone)
{
    for (const std::string& without : fileSystems)
    {
        SCOPED_TRACE("without " + without);
        _without = without;
        expectAWholeSignatureOrNone();
    }
}

TEST_F(Faults, OfLinksReplaceNothing)
{
    // What is there and cannot be followed is not seen before the name is to be taken.
    for (const std::string& without : fileSystems)
    {
        ASSERT_EQ(unlink((_folder / "report.sig").c_str()), 0);
        ASSERT_EQ(symlink("nowhere", (_folder / "report.sig").c_str()), 0);
        tsCommand sign = command({"sign", "-k", "private.pem", "report"});
        sign._prepare = [&] { setenv("COUNTERSIGN_WITHOUT", without.c_str(), 1); };
        const tsOutcome outcome = tsRun(sign);
        EXPECT_EQ(outcome._exitStatus, 2) << without;
        EXPECT_THAT(outcome._errors, ::testing::HasSubstr("it exists already and was kept")) << without;
        char target[100] = {};
        EXPECT_EQ(readlink((_folder / "report.sig").c_str(), target, sizeof(target)), 7) << without;
        EXPECT_EQ(_folder.names(), (std::vector<std::string>{"changed", "changed.sig", "private.pem", "public.pem",
                                                             "report", "report.sig"}));
        ASSERT_EQ(unlink((_folder / "report.sig").c_str()), 0);
        EXPECT_EQ(tsRun(sign)._exitStatus, 0) << without;
        expectAWholeSignature(_folder.read("report.sig"));
    }
}

TEST_F(Faults, KeepTheOldSignatureUntilTheNewOneIsWhole)
{
    for (const Fault& fault : faults)
    {
        _folder.write("report.sig", oldSignature);
        failEach(fault, {"sign", "-f", "-k", "private.pem", "report"}, "",
                 [&](const tsOutcome& outcome)
                 {
                     const std::string contents = _folder.read("report.sig");
                     if (contents == oldSignature)
                     {
                         EXPECT_EQ(outcome._exitStatus, 2);
                     }
                     else
                     {
                         expectAWholeSignature(contents);
                     }
                     _folder.write("report.sig", oldSignature);
                     EXPECT_EQ(_folder.names(),
                               (std::vector<std::string>{"changed", "changed.sig", "mark", "private.pem", "public.pem",
                                                         "report", "report.sig"}));
                 });
    }
}

TEST_F(Faults, MakeNothingGood)
{
    for (const Fault& fault : faults)
    {
        failEach(fault, {"test", "-k", "public.pem", "changed"}, "",
                 [&](const tsOutcome& outcome)
                 {
                     EXPECT_NE(outcome._exitStatus, 0);
                     EXPECT_THAT(outcome._output, ::testing::Not(::testing::HasSubstr("good")));
                     EXPECT_THAT(outcome._output, ::testing::Not(::testing::HasSubstr("weak")));
                 });
    }
}

TEST_F(Faults, MakeNothingBad)
{
    for (const Fault& fault : faults)
    {
        failEach(fault, {"test", "-k", "public.pem", "report"}, "",
                 [&](const tsOutcome& outcome)
                 {
                     EXPECT_NE(outcome._exitStatus, 1) << outcome._output;
                     EXPECT_THAT(outcome._output, ::testing::Not(::testing::HasSubstr("BAD")));
                 });
    }
}

TEST_F(Faults, GiveNoOtherCipherText)
{
    const std::string cipher = tsRun(command({"encrypt", "-k", "public.pem", "at noon"}))._output;
    ASSERT_EQ(cipher.size(), 265U);
    for (const Fault& fault : faults)
    {
        failEach(fault, {"encrypt", "-k", "public.pem"}, "at noon",
                 [&](const tsOutcome& outcome)
                 { EXPECT_TRUE(outcome._exitStatus == 2 || outcome._output == cipher) << outcome._output; });
        failEach(fault, {"decrypt", "-k", "private.pem"}, cipher,
                 [&](const tsOutcome& outcome)
                 { EXPECT_TRUE(outcome._exitStatus == 2 || outcome._output == "at noon") << outcome._output; });
    }
}

// A terminal that goes on showing what is typed is not asked on.
TEST_F(Faults, ShowNoPassphrase)
{
    runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes256", "-passout", "pass:sesame", "-out", "locked.pem"});
    tsCommand key = command({"key", "-k", "locked.pem"});
    key._hasTerminal = true;
    key._prepare = [] { setenv("COUNTERSIGN_FAULT", ("tcsetattr:1:" + std::to_string(EIO)).c_str(), 1); };
    key._type = [](const std::string& printed, pid_t)
    { return std::string(printed.find("Passphrase") == std::string::npos ? "" : "sesame\n"); };
    const tsOutcome outcome = tsRun(key);
    EXPECT_EQ(outcome._exitStatus, 2);
    EXPECT_THAT(outcome._printed, ::testing::Not(::testing::HasSubstr("Passphrase for")));
    EXPECT_THAT(outcome._printed, ::testing::HasSubstr("no terminal"));
}

// There are many hundreds of these; some will do.
TEST_F(Faults, OfTheParserAreTold)
{
    const std::string output = tsRun(command({"key", "-k", "public.pem"}))._output;
    const int number = failEach(
        {"parse", ENOMEM, false}, {"key", "-k", "public.pem"}, "",
        [&](const tsOutcome& outcome)
        { EXPECT_TRUE(outcome._exitStatus == 2 || outcome._output == output) << outcome._output; },
        17);
    EXPECT_GT(number, 100);
}

TEST_F(Faults, OfAWrittenPairLeaveBothKeysOrNone)
{
    const std::vector<std::string> before = _folder.names();
    for (const Fault& fault : {Fault{"fsync", EIO, false}, Fault{"link", EACCES, false}})
    {
        const int failed = failEach(fault, {"keygen", "--bits", "512", "--no-passphrase", "-o", "new"}, "",
                                    [&](const tsOutcome& outcome)
                                    {
                                        const bool isMade = outcome._exitStatus == 0;
                                        EXPECT_EQ(_folder.has("new.pem"), isMade);
                                        EXPECT_EQ(_folder.has("new.pub.pem"), isMade);
                                        EXPECT_EQ(_folder.names().size(), before.size() + (isMade ? 3U : 1U));
                                        static_cast<void>(unlink((_folder / "new.pem").c_str()));
                                        static_cast<void>(unlink((_folder / "new.pub.pem").c_str()));
                                    });
        EXPECT_GE(failed, 2) << fault.call << ", for each of the two files";
        static_cast<void>(unlink((_folder / "new.pem").c_str()));
        static_cast<void>(unlink((_folder / "new.pub.pem").c_str()));
    }
}

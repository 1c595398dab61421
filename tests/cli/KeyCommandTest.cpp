// SPDX-License-Identifier: Apache-2.0
// What the command key tells of key files, compared with openssl.
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "tests/support/tsProcess.h"

using ::testing::HasSubstr;

namespace
{

class KeyCommand : public ::testing::Test
{
protected:
    void SetUp() override
    {
        makeKeys(_folder, 1056);
        runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes256", "-passout", "pass:sesame", "-out", "locked.pem"});
        _folder.write("secret", "sesame\n");
    }

    tsOutcome runProgram(const std::string& program, const std::vector<std::string>& arguments) const
    {
        tsCommand command;
        command._arguments = {program};
        command._arguments.insert(command._arguments.end(), arguments.begin(), arguments.end());
        command._folder = _folder.path();
        return tsRun(command);
    }

    std::string outputOf(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "key");
        const tsOutcome outcome = runProgram(COUNTERSIGN_PROGRAM, arguments);
        EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
        EXPECT_EQ(outcome._errors, "");
        return outcome._output;
    }

    std::string fingerprintByOpenssl() const
    {
        runOpenSSL(_folder, {"pkey", "-pubin", "-in", "public.pem", "-outform", "DER", "-out", "public.der"});
        return runProgram("sha256sum", {"public.der"})._output.substr(0, 64);
    }

    TemporaryFolder _folder;
};

}  // namespace

TEST_F(KeyCommand, TellsWhatTheFileHolds)
{
    _folder.write("report", "contents");
    ASSERT_EQ(runProgram(COUNTERSIGN_PROGRAM, {"sign", "-k", "private.pem", "report"})._exitStatus, 0);
    const std::string signature = _folder.read("report.sig");
    const std::string before = "countersignature: rsa-pss-sha256 ";
    const std::size_t place = signature.find(before);
    ASSERT_NE(place, std::string::npos);
    const std::string rest = "fingerprint " + fingerprintByOpenssl() + "\nshort-fingerprint " +
                             signature.substr(place + before.size(), 8) + "\n";
    EXPECT_EQ(outputOf({"-k", "public.pem"}), "size 1056\nkind public\nencrypted no\n" + rest);
    EXPECT_EQ(outputOf({"-k", "private.pem"}), "size 1056\nkind private\nencrypted no\n" + rest);
    EXPECT_EQ(outputOf({"-k", "locked.pem", "--passphrase-file", "secret"}),
              "size 1056\nkind private\nencrypted yes\n" + rest);
}

TEST_F(KeyCommand, PrintsThePublicHalf)
{
    const std::string publicKey = _folder.read("public.pem");
    EXPECT_EQ(outputOf({"-k", "private.pem", "--public"}), publicKey);
    EXPECT_EQ(outputOf({"-k", "public.pem", "-P"}), publicKey);
    EXPECT_EQ(outputOf({"-k", "locked.pem", "--public", "--passphrase-file", "secret"}), publicKey);
    for (const char* pOther : {"--private", "--numbers"})
    {
        const tsOutcome outcome = runProgram(COUNTERSIGN_PROGRAM, {"key", "-k", "private.pem", "--public", pOther});
        EXPECT_EQ(outcome._exitStatus, 2);
        EXPECT_EQ(outcome._output, "");
        EXPECT_THAT(outcome._errors, HasSubstr("--public prints nothing else"));
    }
}

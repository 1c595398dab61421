// SPDX-License-Identifier: Apache-2.0
// Passphrases of key files from descriptors and files, and what is said of risky keys.
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "tests/support/tsProcess.h"

using ::testing::HasSubstr;
using ::testing::Not;

namespace
{

class Passphrase : public ::testing::Test
{
protected:
    void SetUp() override
    {
        makeKeys(_folder, 1024);
        runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes256", "-passout", "pass:sesame", "-out", "locked.pem"});
        _folder.write("report", "contents");
    }

    // Without a terminal, and with this file as descriptor 7.
    tsOutcome run(const std::vector<std::string>& arguments, const std::string& fileAtSeven = "",
                  const std::string& input = "") const
    {
        tsCommand command;
        command._arguments = {COUNTERSIGN_PROGRAM};
        command._arguments.insert(command._arguments.end(), arguments.begin(), arguments.end());
        command._folder = _folder.path();
        command._input = input;
        command._prepare = [fileAtSeven]
        {
            setsid();
            const int file = fileAtSeven.empty() ? -1 : open(fileAtSeven.c_str(), O_RDONLY);
            if (file >= 0 && file != 7)
            {
                dup2(file, 7);
                close(file);
            }
        };
        return tsRun(command);
    }

    TemporaryFolder _folder;
};

}  // namespace

TEST_F(Passphrase, ComesFromADescriptorOrAFile)
{
    for (const char* pText : {"sesame\n", "sesame", "sesame\nbehind it\n"})
    {
        _folder.write("secret", pText);
        for (const std::vector<std::string>& option :
             {std::vector<std::string>{"--passphrase-fd", "7"}, {"--passphrase-fd=7"}, {"--passphrase-file", "secret"}})
        {
            std::vector<std::string> arguments = {"sign", "-f", "-k", "locked.pem", "report"};
            arguments.insert(arguments.end(), option.begin(), option.end());
            const tsOutcome outcome = run(arguments, "secret");
            EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
            EXPECT_EQ(outcome._errors, "");
            EXPECT_EQ(outcome._output, "report: signed, report.sig\n");
        }
    }
    EXPECT_EQ(run({"test", "-k", "public.pem", "report"})._output, "report: good\n");
}

TEST_F(Passphrase, LeavesTheRestOfADescriptorToTheText)
{
    const tsOutcome cipher = run({"encrypt", "-k", "public.pem", "at noon"});
    const tsOutcome text =
        run({"decrypt", "-k", "locked.pem", "--passphrase-fd", "0"}, "", "sesame\n" + cipher._output);
    EXPECT_EQ(text._exitStatus, 0) << text._errors;
    EXPECT_EQ(text._output, "at noon");
}

TEST_F(Passphrase, ThatIsWrongOrMissingIsTold)
{
    struct Case
    {
        const char* _pText;
        const char* _pReason;
    };
    const std::string longest(1024, 'p');
    const std::string tooLong(1025, 'p');
    for (const Case& wrong :
         {Case{"barley\n", "wrong passphrase"}, Case{"sesame \n", "wrong passphrase"}, Case{"\n", "wrong passphrase"},
          Case{"", "secret: there is no passphrase in it"}, Case{longest.c_str(), "wrong passphrase"},
          Case{tooLong.c_str(), "the passphrase is too long"}})
    {
        _folder.write("secret", wrong._pText);
        const tsOutcome outcome = run({"sign", "-k", "locked.pem", "--passphrase-file", "secret", "report"});
        EXPECT_EQ(outcome._exitStatus, 2);
        EXPECT_THAT(outcome._errors, HasSubstr("locked.pem: "));
        EXPECT_THAT(outcome._errors, HasSubstr(wrong._pReason));
        EXPECT_THAT(outcome._errors, Not(HasSubstr("pppp")));
    }
    EXPECT_THAT(run({"sign", "-k", "locked.pem", "--passphrase-file", "none", "report"})._errors,
                HasSubstr("none: cannot be read: No such file"));
    // The descriptors that the program opens itself are not read from.
    for (const char* pNumber : {"3", "4", "5", "6", "7", "1000000"})
    {
        EXPECT_THAT(run({"sign", "-k", "locked.pem", "--passphrase-fd", pNumber, "report"})._errors,
                    HasSubstr(std::string("descriptor ") + pNumber + ": cannot be read: Bad file descriptor"));
    }
    EXPECT_THAT(run({"sign", "-k", "locked.pem", "report"})._errors, HasSubstr("--passphrase-file"));
    for (const char* pNumber : {"x", "7x", "-1", "99999999999", "1.5"})
    {
        const tsOutcome outcome =
            run({"sign", "-k", "locked.pem", std::string("--passphrase-fd=") + pNumber, "report"});
        EXPECT_EQ(outcome._exitStatus, 2);
        EXPECT_THAT(outcome._errors, HasSubstr(std::string("number of a descriptor, and not ") + pNumber));
    }
    EXPECT_THAT(run({"sign", "-k", "locked.pem", "--passphrase-fd=7", "--passphrase-file=secret", "report"})._errors,
                HasSubstr("do not go together"));
    EXPECT_FALSE(_folder.has("report.sig"));
}

TEST_F(Passphrase, IsNotReadWhereNoneIsNeeded)
{
    const tsOutcome outcome = run({"sign", "-k", "private.pem", "--passphrase-file", "none", "report"});
    EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
}

TEST_F(Passphrase, IsAskedForWhateverIsLeftOut)
{
    for (const char* pOption : {"--quiet", "--status", "--json"})
    {
        tsCommand sign;
        sign._arguments = {COUNTERSIGN_PROGRAM, "sign", "-f", pOption, "-k", "locked.pem", "report"};
        sign._folder = _folder.path();
        sign._hasTerminal = true;
        bool isTyped = false;
        sign._type = [&isTyped](const std::string& printed, pid_t)
        {
            const bool isAsked = !isTyped && printed.find("Passphrase for locked.pem: ") != std::string::npos;
            isTyped = isTyped || isAsked;
            return std::string(isAsked ? "sesame\n" : "");
        };
        const tsOutcome outcome = tsRun(sign);
        EXPECT_TRUE(isTyped) << pOption;
        EXPECT_EQ(outcome._exitStatus, 0) << pOption << outcome._printed;
        EXPECT_EQ(outcome._printed, "Passphrase for locked.pem: \r\n") << pOption;
    }
}

TEST_F(Passphrase, WarningsAreLeftOutWhenAsked)
{
    ASSERT_EQ(chmod((_folder / "private.pem").c_str(), 0644), 0);
    ASSERT_EQ(chmod(_folder.path().c_str(), 0777), 0);
    const std::vector<std::string> encrypt = {"encrypt", "-p", "-k", "private.pem", "text"};
    EXPECT_THAT(run(encrypt)._errors, HasSubstr("warning: "));
    std::vector<std::string> quietly = encrypt;
    quietly.insert(quietly.begin() + 1, "--no-warnings");
    const tsOutcome outcome = run(quietly);
    EXPECT_EQ(outcome._exitStatus, 0);
    EXPECT_EQ(outcome._errors, "");
}

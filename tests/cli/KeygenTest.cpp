// SPDX-License-Identifier: Apache-2.0
// Pairs of keys that the command line makes: what is in the files, who may read them, and what is left when it fails.
#include <filesystem>
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

using Names = std::vector<std::string>;

class Keygen : public ::testing::Test
{
protected:
    tsCommand command(std::vector<std::string> arguments) const
    {
        tsCommand result;
        result._arguments = {COUNTERSIGN_PROGRAM};
        result._arguments.insert(result._arguments.end(), arguments.begin(), arguments.end());
        result._folder = _folder.path();
        return result;
    }

    tsOutcome run(const std::vector<std::string>& arguments) const { return tsRun(command(arguments)); }

    std::string opensslsOutput(std::vector<std::string> arguments) const
    {
        tsCommand openssl;
        arguments.insert(arguments.begin(), "openssl");
        openssl._arguments = arguments;
        openssl._folder = _folder.path();
        return tsRun(openssl)._output;
    }

    mode_t modeOf(const std::string& name) const
    {
        struct stat entry = {};
        EXPECT_EQ(stat((_folder / name).c_str(), &entry), 0) << name;
        return entry.st_mode & 07777;
    }

    TemporaryFolder _folder;
};

}  // namespace

TEST_F(Keygen, MakesAPairThatFits)
{
    tsCommand keygen = command({"keygen", "--no-passphrase"});
    // Whatever the umask is.
    keygen._prepare = [] { umask(0); };
    const tsOutcome outcome = tsRun(keygen);
    EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
    EXPECT_EQ(outcome._errors, "");
    EXPECT_EQ(outcome._output, "countersign-key.pem: private key, to be kept secret\n"
                               "countersign-key.pub.pem: public key, to be given to others\n");
    EXPECT_EQ(_folder.names(), (Names{"countersign-key.pem", "countersign-key.pub.pem"}));
    EXPECT_EQ(modeOf("countersign-key.pem"), 0600U);
    EXPECT_EQ(modeOf("countersign-key.pub.pem"), 0644U);
    EXPECT_EQ(opensslsOutput({"pkey", "-in", "countersign-key.pem", "-pubout"}),
              _folder.read("countersign-key.pub.pem"));
    EXPECT_THAT(run({"key", "-k", "countersign-key.pem"})._output,
                HasSubstr("size 2048\nkind private\nencrypted no\n"));
}

TEST_F(Keygen, TakesSizeNameAndPassphrase)
{
    _folder.write("secret", "sesame\n");
    for (const auto& [output, bits] : {std::pair<std::string, std::string>{"alice", "512"}, {"bob.pem", "1056"}})
    {
        const tsOutcome outcome = run({"keygen", "-b", bits, "-o", output, "--passphrase-file", "secret"});
        EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
        const std::string stem = output.substr(0, output.find('.'));
        const std::string facts = "size " + bits + "\nkind private\nencrypted yes\n";
        EXPECT_THAT(run({"key", "-k", stem + ".pem", "--passphrase-file", "secret"})._output, HasSubstr(facts));
        EXPECT_EQ(opensslsOutput({"pkey", "-in", stem + ".pem", "-passin", "pass:sesame", "-pubout"}),
                  _folder.read(stem + ".pub.pem"));
    }
    EXPECT_EQ(_folder.names(), (Names{"alice.pem", "alice.pub.pem", "bob.pem", "bob.pub.pem", "secret"}));
}

TEST_F(Keygen, OverwritesNothing)
{
    for (const char* pName : {"alice.pem", "alice.pub.pem"})
    {
        _folder.write(pName, "precious");
        const tsOutcome outcome = run({"keygen", "--no-passphrase", "--output", "alice"});
        EXPECT_EQ(outcome._exitStatus, 2);
        EXPECT_THAT(outcome._errors, HasSubstr(std::string(pName) + ": it exists already"));
        EXPECT_EQ(_folder.read(pName), "precious");
        EXPECT_EQ(_folder.names(), Names{pName});
        std::filesystem::remove(_folder / pName);
    }
    std::filesystem::create_symlink("nowhere", _folder / "alice.pub.pem");
    EXPECT_EQ(run({"keygen", "--no-passphrase", "--output", "alice"})._exitStatus, 2);
    EXPECT_EQ(_folder.names(), Names{"alice.pub.pem"});
    // Found before a passphrase is asked for.
    EXPECT_THAT(run({"keygen", "--passphrase-file", "none", "--output", "none/alice"})._errors,
                HasSubstr("none/alice.pem: it cannot be written: No such file or directory"));
}

TEST_F(Keygen, RefusesWhatItCannotMake)
{
    for (const char* pBits : {"0", "-32", "480", "513", "4128", "99999999999", "x", "1024x", "1e3"})
    {
        const tsOutcome outcome = run({"keygen", "--no-passphrase", std::string("--bits=") + pBits});
        EXPECT_EQ(outcome._exitStatus, 2);
        EXPECT_THAT(outcome._errors, HasSubstr(std::string("from 512 to 4096, and not ") + pBits));
    }
    EXPECT_THAT(run({"keygen", "--no-passphrase", "--passphrase-fd", "0"})._errors, HasSubstr("does not go together"));
    EXPECT_THAT(run({"keygen", "--passphrase-fd", "0"})._errors, HasSubstr("there is no passphrase in it"));
    EXPECT_EQ(_folder.names(), Names());
}

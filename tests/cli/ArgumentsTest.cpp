// SPDX-License-Identifier: Apache-2.0
#include "cli/clArguments.h"

#include <gtest/gtest.h>

TEST(Arguments, AreUnderstood)
{
    const clArguments sign = clParseArguments({"sign", "--key", "k.pem", "-f", "-o", "out", "file"});
    EXPECT_EQ(sign._command, clCommand::Sign);
    EXPECT_EQ(sign._keyPath, "k.pem");
    EXPECT_EQ(sign._files, std::vector<gtString>{"file"});
    EXPECT_TRUE(sign._isForced);
    EXPECT_TRUE(sign._hasOutput);
    EXPECT_EQ(sign._outputPath, "out");

    const clArguments test = clParseArguments({
        "test",
        "a",
        "-k",
        "k.pem",
        "--signature=s",
    });
    EXPECT_EQ(test._command, clCommand::Test);
    EXPECT_EQ(test._files, std::vector<gtString>{"a"});
    EXPECT_TRUE(test._hasSignature);
    EXPECT_EQ(test._signaturePath, "s");
    EXPECT_FALSE(test._hasOutput);

    const clArguments encrypt = clParseArguments({"encrypt", "--key=k.pem", "at noon"});
    EXPECT_EQ(encrypt._command, clCommand::Encrypt);
    EXPECT_TRUE(encrypt._hasPlainText);
    EXPECT_EQ(encrypt._plainText, "at noon");
    EXPECT_FALSE(clParseArguments({"decrypt", "-k", "k"})._hasPlainText);
    EXPECT_EQ(clParseArguments({"decrypt", "-k", "k"})._command, clCommand::Decrypt);
    EXPECT_TRUE(clParseArguments({"decrypt", "-k", "k", ""})._hasPlainText);
    EXPECT_EQ(clParseArguments({"key", "-k", "k"})._command, clCommand::Key);
    EXPECT_FALSE(clParseArguments({"key", "-k", "k"})._isPrivateWanted);
    EXPECT_TRUE(clParseArguments({"key", "-k", "k", "--private"})._isPrivateWanted);
    EXPECT_EQ(clParseArguments({"digest", "-k", "k", "f", "g"})._files, (std::vector<gtString>{"f", "g"}));
}

TEST(Arguments, TakeOddNamesAsTheyAre)
{
    const std::vector<gtString> names = {"[a,b]",    "[]",    "[",       "a b",       "two\nlines", "-dash", "--key",
                                         "--",       "\x1f",  "[a]\x1f", "x\x1f\x1f", "",           "%%",    "{}",
                                         "\xff\xfe", "@file", "sign",    "a=b",       "'quoted'",   "\"q\"", "#"};
    for (const char* pCommand : {"sign", "test", "digest"})
    {
        std::vector<gtString> arguments = {pCommand, "--key", "[k]", "--"};
        arguments.insert(arguments.end(), names.begin(), names.end());
        const clArguments result = clParseArguments(arguments);
        EXPECT_EQ(result._files, names) << result._text;
        EXPECT_EQ(result._keyPath, "[k]");
    }
    for (const gtString& name : names)
    {
        const clArguments result = clParseArguments({"encrypt", "--key", "k", "--", name});
        EXPECT_EQ(result._command, clCommand::Encrypt) << name << result._text;
        EXPECT_EQ(result._plainText, name);
        EXPECT_TRUE(result._hasPlainText);
    }
    EXPECT_EQ(clParseArguments({"sign", "--key=-odd.pem", "f"})._keyPath, "-odd.pem");
    EXPECT_EQ(clParseArguments({"sign", "--key", "k", "--output", "-", "f"})._outputPath, "-");
    EXPECT_EQ(clParseArguments({"sign", "--key", "k", "-"})._files, std::vector<gtString>{"-"});
}

TEST(Arguments, ThatAreWrongAreToldAbout)
{
    const std::vector<std::vector<gtString>> wrong = {
        {},
        {"bogus"},
        {""},
        {"--bogus"},
        {"--"},
        {"sign"},
        {"sign", "file"},
        {"sign", "--key"},
        {"sign", "--key", "k"},
        {"sign", "--key", "k", "--key", "l", "f"},
        {"sign", "--key", "k", "--bogus", "f"},
        {"sign", "--key", "k", "-o", "s", "f", "g"},
        {"sign", "--key", "k", "--signature", "s", "f"},
        {"test", "--key", "k", "-s", "s", "f", "g"},
        {"test", "--key", "k", "--force", "f"},
        {"encrypt", "text"},
        {"encrypt", "--key", "k", "two", "texts"},
        {"key", "--key", "k", "extra"},
        {"digest", "--key", "k"},
        {"sign", "--key", "k", "f", "test", "--key", "k", "--bogus"},
    };
    for (const std::vector<gtString>& arguments : wrong)
    {
        const clArguments result = clParseArguments(arguments);
        EXPECT_EQ(result._command, clCommand::WrongUse) << (arguments.empty() ? gtString() : arguments.back());
        EXPECT_EQ(result._text.asStringView().substr(0, 13), "countersign: ");
        EXPECT_NE(result._text.asStringView().find("--help"), std::string_view::npos);
    }
    EXPECT_NE(clParseArguments({"bogus\n"})._text.asStringView().find("bogus\\n"), std::string_view::npos);
}

TEST(Arguments, AskForTexts)
{
    for (const char* pCommand : {"sign", "test", "encrypt", "decrypt", "key", "digest"})
    {
        for (const char* pHelp : {"--help", "-h"})
        {
            const clArguments result = clParseArguments({pCommand, pHelp});
            EXPECT_EQ(result._command, clCommand::ShowText);
            EXPECT_NE(result._text.asStringView().find("Examples:"), std::string_view::npos) << pCommand;
            EXPECT_NE(result._text.asStringView().find(std::string("countersign ") + pCommand), std::string_view::npos)
                << pCommand;
        }
    }
    EXPECT_EQ(clParseArguments({"--help"})._command, clCommand::ShowText);
    EXPECT_EQ(clParseArguments({"--version"})._command, clCommand::ShowText);
    EXPECT_EQ(clParseArguments({"--version"})._text.asStringView().substr(0, 12), "countersign ");
}

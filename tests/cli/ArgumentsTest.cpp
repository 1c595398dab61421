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
    EXPECT_EQ(clParseArguments({"digest", "--key", "k", "-"})._files, std::vector<gtString>{"-"});
}

TEST(Arguments, ThatAreWrongAreToldAbout)
{
    const std::vector<std::vector<gtString>> wrong = {
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
        EXPECT_EQ(result._command, clCommand::WrongUse) << arguments.back();
        EXPECT_EQ(result._text.asStringView().substr(0, 13), "countersign: ");
        EXPECT_NE(result._text.asStringView().find("--help"), std::string_view::npos);
    }
    const clArguments none = clParseArguments({});
    EXPECT_EQ(none._command, clCommand::WrongUse);
    EXPECT_EQ(none._text, clParseArguments({"--help"})._text);
    EXPECT_NE(clParseArguments({"bogus\n"})._text.asStringView().find("bogus\\n"), std::string_view::npos);
}

TEST(Arguments, ThatAreWrongAreNamed)
{
    const std::pair<std::vector<gtString>, const char*> cases[] = {
        {{"--key", "public.pem", "test", "f"}, "--key stands before the command; write: countersign test --key"},
        {{"-k"}, "-k stands before the command; write: countersign COMMAND -k"},
        {{"tset"}, "there is no command tset; did you mean test?"},
        {{"sgin", "-k", "k"}, "there is no command sgin; did you mean sign?"},
        {{"bogus"}, "there is no command bogus\n"},
        {{"help", "sing"}, "there is no command sing; did you mean sign?"},
        {{"--hlep"}, "there is no option --hlep; did you mean --help?"},
        {{"-1"}, "there is no option -1\n"},
        {{"test", "--ke"}, "there is no option --ke; did you mean --key?"},
        {{"sign", "--bogus"}, "there is no option --bogus; put -- in front of a FILE that begins with a dash"},
        {{"sign", "--ouptut=s"}, "there is no option --ouptut; did you mean --output?"},
        {{"sign", "-key", "k", "f"}, "there is no option -key; did you mean --key?"},
        {{"sign", "-k", "k", "-1"}, "there is no option -1; put -- in front of a FILE"},
        {{"sign", "-k", "k", "-0"}, "there is no option -0; put -- in front of a FILE"},
        {{"sign", "-fx", "-k", "k"}, "there is no option -x (in -fx); put --"},
        {{"sign", "-\xC3\xA4"}, "there is no option -\xC3\xA4; put --"},
        {{"sign", "--\xE2\x80\xAEgnp"}, "there is no option --\\xe2\\x80\\xaegnp; put --"},
        {{"sign", "-k", "k", "--signature", "s", "f"}, "--signature is an option of test, not of sign"},
        {{"sign", "--version"}, "--version is an option of countersign, not of sign"},
        {{"sign", "--force=2"}, "--force takes no value, but it has one: --force=2"},
        {{"sign", "--force="}, "--force takes no value"},
        {{"sign", "f", "--key"}, "--key needs a value (PEM), and nothing follows it"},
        {{"sign", "-o", "--force"},
         "-o needs a value (PATH), and --force follows it; a value that begins with a dash "
         "is written --output=-value"},
        {{"sign", "-k", "", "f"}, "the value of -k is empty; it needs a PEM"},
        {{"sign", "-k", "k", "-kl", "f"}, "-k is given twice"},
        {{"sign", "f"}, "--key PEM is missing"},
        {{"sign", "--key=k"}, "no FILE is named"},
        {{"key", "--key=k", "ex\ntra"}, "one argument too many: ex\\ntra"},
        {{"encrypt", "--key=k", "two", "texts"}, "one argument too many: texts"},
        {{"sign", "-k", "k", "-"},
         "standard input has no place for a signature beside it; --output PATH or --output -"},
        {{"sign", "-k", "k", "--skip-signed", "-o", "s", "-"}, "--skip-signed reads a FILE twice"},
        {{"test", "-k", "k", "-"}, "standard input has no signature beside it; --signature PATH names it"},
        {{"test", "-k", "k", "-s", "-", "-"},
         "standard input can be read only once, and both --signature - and FILE -"},
        {{"digest", "-k", "k", "-", "-"}, "standard input can be read only once, and both FILE - and FILE - read it"},
        {{"digest", "-k", "k", "--files0-from", "-", "-"},
         "standard input can be read only once, and both --files0-from - and FILE - read it"},
        {{"digest", "-k", "-", "-"}, "standard input can be read only once, and both --key - and FILE - read it"},
        {{"test", "-k", "-", "-k", "-", "f"}, "standard input can be read only once, and both --key - and --key -"},
        {{"decrypt", "-k", "-"}, "standard input can be read only once, and both --key - and the missing TEXT read it"},
        {{"key", "-k", "-", "--passphrase-fd", "0"},
         "standard input can be read only once, and both --key - and --passphrase-fd 0 read it"},
    };
    for (const auto& [arguments, pWords] : cases)
    {
        const clArguments result = clParseArguments(arguments);
        EXPECT_EQ(result._command, clCommand::WrongUse);
        const std::string text = result._text.asStdString();
        EXPECT_EQ(text.find("countersign: " + std::string(pWords)), 0U) << text;
        EXPECT_NE(text.find("\nSee countersign "), std::string::npos) << text;
    }
    EXPECT_NE(clParseArguments({"sign"})._text.asStringView().find("See countersign sign --help\n"),
              std::string_view::npos);
}

TEST(Arguments, TakeValuesInEverySpelling)
{
    for (const std::vector<gtString>& spelling :
         {std::vector<gtString>{"--key", "k"}, {"--key=k"}, {"-k", "k"}, {"-kk"}, {"-fkk"}, {"-fdk", "k"}})
    {
        std::vector<gtString> arguments = {"sign"};
        arguments.insert(arguments.end(), spelling.begin(), spelling.end());
        arguments.insert(arguments.end(), {"-o", "-", "-", "f"});
        const clArguments result = clParseArguments(arguments);
        EXPECT_EQ(result._command, clCommand::Sign) << result._text;
        EXPECT_EQ(result._keyPath, "k");
        EXPECT_EQ(result._files, (std::vector<gtString>{"-", "f"}));
        EXPECT_EQ(result._isForced, spelling.front()[1] == 'f');
    }
    EXPECT_EQ(clParseArguments({"sign", "-k=", "f"})._keyPath, "=");
    EXPECT_EQ(clParseArguments({"sign", "--key==k", "f"})._keyPath, "=k");
    EXPECT_EQ(clParseArguments({"sign", "--key=[a,b]", "f"})._keyPath, "[a,b]");
    EXPECT_EQ(clParseArguments({"sign", "--key=k\x1f", "f"})._keyPath, "k\x1f");
    EXPECT_TRUE(clParseArguments({"sign", "-k", "k", "-f", "--force", "-ff", "f"})._isForced);
    EXPECT_EQ(clParseArguments({"sign", "-k", "k", "f", "--", "--", "-f"})._files,
              (std::vector<gtString>{"f", "--", "-f"}));
    EXPECT_EQ(clParseArguments({"sign", "-k", "k", "test", "sign"})._files, (std::vector<gtString>{"test", "sign"}));
    EXPECT_EQ(clParseArguments({"verify", "-k", "k", "f"})._command, clCommand::Test);
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
    const gtString signHelp = clParseArguments({"sign", "--help"})._text;
    EXPECT_EQ(clParseArguments({"help", "sign"})._text, signHelp);
    EXPECT_EQ(clParseArguments({"sign", "-fh", "--bogus"})._text, signHelp);
    EXPECT_EQ(clParseArguments({"help", "verify"})._text, clParseArguments({"test", "-h"})._text);
    EXPECT_EQ(clParseArguments({"help"})._text, clParseArguments({"--help"})._text);
    EXPECT_EQ(clParseArguments({"help", "--help"})._text, clParseArguments({"--help"})._text);
    EXPECT_EQ(clParseArguments({"sign", "-k", "k", "--", "--help"})._command, clCommand::Sign);
    EXPECT_EQ(clParseArguments({"--help"})._command, clCommand::ShowText);
    EXPECT_EQ(clParseArguments({"--version"})._command, clCommand::ShowText);
    EXPECT_EQ(clParseArguments({"--version"})._text.asStringView().substr(0, 12), "countersign ");
}

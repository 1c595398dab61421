// SPDX-License-Identifier: Apache-2.0
// The program from outside: what it prints where, how it ends, and what it leaves on the disk.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <sstream>
#include <string>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Program.h"
#include "cliTestSupport.h"
#include "tests/host/SlowKey.h"
#include "tests/support/tsProcess.h"

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace
{

// By its form one of a key of 1024 bits.
const std::string oldSignature = "00000078" + std::string(256, '0') + "\n";

// Names of which some are hard to take.
const std::vector<std::string> names = {"plain",    "with blanks", "two\nlines", "tab\t",     "-dash", "--key",
                                        "[a,b]",    "[]",          "*",          "quote's\"", "$HOME", "back\\slash",
                                        "\xff\xfe", "\xC3\xA4",    "%s%n",       "~",         "a;b",   ".hidden"};

// The time of the processor that a process has taken for itself, of its "stat" file: the twelfth field behind its name.
unsigned long ticksOfProcessor(const std::string& facts)
{
    std::istringstream fields(facts.substr(facts.rfind(')') + 1));
    std::string ignored;
    for (int i = 0; i < 11; ++i)
    {
        fields >> ignored;
    }
    unsigned long ticks = 0;
    fields >> ticks;
    return ticks;
}

}  // namespace

TEST_F(Program, SignsAndTests)
{
    _folder.write("report", "contents");
    EXPECT_EQ(outputOf({"sign", "--key", "private.pem", "report"}), "report: signed, report.sig\n");
    const std::string signature = _folder.read("report.sig");
    EXPECT_EQ(signature.substr(0, 8), "00000078");
    EXPECT_EQ(signature.find('\n'), 264U);
    EXPECT_THAT(signature.substr(265), ::testing::MatchesRegex("countersignature: rsa-pss-sha256 [0-9a-f]+ [^ ]+\n"));
    EXPECT_EQ(outputOf({"test", "--key", "public.pem", "report"}), "report: good\n");
    EXPECT_EQ(outputOf({"test", "--key", "private.pem", "report"}), "report: good\n");
    EXPECT_EQ(outputOf({"verify", "--key", "public.pem", "report"}), "report: good\n");
    EXPECT_EQ(_folder.names(), (std::vector<std::string>{"private.pem", "public.pem", "report", "report.sig"}));

    _folder.write("report", "Contents");
    const tsOutcome bad = run({"test", "--key", "public.pem", "report"});
    EXPECT_EQ(bad._exitStatus, 1);
    EXPECT_EQ(bad._output, "report: BAD\n");
    EXPECT_EQ(bad._errors, "");
}

TEST_F(Program, TestsManyAndTellsTheWorst)
{
    for (const char* pName : {"a", "b", "c"})
    {
        _folder.write(pName, pName);
    }
    EXPECT_EQ(outputOf({"sign", "-k", "private.pem", "a", "b", "c"}),
              "a: signed, a.sig\nb: signed, b.sig\nc: signed, c.sig\n");
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "a", "b", "c"}), "a: good\nb: good\nc: good\n");
    _folder.write("b", "changed");
    tsOutcome outcome = run({"test", "-k", "public.pem", "a", "b", "c"});
    EXPECT_EQ(outcome._exitStatus, 1);
    EXPECT_EQ(outcome._output, "a: good\nb: BAD\nc: good\n");
    ASSERT_EQ(unlink((_folder / "a.sig").c_str()), 0);
    outcome = run({"test", "-k", "public.pem", "a", "b", "c"});
    EXPECT_EQ(outcome._output, "a: not signed\nb: BAD\nc: good\n");
    expectFailure(outcome, {"a.sig: there is no such signature", "countersign sign makes one"});
}

TEST_F(Program, TakesEveryName)
{
    std::vector<std::string> sign = {"sign", "--key", "private.pem", "--"};
    std::vector<std::string> test = {"test", "--key", "public.pem", "--"};
    std::string digests;
    for (const std::string& name : names)
    {
        _folder.write(name, "contents of " + name);
        sign.push_back(name);
        test.push_back(name);
    }
    outputOf(sign);
    const std::string output = outputOf(test);
    EXPECT_EQ(static_cast<std::size_t>(std::count(output.begin(), output.end(), '\n')), names.size());
    EXPECT_THAT(output, HasSubstr("two\\nlines: good\n"));
    EXPECT_THAT(output, HasSubstr("\\xff\\xfe: good\n"));
    for (const std::string& name : names)
    {
        EXPECT_TRUE(_folder.has(name + ".sig")) << name;
    }
    _folder.write("two\nlines", "changed");
    EXPECT_EQ(run({"test", "-k", "public.pem", "two\nlines"})._output, "two\\nlines: BAD\n");
    expectFailure(run({"sign", "-k", "private.pem", "no\nsuch"}), {"no\\nsuch: there is no such file"});
    // Without the two dashes such a name is an option, and the message tells where to look.
    expectFailure(run({"sign", "-k", "private.pem", "-dash"}), {"--help"});
}

TEST_F(Program, KeepsSignaturesUnlessForced)
{
    _folder.write("report", "contents");
    _folder.write("report.sig", oldSignature);
    const tsOutcome refused = run({"sign", "-k", "private.pem", "report"});
    expectFailure(refused, {"report.sig: it exists already", "--force"});
    EXPECT_EQ(refused._output, "");
    EXPECT_EQ(_folder.read("report.sig"), oldSignature);
    outputOf({"sign", "-k", "private.pem", "--force", "report"});
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "report"}), "report: good\n");
    // What others have written is kept in any case.
    _folder.write("report.sig", "precious");
    for (const char* pOption : {"--force", "--digest-only"})
    {
        expectFailure(run({"sign", "-k", "private.pem", pOption, "report"}),
                      {"report.sig: it is not a signature of this program", "never overwritten"});
    }
    expectFailure(run({"sign", "-k", "private.pem", "-f", "-o", "public.pem", "report"}), {"never overwritten"});
    EXPECT_EQ(_folder.read("report.sig"), "precious");
}

TEST_F(Program, TellsWeakSignatures)
{
    _folder.write("report", "contents");
    outputOf({"sign", "-k", "private.pem", "--digest-only", "report"});
    EXPECT_EQ(_folder.read("report.sig").size(), 265U);
    const tsOutcome weak = run({"test", "-k", "public.pem", "report"});
    expectFailure(weak, {"report.sig: its exclusive-or digest holds", "--accept-weak"});
    EXPECT_EQ(weak._output, "report: weak\n");
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "--accept-weak", "report"}), "report: weak\n");
    _folder.write("report", "Contents");
    EXPECT_EQ(run({"test", "-k", "public.pem", "--accept-weak", "report"})._exitStatus, 1);
}

TEST_F(Program, CountersignsWithLargeKeysOnly)
{
    _folder.write("report", "contents");
    runOpenSSL(_folder, {"genrsa", "-out", "small.pem", "992"});
    expectFailure(run({"sign", "-k", "small.pem", "report"}), {"small.pem: the key is too small", "--digest-only"});
    EXPECT_FALSE(_folder.has("report.sig"));
    outputOf({"sign", "-k", "small.pem", "-d", "report"});
    EXPECT_EQ(outputOf({"test", "-w", "-k", "small.pem", "report"}), "report: weak\n");
}

TEST_F(Program, PutsSignaturesElsewhere)
{
    _folder.write("report", "contents");
    _folder.write("other", "contents");
    EXPECT_EQ(outputOf({"sign", "-k", "private.pem", "-o", "else where", "report"}), "report: signed, else where\n");
    EXPECT_FALSE(_folder.has("report.sig"));
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "else where", "report"}), "report: good\n");
    const std::string signature = _folder.read("else where");
    const std::string printed = outputOf({"sign", "-k", "private.pem", "-o", "-", "report"});
    EXPECT_EQ(printed.substr(0, 265), signature.substr(0, 265));
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "-", "other"}, printed), "other: good\n");
    EXPECT_EQ(outputOf({"sign", "-k", "private.pem", "-o", "-", "report", "other"}).size(), 2 * signature.size());
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "-", "report"}, signature), "report: good\n");
    EXPECT_FALSE(_folder.has("-"));
    expectFailure(run({"sign", "-k", "private.pem", "-o", "one", "report", "other"}), {"--output"});
    expectFailure(run({"test", "-k", "public.pem", "-s", "one", "report", "other"}), {"--signature"});
}

TEST_F(Program, TellsWhatIsNotASignature)
{
    _folder.write("report", "contents");
    for (const char* pSignature : {"", "\n", "x", "00000078", "ffffffff", "7735940000000000"})
    {
        _folder.write("report.sig", pSignature);
        const tsOutcome outcome = run({"test", "-k", "public.pem", "report"});
        expectFailure(outcome, {"report.sig: it"});
        EXPECT_EQ(outcome._output, "report: not a signature\n");
    }
    _folder.write("report.sig", std::string(2000000, '0'));
    expectFailure(run({"test", "-k", "public.pem", "report"}), {"too large"});
}

TEST_F(Program, TellsWhatIsNoFile)
{
    ASSERT_EQ(mkdir((_folder / "folder").c_str(), 0700), 0);
    ASSERT_EQ(mkfifo((_folder / "pipe").c_str(), 0600), 0);
    _folder.write("folder.sig", oldSignature);
    _folder.write("pipe.sig", oldSignature);
    for (const char* pCommand : {"sign", "test", "digest"})
    {
        expectFailure(run({pCommand, "-f", "-k", "private.pem", "missing"}), {});
        expectFailure(run({pCommand, "-k", "private.pem", "missing"}), {"missing: there is no such file"});
        expectFailure(run({pCommand, "-k", "private.pem", ""}), {"the name is empty"});
    }
    for (const char* pCommand : {"test", "digest"})
    {
        expectFailure(run({pCommand, "-k", "public.pem", "folder"}), {"folder: it is a folder"});
    }
    expectFailure(run({"sign", "-k", "private.pem", "pipe"}), {"pipe: it is a pipe", "--output"});
    expectFailure(run({"test", "-k", "public.pem", "pipe"}), {"pipe: it is a pipe", "--signature"});
    expectFailure(run({"sign", "-f", "-k", "private.pem", "folder"}), {"folder: it is a folder"});
    EXPECT_EQ(_folder.read("folder.sig"), oldSignature);
    // What is wrong with one file does not keep it from the others.
    _folder.write("good", "contents");
    const tsOutcome outcome = run({"sign", "-k", "private.pem", "missing", "good"});
    EXPECT_EQ(outcome._exitStatus, 2);
    EXPECT_EQ(outcome._output, "good: signed, good.sig\n");
    EXPECT_EQ(run({"test", "-k", "public.pem", "missing", "good"})._output, "missing: missing\ngood: good\n");
}

TEST_F(Program, TellsReadErrors)
{
    for (const char* pCommand : {"sign", "digest"})
    {
        const tsOutcome outcome = run({pCommand, "-k", "private.pem", "/proc/self/mem"});
        EXPECT_EQ(outcome._exitStatus, 2);
        EXPECT_EQ(outcome._output, "");
    }
    _folder.write("empty", "");
    outputOf({"sign", "-k", "private.pem", "-o", "a.sig", "empty"});
    expectFailure(run({"test", "-k", "public.pem", "-s", "a.sig", "/proc/self/mem"}),
                  {"/proc/self/mem: it cannot be read: Input/output error"});
    _folder.write("a", "x");
    expectFailure(run({"test", "-k", "public.pem", "-s", "/proc/self/mem", "a"}),
                  {"/proc/self/mem: the signature cannot be read: Input/output error"});
    tsCommand fromFolder = command({"encrypt", "-k", "public.pem"});
    fromFolder._inputPath = _folder.path();
    expectFailure(tsRun(fromFolder), {"standard input", "Is a directory"});
}

TEST_F(Program, TellsWhatIsNoKey)
{
    _folder.write("report", "contents");
    _folder.write("no.pem", "nothing");
    ASSERT_EQ(mkdir((_folder / "folder").c_str(), 0700), 0);
    runOpenSSL(_folder, {"ecparam", "-name", "prime256v1", "-genkey", "-noout", "-out", "ec.pem"});
    runOpenSSL(_folder, {"genrsa", "-out", "odd.pem", "1000"});
    const std::pair<std::string, std::string> cases[] = {
        {"missing.pem", "No such file"}, {"folder", "is a folder"}, {"no.pem", "no key in it"},
        {"ec.pem", "not an RSA key"},    {"odd.pem", "1000 bits"},  {"two\nlines", "two\\nlines"}};
    for (const auto& [name, words] : cases)
    {
        for (const char* pCommand : {"sign", "test", "digest", "encrypt", "decrypt"})
        {
            const tsOutcome outcome = run({pCommand, "-k", name, "report"});
            expectFailure(outcome, {words});
            EXPECT_EQ(outcome._output, "");
        }
        expectFailure(run({"key", "-k", name}), {words});
    }
    expectFailure(run({"sign", "-k", "public.pem", "report"}), {"public.pem: the key is a public one", "private"});
    expectFailure(run({"key", "-p", "-k", "public.pem"}), {"public.pem: is a public key"});
    EXPECT_FALSE(_folder.has("report.sig"));
}

TEST_F(Program, TellsOtherKeys)
{
    _folder.write("report", "contents");
    outputOf({"sign", "-k", "private.pem", "report"});
    runOpenSSL(_folder, {"genrsa", "-out", "other.pem", "1024"});
    runOpenSSL(_folder, {"genrsa", "-out", "large.pem", "2048"});
    for (const char* pKey : {"other.pem", "large.pem"})
    {
        const tsOutcome outcome = run({"test", "-k", pKey, "report"});
        expectFailure(outcome, {"report.sig: the signature was made with the key "});
        EXPECT_EQ(outcome._output, "report: another key\n");
    }
}

TEST_F(Program, WarnsOfKeysThatOthersMayRead)
{
    _folder.write("report", "contents");
    ASSERT_EQ(chmod((_folder / "private.pem").c_str(), 0644), 0);
    const tsOutcome outcome = run({"sign", "-k", "private.pem", "report"});
    EXPECT_EQ(outcome._exitStatus, 0);
    EXPECT_THAT(outcome._errors, HasSubstr("warning: private.pem: others"));
    EXPECT_THAT(outcome._errors, HasSubstr("chmod 600"));
    ASSERT_EQ(chmod((_folder / "public.pem").c_str(), 0644), 0);
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "report"}), "report: good\n");
}

TEST_F(Program, WarnsOfKeysThatOthersMayReplace)
{
    _folder.write("report", "contents");
    ASSERT_EQ(chmod(_folder.path().c_str(), 0777), 0);
    const tsOutcome outcome = run({"sign", "-k", "private.pem", "report"});
    EXPECT_EQ(outcome._exitStatus, 0);
    EXPECT_THAT(outcome._errors, HasSubstr("warning: private.pem: others may replace"));
    ASSERT_EQ(chmod(_folder.path().c_str(), 0755), 0);
    EXPECT_EQ(run({"sign", "-f", "-k", "private.pem", "report"})._errors, "");
}

TEST_F(Program, WarnsOfKeysThatLibcryptoDoesNotOverwrite)
{
    _folder.write("report", "contents");
    tsCommand sign = command({"sign", "-k", "private.pem", "report"});
    sign._prepare = []
    {
        // The name alone, as blanks part the names in this variable.
        const std::string library = COUNTERSIGN_EARLY_USER;
        const std::size_t slash = library.rfind('/');
        setenv("LD_PRELOAD", library.c_str() + slash + 1, 1);
        setenv("LD_LIBRARY_PATH", library.substr(0, slash).c_str(), 1);
        // The address sanitizer wants to be loaded first, and what is taken this early is not given back.
        setenv("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0", 1);
    };
    const tsOutcome outcome = tsRun(sign);
    EXPECT_EQ(outcome._exitStatus, 0);
    EXPECT_EQ(
        outcome._errors,
        "countersign: warning: private.pem: traces of this private key stay in memory, because another library used "
        "libcrypto before this program did; start it without LD_PRELOAD\n");
    tsCommand test = command({"test", "-k", "public.pem", "report"});
    test._prepare = sign._prepare;
    EXPECT_EQ(tsRun(test)._errors, "");
}

TEST_F(Program, EncryptsAndDecrypts)
{
    const std::string cipher = outputOf({"encrypt", "-k", "public.pem", "at noon"});
    EXPECT_EQ(cipher.size(), 265U);
    EXPECT_EQ(cipher.substr(0, 8), "00000007");
    EXPECT_EQ(outputOf({"decrypt", "-k", "private.pem"}, cipher), "at noon");
    EXPECT_EQ(outputOf({"decrypt", "-k", "private.pem", cipher}), "at noon");
    EXPECT_EQ(outputOf({"encrypt", "-k", "public.pem"}, "at noon"), cipher);
    EXPECT_NE(outputOf({"encrypt", "-k", "public.pem"}, "at noon\n"), cipher);
    // A file with both halves gives its public one.
    EXPECT_EQ(outputOf({"encrypt", "-k", "private.pem", "at noon"}), cipher);
    // The other way round.
    const tsOutcome signedText = run({"encrypt", "--private", "-k", "private.pem", "x"});
    expectFailure(signedText, {"warning: private.pem: everybody with the public key can read"}, 0);
    EXPECT_EQ(outputOf({"decrypt", "-k", "public.pem", signedText._output}), "x");
    expectFailure(run({"encrypt", "--private", "-k", "public.pem", "x"}), {"public.pem: is a public key"});
    for (const std::string& text : {std::string(), std::string("\n"), std::string(" a\nb\t"), std::string("\xff\xfe"),
                                    std::string(127, 'x'), std::string("-dash"), std::string("[a]")})
    {
        const std::string textsCipher = outputOf({"encrypt", "-k", "public.pem", "--", text});
        EXPECT_EQ(outputOf({"encrypt", "-k", "public.pem"}, text), textsCipher);
        EXPECT_EQ(outputOf({"decrypt", "-k", "private.pem"}, textsCipher), text);
    }
}

TEST_F(Program, RefusesTextsThatWouldNotComeBack)
{
    const tsOutcome outcome = run({"encrypt", "-k", "public.pem", std::string(128, 'x')});
    expectFailure(outcome, {"128 bytes", "1024 bits", "127 at most"});
    EXPECT_EQ(outcome._output, "");
    expectFailure(run({"encrypt", "-k", "public.pem"}, std::string(2000000, 'x')), {"or more", "127 at most"});
    expectFailure(run({"encrypt", "-k", "public.pem"}, std::string("a\0b", 3)), {"NUL"});
    expectFailure(run({"encrypt", "-k", "public.pem", std::string(126, 'x') + "\xff"}), {"one byte shorter"});
}

TEST_F(Program, TellsWhatIsNoCipherText)
{
    const std::string cipher = outputOf({"encrypt", "-k", "public.pem", "at noon"});
    expectFailure(run({"decrypt", "-k", "private.pem", "hello"}), {"not a cipher text"});
    expectFailure(run({"decrypt", "-k", "private.pem"}), {"not a cipher text"});
    expectFailure(run({"decrypt", "-k", "private.pem", cipher.substr(0, 100)}),
                  {"100 characters", "264", "127 bytes at most"});
    const std::string twoBlocks = "00000080" + cipher.substr(8, 256) + cipher.substr(8, 256);
    expectFailure(run({"decrypt", "-k", "private.pem", twoBlocks}), {"520 characters", "127 bytes at most"});
    runOpenSSL(_folder, {"genrsa", "-out", "other.pem", "1024"});
    const tsOutcome outcome = run({"decrypt", "-k", "other.pem", cipher});
    expectFailure(outcome, {"other.pem: this text is another key's"}, 1);
    EXPECT_EQ(outcome._output, "");
}

TEST_F(Program, PrintsKeys)
{
    const auto numbersOf = [this](const std::vector<std::string>& arguments)
    {
        const std::string output = outputOf(arguments);
        return output.substr(std::min(output.size(), output.find("modulus ")));
    };
    const std::string publicKey = numbersOf({"key", "--numbers", "-k", "public.pem"});
    EXPECT_THAT(publicKey, StartsWith("modulus "));
    EXPECT_THAT(publicKey, EndsWith("\nexponent 00010001\n"));
    EXPECT_EQ(publicKey.size(), 8U + 256 + 1 + 9 + 8 + 1);
    EXPECT_EQ(numbersOf({"key", "-n", "-k", "private.pem"}), publicKey);
    EXPECT_EQ(numbersOf({"key", "-k", "private.pem"}), "");
    const std::string privateKey = numbersOf({"key", "-k", "private.pem", "--private"});
    EXPECT_EQ(privateKey.substr(0, 265), publicKey.substr(0, 265));
    EXPECT_GT(privateKey.size(), 400U);
    // What openssl prints, in its own form.
    tsCommand openssl;
    openssl._arguments = {"openssl", "rsa", "-in", "private.pem", "-noout", "-modulus"};
    openssl._folder = _folder.path();
    std::string modulus = "modulus " + tsRun(openssl)._output.substr(8);
    for (char& character : modulus)
    {
        character = static_cast<char>(tolower(character));
    }
    EXPECT_THAT(publicKey, HasSubstr(modulus));
}

TEST_F(Program, PrintsDigests)
{
    _folder.write("empty", "");
    _folder.write("abcd", "abcd");
    EXPECT_EQ(outputOf({"digest", "-k", "public.pem", "empty"}), std::string(120, '0') + "\n");
    EXPECT_EQ(outputOf({"digest", "-k", "public.pem", "abcd"}), "64636261" + std::string(112, '0') + "\n");
    EXPECT_EQ(outputOf({"digest", "-k", "private.pem", "empty", "abcd"}),
              std::string(120, '0') + "  empty\n64636261" + std::string(112, '0') + "  abcd\n");
}

TEST_F(Program, AsksForPassphrasesOnTheTerminal)
{
    _folder.write("report", "contents");
    runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes256", "-passout", "pass:open sesame", "-out", "locked.pem"});
    for (const auto& [typed, status] :
         {std::pair<std::string, int>{"open sesame\n", 0}, {"open barley\n", 2}, {"\n", 2}, {"\x04", 2}})
    {
        tsCommand sign = command({"sign", "-f", "-k", "locked.pem", "report"});
        sign._hasTerminal = true;
        bool isTyped = false;
        sign._type = [&, text = typed](const std::string& printed, pid_t)
        {
            if (isTyped || printed.find("Passphrase for locked.pem: ") == std::string::npos)
            {
                return std::string();
            }
            isTyped = true;
            return text;
        };
        const tsOutcome outcome = tsRun(sign);
        EXPECT_EQ(outcome._exitStatus, status) << typed << outcome._printed;
        EXPECT_TRUE(isTyped);
        EXPECT_THAT(outcome._printed, ::testing::Not(HasSubstr("sesame"))) << "it must not be shown";
        EXPECT_THAT(outcome._printed, HasSubstr("locked.pem: \r\n"));
        EXPECT_THAT(outcome._printed, ::testing::Not(HasSubstr("\r\n\r\n")));
        EXPECT_EQ(outcome._output, status == 0 ? "report: signed, report.sig\n" : "");
    }
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "report"}), "report: good\n");

    tsCommand withoutTerminal = command({"sign", "-f", "-k", "locked.pem", "report"});
    withoutTerminal._prepare = [] { setsid(); };
    withoutTerminal._input = "open sesame\n";
    expectFailure(tsRun(withoutTerminal), {"locked.pem: it is encrypted", "no terminal"});
}

TEST_F(Program, WritesNoCoreFile)
{
    runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes256", "-passout", "pass:x", "-out", "locked.pem"});
    tsCommand key = command({"key", "-k", "locked.pem"});
    key._hasTerminal = true;
    std::string limits;
    key._prepare = []
    {
        struct rlimit all = {};
        getrlimit(RLIMIT_CORE, &all);
        all.rlim_cur = all.rlim_max;
        setrlimit(RLIMIT_CORE, &all);
    };
    key._type = [&](const std::string& printed, pid_t process)
    {
        if (!limits.empty() || printed.find("Passphrase for locked.pem: ") == std::string::npos)
        {
            return std::string();
        }
        limits = readFile("/proc/" + std::to_string(process) + "/limits");
        return std::string("x\n");
    };
    EXPECT_EQ(tsRun(key)._exitStatus, 0);
    // Too little for a file, and the one limit that holds where the system hands core files to a program.
    EXPECT_THAT(limits, ::testing::ContainsRegex("Max core file size +1 "));
}

// Typed when the program waits for the answer: an interrupt that comes just before shows with the next key only.
TEST_F(Program, EndsCleanlyAtThePassphraseQuestion)
{
    runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes256", "-passout", "pass:x", "-out", "locked.pem"});
    tsCommand sign = command({"key", "-k", "locked.pem"});
    sign._hasTerminal = true;
    bool isTyped = false;
    sign._type = [&isTyped](const std::string& printed, pid_t process)
    {
        if (isTyped || printed.find("Passphrase for locked.pem: ") == std::string::npos)
        {
            return std::string();
        }
        isTyped = true;
        while (readFile("/proc/" + std::to_string(process) + "/stat").find(") S ") == std::string::npos)
        {
        }
        return std::string("\x03");
    };
    const tsOutcome outcome = tsRun(sign);
    EXPECT_EQ(outcome._signal, SIGINT);
    EXPECT_EQ(outcome._output, "");
    EXPECT_THAT(outcome._printed, ::testing::Not(HasSubstr("wrong passphrase"))) << "none was given";
}

// A file of 64 GiB without contents: it takes long enough to see the progress on every machine, and is interrupted
// then.
TEST_F(Program, ShowsItsProgressOnATerminalAndCanBeInterrupted)
{
    _folder.write("huge", "");
    ASSERT_EQ(truncate((_folder / "huge").c_str(), 64LL * 1024 * 1024 * 1024), 0);
    _folder.write("next", "");
    tsCommand sign = command({"sign", "-k", "private.pem", "huge", "next"});
    sign._hasTerminal = true;
    bool isSent = false;
    sign._type = [&](const std::string& printed, pid_t process)
    {
        if (!isSent && printed.find(" % of 68.7 GB  huge") != std::string::npos)
        {
            isSent = true;
            kill(process, SIGTERM);
        }
        return std::string();
    };
    const tsOutcome outcome = tsRun(sign);
    EXPECT_TRUE(isSent) << outcome._printed;
    EXPECT_EQ(outcome._signal, SIGTERM);
    EXPECT_THAT(outcome._printed, HasSubstr("huge: interrupted"));
    EXPECT_THAT(outcome._printed, ::testing::Not(HasSubstr("next"))) << "nothing more was to be begun";
    EXPECT_EQ(outcome._output, "");
    EXPECT_EQ(_folder.names(), (std::vector<std::string>{"huge", "next", "private.pem", "public.pem"}));
}

// Those that show nothing begin first, and are at work for as long as the other one.
TEST_F(Program, ShowsItsProgressWhereItIsWanted)
{
    for (const char* pName : {"quiet", "silent", "shown"})
    {
        _folder.write(pName, "");
        ASSERT_EQ(truncate((_folder / pName).c_str(), 64LL * 1024 * 1024 * 1024), 0);
    }
    tsCommand three;
    three._arguments = {"sh", "-c",
                        "\"$0\" sign --quiet -k private.pem quiet & \"$0\" sign --status -k private.pem silent & "
                        "exec \"$0\" sign --json -k private.pem shown",
                        COUNTERSIGN_PROGRAM};
    three._folder = _folder.path();
    three._hasTerminal = true;
    std::size_t shown = 0;
    int amountShown = 0;
    three._type = [&](const std::string& printed, pid_t process)
    {
        const std::size_t last = printed.rfind(" % of 68.7 GB  shown");
        amountShown += last != std::string::npos && last != shown ? 1 : 0;
        shown = last;
        if (amountShown == 3)
        {
            kill(-process, SIGTERM);
        }
        return std::string();
    };
    const tsOutcome outcome = tsRun(three);
    EXPECT_GE(amountShown, 3) << outcome._printed;
    EXPECT_THAT(outcome._printed, ::testing::Not(HasSubstr("GB  quiet")));
    EXPECT_THAT(outcome._printed, ::testing::Not(HasSubstr("silent")));
}

// As nohup does.
TEST_F(Program, GoesOnAfterSignalsThatItWasToldToIgnore)
{
    _folder.write("huge", "");
    ASSERT_EQ(truncate((_folder / "huge").c_str(), 64LL * 1024 * 1024 * 1024), 0);
    tsCommand sign = command({"sign", "-k", "private.pem", "huge"});
    sign._hasTerminal = true;
    sign._prepare = [] { static_cast<void>(signal(SIGHUP, SIG_IGN)); };
    std::size_t ignoredAt = 0;
    sign._type = [&](const std::string& printed, pid_t process)
    {
        const std::size_t progress = printed.rfind(" % of ");
        if (progress == std::string::npos || progress == ignoredAt)
        {
            return std::string();
        }
        kill(process, ignoredAt == 0 ? SIGHUP : SIGTERM);
        ignoredAt = progress;
        return std::string();
    };
    const tsOutcome outcome = tsRun(sign);
    EXPECT_GT(ignoredAt, 0U) << outcome._printed;
    EXPECT_EQ(outcome._signal, SIGTERM);
}

TEST_F(Program, TellsThatTheDiskIsFull)
{
    _folder.write("report", "contents");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"sign", "-o", "-", "-k", "private.pem", "report"},
          {"digest", "-k", "private.pem", "report"},
          {"key", "-k", "private.pem"},
          {"encrypt", "-k", "public.pem", "x"},
          {"--help"},
          {"sign", "--help"},
          {"--version"}})
    {
        tsCommand toFull = command(arguments);
        toFull._outputPath = "/dev/full";
        expectFailure(tsRun(toFull), {"standard output", "No space left on device"});
    }
    // Nothing of a file can be written, whatever the disk has.
    tsCommand limited = command({"sign", "-k", "private.pem", "report"});
    limited._prepare = []
    {
        const struct rlimit none = {0, 0};
        static_cast<void>(signal(SIGXFSZ, SIG_IGN));
        setrlimit(RLIMIT_FSIZE, &none);
    };
    const tsOutcome outcome = tsRun(limited);
    expectFailure(outcome, {"report.sig: the signature cannot be written", "--output"});
    EXPECT_EQ(outcome._output, "");
    EXPECT_EQ(_folder.names(), (std::vector<std::string>{"private.pem", "public.pem", "report"}));
}

TEST_F(Program, TellsWhatOfItsStandardStreamsIsClosed)
{
    _folder.write("report", "contents");
    const std::string cipher = outputOf({"encrypt", "-k", "public.pem", "x"});
    outputOf({"sign", "-k", "private.pem", "report"});
    const auto runWithout = [this](const std::vector<int>& closed, const std::vector<std::string>& arguments)
    {
        tsCommand toRun = command(arguments);
        toRun._prepare = [closed]
        {
            for (const int descriptor : closed)
            {
                close(descriptor);
            }
        };
        return tsRun(toRun);
    };
    // Two free numbers are what a pipe takes.
    for (const std::vector<int>& closed : {std::vector<int>{0}, {0, 1}})
    {
        for (const std::vector<std::string>& arguments : {std::vector<std::string>{"encrypt", "-k", "public.pem"},
                                                          {"decrypt", "-k", "private.pem"},
                                                          {"test", "-k", "public.pem", "-s", "-", "report"}})
        {
            expectFailure(runWithout(closed, arguments), {"standard input", "cannot be read"});
        }
    }
    for (const std::vector<int>& closed : {std::vector<int>{1}, {0, 1}})
    {
        for (const std::vector<std::string>& arguments : {std::vector<std::string>{"encrypt", "-k", "public.pem", "x"},
                                                          {"decrypt", "-k", "private.pem", cipher},
                                                          {"test", "-k", "public.pem", "report"},
                                                          {"digest", "-k", "public.pem", "report"},
                                                          {"key", "-k", "public.pem"},
                                                          {"--help"}})
        {
            expectFailure(runWithout(closed, arguments), {"standard output: cannot be written"});
        }
    }
    // Nothing that is opened takes the place of standard error, and gets what is written there.
    for (const std::vector<int>& closed : {std::vector<int>{2}, {0, 2}, {1, 2}, {0, 1, 2}})
    {
        const std::string signature = _folder.read("report.sig");
        const tsOutcome outcome = runWithout(closed, {"sign", "-k", "private.pem", "report"});
        EXPECT_EQ(outcome._exitStatus, 2);
        EXPECT_EQ(outcome._output + outcome._errors, "");
        EXPECT_EQ(_folder.read("report.sig"), signature);
    }
    EXPECT_EQ(runWithout({2}, {"test", "-k", "public.pem", "report"})._output, "report: good\n");
    EXPECT_EQ(runWithout({0, 2}, {"test", "-k", "public.pem", "report"})._exitStatus, 0);
}

// The second document is so large that the program is still at it when the first one's line is read.
TEST_F(Program, EndsAtOnceByASecondInterrupt)
{
    // libcrypto does not let anybody end the derivation of its key, which the first interrupt waits for.
    const std::string key = slowKey();
    ASSERT_NE(key, "");
    _folder.write("slow.pem", key);
    _folder.write("passphrase", "sesame\n");
    const pid_t program = fork();
    if (program == 0)
    {
        const char* const arguments[] = {COUNTERSIGN_PROGRAM, "key",        "-k",   "slow.pem",
                                         "--passphrase-file", "passphrase", nullptr};
        // It would go on for hours without the test.
        if (chdir(_folder.path().c_str()) == 0 && prctl(PR_SET_PDEATHSIG, SIGKILL) == 0)
        {
            execv(COUNTERSIGN_PROGRAM, const_cast<char* const*>(arguments));
        }
        _exit(99);
    }
    ASSERT_GT(program, 0);
    const std::string folder = "/proc/" + std::to_string(program);
    const auto patience = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    int status = 0;
    bool hasEnded = false;
    for (bool isAtWork = false; !hasEnded && std::chrono::steady_clock::now() < patience;)
    {
        // It is at work on the key once it has taken so much time of the processor.
        isAtWork = isAtWork || ticksOfProcessor(readFile(folder + "/stat")) > 20;
        if (isAtWork)
        {
            kill(program, SIGINT);
        }
        usleep(10000);
        hasEnded = waitpid(program, &status, WNOHANG) == program;
    }
    if (!hasEnded)
    {
        kill(program, SIGKILL);
        waitpid(program, &status, 0);
    }
    EXPECT_TRUE(hasEnded);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
}

TEST_F(Program, SaysWhatIsWrongWithAFileInFrontOfItsLine)
{
    for (const char* pName : {"good", "unsigned", "also good"})
    {
        _folder.write(pName, "contents");
    }
    outputOf({"sign", "-k", "private.pem", "good", "also good"});
    tsCommand toOnePlace = command({"test", "-k", "public.pem", "good", "unsigned", "also good"});
    toOnePlace._arguments.insert(toOnePlace._arguments.begin(), {"/bin/sh", "-c", "exec \"$0\" \"$@\" 2>&1"});
    const tsOutcome outcome = tsRun(toOnePlace);
    EXPECT_EQ(outcome._exitStatus, 2);
    EXPECT_THAT(outcome._output, ::testing::MatchesRegex("good: good\ncountersign: unsigned.sig: [^\n]*\n"
                                                         "unsigned: not signed\nalso good: good\n"));
}

TEST_F(Program, PrintsEachLineWhenItIsDone)
{
    _folder.write("first", "contents");
    _folder.write("huge", "");
    ASSERT_EQ(truncate((_folder / "huge").c_str(), 64LL * 1024 * 1024 * 1024), 0);
    tsCommand sign = command({"sign", "-k", "private.pem", "first", "huge"});
    sign._hasTerminal = true;
    const std::string logPath = _folder / "log";
    sign._prepare = [&logPath]
    {
        // Standard output of before is kept open: its end is what tells that the program has ended.
        if (fcntl(STDOUT_FILENO, F_DUPFD, 3) < 0 ||
            dup2(open(logPath.c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO) < 0)
        {
            _exit(99);
        }
    };
    std::string log;
    bool isKilled = false;
    sign._type = [&](const std::string& printed, pid_t process)
    {
        if (!isKilled && printed.find(" % of 68.7 GB  huge") != std::string::npos)
        {
            isKilled = true;
            log = readFile(logPath);
            // There is no tidying up, and no last writing, after this one.
            kill(process, SIGKILL);
        }
        return std::string();
    };
    const tsOutcome outcome = tsRun(sign);
    EXPECT_EQ(outcome._signal, SIGKILL);
    EXPECT_EQ(log, "first: signed, first.sig\n");
    EXPECT_EQ(_folder.read("log"), log);
}

// What could not be told must not be done either.
TEST_F(Program, BeginsNothingMoreWhenItsLinesGetLost)
{
    _folder.write("a", "contents");
    _folder.write("b", "contents");
    tsCommand sign = command({"sign", "-k", "private.pem", "a", "b"});
    sign._outputPath = "/dev/full";
    expectFailure(tsRun(sign), {"standard output", "No space left on device"});
    EXPECT_TRUE(_folder.has("a.sig"));
    EXPECT_FALSE(_folder.has("b.sig"));
}

// A disk of its own, with no room for another byte; only root can make one, and not everywhere.
TEST_F(Program, LeavesNoHalfSignatureOnAFullDisk)
{
    ASSERT_EQ(mkdir((_folder / "disk").c_str(), 0700), 0);
    _folder.write("report", "contents");
    tsCommand onFullDisk;
    onFullDisk._folder = _folder.path();
    onFullDisk._prepare = []
    {
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("tmpfs", "disk", "tmpfs", 0, "size=8k") != 0)
        {
            _exit(99);
        }
    };
    onFullDisk._arguments = {
        "sh", "-c",
        "echo 00000078$(printf %0256d 0) > disk/report.sig; cat /dev/zero > disk/filler 2>/dev/null; "
        "\"$0\" sign -f -k private.pem -o disk/report.sig report; echo $?; "
        "\"$0\" sign -k private.pem -o disk/new.sig report; echo $?; "
        "cut -c1-10 disk/report.sig; ls -A disk",
        COUNTERSIGN_PROGRAM};
    const tsOutcome outcome = tsRun(onFullDisk);
    if (outcome._exitStatus == 99)
    {
        GTEST_SKIP() << "no disk can be made here";
    }
    EXPECT_EQ(outcome._output, "2\n2\n0000007800\nfiller\nreport.sig\n");
    EXPECT_THAT(outcome._errors, HasSubstr("No space left on device"));
}

TEST_F(Program, TellsThatItMayNot)
{
    ASSERT_EQ(mkdir((_folder / "folder").c_str(), 0700), 0);
    _folder.write("folder/report", "contents");
    _folder.write("secret", "contents");
    ASSERT_EQ(chmod((_folder / "folder").c_str(), 0500), 0);
    ASSERT_EQ(chmod((_folder / "secret").c_str(), 0), 0);
    const auto runWithoutRights = [this](const std::vector<std::string>& arguments)
    {
        tsCommand toRun = command(arguments);
        toRun._prepare = loseRootsRights;
        return tsRun(toRun);
    };
    expectFailure(runWithoutRights({"sign", "-k", "private.pem", "folder/report"}),
                  {"folder/report.sig: the signature cannot be written: Permission denied", "--output"});
    EXPECT_FALSE(_folder.has("folder/report.sig"));
    EXPECT_EQ(runWithoutRights({"sign", "-k", "private.pem", "-o", "-", "folder/report"})._exitStatus, 0);
    for (const char* pCommand : {"sign", "test", "digest"})
    {
        expectFailure(runWithoutRights({pCommand, "-k", "private.pem", "secret"}), {"secret: you may not read it"});
    }
    ASSERT_EQ(chmod((_folder / "public.pem").c_str(), 0), 0);
    expectFailure(runWithoutRights({"key", "-k", "public.pem"}), {"public.pem: the key cannot be read: Permission"});
    _folder.write("a", "contents");
    _folder.write("a.sig", "x");
    ASSERT_EQ(chmod((_folder / "a.sig").c_str(), 0), 0);
    expectFailure(runWithoutRights({"test", "-k", "private.pem", "a"}),
                  {"a.sig: the signature cannot be read: Permission"});
}

TEST_F(Program, TellsWrongUse)
{
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"bogus"},
                                                      {"sign"},
                                                      {"sign", "report"},
                                                      {"sign", "-k", "private.pem"},
                                                      {"test", "--bogus"},
                                                      {"key"},
                                                      {"--bogus"}})
    {
        const tsOutcome outcome = run(arguments);
        expectFailure(outcome, {"--help"});
        EXPECT_EQ(outcome._output, "");
    }
}

TEST_F(Program, TellsItsVersionAndHelp)
{
    const std::string help = outputOf({"help"});
    EXPECT_EQ(outputOf({"--help"}), help);
    EXPECT_EQ(outputOf({"help", "sign"}), outputOf({"sign", "--help"}));
    const tsOutcome outcome = run({});
    EXPECT_EQ(outcome._exitStatus, 2);
    EXPECT_EQ(outcome._errors, help);
    EXPECT_EQ(outcome._output, "");
    EXPECT_THAT(outputOf({"--version"}), ::testing::MatchesRegex("countersign [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_THAT(outputOf({"--help"}), HasSubstr("Examples:"));
    EXPECT_THAT(outputOf({"--help"}), HasSubstr("RSASSA-PSS with SHA-256"));
}

TEST_F(Program, SaysNothingOfItsProgressElsewhere)
{
    _folder.write("large", "");
    ASSERT_EQ(truncate((_folder / "large").c_str(), 256 * 1024 * 1024), 0);
    EXPECT_EQ(outputOf({"sign", "-k", "private.pem", "large"}), "large: signed, large.sig\n");
}

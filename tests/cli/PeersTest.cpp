// SPDX-License-Identifier: Apache-2.0
// The manual's table of other programs: each cell is what the program is seen to do. A program that is not installed is
// left out.
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "tests/support/tsProcess.h"

namespace
{

// What the shell runs in a folder with the files a and b, the folder d with a file x, and k.pem, a key by openssl. "$@"
// are files. Empty: there is no such thing.
struct Peer
{
    std::string _name;     // the column's
    std::string _program;  // that must be there
    std::string _makeKeys;
    std::string _sign;
    std::string _signBelow;
    std::string _test;
    std::string _testByOther;
    std::string _testByBoth;
    std::string _takeKeyOfOpenSSL;
    std::string _whichKey;  // by which it says which key it is
};

const std::vector<Peer> peers = {
    {"countersign", COUNTERSIGN_PROGRAM, "openssl rsa -in k.pem -pubout -out p.pem && openssl genrsa -out o.pem 1024",
     "countersign sign -k k.pem \"$@\"", "countersign sign -k k.pem -r \"$@\"", "countersign test -k p.pem \"$@\"",
     "countersign test -k o.pem \"$@\"", "countersign test -k p.pem -k o.pem \"$@\"",
     "countersign sign -k k.pem \"$@\"", "p.pem"},
    {"minisign", "minisign", "minisign -G -W -p p -s k && minisign -G -W -p o -s ok", "minisign -S -s k -m \"$@\"",
     "minisign -S -s k -m \"$@\"", "minisign -V -p p -m \"$@\"", "minisign -V -p o -m \"$@\"",
     "minisign -V -p p -p o -m \"$@\"", "minisign -S -s k.pem -m \"$@\"", "p"},
    {"signify", "signify-openbsd", "signify-openbsd -G -n -p p.pub -s p.sec && signify-openbsd -G -n -p o.pub -s o.sec",
     "signify-openbsd -S -s p.sec -m \"$@\"", "signify-openbsd -S -s p.sec -m \"$@\"",
     "signify-openbsd -V -p p.pub -m \"$@\"", "signify-openbsd -V -p o.pub -m \"$@\"",
     "signify-openbsd -V -p p.pub -p o.pub -m \"$@\"", "signify-openbsd -S -s k.pem -m \"$@\"", "p.pub"},
    {"gpg", "gpg",
     "mkdir -m 700 g none && gpg --batch -q --passphrase '' --quick-gen-key 'Alice <a@example.org>' ed25519 sign never "
     "&& gpg --batch -q --passphrase '' --quick-gen-key 'Bob <b@example.org>' ed25519 sign never",
     "gpg --batch -u a@example.org -b \"$@\"", "gpg --batch -u a@example.org -b \"$@\"",
     "gpg --batch --verify \"$1.sig\" \"$1\"", "gpg --batch --homedir none --verify \"$1.sig\" \"$1\"",
     "gpg --batch --verify \"$1.sig\" \"$1\"", "gpg --batch --import k.pem", "Alice"},
    {"sha256sum", "sha256sum", "", "sha256sum \"$@\" >SUMS", "sha256sum \"$@\" >SUMS", "sha256sum -c SUMS", "", "", "",
     ""}};

// Of the manual's table, with the row's first cell.
std::string cellOf(const std::string& row, const std::string& column)
{
    const std::string manual = readFile(std::string(COUNTERSIGN_SOURCE) + "/docs/manual.html");
    const std::size_t begin = manual.find("<table id=\"peers\">");
    const std::string table = manual.substr(begin, manual.find("</table>", begin) - begin);
    const auto cells = [&table](const std::string& first, const std::string& tag)
    {
        std::vector<std::string> result;
        const std::size_t start = table.find("<" + tag + ">" + first + "</" + tag + ">");
        const std::size_t end = table.find("</tr>", start);
        for (std::size_t at = start; at < end;)
        {
            const std::size_t text = at + tag.size() + 2;
            result.push_back(table.substr(text, table.find("</" + tag + ">", text) - text));
            at = table.find("<" + tag + ">", text);
        }
        return result;
    };
    const std::vector<std::string> names = cells("", "th");
    const std::vector<std::string> texts = cells(row, "td");
    for (std::size_t i = 0; i < names.size() && i < texts.size(); ++i)
    {
        if (names[i] == column)
        {
            return texts[i];
        }
    }
    return "no such cell";
}

class Peers : public ::testing::TestWithParam<Peer>
{
protected:
    void SetUp() override
    {
        if (tsRun({GetParam()._program, "--version"})._exitStatus == 127)
        {
            GTEST_SKIP() << "there is no " << GetParam()._program << " here";
        }
        if (GetParam()._program == "gpg" && tsRun({"gpg-agent", "--version"})._exitStatus == 127)
        {
            GTEST_SKIP() << "gpg has no agent here, which makes its keys";
        }
        ASSERT_EQ(run("openssl genrsa -out k.pem 1024 && mkdir d && echo x >d/x", {})._exitStatus, 0);
        for (const char* pName : {"a", "b"})
        {
            _folder.write(pName, "contents");
        }
        if (!GetParam()._makeKeys.empty())
        {
            const tsOutcome made = run(GetParam()._makeKeys, {});
            ASSERT_EQ(made._exitStatus, 0) << made._errors;
        }
    }
    // gpg leaves a process behind.
    void TearDown() override { static_cast<void>(run("[ ! -d g ] || gpgconf --kill all", {})); }

    tsOutcome run(const std::string& script, const std::vector<std::string>& files) const
    {
        tsCommand command;
        command._arguments = {"sh", "-c", script, "sh"};
        command._arguments.insert(command._arguments.end(), files.begin(), files.end());
        command._folder = _folder.path();
        command._prepare = [this]
        {
            const std::string program = COUNTERSIGN_PROGRAM;
            setenv("PATH", (program.substr(0, program.rfind('/')) + ":" + getenv("PATH")).c_str(), 1);
            setenv("GNUPGHOME", (_folder / "g").c_str(), 1);
            setenv("LC_ALL", "C", 1);
        };
        return tsRun(command);
    }

    void sign(const std::vector<std::string>& files) const
    {
        const tsOutcome outcome = run(GetParam()._sign, files);
        ASSERT_EQ(outcome._exitStatus, 0) << outcome._errors;
    }

    std::set<std::string> names() const
    {
        const std::vector<std::string> all = _folder.names();
        return std::set<std::string>(all.begin(), all.end());
    }

    // The status of a script as the table has it.
    std::string status(const std::string& script) const
    {
        return script.empty() ? "no keys" : "status " + std::to_string(run(script, {"a"})._exitStatus);
    }

    static void expectCell(const std::string& row, const std::string& seen)
    {
        EXPECT_EQ(cellOf(row, GetParam()._name), seen) << row;
    }

    TemporaryFolder _folder;
};

}  // namespace

TEST_P(Peers, TakeKeysOfOpenSSL)
{
    const std::string script = GetParam()._takeKeyOfOpenSSL;
    expectCell("a key that openssl made", script.empty()                        ? "no keys"
                                          : run(script, {"a"})._exitStatus == 0 ? "taken"
                                                                                : "refused");
}

TEST_P(Peers, TakeTwoFilesInOneCall)
{
    const std::set<std::string> before = names();
    const bool isTaken = run(GetParam()._sign, {"a", "b"})._exitStatus == 0;
    const std::size_t amount = names().size() - before.size();
    expectCell("two files in one call", !isTaken ? "refused" : amount == 2 ? "a signature each" : "one for both");
}

TEST_P(Peers, MeetASignatureThatIsThere)
{
    const std::set<std::string> before = names();
    sign({"a"});
    std::string signatureName;
    for (const std::string& name : names())
    {
        signatureName = before.count(name) == 0 ? name : signatureName;
    }
    const std::string signature = _folder.read(signatureName);
    _folder.write("a", "other contents");
    const int again = run(GetParam()._sign, {"a"})._exitStatus;
    const bool isKept = _folder.read(signatureName) == signature;
    expectCell("a signature that is there", isKept ? "kept, status " + std::to_string(again) : "replaced");
}

TEST_P(Peers, FindAChangedFile)
{
    sign({"a"});
    EXPECT_EQ(run(GetParam()._test, {"a"})._exitStatus, 0);
    _folder.write("a", "contentS");
    expectCell("a file that has changed", status(GetParam()._test));
}

TEST_P(Peers, MissASignature)
{
    expectCell("no signature", status(GetParam()._test));
}

TEST_P(Peers, TellAnotherKeysSignature)
{
    sign({"a"});
    expectCell("a signature of another key", status(GetParam()._testByOther));
}

TEST_P(Peers, TakeAFolder)
{
    const bool isTaken =
        run(GetParam()._signBelow, {"d"})._exitStatus == 0 && run("[ \"$(ls d | wc -l)\" = 2 ]", {})._exitStatus == 0;
    expectCell("a folder", isTaken ? "the files in it" : "refused");
}

TEST_P(Peers, PrintJson)
{
    const tsOutcome outcome = run(GetParam()._sign + " --json", {"a"});
    const bool isJson = outcome._exitStatus == 0 && outcome._output.substr(0, 1) == "{";
    expectCell("results as JSON", isJson ? "an object a line" : "no");
}

// The most threads that it has at a time.
TEST_P(Peers, UseProcessors)
{
    for (const char* pName : {"a", "b"})
    {
        _folder.write(pName, "");
        std::filesystem::resize_file(_folder / pName, 32 * 1024 * 1024);
    }
    const bool isOurs = GetParam()._name == "countersign";
    const bool isTakingTwo = run(GetParam()._sign, {"a", "b"})._exitStatus == 0;
    ASSERT_EQ(run("rm -f *.sig *.minisig SUMS", {})._exitStatus, 0);
    // Once it has ended, it is a zombie with one thread, or gone.
    const std::string watched =
        "(exec " + GetParam()._sign + (isOurs ? " --jobs 2" : "") +
        ") >/dev/null 2>&1 & while state=$(cut -d' ' -f3 /proc/$!/stat 2>/dev/null) && "
        "[ \"$state\" != Z ]; do ls /proc/$!/task 2>/dev/null | wc -l; done | sort -n | tail -n 1";
    const std::string most =
        run(watched, isTakingTwo ? std::vector<std::string>{"a", "b"} : std::vector<std::string>{"a"})._output;
    expectCell("processors for many files", most == "1\n" ? "one" : isOurs && most == "3\n" ? "all" : most);
}

TEST_P(Peers, KnowSeveralKeys)
{
    sign({"a"});
    const std::string script = GetParam()._testByBoth;
    const tsOutcome outcome = script.empty() ? tsOutcome() : run(script, {"a"});
    const std::string said = outcome._output + outcome._errors;
    const bool isSaid = outcome._exitStatus == 0 && said.find(GetParam()._whichKey) != std::string::npos;
    expectCell("two keys that may have signed", script.empty()             ? "no keys"
                                                : isSaid                   ? "says which"
                                                : outcome._exitStatus == 0 ? "does not say which"
                                                                           : "takes the last");
}

INSTANTIATE_TEST_SUITE_P(Documentation, Peers, ::testing::ValuesIn(peers),
                         [](const ::testing::TestParamInfo<Peer>& parameter) { return parameter.param._name; });

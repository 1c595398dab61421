// SPDX-License-Identifier: Apache-2.0
// Documents and signatures named together, as a pattern of the shell does, and how much is printed of the results.
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Program.h"

namespace
{

class ManyDocuments : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        _folder.write("a", "contents");
        _folder.write("b", "contents");
    }

    // By the shell, which expands the pattern.
    tsOutcome runInShell(const std::string& arguments) const
    {
        tsCommand shell;
        shell._arguments = {"sh", "-c", "\"$0\" " + arguments, COUNTERSIGN_PROGRAM};
        shell._folder = _folder.path();
        return tsRun(shell);
    }

    void spoil(const std::string& name) const { _folder.write(name, "changed"); }
};

const std::string bothSigned = "a: signed, a.sig\nb: signed, b.sig\n";

}  // namespace

TEST_F(ManyDocuments, AreSignedTwiceWithoutHarm)
{
    EXPECT_EQ(runInShell("sign -k private.pem [ab]*")._output, bothSigned);
    const std::vector<std::string> names = _folder.names();
    const std::string signature = _folder.read("a.sig");
    for (const auto& [option, status] :
         {std::pair<std::string, int>{"", 2}, {"--digest-only ", 2}, {"--skip-signed ", 0}})
    {
        const tsOutcome again = runInShell("sign -k private.pem " + option + "[ab]*");
        EXPECT_EQ(again._exitStatus, status) << option;
        EXPECT_EQ(_folder.names(), names);
        EXPECT_EQ(_folder.read("a.sig"), signature);
    }
    EXPECT_EQ(runInShell("sign --force -k private.pem [ab]*")._output, bothSigned);
    EXPECT_EQ(_folder.names(), names);
}

TEST_F(ManyDocuments, AreTestedAmongTheirSignatures)
{
    runInShell("sign -k private.pem [ab]*");
    const tsOutcome outcome = runInShell("test -k public.pem [ab]*");
    EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
    EXPECT_EQ(outcome._output, "a: good\nb: good\n");
    EXPECT_EQ(outcome._errors, "");
    // A document that is gone is missed.
    ASSERT_EQ(unlink((_folder / "a").c_str()), 0);
    const tsOutcome without = runInShell("test -k public.pem [ab]*");
    expectFailure(without, {"a.sig: it has the name of a signature", "--also-signatures"});
    EXPECT_EQ(without._output, "a.sig: not tested\nb: good\n");
}

TEST_F(ManyDocuments, MayBeSignaturesWhenThisIsSaid)
{
    runInShell("sign -k private.pem a");
    expectFailure(run({"sign", "-k", "private.pem", "a.sig"}), {"--also-signatures"});
    expectFailure(run({"test", "-k", "public.pem", "a.sig", "a.sig"}), {"--also-signatures"});
    _folder.write("alone.sig", "a document");
    expectFailure(run({"sign", "-k", "private.pem", "alone.sig"}), {"alone.sig: it has the name", "--also-signatures"});
    EXPECT_FALSE(_folder.has("a.sig.sig") || _folder.has("alone.sig.sig"));
    EXPECT_EQ(outputOf({"sign", "-a", "-k", "private.pem", "a.sig", "alone.sig"}),
              "a.sig: signed, a.sig.sig\nalone.sig: signed, alone.sig.sig\n");
    EXPECT_EQ(outputOf({"test", "--also-signatures", "-k", "public.pem", "a.sig"}), "a.sig: good\n");
    // Who names the signature has said which is the document.
    EXPECT_EQ(outputOf({"test", "-s", "a.sig.sig", "-k", "public.pem", "a.sig"}), "a.sig: good\n");
    // A signature that is a document is none to overwrite.
    const std::string signature = _folder.read("a.sig");
    expectFailure(run({"sign", "-f", "-a", "-k", "private.pem", "a", "a.sig"}), {"a.sig: it is the document a.sig"});
    EXPECT_EQ(_folder.read("a.sig"), signature);
    // A file that has only the ending for a name is a document.
    _folder.write(".sig", "");
    EXPECT_EQ(outputOf({"sign", "-f", "-k", "private.pem", ".sig", "./.sig"}),
              ".sig: signed, .sig.sig\n./.sig: signed, ./.sig.sig\n");
}

TEST_F(ManyDocuments, AreLeftAloneWhereTheyAreSigned)
{
    runInShell("sign -k private.pem a b");
    const std::string signature = _folder.read("a.sig");
    _folder.write("c", "contents");
    EXPECT_EQ(outputOf({"sign", "--skip-signed", "-k", "private.pem", "a", "c"}),
              "a: already signed, a.sig\nc: signed, c.sig\n");
    EXPECT_EQ(_folder.read("a.sig"), signature);
    // Signed, and not good any more.
    spoil("b");
    const tsOutcome kept = run({"sign", "-n", "-k", "private.pem", "a", "b"});
    expectFailure(kept, {"b.sig: it exists already and was kept", "--skip-signed", "--force"});
    EXPECT_EQ(kept._output, "a: already signed, a.sig\n");
    EXPECT_EQ(outputOf({"sign", "-nf", "-k", "private.pem", "a", "b"}), "a: already signed, a.sig\nb: signed, b.sig\n");
    EXPECT_EQ(_folder.read("a.sig"), signature);
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "b"}), "b: good\n");
    // By another key.
    runOpenSSL(_folder, {"genrsa", "-out", "other.pem", "1024"});
    expectFailure(run({"sign", "-n", "-k", "other.pem", "a"}), {"a.sig: it exists already"});
    // The digest's line alone is less than both.
    outputOf({"sign", "-fd", "-k", "private.pem", "a"});
    expectFailure(run({"sign", "-n", "-k", "private.pem", "a"}), {"a.sig: it exists already"});
    EXPECT_EQ(outputOf({"sign", "-nd", "-k", "private.pem", "a"}), "a: already signed, a.sig\n");
    EXPECT_EQ(outputOf({"sign", "-nd", "-k", "private.pem", "b"}), "b: already signed, b.sig\n");
    // Elsewhere, too.
    EXPECT_EQ(outputOf({"sign", "-n", "-o", "b.sig", "-k", "private.pem", "b"}), "b: already signed, b.sig\n");
    expectFailure(run({"sign", "-n", "-o", "-", "-k", "private.pem", "b"}), {"--skip-signed", "--output -"});
}

TEST_F(ManyDocuments, AreToldOnlyWhereTheyFailWithQuiet)
{
    EXPECT_EQ(outputOf({"sign", "--quiet", "-k", "private.pem", "a", "b"}), "");
    EXPECT_EQ(outputOf({"test", "-q", "-k", "public.pem", "a", "b"}), "");
    spoil("a");
    const tsOutcome bad = run({"test", "-q", "-k", "public.pem", "a", "b"});
    EXPECT_EQ(bad._exitStatus, 1);
    EXPECT_EQ(bad._output, "a: BAD\n");
    expectFailure(run({"sign", "-q", "-k", "private.pem", "a"}), {"a.sig: it exists already"});
    EXPECT_NE(outputOf({"sign", "-q", "-o", "-", "-k", "private.pem", "b"}), "");
}

TEST_F(ManyDocuments, AreToldByStatusAlone)
{
    const auto statusOf = [this](const std::vector<std::string>& arguments)
    {
        const tsOutcome outcome = run(arguments);
        EXPECT_EQ(outcome._output + outcome._errors, "") << arguments.back();
        return outcome._exitStatus;
    };
    EXPECT_EQ(statusOf({"sign", "--status", "-k", "private.pem", "a", "b"}), 0);
    EXPECT_EQ(statusOf({"sign", "--status", "-k", "private.pem", "a", "b"}), 2);
    EXPECT_EQ(statusOf({"test", "--status", "-k", "public.pem", "a", "b"}), 0);
    EXPECT_EQ(statusOf({"test", "--status", "-k", "missing.pem", "a"}), 2);
    EXPECT_EQ(statusOf({"test", "--status", "-k", "public.pem", "missing"}), 2);
    EXPECT_EQ(statusOf({"test", "--status", "--quiet", "-k", "public.pem", "a.sig"}), 2);
    spoil("a");
    EXPECT_EQ(statusOf({"test", "--status", "-k", "public.pem", "a", "b"}), 1);
    // Nothing is lost where there is nothing to print to.
    tsCommand toFull = command({"test", "--status", "-k", "public.pem", "b"});
    toFull._outputPath = "/dev/full";
    EXPECT_EQ(tsRun(toFull)._exitStatus, 0);
    expectFailure(run({"test", "--status", "--summary", "-k", "public.pem", "b"}), {"--status", "--summary"});
    expectFailure(run({"sign", "--status", "-o", "-", "-k", "private.pem", "b"}), {"--status", "--output -"});
}

TEST_F(ManyDocuments, AreSummedUp)
{
    EXPECT_EQ(outputOf({"sign", "--summary", "-k", "private.pem", "a", "b"}), bothSigned + "2 documents: 2 signed\n");
    _folder.write("c", "contents");
    EXPECT_EQ(runInShell("sign --summary -k private.pem c missing [ab]*")._output,
              "c: signed, c.sig\n4 documents: 1 signed, 3 not signed; 2 signatures left out\n");
    spoil("b");
    const tsOutcome outcome =
        run({"test", "--quiet", "--summary", "-k", "public.pem", "a", "b", "c", "d.sig", "a.sig"});
    EXPECT_EQ(outcome._exitStatus, 2);
    EXPECT_EQ(outcome._output,
              "b: BAD\nd.sig: not tested\n4 documents: 2 good, 1 BAD, 1 not tested; 1 signature left out\n");
    EXPECT_EQ(outputOf({"test", "--summary", "-q", "-k", "public.pem", "a"}), "1 document: 1 good\n");
    EXPECT_EQ(run({"test", "--summary", "-k", "missing.pem", "a"})._output, "");
}

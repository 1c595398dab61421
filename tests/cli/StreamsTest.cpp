// SPDX-License-Identifier: Apache-2.0
// Documents and keys from standard input and pipes.
#include <chrono>
#include <csignal>
#include <string>
#include <sys/stat.h>

#include "Program.h"
#include "tests/support/tsSignalled.h"

using ::testing::HasSubstr;

namespace
{

class Streams : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        // More than a pipe holds, and no whole number of the digest's runs.
        _contents.reserve(200001);
        for (std::size_t i = 0; i < 200001; ++i)
        {
            _contents += static_cast<char>(i * i >> 5);
        }
        _folder.write("document", _contents);
        outputOf({"sign", "-k", "private.pem", "document"});
    }

    // The script has the program's name in $0.
    tsOutcome runInShell(const std::string& script) const
    {
        tsCommand bash;
        bash._arguments = {"bash", "-c", script, COUNTERSIGN_PROGRAM};
        bash._folder = _folder.path();
        return tsRun(bash);
    }

    std::string outputOfShell(const std::string& script) const
    {
        const tsOutcome outcome = runInShell(script);
        EXPECT_EQ(outcome._exitStatus, 0);
        EXPECT_EQ(outcome._errors, "");
        return outcome._output;
    }

    std::string _contents;
};

}  // namespace

TEST_F(Streams, AreSigned)
{
    EXPECT_EQ(outputOf({"sign", "-k", "private.pem", "-o", "new.sig", "-"}, _contents), "-: signed, new.sig\n");
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "new.sig", "document"}), "document: good\n");
    _folder.write("from output.sig", outputOf({"sign", "-k", "private.pem", "-o", "-", "-"}, _contents));
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "from output.sig", "document"}), "document: good\n");
    outputOfShell("\"$0\" sign -k private.pem -o pipe.sig <(cat document)");
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "pipe.sig", "document"}), "document: good\n");
    EXPECT_EQ(outputOf({"sign", "-k", "private.pem", "-o", "empty.sig", "-"}, ""), "-: signed, empty.sig\n");
    _folder.write("empty", "");
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "empty"}), "empty: good\n");
    EXPECT_FALSE(_folder.has("-.sig"));
}

TEST_F(Streams, AreTested)
{
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "document.sig", "-"}, _contents), "-: good\n");
    const tsOutcome longer = run({"test", "-k", "public.pem", "-s", "document.sig", "-"}, _contents + "x");
    EXPECT_EQ(longer._exitStatus, 1);
    EXPECT_EQ(longer._output, "-: BAD\n");
    EXPECT_EQ(run({"test", "-k", "public.pem", "-s", "document.sig", "-"}, _contents.substr(1))._exitStatus, 1);
    EXPECT_THAT(outputOfShell("\"$0\" test -k public.pem -s document.sig <(cat document)"),
                ::testing::EndsWith(": good\n"));
    // A writer that takes its time, in pieces.
    EXPECT_EQ(outputOfShell("{ head -c 100 document; head -c 65536 /dev/null; tail -c +101 document; } | "
                            "\"$0\" test -k public.pem -s document.sig -"),
              "-: good\n");
    EXPECT_EQ(outputOf({"digest", "-k", "public.pem", "-"}, _contents),
              outputOf({"digest", "-k", "public.pem", "document"}));
}

TEST_F(Streams, HoldSignatures)
{
    const std::string test = "\"$0\" test -k public.pem -s ";
    EXPECT_EQ(outputOfShell(test + "<(cat document.sig) document"), "document: good\n");
    EXPECT_EQ(outputOfShell(test + "<(head -c 10 document.sig; tail -c +11 document.sig) - < document"), "-: good\n");
    EXPECT_THAT(outputOfShell(test + "<(cat document.sig) <(cat document)"), ::testing::EndsWith(": good\n"));
    const tsOutcome altered = runInShell(test + "<(cat document.sig) - <<< altered");
    EXPECT_EQ(altered._exitStatus, 1);
    EXPECT_EQ(altered._output, "-: BAD\n");
    expectFailure(runInShell(test + "<(true) document"), {"/dev/fd/", ": "});
    const tsOutcome large = runInShell(test + "<(head -c 1048577 /dev/zero) document");
    expectFailure(large, {"/dev/fd/", "it is too large for a signature"});
    EXPECT_EQ(large._output, "document: not a signature\n");
    ASSERT_EQ(mkfifo((_folder / "pipe").c_str(), 0600), 0);
    expectFailure(runInShell("exec 3<> pipe; " + test + "pipe pipe"), {"it is the same pipe"});
    ASSERT_EQ(mkfifo((_folder / "other.sig").c_str(), 0600), 0);
    _folder.write("other", "x");
    expectFailure(run({"test", "-k", "public.pem", "other"}), {"other.sig: "});
}

TEST_F(Streams, ThatAreFilesAreReadFromWhereTheyStand)
{
    EXPECT_EQ(outputOfShell("\"$0\" test -k public.pem -s document.sig - < document"), "-: good\n");
    _folder.write("both", "first line\n" + _contents);
    EXPECT_EQ(outputOfShell("{ read -r line; \"$0\" test -k public.pem -s document.sig -; } < both"), "-: good\n");
    // The file at standard input is a document as any other: it is not overwritten.
    _folder.write("thesis", "contents");
    expectFailure(runInShell("\"$0\" sign -f -k private.pem -o thesis - < thesis"),
                  {"thesis: it is the document standard input, which is never overwritten"});
    EXPECT_EQ(_folder.read("thesis"), "contents");
    expectFailure(runInShell("\"$0\" test -k public.pem -s document.sig - < ."), {"standard input: "});
    const tsOutcome closed = runInShell("\"$0\" sign -k private.pem -o closed.sig - <&-");
    expectFailure(closed, {"standard input: it cannot be read: "});
    EXPECT_FALSE(_folder.has("closed.sig"));
}

TEST_F(Streams, HoldKeys)
{
    EXPECT_EQ(outputOfShell("\"$0\" test -k <(cat public.pem) document"), "document: good\n");
    EXPECT_EQ(outputOf({"test", "-k", "-", "document"}, _folder.read("public.pem")), "document: good\n");
    EXPECT_EQ(outputOfShell("\"$0\" sign -k <(cat private.pem) -o by-pipe.sig document"),
              "document: signed, by-pipe.sig\n");
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "by-pipe.sig", "document"}), "document: good\n");
    EXPECT_EQ(outputOf({"key", "-k", "-"}, _folder.read("private.pem")), outputOf({"key", "-k", "private.pem"}));
    runOpenSSL(_folder, {"rsa", "-in", "private.pem", "-aes128", "-passout", "pass:sesame", "-out", "locked.pem"});
    _folder.write("secret", "sesame\n");
    EXPECT_THAT(outputOfShell("\"$0\" key --passphrase-file <(cat secret) -k <(cat locked.pem)"),
                HasSubstr("\nencrypted yes\n"));
    // The passphrase's line, and then the document.
    EXPECT_EQ(
        outputOf({"sign", "--passphrase-fd", "0", "-k", "locked.pem", "-o", "locked.sig", "-"}, "sesame\n" + _contents),
        "-: signed, locked.sig\n");
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-s", "locked.sig", "document"}), "document: good\n");
    expectFailure(run({"key", "-k", "-"}, "no key"), {"standard input: "});
    expectFailure(run({"key", "-k", "-"}, std::string(1024 * 1024 + 1, ' ')), {"standard input: it is too large"});
}

TEST_F(Streams, AreReadOnce)
{
    for (const char* pArguments : {"test -k public.pem -s document.sig /dev/stdin -k /dev/stdin",
                                   "digest -k public.pem - /dev/stdin", "test -k /dev/stdin -s document.sig -"})
    {
        expectFailure(runInShell("cat document | \"$0\" " + std::string(pArguments)), {"it is the same pipe as"});
    }
    ASSERT_EQ(mkfifo((_folder / "pipe").c_str(), 0600), 0);
    expectFailure(run({"digest", "-k", "public.pem", "pipe", "./pipe"}), {"./pipe: it is the same pipe as pipe"});
    // None of these waits for a writer.
    expectFailure(run({"sign", "-k", "private.pem", "pipe"}), {"pipe: it is a pipe", "--output"});
    expectFailure(run({"sign", "-k", "private.pem", "--skip-signed", "-o", "new.sig", "pipe"}), {"--skip-signed"});
    expectFailure(run({"test", "-k", "public.pem", "pipe"}), {"pipe: it is a pipe", "--signature"});
    EXPECT_FALSE(_folder.has("new.sig"));
    EXPECT_FALSE(_folder.has("pipe.sig"));
}

TEST_F(Streams, LeaveFilesOfThatNameToOthers)
{
    _folder.write("-", "a file");
    EXPECT_EQ(outputOf({"sign", "-k", "private.pem", "./-"}), "./-: signed, ./-.sig\n");
    _folder.write("names", std::string("-\0", 2));
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "--files0-from", "names"}), "./-: good\n");
    const std::string ofInput = outputOf({"digest", "-k", "public.pem", "-"}, "standard input");
    EXPECT_NE(ofInput, outputOf({"digest", "-k", "public.pem", "./-"}));
    ASSERT_EQ(mkdir((_folder / "folder").c_str(), 0700), 0);
    EXPECT_EQ(outputOf({"digest", "-r", "-k", "public.pem", "-"}, "standard input"), ofInput);
}

TEST_F(Streams, ThatAreWaitedForCanBeInterrupted)
{
    ASSERT_EQ(mkfifo((_folder / "pipe").c_str(), 0600), 0);
    // The program's end is waited for; only the signal ends it, since nobody writes.
    const tsOutcome outcome = runInShell("\"$0\" digest -k public.pem pipe & kill -TERM $!; wait $!");
    EXPECT_EQ(outcome._exitStatus, 128 + 15);
    EXPECT_EQ(outcome._output, "");
    // The same once it waits, which it does after the first line.
    _folder.write("first", "contents");
    const tsOutcome waiting = tsRunSignalled(command({"digest", "-k", "public.pem", "first", "pipe"}), SIGTERM,
                                             std::chrono::milliseconds(100), true);
    EXPECT_EQ(waiting._signal, SIGTERM);
    EXPECT_THAT(waiting._output, ::testing::EndsWith("  first\n"));
}

// SPDX-License-Identifier: Apache-2.0
// Testing with several keys, named one by one or by their folder.
#include <string>
#include <sys/stat.h>

#include "Program.h"

namespace
{

class SeveralKeys : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        ASSERT_EQ(mkdir((_folder / "keys").c_str(), 0700), 0);
        for (const char* pName : {"bob", "carol"})
        {
            const std::string name = pName;
            runOpenSSL(_folder, {"genrsa", "-out", name + ".pem", "1024"});
            runOpenSSL(_folder, {"rsa", "-in", name + ".pem", "-pubout", "-out", "keys/" + name + ".pub"});
        }
        _folder.write("a", "contents of a");
        _folder.write("b", "contents of b");
        outputOf({"sign", "-k", "private.pem", "a"});
        outputOf({"sign", "-k", "bob.pem", "b"});
    }
};

}  // namespace

TEST_F(SeveralKeys, AreToldApart)
{
    EXPECT_EQ(outputOf({"test", "-k", "public.pem", "-k", "keys/bob.pub", "a", "b"}),
              "a: good, public.pem\nb: good, keys/bob.pub\n");
    EXPECT_EQ(outputOf({"test", "--key=keys/carol.pub", "--key=keys/bob.pub", "b"}), "b: good, keys/bob.pub\n");
    // Of one key it is known which one it is.
    EXPECT_EQ(outputOf({"test", "-k", "keys/bob.pub", "b"}), "b: good\n");
    _folder.write("b", "contents of B");
    const tsOutcome bad = run({"test", "-k", "public.pem", "-k", "keys/bob.pub", "a", "b"});
    EXPECT_EQ(bad._exitStatus, 1);
    EXPECT_EQ(bad._output, "a: good, public.pem\nb: BAD, keys/bob.pub\n");
    outputOf({"sign", "-dfk", "bob.pem", "b"});
    EXPECT_EQ(run({"test", "-w", "-k", "public.pem", "-k", "keys/bob.pub", "b"})._output, "b: weak, keys/bob.pub\n");
    // Nobody's signature names none.
    const tsOutcome other = run({"test", "-k", "public.pem", "-k", "keys/carol.pub", "b"});
    EXPECT_EQ(other._exitStatus, 2);
    EXPECT_EQ(other._output, "b: another key\n");
    expectFailure(other, {"b.sig: "});
}

TEST_F(SeveralKeys, MustAllBeUsable)
{
    const tsOutcome outcome = run({"test", "-k", "public.pem", "-k", "missing.pem", "a"});
    expectFailure(outcome, {"missing.pem"});
    EXPECT_EQ(outcome._output, "");
    expectFailure(run({"sign", "-k", "private.pem", "-k", "bob.pem", "a"}), {"-k is given twice"});
    expectFailure(run({"test", "a"}), {"--key PEM or --key-dir DIR is missing"});
    expectFailure(run({"sign", "--key-dir", "keys", "a"}), {"--key-dir is an option of test, not of sign"});
}

TEST_F(SeveralKeys, ComeFromAFolder)
{
    EXPECT_EQ(outputOf({"test", "--key-dir", "keys", "b"}), "b: good, keys/bob.pub\n");
    EXPECT_EQ(outputOf({"test", "--key-dir=keys/", "-k", "public.pem", "a", "b"}),
              "a: good, public.pem\nb: good, keys/bob.pub\n");
    ASSERT_EQ(mkdir((_folder / "more").c_str(), 0700), 0);
    ASSERT_EQ(symlink("../public.pem", (_folder / "more/by link").c_str()), 0);
    EXPECT_EQ(outputOf({"test", "--key-dir", "keys", "--key-dir", "more", "a", "b"}),
              "a: good, more/by link\nb: good, keys/bob.pub\n");
    // The same key under several names has the first of them.
    for (const char* pName : {"z", "a", "m"})
    {
        ASSERT_EQ(symlink("../public.pem", (_folder / (std::string("more/") + pName)).c_str()), 0);
    }
    EXPECT_EQ(outputOf({"test", "--key-dir", "more", "a"}), "a: good, more/a\n");
}

TEST_F(SeveralKeys, OfAFolderAreTriedWithoutItsOtherFiles)
{
    // None of these is waited for or asked about.
    _folder.write("keys/README", "All about the keys.\n");
    _folder.write("keys/empty.pem", "");
    ASSERT_EQ(mkdir((_folder / "keys/folder.pem").c_str(), 0700), 0);
    ASSERT_EQ(mkfifo((_folder / "keys/a pipe").c_str(), 0600), 0);
    ASSERT_EQ(symlink("nowhere", (_folder / "keys/lost.pem").c_str()), 0);
    runOpenSSL(_folder, {"rsa", "-in", "carol.pem", "-aes128", "-passout", "pass:sesame", "-out", "keys/a.locked"});
    EXPECT_EQ(outputOf({"test", "--key-dir", "keys", "b"}), "b: good, keys/bob.pub\n");
}

TEST_F(SeveralKeys, OfAFolderWithoutAnyAreMissed)
{
    ASSERT_EQ(mkdir((_folder / "none").c_str(), 0700), 0);
    const tsOutcome empty = run({"test", "--key-dir", "none", "b"});
    EXPECT_EQ(empty._output, "");
    expectFailure(empty, {"none: there is no key in it that can be used"});
    _folder.write("none/README", "All about the keys.\n");
    runOpenSSL(_folder, {"rsa", "-in", "carol.pem", "-aes128", "-passout", "pass:sesame", "-out", "none/locked"});
    expectFailure(run({"test", "--key-dir", "none", "b"}), {"none/README: ", "none/locked: ", "none: there is no key"});
    // Though another has one: the one that is named is of use, or a mistake.
    expectFailure(run({"test", "--key-dir", "keys", "--key-dir", "none", "b"}), {"none: there is no key"});
    expectFailure(run({"test", "--key-dir", "missing", "b"}), {"missing: cannot be read: "});
    expectFailure(run({"test", "--key-dir", "a", "b"}), {"a: cannot be read: "});
}

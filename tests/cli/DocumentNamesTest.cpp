// SPDX-License-Identifier: Apache-2.0
// Documents of folders and of lists of names.
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cliTestSupport.h"
#include "tests/support/tsProcess.h"

using ::testing::HasSubstr;
using ::testing::Not;

namespace
{

namespace fs = std::filesystem;
using namespace std::string_literals;

class DocumentNames : public ::testing::Test
{
protected:
    void SetUp() override
    {
        makeKeys(_folder, 1024);
        _folder.write("outside", "contents");
        fs::create_directories(_folder / "tree/b/deep");
        fs::create_directories(_folder / "tree/empty");
        for (const char* pName : {"tree/a", "tree/b/one", "tree/b/deep/two\nlines", "tree/c", "tree/.hidden"})
        {
            _folder.write(pName, std::string("contents of ") + pName);
        }
    }

    tsOutcome run(const std::vector<std::string>& arguments, const std::string& input = "") const
    {
        tsCommand command;
        command._arguments = {COUNTERSIGN_PROGRAM};
        command._arguments.insert(command._arguments.end(), arguments.begin(), arguments.end());
        command._folder = _folder.path();
        command._input = input;
        command._prepare = loseRootsRights;
        return tsRun(command);
    }

    TemporaryFolder _folder;
};

const std::string goodTree = "tree/.hidden: good\ntree/a: good\ntree/b/deep/two\\nlines: good\ntree/b/one: good\n"
                             "tree/c: good\n";

}  // namespace

TEST_F(DocumentNames, OfAFolderAreSortedAndWithoutSignatures)
{
    // Nothing outside of the folder is reached, and the folder not twice.
    fs::create_symlink("../outside", _folder / "tree/link");
    fs::create_symlink("..", _folder / "tree/loop");
    fs::create_symlink("a", _folder / "tree/inside");
    ASSERT_EQ(mkfifo((_folder / "tree/pipe").c_str(), 0600), 0);
    _folder.write("tree/.countersign-12-0.tmp", "half a signature");
    // Also one whose document has gone.
    _folder.write("tree/gone.sig", "a signature");
    const tsOutcome outcome = run({"sign", "-r", "-k", "private.pem", "tree"});
    EXPECT_EQ(outcome._exitStatus, 0) << outcome._errors;
    EXPECT_EQ(outcome._errors, "");
    EXPECT_EQ(outcome._output, "tree/.hidden: signed, tree/.hidden.sig\ntree/a: signed, tree/a.sig\n"
                               "tree/b/deep/two\\nlines: signed, tree/b/deep/two\\nlines.sig\n"
                               "tree/b/one: signed, tree/b/one.sig\ntree/c: signed, tree/c.sig\n");
    EXPECT_FALSE(_folder.has("outside.sig"));
    EXPECT_FALSE(_folder.has("tree/.countersign-12-0.tmp.sig"));
    // The signatures that are there are no documents.
    for (const char* pFolder : {"tree", "tree/", "./tree"})
    {
        const tsOutcome test = run({"test", "--recursive", "-k", "public.pem", pFolder});
        EXPECT_EQ(test._exitStatus, 0) << test._errors;
        EXPECT_THAT(test._output, HasSubstr("/b/deep/two\\nlines: good\n"));
    }
    EXPECT_EQ(run({"test", "-r", "-k", "public.pem", "tree"})._output, goodTree);
    const tsOutcome digests = run({"digest", "-r", "-k", "public.pem", "tree"});
    EXPECT_THAT(digests._output, HasSubstr("  tree/b/one\n"));
    EXPECT_THAT(digests._output, Not(HasSubstr(".sig")));
    EXPECT_EQ(run({"test", "-r", "-k", "public.pem", "tree/c", "tree/b"})._output,
              "tree/c: good\ntree/b/deep/two\\nlines: good\ntree/b/one: good\n");
    // A link that is named is followed.
    fs::create_symlink("tree", _folder / "named");
    EXPECT_EQ(run({"test", "-r", "-k", "public.pem", "named"})._exitStatus, 0);
    for (const char* pCommand : {"sign", "test", "digest"})
    {
        EXPECT_EQ(run({pCommand, "-k", "private.pem", "tree"})._errors,
                  "countersign: tree: it is a folder; choose the files in it, or take all by --recursive\n");
    }
}

TEST_F(DocumentNames, OfAFolderThatCannotBeReadDoNotHideTheOthers)
{
    fs::permissions(_folder / "tree/b", fs::perms::none);
    const tsOutcome outcome = run({"digest", "-r", "-k", "public.pem", "tree"});
    EXPECT_EQ(outcome._exitStatus, 2);
    EXPECT_THAT(outcome._errors, HasSubstr("tree/b: cannot be read: Permission denied"));
    EXPECT_THAT(outcome._output, HasSubstr("  tree/c\n"));
    // Its names can be read, and no more of it.
    fs::permissions(_folder / "tree/b", fs::perms::owner_read);
    const tsOutcome named = run({"digest", "-r", "-k", "public.pem", "tree"});
    EXPECT_EQ(named._exitStatus, 2);
    EXPECT_THAT(named._errors, HasSubstr("tree/b/one: cannot be read: Permission denied"));
    const tsOutcome none = run({"sign", "-r", "-k", "private.pem", "tree/empty"});
    EXPECT_EQ(none._exitStatus, 2);
    EXPECT_THAT(none._errors, HasSubstr("there is no document in what is named"));
}

TEST_F(DocumentNames, ComeFromAList)
{
    const std::string names = "tree/b/deep/two\nlines\0tree/a\0-dash\0"s;
    _folder.write("-dash", "contents");
    _folder.write("names", names);
    const std::string signedDash = "tree/b/deep/two\\nlines: signed, tree/b/deep/two\\nlines.sig\n"
                                   "tree/a: signed, tree/a.sig\n-dash: signed, -dash.sig\n";
    EXPECT_EQ(run({"sign", "-k", "private.pem", "--files0-from", "names"})._output, signedDash);
    const std::string good = "tree/b/deep/two\\nlines: good\ntree/a: good\n-dash: good\n";
    EXPECT_EQ(run({"test", "-k", "public.pem", "--files0-from", "-"}, names)._output, good);
    // The last name's end may be missing, and names may stand in front.
    EXPECT_EQ(run({"test", "-k", "public.pem", "--files0-from=-", "tree/a"}, "-dash")._output,
              "tree/a: good\n-dash: good\n");
    EXPECT_EQ(run({"sign", "-f", "-r", "-k", "private.pem", "--files0-from=-"}, "tree\0"s)._exitStatus, 0);
    EXPECT_EQ(run({"test", "-r", "-k", "public.pem", "--files0-from=-"}, "tree\0"s)._output, goodTree);
}

TEST_F(DocumentNames, ThatAreNoneAreTold)
{
    struct Case
    {
        std::vector<std::string> _arguments;
        std::string _words;
    };
    for (const Case& wrong :
         {Case{{"sign", "-k", "private.pem", "--files0-from", "none"}, "none: cannot be read: No such file"},
          Case{{"sign", "-k", "private.pem", "--files0-from", "tree"}, "tree: cannot be read: Is a directory"},
          Case{{"sign", "-k", "private.pem", "--files0-from", "-"}, "there is no document in what is named"},
          Case{{"sign", "-k", "private.pem"}, "no FILE is named"}, Case{{"sign", "-r", "-k", "private.pem"}, "no FILE"},
          Case{{"sign", "-r", "-k", "private.pem", "-o", "x", "tree"}, "--output names one signature"},
          Case{{"test", "-k", "public.pem", "-s", "x", "--files0-from", "-"}, "--signature names one signature"}})
    {
        const tsOutcome outcome = run(wrong._arguments);
        EXPECT_EQ(outcome._exitStatus, 2) << wrong._words;
        EXPECT_THAT(outcome._errors, HasSubstr(wrong._words));
        EXPECT_EQ(outcome._output, "");
    }
    const tsOutcome empty = run({"digest", "-k", "public.pem", "--files0-from", "-"}, "tree/a\0\0tree/c\0"s);
    EXPECT_EQ(empty._exitStatus, 2);
    EXPECT_THAT(empty._errors, HasSubstr("the name is empty"));
    EXPECT_THAT(empty._output, HasSubstr("  tree/c\n"));
}

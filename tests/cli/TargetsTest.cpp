// SPDX-License-Identifier: Apache-2.0
// No command line makes the program overwrite what it reads.
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "Program.h"

namespace
{

namespace fs = std::filesystem;

class Targets : public Program
{
protected:
    // Documents that are signatures by their form, which --force may overwrite elsewhere.
    void SetUp() override
    {
        Program::SetUp();
        _folder.write("report", _signature);
        _folder.write("notes", _signature);
        _key = _folder.read("private.pem");
    }

    // It fails, says so, and every document and the key are as they were.
    void expectNothingIsOverwritten(const std::vector<std::string>& options,
                                    const std::vector<std::string>& words) const
    {
        std::vector<std::string> arguments = {"sign", "--force"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const tsOutcome outcome = run(arguments);
        SCOPED_TRACE(options.back());
        expectFailure(outcome, words);
        EXPECT_EQ(outcome._output, "");
        EXPECT_EQ(_folder.read("report"), _signature);
        EXPECT_EQ(_folder.read("notes"), _signature);
        EXPECT_EQ(_folder.read("private.pem"), _key);
    }

    // By its form a signature of a key of 1024 bits.
    const std::string _signature = "00000078" + std::string(256, '0') + "\n";
    std::string _key;
};

}  // namespace

TEST_F(Targets, AreNotTakenFromTheNextArgument)
{
    for (const char* pOption : {"--output", "-o", "--key"})
    {
        const std::string option = pOption;
        std::vector<std::vector<std::string>> spellings = {{option, ""}};
        if (option.size() > 2)
        {
            spellings.push_back({option + "="});
        }
        for (const std::vector<std::string>& spelling : spellings)
        {
            std::vector<std::string> options = spelling;
            if (option != "--key")
            {
                options.insert(options.end(), {"--key", "private.pem"});
            }
            options.insert(options.end(), {"report", "notes"});
            expectNothingIsOverwritten(options, {option, "is empty"});
            // The empty value in front of a single name.
            options.pop_back();
            expectNothingIsOverwritten(options, {option, "is empty"});
        }
    }
    expectNothingIsOverwritten({"-k", "private.pem", "--output=", "report"}, {"--output", "is empty"});
    expectNothingIsOverwritten({"-k", "private.pem", "report", "--output="}, {"--output", "is empty"});
    for (const std::vector<std::string>& spelling :
         {std::vector<std::string>{"--signature="}, {"--signature", ""}, {"-s", ""}})
    {
        std::vector<std::string> arguments = {"test", "--key", "public.pem"};
        arguments.insert(arguments.end(), spelling.begin(), spelling.end());
        arguments.emplace_back("report");
        expectFailure(run(arguments), {spelling[0].substr(0, 2), "is empty"});
        arguments.emplace_back("notes");
        expectFailure(run(arguments), {spelling[0].substr(0, 2), "is empty"});
    }
}

TEST_F(Targets, AreNoDocument)
{
    fs::create_symlink("report", _folder / "link");
    fs::create_symlink("link", _folder / "link of link");
    fs::create_hard_link(_folder / "report", _folder / "hard");
    ASSERT_EQ(mkdir((_folder / "below").c_str(), 0700), 0);
    for (const char* pOutput : {"report", "./report", "below/../report", "link", "link of link", "hard"})
    {
        expectNothingIsOverwritten({"-k", "private.pem", "-o", pOutput, "report"},
                                   {std::string(pOutput) + ": it is the document report", "--output"});
    }
    expectNothingIsOverwritten({"-k", "private.pem", "-o", "hard", "link"}, {"hard: it is the document link"});
}

TEST_F(Targets, AreNoKey)
{
    fs::create_symlink("private.pem", _folder / "key link");
    fs::create_hard_link(_folder / "private.pem", _folder / "key hard");
    for (const char* pOutput : {"private.pem", "key link", "key hard"})
    {
        expectNothingIsOverwritten({"-k", "private.pem", "-o", pOutput, "report"},
                                   {std::string(pOutput) + ": it is the key private.pem"});
    }
}

TEST_F(Targets, BesideTheDocumentsAreNoneOfThem)
{
    fs::create_symlink("report", _folder / "report.sig");
    expectNothingIsOverwritten({"-k", "private.pem", "report"}, {"report.sig: it is the document report"});
    fs::remove(_folder / "report.sig");
    fs::create_hard_link(_folder / "report", _folder / "report.sig");
    expectNothingIsOverwritten({"-k", "private.pem", "report"}, {"report.sig: it is the document report"});
    fs::remove(_folder / "report.sig");
    fs::create_symlink("private.pem", _folder / "report.sig");
    expectNothingIsOverwritten({"-k", "private.pem", "report"}, {"report.sig: it is the key private.pem"});
    fs::remove(_folder / "report.sig");
    // Another one that is named, wherever it stands.
    fs::create_symlink("notes", _folder / "report.sig");
    for (const std::vector<std::string>& order : {std::vector<std::string>{"report", "notes"}, {"notes", "report"}})
    {
        const tsOutcome outcome = run({"sign", "--force", "-k", "private.pem", order[0], order[1]});
        expectFailure(outcome, {"report.sig: it is the document notes"});
        EXPECT_EQ(outcome._output, "notes: signed, notes.sig\n");
        EXPECT_EQ(_folder.read("notes"), _signature);
    }
}

TEST_F(Targets, KeepModeAndOwner)
{
    outputOf({"sign", "-k", "private.pem", "report"});
    const std::string path = _folder / "report.sig";
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    const bool isRoot = geteuid() == 0;
    if (isRoot)
    {
        ASSERT_EQ(chown(path.c_str(), 1234, 2345), 0);
    }
    outputOf({"sign", "--force", "-k", "private.pem", "report"});
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    if (isRoot)
    {
        EXPECT_EQ(status.st_uid, 1234U);
        EXPECT_EQ(status.st_gid, 2345U);
    }
}

TEST_F(Targets, ThatAreReadOnlyAreReplacedWithAWarning)
{
    outputOf({"sign", "-k", "private.pem", "report"});
    const std::string path = _folder / "report.sig";
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    const tsOutcome outcome = run({"sign", "--force", "-k", "private.pem", "report"});
    EXPECT_EQ(outcome._exitStatus, 0);
    EXPECT_EQ(outcome._output, "report: signed, report.sig\n");
    EXPECT_EQ(outcome._errors, "countersign: warning: report.sig: a read-only signature was replaced\n");
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0444U);
}

// A document that is not there is told about when it is read.
TEST_F(Targets, ThatCannotBeWrittenAreFoundFirst)
{
    expectFailure(run({"sign", "-k", "private.pem", "-o", "no/such/folder", "missing"}),
                  {"no/such/folder: the signature cannot be written: No such file or directory"});
    expectFailure(run({"sign", "-k", "private.pem", "-o", "report/below", "missing"}),
                  {"report/below: the signature cannot be written: Not a directory"});
    ASSERT_EQ(mkdir((_folder / "folder").c_str(), 0700), 0);
    _folder.write("folder/signed.sig", _signature);
    fs::create_symlink("folder/new.sig", _folder / "link.sig");
    fs::create_symlink("folder/signed.sig", _folder / "signed.sig");
    ASSERT_EQ(chmod((_folder / "folder").c_str(), 0500), 0);
    for (const char* pDocument : {"folder/missing", "folder/signed", "link", "signed"})
    {
        tsCommand sign = command({"sign", "--force", "-k", "private.pem", pDocument});
        sign._prepare = loseRootsRights;
        expectFailure(tsRun(sign), {std::string(pDocument) + ".sig: the signature cannot be written: Permission"});
    }
}

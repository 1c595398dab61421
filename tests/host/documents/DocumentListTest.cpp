// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"

#include "host/documents/hoDocumentList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace
{
using Column = hoDocumentList::Column;
using testing::ElementsAre;

std::vector<std::string> namesOf(const hoDocumentList& list)
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < list.size(); ++i)
    {
        names.emplace_back(list[i].name().asCharArray());
    }
    return names;
}

class DocumentList : public testing::Test
{
protected:
    void openNew(const std::string& name, const std::string& contents = "x", long modified = 1000000000)
    {
        const std::string path = _folder.write(name, contents);
        const struct timespec times[2] = {{modified, 0}, {modified, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        const std::size_t before = _list.size();
        const hoDocumentList::Opening opening = _list.open(path.c_str());
        EXPECT_EQ(opening._result._problem, osFileProblem::None);
        EXPECT_EQ(opening._position, before);
        EXPECT_TRUE(opening._isNew);
        EXPECT_EQ(_list.size(), before + 1);
    }

    TemporaryFolder _folder;
    hoDocumentList _list;
};
}  // namespace

TEST_F(DocumentList, StartsEmpty)
{
    EXPECT_TRUE(_list.isEmpty());
    EXPECT_EQ(_list.size(), 0U);
    EXPECT_EQ(_list.totalSize(), 0U);
    EXPECT_EQ(_list.find("/etc/hosts"), hoDocumentList::nowhere);
}

TEST_F(DocumentList, KeepsTheOrderOfOpening)
{
    openNew("b", "22");
    openNew("a", "4444");
    openNew("c", "");
    EXPECT_THAT(namesOf(_list), ElementsAre("b", "a", "c"));
    EXPECT_EQ(_list[1]._facts._size, 4U);
    EXPECT_EQ(_list.totalSize(), 6U);
    EXPECT_STREQ(_list[0]._path.asCharArray(), _folder.path("b").c_str());
    EXPECT_STREQ(_list[0].folder().asCharArray(), _folder.path().c_str());
}

TEST_F(DocumentList, FindsADocumentThatIsOpenAlready)
{
    openNew("a");
    openNew("b");
    std::filesystem::create_directory_symlink(".", _folder.path("here"));
    for (const std::string& path : {_folder.path("a"), _folder.path("./a"), _folder.path("here/here/a")})
    {
        const hoDocumentList::Opening opening = _list.open(path.c_str());
        EXPECT_EQ(opening._result._problem, osFileProblem::None);
        EXPECT_EQ(opening._position, 0U);
        EXPECT_FALSE(opening._isNew);
        EXPECT_EQ(_list.find(path.c_str()), 0U);
    }
    EXPECT_EQ(_list.size(), 2U);
}

TEST_F(DocumentList, TakesThePresentFactsWhenADocumentIsOpenedAgain)
{
    openNew("a", "short");
    _folder.write("a", "rather longer");
    EXPECT_FALSE(_list.open(_folder.path("a").c_str())._isNew);
    EXPECT_EQ(_list[0]._facts._size, 13U);
}

TEST_F(DocumentList, HasNoRowForWhatCannotBeOpened)
{
    ASSERT_EQ(mkfifo(_folder.path("pipe").c_str(), 0600), 0);
    for (const std::string& path : {std::string(), _folder.path(), _folder.path("pipe"), _folder.path("missing")})
    {
        const hoDocumentList::Opening opening = _list.open(path.c_str());
        EXPECT_NE(opening._result._problem, osFileProblem::None);
        EXPECT_EQ(opening._position, hoDocumentList::nowhere);
        EXPECT_FALSE(opening._isNew);
    }
    EXPECT_TRUE(_list.isEmpty());
}

TEST_F(DocumentList, KeepsADocumentWhoseFileWentAway)
{
    openNew("a", "five!");
    std::filesystem::remove(_folder.path("a"));
    EXPECT_EQ(_list.open(_folder.path("a").c_str())._result._problem, osFileProblem::NotThere);
    EXPECT_EQ(_list.size(), 1U);
    EXPECT_EQ(_list[0]._facts._size, 5U);
    EXPECT_EQ(_list[0]._verdict._state, hoDocumentState::NotSigned) << "it stays as it is until it is looked at";
}

TEST_F(DocumentList, TakesAnyName)
{
    for (const char* name : {"two\nlines", "\x01\x1b[31m", "not \xff UTF-8", "\u202egpj.exe", " ", "-x", "a%20b"})
    {
        openNew(name);
        EXPECT_EQ(_list[_list.size() - 1].name(), gtString(name));
    }
}

TEST_F(DocumentList, ClosesWhatItIsTold)
{
    for (const char* name : {"a", "b", "c", "d"})
    {
        openNew(name);
    }
    _list.close({2, 0, 2, 77});
    EXPECT_THAT(namesOf(_list), ElementsAre("b", "d"));
    EXPECT_EQ(_list.find(_folder.path("a").c_str()), hoDocumentList::nowhere);
    EXPECT_EQ(_list.find(_folder.path("d").c_str()), 1U);
    EXPECT_TRUE(_list.open(_folder.path("a").c_str())._isNew);
    _list.closeAll();
    EXPECT_TRUE(_list.isEmpty());
    EXPECT_EQ(_list.find(_folder.path("d").c_str()), hoDocumentList::nowhere);
}

TEST_F(DocumentList, SortsByEveryColumn)
{
    std::filesystem::create_directory(_folder.path("x"));
    openNew("b.txt", "333", 2000);
    openNew("x/A.txt", "1", 3000);
    openNew("a.txt", "22", 1000);
    openNew("C.txt", "22", 1000);

    EXPECT_THAT(_list.sort(Column::Name, true), ElementsAre(2, 1, 0, 3));
    EXPECT_THAT(namesOf(_list), ElementsAre("a.txt", "A.txt", "b.txt", "C.txt"));
    EXPECT_THAT(_list.sort(Column::Name, false), ElementsAre(3, 2, 1, 0));
    EXPECT_THAT(namesOf(_list), ElementsAre("C.txt", "b.txt", "A.txt", "a.txt"));
    _list.sort(Column::Size, true);
    EXPECT_THAT(namesOf(_list), ElementsAre("A.txt", "a.txt", "C.txt", "b.txt"));
    _list.sort(Column::Modified, false);
    EXPECT_THAT(namesOf(_list), ElementsAre("A.txt", "b.txt", "C.txt", "a.txt"));
    _list.sort(Column::Path, true);
    EXPECT_THAT(namesOf(_list), ElementsAre("a.txt", "b.txt", "C.txt", "A.txt"));
    EXPECT_EQ(_list.find(_folder.path("x/A.txt").c_str()), 3U);
}

TEST_F(DocumentList, SortsByStateAndTime)
{
    // All of one size and, but for a part of a second, of one time.
    const std::vector<std::string> names = {"a", "b", "c", "d"};
    const std::vector<long> nanoseconds = {300, 100, 400, 200};
    const std::vector<hoDocumentState> states = {hoDocumentState::Good, hoDocumentState::Bad, hoDocumentState::Good,
                                                 hoDocumentState::Good};
    const std::vector<const char*> keys = {"office", "", "lab", "lab"};
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        const std::string path = _folder.write(names[i], "x");
        const struct timespec times[2] = {{1000, nanoseconds[i]}, {1000, nanoseconds[i]}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        ASSERT_TRUE(_list.open(path.c_str())._isNew);
        hoDocumentVerdict verdict;
        verdict._state = states[i];
        verdict._file = _list[i]._facts;
        verdict._keyName = keys[i];
        _list.setVerdict(path.c_str(), verdict);
        ASSERT_EQ(_list[i]._verdict._state, states[i]);
    }
    _list.sort(Column::Modified, true);
    EXPECT_THAT(namesOf(_list), ElementsAre("b", "d", "a", "c"));
    _list.sort(Column::State, true);
    EXPECT_THAT(namesOf(_list), ElementsAre("c", "d", "a", "b"));
    _list.sort(Column::State, false);
    EXPECT_THAT(namesOf(_list), ElementsAre("b", "a", "d", "c"));
}

TEST_F(DocumentList, ForgetsWhatAKeyHasFound)
{
    openNew("gone");
    openNew("good");
    hoDocumentVerdict verdict;
    verdict._state = hoDocumentState::Good;
    verdict._file = _list[1]._facts;
    verdict._keyName = "lab";
    _list.setVerdict(_list[1]._path, verdict);
    ASSERT_EQ(_list[1]._verdict._state, hoDocumentState::Good);
    std::filesystem::remove(_folder.path("gone"));
    ASSERT_TRUE(_list.refresh(0));
    ASSERT_EQ(_list[0]._verdict._state, hoDocumentState::Missing);
    _list.forgetStates();
    EXPECT_EQ(_list[0]._verdict._state, hoDocumentState::Missing) << "whichever key is used";
    EXPECT_EQ(_list[1]._verdict._state, hoDocumentState::NotSigned);
    EXPECT_TRUE(_list[1]._verdict._keyName.isEmpty());
}

TEST_F(DocumentList, HoldsTenThousandDocuments)
{
    const int amount = 10000;
    for (int i = 0; i < amount; ++i)
    {
        const std::string path = _folder.write(std::to_string(i), "x");
        ASSERT_TRUE(_list.open(path.c_str())._isNew);
    }
    EXPECT_EQ(_list.size(), static_cast<std::size_t>(amount));
    _list.sort(Column::Name, false);
    EXPECT_EQ(_list.find(_folder.path("9999").c_str()), 0U);
    EXPECT_EQ(_list.find(_folder.path("0").c_str()), static_cast<std::size_t>(amount - 1));
}

TEST_F(DocumentList, OrdersNumbersInNamesByTheirValues)
{
    const std::vector<std::string> ordered = {"file",      "file-1",  "File-2",   "file-02b",
                                              "file-0003", "file-10", "file-100", "file-a"};
    for (const std::size_t i : {5U, 2U, 1U, 4U, 3U, 6U, 0U, 7U})
    {
        openNew(ordered[i]);
    }
    for (const auto column : {hoDocumentList::Column::Name, hoDocumentList::Column::Path})
    {
        _list.sort(column, true);
        EXPECT_EQ(namesOf(_list), ordered);
    }
}

// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"

#include "platform/osWrappers/osFileFacts.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <ctime>
#include <limits>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
gtString text(const std::string& bytes)
{
    return gtString(bytes.data(), static_cast<int>(bytes.size()));
}

osFileProblem problemOf(const std::string& path)
{
    osFileFacts facts;
    return osReadFileFacts(text(path), facts)._problem;
}

std::string absolute(const std::string& path)
{
    return osAbsolutePath(text(path)).asCharArray();
}
}  // namespace

TEST(FileFacts, AreThoseOfTheFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("notes.txt", "twelve bytes");
    const struct timespec times[2] = {{1000000000, 5}, {1234567890, 123456789}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    struct stat entry;
    ASSERT_EQ(stat(path.c_str(), &entry), 0);

    osFileFacts facts;
    ASSERT_EQ(osReadFileFacts(text(path), facts)._problem, osFileProblem::None);
    EXPECT_EQ(facts._size, 12U);
    EXPECT_EQ(facts._modifiedSeconds, 1234567890);
    EXPECT_EQ(facts._modifiedNanoseconds, 123456789);
    EXPECT_EQ(facts._fileNumber, entry.st_ino);
    EXPECT_EQ(facts._device, entry.st_dev);
}

TEST(TimeStamps, OfLongAgoAndOfTheFutureMoveAtOnce)
{
    struct timespec now = {};
    ASSERT_EQ(clock_gettime(CLOCK_REALTIME, &now), 0);
    for (const long away : {-1000000000L, -3600L, -10L, 10L, 3600L, 1000000000L})
    {
        for (const long nanoseconds : {0L, 999999999L})
        {
            osFileFacts facts;
            facts._changedSeconds = now.tv_sec + away;
            facts._changedNanoseconds = nanoseconds;
            EXPECT_LE(osTimeUntilStampsMove(facts), 0) << away << " " << nanoseconds;
        }
    }
    // None of the numbers overflows.
    for (const std::int64_t seconds :
         {std::numeric_limits<std::int64_t>::min() / 2, std::int64_t(0), std::numeric_limits<std::int64_t>::max() / 2})
    {
        osFileFacts facts;
        facts._changedSeconds = seconds;
        EXPECT_LE(osTimeUntilStampsMove(facts), 0) << seconds;
    }
}

// Waited for until they have, which the clock sees to.
TEST(TimeStamps, OfAMomentAgoMoveWithTheClock)
{
    const TemporaryFolder folder;
    osFileFacts facts;
    ASSERT_TRUE(osReadFileFacts(text(folder.write("file", "x")), facts).isOk());
    for (std::int64_t left = osTimeUntilStampsMove(facts); left > 0; left = osTimeUntilStampsMove(facts))
    {
        EXPECT_LE(left, 2000000001);
    }
    folder.write("file", "y");
    osFileFacts after;
    ASSERT_TRUE(osReadFileFacts(text(folder.path("file")), after).isOk());
    EXPECT_NE(after, facts);
}

TEST(FileFacts, AnEmptyFileIsADocument)
{
    const TemporaryFolder folder;
    osFileFacts facts;
    facts._size = 7;
    EXPECT_EQ(osReadFileFacts(text(folder.write("empty", "")), facts)._problem, osFileProblem::None);
    EXPECT_EQ(facts._size, 0U);
}

TEST(FileFacts, TellAChangedFileEvenIfSizeAndTimeAreTheSame)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("notes.txt", "one");
    const struct timespec times[2] = {{1000000000, 5}, {1234567890, 123456789}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    osFileFacts before;
    ASSERT_EQ(osReadFileFacts(text(path), before)._problem, osFileProblem::None);
    osFileFacts same;
    ASSERT_EQ(osReadFileFacts(text(path), same)._problem, osFileProblem::None);
    EXPECT_EQ(before, same);

    // Another file under the same name, with the same size and time.
    const std::string other = folder.write("other", "two");
    ASSERT_EQ(utimensat(AT_FDCWD, other.c_str(), times, 0), 0);
    std::filesystem::rename(other, path);
    osFileFacts after;
    ASSERT_EQ(osReadFileFacts(text(path), after)._problem, osFileProblem::None);
    EXPECT_NE(before, after);
}

TEST(FileFacts, RefuseWhatIsNoRegularFile)
{
    const TemporaryFolder folder;
    EXPECT_EQ(problemOf(folder.path()), osFileProblem::IsFolder);
    EXPECT_EQ(problemOf("/"), osFileProblem::IsFolder);
    EXPECT_EQ(problemOf("/dev/null"), osFileProblem::NotRegular);

    // Opening a pipe to read would wait for a writer: this test would run into its time limit.
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(problemOf(folder.path("pipe")), osFileProblem::NotRegular);

    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(folder.path("socket").size(), sizeof address.sun_path);
    folder.path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(server, reinterpret_cast<const struct sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(problemOf(folder.path("socket")), osFileProblem::NotRegular);
    close(server);
}

TEST(FileFacts, NameWhatIsWrongWithAPath)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("file", "x");
    EXPECT_EQ(problemOf(""), osFileProblem::NoName);
    EXPECT_EQ(problemOf(folder.path("missing")), osFileProblem::NotThere);
    EXPECT_EQ(problemOf(file + "/below"), osFileProblem::NotThere);
    EXPECT_EQ(problemOf(file + std::string("\0x", 2)), osFileProblem::NotThere);
    EXPECT_EQ(problemOf(folder.path(std::string(300, 'n'))), osFileProblem::NameTooLong);
    EXPECT_EQ(problemOf(std::string(1000000, 'n')), osFileProblem::NameTooLong);
    EXPECT_EQ(problemOf("https://example.org/document"), osFileProblem::NotLocal);
    EXPECT_EQ(problemOf("/nowhere/https://example.org"), osFileProblem::NotThere);
    EXPECT_EQ(problemOf("://"), osFileProblem::NotThere);
    std::filesystem::create_symlink("circle", folder.path("circle"));
    EXPECT_EQ(problemOf(folder.path("circle")), osFileProblem::TooManyLinks);
    std::filesystem::create_symlink("nothing", folder.path("dangling"));
    EXPECT_EQ(problemOf(folder.path("dangling")), osFileProblem::NotThere);
}

TEST(FileFacts, TellTheSystemsErrorWhereTheSystemRefuses)
{
    const TemporaryFolder folder;
    osFileFacts facts;
    errno = EAGAIN;
    EXPECT_EQ(osReadFileFacts(text(folder.path("missing")), facts)._systemError, ENOENT);
    EXPECT_EQ(osReadFileFacts(text(folder.write("file", "x") + "/below"), facts)._systemError, ENOTDIR);
    // The rest is found without the system.
    errno = EAGAIN;
    EXPECT_EQ(osReadFileFacts("", facts)._systemError, 0);
    EXPECT_EQ(osReadFileFacts(text(folder.path()), facts)._systemError, 0);
    EXPECT_EQ(osReadFileFacts(text(folder.path("file")), facts)._systemError, 0);
}

TEST(FileFacts, RefuseWhatMayNotBeRead)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("secret", "x");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    const pid_t child = fork();
    if (child == 0)
    {
        // Nobody's rights: root may read everything.
        const bool isNobody = geteuid() != 0 || setuid(65534) == 0;
        _exit(isNobody && problemOf(path) == osFileProblem::NotPermitted ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(FileFacts, AreNotTouchedByAFailure)
{
    osFileFacts facts;
    facts._size = 42;
    EXPECT_EQ(osReadFileFacts(text("/"), facts)._problem, osFileProblem::IsFolder);
    EXPECT_EQ(facts._size, 42U);
}

TEST(AbsolutePath, ResolvesTheFolderAndKeepsTheName)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("real"));
    std::filesystem::create_directory_symlink("real", folder.path("link"));
    folder.write("real/file", "x");
    std::filesystem::create_symlink("file", folder.path("real/other"));

    EXPECT_EQ(absolute(folder.path("real/file")), folder.path("real/file"));
    EXPECT_EQ(absolute(folder.path("link/file")), folder.path("real/file"));
    EXPECT_EQ(absolute(folder.path("link/./../real//file")), folder.path("real/file"));
    EXPECT_EQ(absolute(folder.path("link/other")), folder.path("real/other"));
    EXPECT_EQ(absolute(folder.path("link/missing")), folder.path("real/missing"));
    EXPECT_EQ(absolute("/etc"), "/etc");
}

TEST(AbsolutePath, OfARelativePathStartsAtTheCurrentFolder)
{
    const TemporaryFolder folder;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(absolute("file"), folder.path("file"));
    EXPECT_EQ(absolute("./-file"), folder.path("-file"));
    EXPECT_EQ(absolute("a\xff\nb"), folder.path("a\xff\nb"));
    std::filesystem::current_path(before);
}

TEST(AbsolutePath, LeavesAloneWhatItCannotResolve)
{
    for (const char* path : {"", "/", ".", "..", "a/", "/nowhere/at/all/file"})
    {
        EXPECT_EQ(absolute(path), path);
    }
    const std::string withNul("/etc/a\0b", 8);
    EXPECT_TRUE(osAbsolutePath(text(withNul)) == text(withNul));
}

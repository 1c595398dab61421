// SPDX-License-Identifier: Apache-2.0
// What stands between the tests and the system, by calls of the test's own.
#include "tests/support/tsSystemFault.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace
{

// What reading four bytes from the file's start gives: how many, or a negative error number.
long readFour(const std::string& path)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
    {
        return -static_cast<long>(errno);
    }
    char bytes[4];
    const ssize_t amount = ::read(descriptor, bytes, sizeof bytes);
    const long result = amount < 0 ? -static_cast<long>(errno) : static_cast<long>(amount);
    ::close(descriptor);
    return result;
}

class tsSystemFaultTest : public ::testing::Test
{
protected:
    void SetUp() override { _folder.write("file", "content"); }

    TemporaryFolder _folder;
    const std::string _path = _folder.path("file");
};

}  // namespace

TEST_F(tsSystemFaultTest, TheCallOfTheNumberFailsAlone)
{
    {
        const tsSystemFault broken(_folder.path(), "read", 2, EIO);
        EXPECT_EQ(readFour(_path), 4);
        EXPECT_FALSE(broken.hasHappened());
        EXPECT_EQ(readFour(_path), -EIO);
        EXPECT_TRUE(broken.hasHappened());
        EXPECT_EQ(readFour(_path), 4);
        EXPECT_EQ(broken.amountOfCalls(), 3);
    }
    const tsSystemFault shortened(_folder.path(), "read", 1, 0);
    EXPECT_EQ(readFour(_path), 1);
    EXPECT_EQ(readFour(_path), 4);
}

TEST_F(tsSystemFaultTest, AnswersComeInTurnAndTheLastForGood)
{
    tsFault fault{"read", {3, tsWorks, 0, -EIO}};
    {
        const tsSystemFault broken(fault);
        for (const long expected : {3L, 4L, 0L, static_cast<long>(-EIO), 4L})
        {
            EXPECT_EQ(readFour(_path), expected);
        }
    }
    fault._isForGood = true;
    fault._number = 2;
    const tsSystemFault broken(fault);
    for (const long expected : {4L, 3L, 4L, 0L, static_cast<long>(-EIO), static_cast<long>(-EIO)})
    {
        EXPECT_EQ(readFour(_path), expected);
    }
}

TEST_F(tsSystemFaultTest, OtherThreadsFoldersAndDescriptorsAreNotMet)
{
    const TemporaryFolder other;
    other.write("file", "content");
    tsFault fault{"read", {-EIO}};
    fault._isForGood = true;
    const auto readInThread = [&]
    {
        long result = 0;
        std::thread([&] { result = readFour(_path); }).join();
        return result;
    };
    {
        const tsSystemFault everywhere(fault);
        EXPECT_EQ(readInThread(), -EIO);
        EXPECT_EQ(readFour(other.path("file")), -EIO);
    }
    {
        const tsSystemFault ofThread("read", {-EIO});
        EXPECT_EQ(readInThread(), 4);
        EXPECT_EQ(readFour(_path), -EIO);
    }
    tsFault below = fault;
    below._folder = _folder.path();
    {
        const tsSystemFault ofFolder(below);
        EXPECT_EQ(readInThread(), -EIO);
        EXPECT_EQ(readFour(other.path("file")), 4);
    }
    const int kept = ::open(_path.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(kept, 0);
    tsFault ofOne = fault;
    ofOne._descriptor = kept;
    {
        const tsSystemFault ofDescriptor(ofOne);
        EXPECT_EQ(readFour(_path), 4);
        char byte = 0;
        EXPECT_EQ(::read(kept, &byte, 1), -1);
        EXPECT_EQ(errno, EIO);
    }
    EXPECT_EQ(::close(kept), 0);
}

TEST_F(tsSystemFaultTest, TheFirstMadeComesFirst)
{
    const tsSystemFault first("open", {-EACCES});
    const tsSystemFault second("open", {-EMFILE});
    const tsSystemFault ofReads("read", {-EIO});
    EXPECT_EQ(readFour(_path), -EACCES);
    EXPECT_EQ(second.amountOfCalls(), 0);
    EXPECT_EQ(readFour(_path), -EMFILE);
    EXPECT_EQ(readFour(_path), -EIO);
    EXPECT_EQ(readFour(_path), 4);
}

TEST_F(tsSystemFaultTest, ActionsComeBeforeTheirCall)
{
    const tsSystemFault meanwhile(_folder.path(), "open", 2, [&] { ::unlink(_path.c_str()); });
    EXPECT_EQ(readFour(_path), 4);
    EXPECT_EQ(readFour(_path), -ENOENT);
}

TEST_F(tsSystemFaultTest, CallsOfTheTestsOwnHaveAnswers)
{
    tsFault fault{"own", {-EPERM}};
    fault._number = 2;
    const tsSystemFault broken(fault);
    EXPECT_FALSE(tsFails("own"));
    EXPECT_EQ(tsAnswerOf("own"), -EPERM);
    EXPECT_EQ(tsAnswerOf("own"), tsWorks);
    const tsSystemFault again("own", {-EPERM});
    EXPECT_TRUE(tsFails("own"));
    EXPECT_EQ(errno, EPERM);
}

TEST_F(tsSystemFaultTest, CallsAreNoted)
{
    const tsNotedCalls calls;
    EXPECT_EQ(readFour(_path), 4);
    EXPECT_EQ(calls._readSizes, (std::vector<std::size_t>{4}));
    EXPECT_EQ(calls._opened.size(), 1U);
    EXPECT_EQ(calls._closed, calls._opened);
}

TEST_F(tsSystemFaultTest, StampsLoseTheirFractions)
{
    const struct timespec stamps[2] = {{1000, 5}, {1000, 5}};
    ASSERT_EQ(::utimensat(AT_FDCWD, _path.c_str(), stamps, 0), 0);
    struct stat status = {};
    ASSERT_EQ(::stat(_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_nsec, 5);
    const tsWholeSecondStamps whole;
    ASSERT_EQ(::stat(_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1000);
    EXPECT_EQ(status.st_mtim.tv_nsec, 0);
}

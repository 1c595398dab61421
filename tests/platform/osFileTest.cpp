// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <thread>
#include <type_traits>
#include <unistd.h>
#include <vector>

#include "tests/support/failingAllocation.h"
#include "tests/support/tsSystemFault.h"

namespace
{
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

static_assert(!std::is_copy_constructible<osFile>::value, "");
static_assert(std::is_nothrow_default_constructible<osFile>::value, "");

constexpr std::size_t bufferCapacity = 262144;

class osFileTest : public testing::Test
{
protected:
    osFileTest()
    {
        std::string pattern = testing::TempDir() + "osFileXXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr)
        {
            std::abort();
        }
        _folder = pattern;
    }
    ~osFileTest() override { std::filesystem::remove_all(_folder); }

    std::string nameOf(const std::string& name) const { return _folder + "/" + name; }

    osFilePath write(const std::string& name, const std::string& content) const
    {
        std::ofstream(nameOf(name), std::ios::binary) << content;
        return pathOf(nameOf(name));
    }

    static osFilePath pathOf(const std::string& name)
    {
        return osFilePath(gtString(name.data(), static_cast<int>(name.size())));
    }

    static bool open(osFile& file, const osFilePath& path)
    {
        return file.open(path, osChannel::OS_BINARY_CHANNEL, osFile::OS_OPEN_TO_READ);
    }

    // Content of which no two runs of one length are likely to be the same.
    static std::string contentOf(std::size_t size)
    {
        std::mt19937 random(static_cast<unsigned int>(size));
        std::string content(size, '\0');
        for (char& c : content)
        {
            c = static_cast<char>(random());
        }
        return content;
    }

    // Reads on to the end in steps; every step but the last must be full.
    static std::string readInSteps(osFile& file, std::size_t step)
    {
        std::string content;
        std::vector<char> buffer(step);
        unsigned long amount = 0;
        bool wasShort = false;
        while (file.readAvailableData(buffer.data(), step, amount))
        {
            EXPECT_FALSE(wasShort) << "a short step is followed by another";
            EXPECT_GT(amount, 0U);
            EXPECT_LE(amount, step);
            wasShort = amount < step;
            content.append(buffer.data(), amount);
        }
        EXPECT_EQ(amount, 0U);
        return content;
    }

private:
    std::string _folder;
};

TEST_F(osFileTest, EnumeratorsAreZero)
{
    EXPECT_EQ(static_cast<int>(osChannel::OS_BINARY_CHANNEL), 0);
    EXPECT_EQ(static_cast<int>(osFile::OS_OPEN_TO_READ), 0);
}

TEST_F(osFileTest, IsClosedAndFaultlessAtFirst)
{
    const osFile file;
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(file.hasReadError());
    EXPECT_EQ(file.errorNumber(), 0);
}

TEST_F(osFileTest, ReadsEverySizeInEveryStep)
{
    for (const std::size_t size : {std::size_t(0), std::size_t(1), std::size_t(59), std::size_t(60), std::size_t(61),
                                   std::size_t(120), bufferCapacity - 1, bufferCapacity, bufferCapacity + 1,
                                   2 * bufferCapacity, 2 * bufferCapacity + 17, std::size_t(1000003)})
    {
        const std::string content = contentOf(size);
        const osFilePath path = write("file", content);
        for (const std::size_t step : {std::size_t(1), std::size_t(7), std::size_t(60), std::size_t(4096),
                                       bufferCapacity - 1, bufferCapacity, bufferCapacity + 1, std::size_t(3000000)})
        {
            if (step == 1 && size > 2 * bufferCapacity)
            {
                continue;
            }
            osFile file;
            ASSERT_TRUE(open(file, path));
            EXPECT_TRUE(readInSteps(file, step) == content) << size << " bytes in steps of " << step;
            EXPECT_FALSE(file.hasReadError());
            EXPECT_EQ(file.errorNumber(), 0);
        }
    }
}

TEST_F(osFileTest, ReadsInMixedSteps)
{
    const std::string content = contentOf(3000000);
    const osFilePath path = write("file", content);
    for (unsigned int seed = 1; seed <= 20; ++seed)
    {
        std::mt19937 random(seed);
        osFile file;
        ASSERT_TRUE(open(file, path));
        std::string result;
        std::vector<char> buffer(700000);
        for (unsigned long amount = 0;;)
        {
            const unsigned long step = 1 + random() % (random() % 3 == 0 ? 700000U : 2000U);
            if (!file.readAvailableData(buffer.data(), step, amount))
            {
                break;
            }
            ASSERT_EQ(amount, std::min<std::size_t>(step, content.size() - result.size())) << "seed " << seed;
            result.append(buffer.data(), amount);
        }
        EXPECT_TRUE(result == content) << "seed " << seed;
    }
}

TEST_F(osFileTest, SmallReadsAreFewSystemCalls)
{
    const osFilePath path = write("file", contentOf(4 * bufferCapacity));
    osFile file;
    ASSERT_TRUE(open(file, path));
    const tsNotedCalls calls;
    EXPECT_EQ(readInSteps(file, 60).size(), 4 * bufferCapacity);
    EXPECT_THAT(calls._readSizes, AllOf(SizeIs(5), Each(bufferCapacity)));
}

TEST_F(osFileTest, LargeReadsGoStraightToTheCaller)
{
    const std::string content = contentOf(3 * bufferCapacity);
    const osFilePath path = write("file", content);
    std::vector<char> buffer(content.size());
    unsigned long amount = 0;
    {
        osFile file;
        ASSERT_TRUE(open(file, path));
        const tsNotedCalls calls;
        const unsigned long long allocations = amountOfAllocations();
        ASSERT_TRUE(file.readAvailableData(buffer.data(), content.size(), amount));
        EXPECT_LE(amountOfAllocations() - allocations, 1U);  // the test's own list of sizes
        EXPECT_THAT(calls._readSizes, ElementsAre(content.size()));
        EXPECT_EQ(amount, content.size());
        EXPECT_EQ(std::string(buffer.data(), amount), content);
    }
    {
        // So does one of just the buffer's size.
        osFile file;
        ASSERT_TRUE(open(file, path));
        const unsigned long long allocations = amountOfAllocations();
        ASSERT_TRUE(file.readAvailableData(buffer.data(), bufferCapacity, amount));
        EXPECT_EQ(amountOfAllocations(), allocations);
        EXPECT_EQ(amount, bufferCapacity);
    }
    {
        // What is buffered comes first.
        osFile file;
        ASSERT_TRUE(open(file, path));
        const tsNotedCalls calls;
        ASSERT_TRUE(file.readAvailableData(buffer.data(), 10, amount));
        ASSERT_TRUE(file.readAvailableData(buffer.data() + 10, content.size() - 10, amount));
        EXPECT_THAT(calls._readSizes, ElementsAre(bufferCapacity, 2 * bufferCapacity));
        EXPECT_EQ(amount, content.size() - 10);
        EXPECT_EQ(std::string(buffer.data(), content.size()), content);
    }
}

TEST_F(osFileTest, ShortReadsAreNoEnd)
{
    const std::string content = contentOf(bufferCapacity + 500);
    const osFilePath path = write("file", content);
    for (const std::size_t step : {std::size_t(60), content.size(), std::size_t(1000000)})
    {
        osFile file;
        ASSERT_TRUE(open(file, path));
        const tsSystemFault reads("read", {1, 59, 61, 1, 4000, 100, tsWorks, 3, -EINTR, 2});
        EXPECT_TRUE(readInSteps(file, step) == content);
        EXPECT_FALSE(file.hasReadError());
    }
}

TEST_F(osFileTest, InterruptedCallsAreTakenUpAgain)
{
    const std::string content = contentOf(1000);
    const osFilePath path = write("file", content);
    const tsSystemFault opens("open", {-EINTR, -EINTR, -EINTR});
    const tsSystemFault reads("read", {-EINTR, 10, -EINTR, -EINTR});
    osFile file;
    ASSERT_TRUE(open(file, path));
    EXPECT_TRUE(readInSteps(file, 60) == content);
    EXPECT_FALSE(file.hasReadError());
    EXPECT_EQ(file.errorNumber(), 0);
}

// What errno has been left at means nothing when a call succeeds: not with descriptor 0 either, nor at the end.
TEST_F(osFileTest, OldErrorNumbersInterruptNothing)
{
    const osFilePath path = write("file", "abc");
    const int keptInput = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    ASSERT_EQ(::close(STDIN_FILENO), 0);
    {
        osFile file;
        errno = EINTR;
        EXPECT_TRUE(open(file, path));
        char bytes[3];
        unsigned long amountRead = 0;
        EXPECT_TRUE(file.readAvailableData(bytes, sizeof bytes, amountRead));
        errno = EINTR;
        EXPECT_FALSE(file.readAvailableData(bytes, sizeof bytes, amountRead));
    }
    EXPECT_EQ(::fcntl(STDIN_FILENO, F_GETFD), -1) << "opened twice, closed once";
    ASSERT_EQ(::dup2(keptInput, STDIN_FILENO), STDIN_FILENO);
    ASSERT_EQ(::close(keptInput), 0);
}

TEST_F(osFileTest, ErrorIsNoEnd)
{
    const std::string content = contentOf(1000);
    const osFilePath path = write("file", content);
    std::vector<char> buffer(bufferCapacity);
    for (const unsigned long step : {100UL, static_cast<unsigned long>(bufferCapacity)})
    {
        unsigned long amount = 99;
        osFile file;
        ASSERT_TRUE(open(file, path));
        const tsSystemFault broken("read", {-EIO});
        EXPECT_FALSE(file.readAvailableData(buffer.data(), step, amount));
        EXPECT_EQ(amount, 0U);
        EXPECT_TRUE(file.hasReadError());
        EXPECT_EQ(file.errorNumber(), EIO);

        // It stays so, although the system would go on.
        EXPECT_FALSE(file.readAvailableData(buffer.data(), step, amount));
        EXPECT_TRUE(file.hasReadError());
        EXPECT_EQ(file.errorNumber(), EIO);
        EXPECT_EQ(broken.amountOfCalls(), 1);

        file.close();
        EXPECT_TRUE(file.hasReadError());
        EXPECT_EQ(file.errorNumber(), EIO);
        ASSERT_TRUE(open(file, path));
        EXPECT_FALSE(file.hasReadError());
        EXPECT_EQ(file.errorNumber(), 0);
        EXPECT_TRUE(readInSteps(file, 60) == content);
    }
}

TEST_F(osFileTest, BytesFromBeforeAnErrorAreDelivered)
{
    const std::string content = contentOf(1000);
    const osFilePath path = write("file", content);
    std::vector<char> buffer(bufferCapacity);
    for (const unsigned long step : {500UL, static_cast<unsigned long>(bufferCapacity)})
    {
        unsigned long amount = 0;
        osFile file;
        ASSERT_TRUE(open(file, path));
        const tsSystemFault broken("read", {300, -EIO});
        EXPECT_TRUE(file.readAvailableData(buffer.data(), step, amount));
        EXPECT_EQ(std::string(buffer.data(), amount), content.substr(0, 300));
        EXPECT_TRUE(file.hasReadError());
        EXPECT_FALSE(file.readAvailableData(buffer.data(), step, amount));
        EXPECT_EQ(amount, 0U);
        EXPECT_EQ(file.errorNumber(), EIO);
    }
}

TEST_F(osFileTest, EndStaysTheEndWhenTheFileGrows)
{
    const osFilePath path = write("file", "first");
    osFile file;
    ASSERT_TRUE(open(file, path));
    EXPECT_EQ(readInSteps(file, 60), "first");
    std::ofstream(nameOf("file"), std::ios::app) << "second";
    char buffer[60];
    unsigned long amount = 99;
    EXPECT_FALSE(file.readAvailableData(buffer, sizeof buffer, amount));
    EXPECT_EQ(amount, 0U);
    EXPECT_FALSE(file.hasReadError());
    file.close();
    ASSERT_TRUE(open(file, path));
    EXPECT_EQ(readInSteps(file, 60), "firstsecond");
}

TEST_F(osFileTest, FileThatShrinksEndsThere)
{
    const std::string content = contentOf(3 * bufferCapacity);
    const osFilePath path = write("file", content);
    osFile file;
    ASSERT_TRUE(open(file, path));
    char buffer[60];
    unsigned long amount = 0;
    ASSERT_TRUE(file.readAvailableData(buffer, sizeof buffer, amount));
    ASSERT_EQ(::truncate(nameOf("file").c_str(), 100), 0);
    EXPECT_EQ(readInSteps(file, 60), content.substr(60, bufferCapacity - 60));
    EXPECT_FALSE(file.hasReadError());
}

TEST_F(osFileTest, ClosedFileKeepsNoBuffer)
{
    const osFilePath path = write("file", contentOf(1000));
    osFile file;
    ASSERT_TRUE(open(file, path));
    const long live = amountOfLiveAllocations();
    char buffer[60];
    unsigned long amount = 0;
    ASSERT_TRUE(file.readAvailableData(buffer, sizeof buffer, amount));
    EXPECT_EQ(amountOfLiveAllocations(), live + 1);
    file.close();
    EXPECT_EQ(amountOfLiveAllocations(), live);
}

TEST_F(osFileTest, ReadsWithoutMemoryForABuffer)
{
    const std::string content = contentOf(1000);
    const osFilePath path = write("file", content);
    osFile file;
    ASSERT_TRUE(open(file, path));
    std::string result;
    char buffer[60];
    unsigned long amount = 0;
    bool mustGoOn = true;
    while (mustGoOn)
    {
        {
            const FailingAllocation failing(0);
            mustGoOn = file.readAvailableData(buffer, sizeof buffer, amount);
        }
        EXPECT_TRUE(!mustGoOn || amount == 60 || result.size() == 960);
        result.append(buffer, amount);
    }
    EXPECT_EQ(result, content);
    EXPECT_FALSE(file.hasReadError());
}

TEST_F(osFileTest, HugeReadsAreCutIntoSystemCalls)
{
    const std::string content = contentOf(1000);
    const osFilePath path = write("file", content);
    osFile file;
    ASSERT_TRUE(open(file, path));
    const std::size_t size = std::size_t(3) << 30;
    void* const pMemory =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pMemory, MAP_FAILED);
    {
        const tsNotedCalls calls;
        unsigned long amount = 0;
        EXPECT_TRUE(file.readAvailableData(static_cast<char*>(pMemory), size, amount));
        EXPECT_EQ(amount, content.size());
        EXPECT_EQ(std::memcmp(pMemory, content.data(), content.size()), 0);
        EXPECT_THAT(calls._readSizes, ElementsAre(std::size_t(1) << 30, std::size_t(1) << 30));
    }
    ::munmap(pMemory, size);
}

TEST_F(osFileTest, NothingIsReadIntoNothing)
{
    const osFilePath path = write("file", "content");
    osFile file;
    char buffer[60];
    unsigned long amount = 99;
    EXPECT_FALSE(file.readAvailableData(buffer, sizeof buffer, amount));  // nothing is open
    EXPECT_EQ(amount, 0U);
    EXPECT_FALSE(file.hasReadError());

    ASSERT_TRUE(open(file, path));
    amount = 99;
    EXPECT_FALSE(file.readAvailableData(buffer, 0, amount));
    EXPECT_EQ(amount, 0U);
    amount = 99;
    EXPECT_FALSE(file.readAvailableData(nullptr, 60, amount));
    EXPECT_EQ(amount, 0U);
    EXPECT_FALSE(file.hasReadError());
    EXPECT_EQ(readInSteps(file, 60), "content");

    file.close();
    amount = 99;
    EXPECT_FALSE(file.readAvailableData(buffer, sizeof buffer, amount));
    EXPECT_EQ(amount, 0U);
    EXPECT_FALSE(file.hasReadError());
    file.close();
}

TEST_F(osFileTest, ClosingForgetsWhatIsBuffered)
{
    const osFilePath first = write("first", "first content");
    const osFilePath second = write("second", "2nd");
    osFile file;
    char buffer[4];
    unsigned long amount = 0;
    ASSERT_TRUE(open(file, first));
    ASSERT_TRUE(file.readAvailableData(buffer, sizeof buffer, amount));
    file.close();
    EXPECT_FALSE(file.readAvailableData(buffer, sizeof buffer, amount));
    ASSERT_TRUE(open(file, second));
    EXPECT_EQ(readInSteps(file, 60), "2nd");
    file.close();
    ASSERT_TRUE(open(file, first));
    EXPECT_EQ(readInSteps(file, 60), "first content");
}

TEST_F(osFileTest, SecondOpenIsRefusedAndDisturbsNothing)
{
    const osFilePath first = write("first", "first content");
    const osFilePath second = write("second", "second content");
    osFile file;
    EXPECT_FALSE(file.isOpen());
    ASSERT_TRUE(open(file, first));
    EXPECT_TRUE(file.isOpen());
    char buffer[6];
    unsigned long amount = 0;
    ASSERT_TRUE(file.readAvailableData(buffer, sizeof buffer, amount));
    EXPECT_FALSE(open(file, second));
    EXPECT_EQ(file.errorNumber(), EBUSY);
    EXPECT_FALSE(file.hasReadError());
    EXPECT_FALSE(open(file, first));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(readInSteps(file, 60), "content");
    EXPECT_FALSE(open(file, second));
    file.close();
    EXPECT_FALSE(file.isOpen());
    EXPECT_TRUE(open(file, second));
    EXPECT_EQ(file.errorNumber(), 0);
    EXPECT_EQ(readInSteps(file, 60), "second content");
}

// It asks nothing of the system, and what has been found out stays.
TEST_F(osFileTest, RefusedSecondOpenLeavesErrorAndEndAsTheyWere)
{
    const osFilePath path = write("file", "first");
    const osFilePath other = write("other", "other content");
    char buffer[60];
    unsigned long amount = 0;
    osFile ended;
    ASSERT_TRUE(open(ended, path));
    EXPECT_EQ(readInSteps(ended, 60), "first");
    std::ofstream(nameOf("file"), std::ios::app) << "second";
    {
        const tsNotedCalls calls;
        EXPECT_FALSE(open(ended, other));
        EXPECT_FALSE(ended.open(other, static_cast<osChannel::osChannelType>(1), osFile::OS_OPEN_TO_READ));
        EXPECT_EQ(ended.errorNumber(), EBUSY);
        EXPECT_THAT(calls._opened, SizeIs(0));
        EXPECT_THAT(calls._closed, SizeIs(0));
    }
    EXPECT_FALSE(ended.readAvailableData(buffer, sizeof buffer, amount)) << "the end is where it was met";
    EXPECT_FALSE(ended.hasReadError());

    osFile faulty;
    ASSERT_TRUE(open(faulty, path));
    {
        const tsSystemFault broken("read", {-EIO});
        EXPECT_FALSE(faulty.readAvailableData(buffer, sizeof buffer, amount));
    }
    EXPECT_FALSE(open(faulty, other));
    EXPECT_EQ(faulty.errorNumber(), EBUSY);
    EXPECT_TRUE(faulty.hasReadError());
    EXPECT_FALSE(faulty.readAvailableData(buffer, sizeof buffer, amount));
    EXPECT_EQ(amount, 0U);
    EXPECT_TRUE(faulty.isOpen());
    faulty.close();
    EXPECT_TRUE(faulty.hasReadError());
}

// Of any size, in any state, with something in the buffer or without.
TEST_F(osFileTest, NullTakesNothingAndClosedFilesGiveNothing)
{
    const std::string content = contentOf(2 * bufferCapacity);
    const osFilePath path = write("file", content);
    char buffer[60];
    std::vector<char> large(bufferCapacity);
    unsigned long amount = 0;
    osFile file;
    const auto expectNothing = [&](bool isClosed)
    {
        for (const unsigned long size : {0UL, 60UL, static_cast<unsigned long>(bufferCapacity)})
        {
            amount = 99;
            EXPECT_FALSE(file.readAvailableData(nullptr, size, amount)) << size;
            EXPECT_EQ(amount, 0U) << size;
            if (isClosed)
            {
                amount = 99;
                EXPECT_FALSE(file.readAvailableData(large.data(), size, amount)) << size;
                EXPECT_EQ(amount, 0U) << size;
            }
        }
        EXPECT_FALSE(file.hasReadError());
        EXPECT_EQ(file.errorNumber(), 0);
    };
    const tsNotedCalls calls;
    expectNothing(true);
    ASSERT_TRUE(open(file, path));
    expectNothing(false);
    EXPECT_THAT(calls._readSizes, SizeIs(0));
    ASSERT_TRUE(file.readAvailableData(buffer, sizeof buffer, amount));
    expectNothing(false);
    EXPECT_THAT(calls._readSizes, SizeIs(1));
    EXPECT_TRUE(readInSteps(file, 1000) == content.substr(60));
    expectNothing(false);
    file.close();
    expectNothing(true);
    ASSERT_TRUE(open(file, path));
    ASSERT_TRUE(file.readAvailableData(buffer, sizeof buffer, amount));
    file.close();
    expectNothing(true);
}

TEST_F(osFileTest, OpensRegularFilesOnly)
{
    write("file", "content");
    ASSERT_EQ(::mkfifo(nameOf("pipe").c_str(), 0600), 0);
    ASSERT_EQ(::symlink("file", nameOf("link").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", nameOf("dangling").c_str()), 0);
    ASSERT_EQ(::symlink(".", nameOf("folderLink").c_str()), 0);
    const struct
    {
        std::string name;
        int errorNumber;
    } refused[] = {
        {nameOf("missing"), ENOENT},
        {nameOf("missing/file"), ENOENT},
        {nameOf("file/"), ENOTDIR},
        {nameOf("file/x"), ENOTDIR},
        {nameOf(""), EISDIR},
        {nameOf("folderLink"), EISDIR},
        {nameOf("dangling"), ENOENT},
        {nameOf("pipe"), ENOTSUP},
        {"/dev/null", ENOTSUP},
        {"/dev/zero", ENOTSUP},
        {"", ENOENT},
        {nameOf(std::string(300, 'n')), ENAMETOOLONG},
        {nameOf(std::string("file\0", 5)), EINVAL},
        {nameOf(std::string("file\0x", 6)), EINVAL},
    };
    const tsNotedCalls calls;
    for (const auto& one : refused)
    {
        osFile file;
        EXPECT_FALSE(open(file, pathOf(one.name))) << one.name;
        EXPECT_EQ(file.errorNumber(), one.errorNumber) << one.name;
        EXPECT_FALSE(file.isOpen());
        EXPECT_FALSE(file.hasReadError());
        char buffer[10];
        unsigned long amount = 99;
        EXPECT_FALSE(file.readAvailableData(buffer, sizeof buffer, amount));
        EXPECT_EQ(amount, 0U);
        // The same object can open another one.
        EXPECT_TRUE(open(file, pathOf(nameOf("link"))));
        EXPECT_EQ(file.errorNumber(), 0);
        EXPECT_EQ(readInSteps(file, 60), "content");
    }
    EXPECT_EQ(calls._opened.size(), calls._closed.size());
}

TEST_F(osFileTest, UnknownChannelsAndModesAreRefused)
{
    const osFilePath path = write("file", "content");
    osFile file;
    EXPECT_FALSE(file.open(path, static_cast<osChannel::osChannelType>(1), osFile::OS_OPEN_TO_READ));
    EXPECT_EQ(file.errorNumber(), EINVAL);
    EXPECT_FALSE(file.open(path, osChannel::OS_BINARY_CHANNEL, static_cast<osFile::osOpenMode>(1)));
    EXPECT_EQ(file.errorNumber(), EINVAL);
    EXPECT_FALSE(file.isOpen());
}

TEST_F(osFileTest, SystemsRefusalsAreTold)
{
    const osFilePath path = write("file", "content");
    osFile file;
    const tsNotedCalls calls;
    {
        const tsSystemFault broken("open", {-EMFILE});
        EXPECT_FALSE(open(file, path));
        EXPECT_EQ(file.errorNumber(), EMFILE);
    }
    {
        const tsSystemFault broken("fstat", {-EIO});
        EXPECT_FALSE(open(file, path));
        EXPECT_EQ(file.errorNumber(), EIO);
        EXPECT_FALSE(file.isOpen());
    }
    {
        const tsSystemFault broken("fcntl", {-EPERM});
        EXPECT_FALSE(open(file, path));
        EXPECT_EQ(file.errorNumber(), EPERM);
    }
    {
        const tsSystemFault broken("fcntl", {tsWorks, -EPERM});
        EXPECT_FALSE(open(file, path));
        EXPECT_EQ(file.errorNumber(), EPERM);
    }
    EXPECT_EQ(calls._opened, calls._closed);

    EXPECT_TRUE(open(file, path));
    EXPECT_EQ(readInSteps(file, 60), "content");
}

using osFileDeathTest = osFileTest;

TEST_F(osFileDeathTest, UnreadableFileIsRefused)
{
    const osFilePath path = write("file", "content");
    ASSERT_EQ(::chmod(nameOf("").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(nameOf("file").c_str(), 0), 0);
    EXPECT_EXIT(
        {
            // Root may read everything.
            if (::geteuid() == 0 && ::setuid(65534) != 0)
            {
                std::_Exit(1);
            }
            osFile file;
            std::_Exit((!open(file, path) && file.errorNumber() == EACCES) ? 7 : 2);
        },
        testing::ExitedWithCode(7), "");
}

TEST_F(osFileTest, ClosesItself)
{
    const osFilePath path = write("file", "content");
    const tsNotedCalls calls;
    {
        osFile file;
        ASSERT_TRUE(open(file, path));
    }
    ASSERT_THAT(calls._opened, SizeIs(1));
    EXPECT_EQ(calls._closed, calls._opened);
    {
        osFile file;
        ASSERT_TRUE(open(file, path));
        file.close();
        file.close();
    }
    EXPECT_EQ(calls._closed, calls._opened);
}

TEST_F(osFileTest, DescriptorIsNotInheritedAndBlocks)
{
    const osFilePath path = write("file", "content");
    const tsNotedCalls calls;
    osFile file;
    ASSERT_TRUE(open(file, path));
    ASSERT_THAT(calls._opened, SizeIs(1));
    EXPECT_EQ(::fcntl(calls._opened[0], F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(::fcntl(calls._opened[0], F_GETFL) & (O_ACCMODE | O_NONBLOCK), O_RDONLY);
}

TEST_F(osFileTest, TellsTheSize)
{
    const osFilePath path = write("file", "content");
    osFile file;
    unsigned long long size = 99;
    EXPECT_FALSE(file.fileSize(size));
    EXPECT_EQ(size, 99U);
    ASSERT_TRUE(open(file, path));
    EXPECT_TRUE(file.fileSize(size));
    EXPECT_EQ(size, 7U);
    std::ofstream(nameOf("file"), std::ios::app) << "!";
    EXPECT_TRUE(file.fileSize(size));
    EXPECT_EQ(size, 8U);
    EXPECT_EQ(::truncate(nameOf("file").c_str(), off_t(5) << 30), 0);
    EXPECT_TRUE(file.fileSize(size));
    EXPECT_EQ(size, 5ULL << 30);
    // However much of it has been read.
    char buffer[60];
    unsigned long amount = 0;
    EXPECT_TRUE(file.readAvailableData(buffer, sizeof buffer, amount));
    EXPECT_TRUE(file.fileSize(size));
    EXPECT_EQ(size, 5ULL << 30);
    {
        const tsSystemFault broken("fstat", {-EIO});
        size = 99;
        EXPECT_FALSE(file.fileSize(size));
        EXPECT_EQ(size, 99U);
    }
    file.close();
    EXPECT_FALSE(file.fileSize(size));
}

TEST_F(osFileTest, ReadsFilesThatDoNotTellTheirSize)
{
    osFile file;
    if (!open(file, pathOf("/proc/version")))
    {
        GTEST_SKIP() << "there is no /proc/version here";
    }
    std::string expected;
    std::getline(std::ifstream("/proc/version"), expected);
    EXPECT_EQ(readInSteps(file, 7), expected + "\n");
}

TEST_F(osFileTest, OpeningReadingAndClosingDoNotThrow)
{
    const osFilePath path = write("file", "content");
    const FailingAllocation failing(0);
    osFile file;
    char buffer[10];
    unsigned long amount = 0;
    const bool isOpened = open(file, path);
    const bool isRead = file.readAvailableData(buffer, sizeof buffer, amount);
    file.close();
    EXPECT_TRUE(isOpened);
    EXPECT_TRUE(isRead);
    EXPECT_EQ(amount, 7U);
}

TEST_F(osFileTest, FactsAreThoseOfTheOpenFileWhateverItsNameLeadsTo)
{
    const osFilePath path = write("file", "seven 7");
    osFile file;
    osFileFacts facts;
    EXPECT_FALSE(file.readFacts(facts));
    ASSERT_TRUE(open(file, path));
    ASSERT_TRUE(file.readFacts(facts));
    osFileFacts ofTheName;
    ASSERT_TRUE(osReadFileFacts(path.asString(), ofTheName).isOk());
    EXPECT_EQ(facts, ofTheName);

    const osFilePath other = write("other", "more than seven");
    std::filesystem::rename(other.asString().asCharArray(), path.asString().asCharArray());
    ASSERT_TRUE(osReadFileFacts(path.asString(), ofTheName).isOk());
    ASSERT_TRUE(file.readFacts(facts));
    EXPECT_EQ(facts._size, 7U);
    EXPECT_EQ(ofTheName._size, 15U);
    EXPECT_NE(facts._fileNumber, ofTheName._fileNumber);

    const tsSystemFault broken("fstat", {-EIO});
    EXPECT_FALSE(file.readFacts(facts));
    EXPECT_EQ(file.errorNumber(), EIO);
    file.close();
    EXPECT_FALSE(file.readFacts(facts));
}

TEST_F(osFileTest, SeveralThreadsReadOneFileEachForItself)
{
    const std::string content = contentOf(600000);
    const osFilePath path = write("file", content);
    std::vector<std::thread> threads;
    std::vector<int> good(4, 0);
    for (std::size_t i = 0; i < good.size(); ++i)
    {
        threads.emplace_back(
            [&, i]()
            {
                osFile file;
                good[i] = (open(file, path) && readInSteps(file, 60 + i) == content) ? 1 : 0;
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_THAT(good, Each(1));
}
}  // namespace

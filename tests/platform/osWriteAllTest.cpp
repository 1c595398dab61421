// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osWriteAll.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <thread>
#include <unistd.h>

TEST(WriteAll, WritesMoreThanThePipeHoldsAtOnce)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    std::string received;
    std::thread reader(
        [&]
        {
            char buffer[1000];
            for (ssize_t amount = ::read(ends[0], buffer, sizeof buffer); amount > 0;
                 amount = ::read(ends[0], buffer, sizeof buffer))
            {
                received.append(buffer, static_cast<std::size_t>(amount));
            }
        });
    std::string bytes(1000000, 'x');
    bytes[0] = '\0';
    bytes.back() = 'y';
    EXPECT_EQ(osWriteAll(ends[1], bytes), 0);
    EXPECT_EQ(osWriteAll(ends[1], ""), 0);
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);
    EXPECT_TRUE(received == bytes);
}

TEST(WriteAll, TellsTheSystemsError)
{
    EXPECT_EQ(osWriteAll(-1, "x"), EBADF);
    EXPECT_EQ(osWriteAll(-1, ""), 0);
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
    EXPECT_EQ(osWriteAll(ends[1], std::string(1000000, 'x')), EAGAIN);
    ::close(ends[0]);
    ::close(ends[1]);
}

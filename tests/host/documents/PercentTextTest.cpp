// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoPercentText.h"

#include <gtest/gtest.h>

#include <string>

TEST(PercentText, ComesBackForEveryByte)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
    {
        bytes += static_cast<char>(byte);
    }
    const gtString text = hoToPercentText(bytes + bytes);
    EXPECT_EQ(hoFromPercentText(text), bytes + bytes);
    for (const char byte : text.asStringView())
    {
        EXPECT_TRUE(byte > ' ' && byte < 0x7f && byte != '=');
    }
    EXPECT_EQ(hoToPercentText("/a b~"), "/a%20b~");
    EXPECT_EQ(hoToPercentText("\xff=\n"), "%FF%3D%0A");
    EXPECT_EQ(hoFromPercentText("%ff%3d"), "\xff=");
    EXPECT_EQ(hoFromPercentText("%"), "%");
    EXPECT_EQ(hoFromPercentText("%4"), "%4");
    EXPECT_EQ(hoFromPercentText("%4g%2F"), "%4g/");
}

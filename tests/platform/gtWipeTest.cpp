// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <iterator>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "platform/baseTools/gtString.h"
#include "platform/baseTools/gtWipe.h"

TEST(Wipe, LeavesZerosAndNothingElse)
{
    std::string bytes(100, 'x');
    gtWipe(&bytes[10], 80);
    EXPECT_EQ(bytes, std::string(10, 'x') + std::string(80, '\0') + std::string(10, 'x'));
    gtWipe(nullptr, 5);
}

TEST(Wipe, EmptiesATextAndItsMemory)
{
    gtString text("a secret that is too long for the text object itself");
    const char* pCharacters = text.asCharArray();
    const int length = text.length();
    gtWipe(text);
    EXPECT_TRUE(text.isEmpty());
    // The memory still belongs to the text.
    ASSERT_EQ(text.asCharArray(), pCharacters);
    for (int i = 0; i < length; ++i)
    {
        ASSERT_EQ(pCharacters[i], '\0');
    }
}

TEST(WipedText, IsOverwrittenWhereItStood)
{
    // A short text stands in the object itself.
    const std::string secret = "secret";
    alignas(gtWipedText) unsigned char place[sizeof(gtWipedText)];
    auto* pText = new (place) gtWipedText{"secret"};
    ASSERT_NE(std::search(std::begin(place), std::end(place), std::begin(secret), std::end(secret)), std::end(place));
    pText->~gtWipedText();
    EXPECT_EQ(std::search(std::begin(place), std::end(place), std::begin(secret), std::end(secret)), std::end(place));
}

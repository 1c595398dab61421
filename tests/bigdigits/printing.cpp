// SPDX-License-Identifier: Apache-2.0
// Printing, to the letter.
#include "Digits.h"

extern "C" int usedFromC(void);

namespace
{

std::string printed(void (*print)(const mpDigit[], uint32_t), const Digits& a, uint32_t ndigits)
{
    testing::internal::CaptureStdout();
    print(a, ndigits);
    return testing::internal::GetCapturedStdout();
}

TEST(Printing, OneLine)
{
    const Digits a{0xABCDEF, 0, 0x12345678U};
    EXPECT_EQ(printed(mpPrint, a, 3), "12345678 00000000 00abcdef ");
    EXPECT_EQ(printed(mpPrint, a, 2), "00000000 00abcdef ");
    EXPECT_EQ(printed(mpPrint, a, 0), "");
}

TEST(Printing, OneLineOfManyDigits)
{
    const Digits a{1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(printed(mpPrint, a, 9),
              "00000009 00000008 00000007 00000006 00000005 00000004 00000003 00000002 00000001 ");
}

TEST(Printing, EightDigitsALine)
{
    const Digits a{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
    EXPECT_EQ(printed(mpPrintNL, a, 0), "\n");
    EXPECT_EQ(printed(mpPrintNL, a, 1), "00000001 \n");
    EXPECT_EQ(printed(mpPrintNL, a, 8), "00000008 00000007 00000006 00000005 00000004 00000003 00000002 00000001 \n");
    EXPECT_EQ(printed(mpPrintNL, a, 9),
              "00000009 00000008 00000007 00000006 00000005 00000004 00000003 00000002 \n00000001 \n");
    EXPECT_EQ(printed(mpPrintNL, a, 17), "00000011 00000010 0000000f 0000000e 0000000d 0000000c 0000000b 0000000a \n"
                                         "00000009 00000008 00000007 00000006 00000005 00000004 00000003 00000002 \n"
                                         "00000001 \n");
}

TEST(Printing, SignificantDigitsOnly)
{
    const Digits a{0xFF, 1, 0, 0};
    EXPECT_EQ(printed(mpPrintTrim, a, 4), "00000001 000000ff ");
    EXPECT_EQ(printed(mpPrintTrimNL, a, 4), "00000001 000000ff \n");
    const Digits nine{0, 0, 0, 0, 0, 0, 0, 0, 9, 0};
    EXPECT_EQ(printed(mpPrintTrimNL, nine, 10),
              "00000009 00000000 00000000 00000000 00000000 00000000 00000000 00000000 \n00000000 \n");
}

TEST(Printing, AtLeastOneDigit)
{
    const Digits zero{0, 0};
    EXPECT_EQ(printed(mpPrintTrim, zero, 2), "00000000 ");
    EXPECT_EQ(printed(mpPrintTrimNL, zero, 2), "00000000 \n");
    const Digits a{0xBEEF, 1};
    EXPECT_EQ(printed(mpPrintTrim, a, 0), "0000beef ");
    EXPECT_EQ(printed(mpPrintTrimNL, a, 0), "0000beef \n");
}

TEST(Linkage, EverythingCanBeCalledFromC)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(usedFromC(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "00000000 00000007 \n00000007 00000007 \n");
}

}  // namespace

// SPDX-License-Identifier: Apache-2.0
// Values in sentences, and the room's texts in another language.
#include "host/messages/hoFilledText.h"
#include "host/messages/hoLanguage.h"
#include "host/messages/hoMessages.h"
#include "host/messages/hoNumbers.h"

#include <gtest/gtest.h>

#include <climits>

#include <climits>

namespace
{
// Other tests expect English.
class Language : public testing::Test
{
protected:
    ~Language() override { hoSetLanguage(hoLanguage()); }

    static void use(const hoNumberMarks& marks)
    {
        hoLanguage language;
        language._translate = [](const char* pText) { return gtString("<").append(pText).append(">"); };
        language._translatePlural = [](const char* pOne, const char* pMany, std::uint64_t amount)
        { return gtString("{").append(amount == 0 ? pOne : pMany).append("}"); };
        language._marks = marks;
        hoSetLanguage(language);
    }
};
}  // namespace

TEST(FilledText, PutsValuesInTheirPlaces)
{
    EXPECT_EQ(hoFilledText("%s of %s", {"1", "2"}), "1 of 2");
    EXPECT_EQ(hoFilledText("%2$s, %1$s", {"1", "2"}), "2, 1");
    EXPECT_EQ(hoFilledText("%3$s, %s, %1$s, %s", {"1", "2", "3"}), "3, 1, 1, 2");
    EXPECT_EQ(hoFilledText("100 %% of %s", {"it"}), "100 % of it");
    // What stands in a value is no place.
    EXPECT_EQ(hoFilledText("%s %s", {"%s", "%1$s"}), "%s %1$s");
}

TEST(FilledText, ReadsNothingBehindTheValues)
{
    EXPECT_EQ(hoFilledText("%s%s", {"1"}), "1");
    EXPECT_EQ(hoFilledText("%3$s", {"1"}), "");
    EXPECT_EQ(hoFilledText("%d %", {"1"}), "%d %");
    EXPECT_EQ(hoFilledText("%1$", {"1"}), "%1$");
}

TEST_F(Language, IsEnglishUnlessSet)
{
    EXPECT_EQ(hoTranslated("text"), "text");
    EXPECT_EQ(hoTranslatedPlural("one", "many", 1), "one");
    EXPECT_EQ(hoTranslatedPlural("one", "many", 0), "many");
}

TEST_F(Language, TranslatesWholeSentences)
{
    use(hoNumberMarks());
    EXPECT_EQ(hoFileReason(osFileProblem::NoName), "<the name is empty>");
    hoKeyFileFacts facts;
    facts._problem = hoKeyFileProblem::SizeNotSupported;
    facts._bits = 1000;
    EXPECT_EQ(hoKeyFileReason(facts), "<the key has 1000 bits; keys have a multiple of 32, up to 16384>");
    EXPECT_EQ(hoExactSizeText(0), "{0 byte}");
    EXPECT_EQ(hoExactSizeText(1), "{1 bytes}");
    // What scripts read stays as it is.
    EXPECT_EQ(hoVerdictText(hoVerdict::Good), "good");
    EXPECT_EQ(hoAmountText(2, "file", "files"), "2 files");
    EXPECT_EQ(hoPrivateEncryptionWarning(),
              "everybody with the public key can read what is encrypted with the private one");
}

TEST_F(Language, HasMarksOfItsOwnInNumbers)
{
    use({".", ",", "\3"});
    EXPECT_EQ(hoNumberText(1234567), "1.234.567");
    EXPECT_EQ(hoAmountText(1234567, "file", "files"), "1,234,567 files") << "as scripts read it";
    EXPECT_EQ(hoSizeText(1234), "<1,23 kB>");
    use({"'", ".", "\3\2"});
    EXPECT_EQ(hoNumberText(123456789), "12'34'56'789");
    use({"'", ".", gtString("\3").append(static_cast<char>(CHAR_MAX))});
    EXPECT_EQ(hoNumberText(123456789), "123456'789");
    use({"", ".", ""});
    EXPECT_EQ(hoNumberText(1234567), "1234567");
}

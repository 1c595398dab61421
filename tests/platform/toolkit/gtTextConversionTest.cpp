// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/gtTextConversion.h"

#include <clocale>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <wx/strconv.h>

namespace
{

gtString bytes(const std::string& text)
{
    return gtString(text.data(), static_cast<int>(text.size()));
}

std::string asStd(const gtString& text)
{
    return std::string(text.asCharArray(), static_cast<std::size_t>(text.length()));
}

// Valid UTF-8 as the standard's table of well-formed sequences has it: an oracle of its own.
bool isWellFormed(const std::string& text)
{
    const auto at = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
    const auto isIn = [](unsigned value, unsigned low, unsigned high) { return value >= low && value <= high; };
    for (std::size_t i = 0; i < text.size();)
    {
        const unsigned lead = at(i);
        unsigned low = 0x80;
        unsigned high = 0xBF;
        std::size_t more = 0;
        if (lead < 0x80)
        {
            more = 0;
        }
        else if (isIn(lead, 0xC2, 0xDF))
        {
            more = 1;
        }
        else if (isIn(lead, 0xE0, 0xEF))
        {
            more = 2;
            low = lead == 0xE0 ? 0xA0 : 0x80;
            high = lead == 0xED ? 0x9F : 0xBF;
        }
        else if (isIn(lead, 0xF0, 0xF4))
        {
            more = 3;
            low = lead == 0xF0 ? 0x90 : 0x80;
            high = lead == 0xF4 ? 0x8F : 0xBF;
        }
        else
        {
            return false;
        }
        for (std::size_t k = 1; k <= more; ++k)
        {
            if (!isIn(at(i + k), k == 1 ? low : 0x80, k == 1 ? high : 0xBF))
            {
                return false;
            }
        }
        i += more + 1;
    }
    return true;
}

bool isShowable(const wxString& text)
{
    for (const wxUniChar character : text)
    {
        const wxUint32 codePoint = character.GetValue();
        if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
        {
            return false;
        }
    }
    return true;
}

// Bytes that reach every branch of a decoder far more often than random ones do.
std::string oddBytes(std::mt19937& random)
{
    static const unsigned char alphabet[] = {'A',  '/',  0x00, 0x80, 0x82, 0x8F, 0x90, 0x9F, 0xA0, 0xA9, 0xBF,
                                             0xC0, 0xC3, 0xE0, 0xE2, 0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xFC, 0xFF};
    std::string text(random() % 10, '\0');
    for (char& character : text)
    {
        character = static_cast<char>(alphabet[random() % sizeof(alphabet)]);
    }
    return text;
}

class TextConversion : public testing::TestWithParam<const char*>
{
protected:
    TextConversion() { _hasLocale = std::setlocale(LC_ALL, GetParam()) != nullptr; }
    ~TextConversion() override { static_cast<void>(std::setlocale(LC_ALL, "C")); }
    void SetUp() override { ASSERT_TRUE(_hasLocale) << GetParam(); }

    bool _hasLocale;
};

TEST_P(TextConversion, Utf8IsReadAsUtf8)
{
    EXPECT_EQ(gtTextFromBytes("caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"), wxString(L"caf\u00E9 \u20AC \U0001F600"));
    EXPECT_EQ(gtTextFromBytes(bytes("a\xC3\xBCz")), wxString(L"a\u00FCz"));
}

TEST_P(TextConversion, NothingGivesNothing)
{
    EXPECT_TRUE(gtTextFromBytes("").empty());
    EXPECT_TRUE(gtTextFromBytes(static_cast<const char*>(nullptr)).empty());
    EXPECT_TRUE(gtTextFromBytes(nullptr, 0).empty());
    EXPECT_TRUE(gtTextFromBytes(gtString()).empty());
    EXPECT_TRUE(gtPathTextFromBytes(gtString()).empty());
    EXPECT_EQ(gtPathBytesFromText(wxString()).length(), 0);
    EXPECT_EQ(gtBytesFromText(wxString()).length(), 0);
    EXPECT_EQ(gtBytesFromArgument(wxString()).length(), 0);
}

TEST_P(TextConversion, OtherBytesAreReadCharacterByCharacter)
{
    EXPECT_EQ(gtTextFromBytes("caf\xE9.txt"), wxString(L"caf\u00E9.txt"));
    EXPECT_EQ(gtTextFromBytes("\xFF"), wxString(L"\u00FF"));
    EXPECT_EQ(gtTextFromBytes("\xC0\xAF").length(), 2U);
}

TEST_P(TextConversion, EmbeddedNulsStay)
{
    EXPECT_EQ(gtTextFromBytes("a\0b", 3), wxString(L"a\0b", 3));
    EXPECT_EQ(gtTextFromBytes("a\0\xFF", 3), wxString(L"a\0\u00FF", 3));
    EXPECT_EQ(asStd(gtBytesFromText(wxString(L"a\0\u00E9", 3))), std::string("a\0\xC3\xA9", 4));
}

TEST_P(TextConversion, AnyBytesGiveAWholeText)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i)
    {
        const std::string odd = oddBytes(random);
        const wxString text = gtTextFromBytes(bytes(odd));
        ASSERT_EQ(text.empty(), odd.empty());
        // A character takes at most six bytes in any encoding that the locale may have: nothing has been cut off.
        ASSERT_GE(6 * text.length(), odd.size()) << testing::PrintToString(odd);
        ASSERT_TRUE(isShowable(gtShowableText(text))) << testing::PrintToString(odd);
        ASSERT_EQ(gtShowableText(text).length(), text.length());
        if (isWellFormed(odd))
        {
            ASSERT_EQ(asStd(gtBytesFromText(text)), odd) << testing::PrintToString(odd);
            ASSERT_EQ(text, wxString::FromUTF8(odd.data(), odd.size()));
        }
    }
}

TEST_P(TextConversion, APathGoesBackToTheSameBytes)
{
    std::mt19937 random(2);
    for (int i = 0; i < 50000; ++i)
    {
        const std::string odd = oddBytes(random);
        const wxString text = gtPathTextFromBytes(bytes(odd));
        ASSERT_TRUE(isShowable(text)) << testing::PrintToString(odd);
        ASSERT_EQ(text.empty(), odd.empty());
        ASSERT_EQ(asStd(gtPathBytesFromText(text)), odd) << testing::PrintToString(odd);
    }
}

TEST_P(TextConversion, EveryByteAloneIsAPath)
{
    for (int i = 1; i < 256; ++i)
    {
        const std::string path{'/', static_cast<char>(i), 'x'};
        EXPECT_EQ(asStd(gtPathBytesFromText(gtPathTextFromBytes(bytes(path)))), path) << i;
    }
}

TEST_P(TextConversion, APathThatIsUtf8ReadsAsItIs)
{
    EXPECT_EQ(gtPathTextFromBytes(bytes("/tmp/\xC3\xA9t\xC3\xA9.txt")), wxString(L"/tmp/\u00E9t\u00E9.txt"));
    EXPECT_EQ(gtPathTextFromBytes(bytes("/\xFF")), wxString(L"/\U001000FF"));
    // Half a surrogate pair, a code point that does not exist, an overlong slash: not UTF-8 although they look like it.
    EXPECT_EQ(gtPathTextFromBytes(bytes("\xED\xA0\x80")), wxString(L"\U001000ED\U001000A0\U00100080"));
    EXPECT_EQ(gtPathTextFromBytes(bytes("\xF4\x90\x80\x80")).length(), 4U);
    EXPECT_EQ(gtPathTextFromBytes(bytes("\xC0\xAF")).length(), 2U);
    // The characters that stand for bytes are no exception.
    const std::string privateUse = "\xF4\x80\x83\xBF";
    EXPECT_EQ(gtPathTextFromBytes(bytes(privateUse)).length(), 4U);
    EXPECT_EQ(asStd(gtPathBytesFromText(gtPathTextFromBytes(bytes(privateUse)))), privateUse);
}

// What is no character is read byte by byte, and only that.
TEST_P(TextConversion, EverySequenceIsACharacterOrItIsNot)
{
    const unsigned char further[] = {0x7F, 0x80, 0xBF, 0xC0};
    for (unsigned lead = 0x80; lead <= 0xFF; ++lead)
    {
        for (unsigned second = 1; second <= 0xFF; ++second)
        {
            for (unsigned i = 0; i < 16; ++i)
            {
                const char all[] = {static_cast<char>(lead), static_cast<char>(second),
                                    static_cast<char>(further[i / 4]), static_cast<char>(further[i % 4])};
                for (const std::size_t length : {std::size_t(2), std::size_t(3), std::size_t(4)})
                {
                    const std::string sequence(all, length);
                    const wxString text = gtPathTextFromBytes(bytes(sequence));
                    bool hasByte = false;
                    for (const wxUniChar character : text)
                    {
                        hasByte = hasByte || (character.GetValue() >= 0x100080 && character.GetValue() <= 0x1000FF);
                    }
                    const bool isForByte = sequence.compare(0, 3, "\xF4\x80\x80") == 0;
                    ASSERT_EQ(hasByte, isForByte || !isWellFormed(sequence)) << testing::PrintToString(sequence);
                }
            }
        }
    }
}

TEST_P(TextConversion, TheCharactersThatStandForBytesEndWhereTheyEnd)
{
    EXPECT_EQ(gtPathTextFromBytes(bytes("\xF3\xBF\xBF\xBF")), wxString(L"\U000FFFFF"));
    EXPECT_EQ(gtPathTextFromBytes(bytes("\xF4\x80\x80\x80")).length(), 4U);
    EXPECT_EQ(gtPathTextFromBytes(bytes("\xF4\x80\x84\x80")), wxString(L"\U00100100"));
}

TEST_P(TextConversion, AnyTextGivesAPath)
{
    EXPECT_EQ(asStd(gtPathBytesFromText(wxString(L"/tmp/\u00E9\U0001F600"))), "/tmp/\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(asStd(gtPathBytesFromText(wxString("a") + wxUniChar(0xD800) + "b")), "a\xED\xA0\x80"
                                                                                   "b");
}

TEST_P(TextConversion, EveryCodePointIsWrittenAsTheToolkitWritesIt)
{
    for (wxUint32 codePoint = 1; codePoint <= 0x10FFFF; codePoint += codePoint < 0x11000 ? 1 : 13)
    {
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF)
        {
            continue;
        }
        const wxString text(wxUniChar{codePoint});
        const std::string utf8(text.utf8_str());
        ASSERT_EQ(asStd(gtBytesFromText(text)), utf8) << codePoint;
        ASSERT_EQ(gtTextFromBytes(bytes(utf8)), text) << codePoint;
        ASSERT_EQ(asStd(gtPathBytesFromText(gtPathTextFromBytes(bytes(utf8)))), utf8) << codePoint;
        // What the toolkit's own file dialogs and wxFileName write.
        const wxMBConvUTF8 theirs(wxMBConvUTF8::MAP_INVALID_UTF8_TO_PUA);
        ASSERT_EQ(gtPathTextFromBytes(bytes(utf8)), wxString(utf8.data(), theirs, utf8.size())) << codePoint;
    }
}

TEST_P(TextConversion, TextIsWrittenAsUtf8)
{
    EXPECT_EQ(asStd(gtBytesFromText(wxString(L"\u00E9\u20AC\U0001F600"))), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(asStd(gtBytesFromText(wxString("a") + wxUniChar(0xDC80) + "b")), "a\xEF\xBF\xBD"
                                                                               "b");
}

TEST_P(TextConversion, ArgumentsGoBackToTheirBytes)
{
    EXPECT_EQ(asStd(gtBytesFromArgument("plain")), "plain");
    EXPECT_EQ(asStd(gtBytesFromArgument("p")), "p");
    // What the C locale does not have is written as UTF-8, as the others have it.
    EXPECT_EQ(asStd(gtBytesFromArgument(wxString(L"caf\u20AC"))), "caf\xE2\x82\xAC");
    // What no locale has.
    EXPECT_EQ(asStd(gtBytesFromArgument(wxString("a") + wxUniChar(0x110000))), "a\xEF\xBF\xBD");
}

TEST_P(TextConversion, WhatControlsRefuseIsReplaced)
{
    wxString text("a");
    text += wxUniChar(0);
    text += wxUniChar(0xD800);
    text += wxUniChar(0x10FFFF);
    text += wxUniChar(0x110000);
    text += "\x01\r\n\tz";
    EXPECT_EQ(gtShowableText(text), wxString(L"a\u2400\uFFFD\U0010FFFF\uFFFD\x01\r\n\tz"));
    EXPECT_EQ(gtShowableText("plain"), "plain");
    EXPECT_EQ(gtShowableText(wxString(wxUniChar(0))), wxString(L"\u2400"));
    EXPECT_EQ(gtShowableText(wxString("\x01")), wxString("\x01"));
}

INSTANTIATE_TEST_SUITE_P(Locales, TextConversion, testing::Values("C", "C.UTF-8"),
                         [](const auto& locale) { return std::string(locale.param) == "C" ? "C" : "Utf8"; });

}  // namespace

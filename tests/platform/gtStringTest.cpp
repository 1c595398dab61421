// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtString.h"

#include <climits>
#include <clocale>
#include <cstdint>
#include <cwchar>
#include <gtest/gtest.h>
#include <iomanip>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <type_traits>
#include <unistd.h>
#include <unordered_map>
#include <utility>

#include "tests/support/failingAllocation.h"

namespace
{
static_assert(std::is_nothrow_default_constructible<gtString>::value, "");
static_assert(std::is_nothrow_move_constructible<gtString>::value, "");
static_assert(std::is_nothrow_move_assignable<gtString>::value, "");

// Out by name only: with a conversion both ways, "text == view" would have two meanings.
static_assert(std::is_convertible<std::string, gtString>::value, "");
static_assert(std::is_convertible<std::string_view, gtString>::value, "");
static_assert(!std::is_convertible<gtString, std::string>::value, "");
static_assert(!std::is_convertible<gtString, std::string_view>::value, "");

const char* const pNoChars = nullptr;

constexpr std::size_t twoGiB = std::size_t(1) << 31;

bool hasMemoryFor(std::size_t size)
{
    return ::sysconf(_SC_AVPHYS_PAGES) >= static_cast<long>(size) / ::sysconf(_SC_PAGESIZE);
}

// To give that much memory in the usual small pages takes the system longer than all else in a test. It does not matter
// if the system cannot.
void useLargePages(const void* pMemory, std::size_t size)
{
#ifdef MADV_HUGEPAGE
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t begin = (reinterpret_cast<std::size_t>(pMemory) + pageSize - 1) / pageSize * pageSize;
    const std::size_t end = (reinterpret_cast<std::size_t>(pMemory) + size) / pageSize * pageSize;
    static_cast<void>(::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE));
#else
    static_cast<void>(pMemory);
    static_cast<void>(size);
#endif
}

std::string contents(const gtString& text)
{
    return std::string(text.asCharArray(), static_cast<std::size_t>(text.length()));
}

// Runs the change with its first allocation failing, its second, and so on until it succeeds, and expects every failure
// to leave the text as it was.
template <class Change>
void expectStrongGuarantee(const gtString& before, Change change)
{
    const std::string expected = contents(before);
    int failures = 0;
    for (bool hasSucceeded = false; !hasSucceeded; ++failures)
    {
        gtString text(before);
        try
        {
            const FailingAllocation failing(failures);
            change(text);
            hasSucceeded = true;
        }
        catch (const std::bad_alloc&)
        {
            EXPECT_EQ(contents(text), expected) << "after failing allocation " << failures + 1;
        }
    }
    EXPECT_GT(failures, 1) << "no allocation was made to fail";
}

TEST(gtString, StartsEmpty)
{
    const gtString text;
    EXPECT_EQ(text.length(), 0);
    EXPECT_TRUE(text.isEmpty());
    ASSERT_NE(text.asCharArray(), nullptr);
    EXPECT_EQ(text.asCharArray()[0], '\0');
}

TEST(gtString, TakesCharactersUpToTheFirstNul)
{
    const gtString text("ab\0c");
    EXPECT_EQ(contents(text), "ab");
    EXPECT_FALSE(text.isEmpty());
    EXPECT_TRUE(gtString("").isEmpty());
}

TEST(gtString, TakesExactlyTheGivenLength)
{
    const gtString text("ab\0cdef", 5);
    EXPECT_EQ(text.length(), 5);
    EXPECT_EQ(contents(text), std::string("ab\0cd", 5));
    EXPECT_EQ(text.asCharArray()[5], '\0');
    EXPECT_TRUE(gtString("abc", 0).isEmpty());
}

TEST(gtString, NullPointersAndNegativeLengthsAreEmpty)
{
    EXPECT_TRUE(gtString(pNoChars).isEmpty());
    EXPECT_TRUE(gtString(nullptr, 3).isEmpty());
    EXPECT_TRUE(gtString(nullptr, INT_MAX).isEmpty());
    EXPECT_TRUE(gtString("abc", -1).isEmpty());
    EXPECT_TRUE(gtString("abc", INT_MIN).isEmpty());

    gtString text("x");
    text.append(pNoChars).append(nullptr, 5).append("abc", -1).append("abc", 0);
    EXPECT_EQ(contents(text), "x");
    text = pNoChars;
    EXPECT_TRUE(text.isEmpty());
}

TEST(gtString, KeepsEveryByteValue)
{
    std::string all;
    for (int value = 0; value < 256; ++value)
    {
        all.push_back(static_cast<char>(value));
    }
    gtString text(all.data(), 256);
    EXPECT_EQ(contents(text), all);
    gtString byCharacter;
    for (const char c : all)
    {
        byCharacter.append(c);
    }
    EXPECT_EQ(contents(byCharacter), all);
    EXPECT_TRUE(byCharacter == text);
    for (int index = 0; index < 256; ++index)
    {
        EXPECT_EQ(text[index], all[static_cast<std::size_t>(index)]);
    }
    EXPECT_EQ(text[256], '\0');
}

TEST(gtString, CopiesAreIndependent)
{
    gtString first("one\0two", 7);
    gtString second(first);
    gtString third;
    third = first;
    first.append("!");
    EXPECT_EQ(contents(second), std::string("one\0two", 7));
    EXPECT_EQ(contents(third), std::string("one\0two", 7));
    second.makeEmpty();
    EXPECT_EQ(contents(first), std::string("one\0two!", 8));
}

TEST(gtString, MovesLeaveTheOtherEmpty)
{
    for (const int length : {0, 3, 1000})
    {
        const std::string expected(static_cast<std::size_t>(length), 'm');
        gtString source(expected.c_str());
        gtString constructed(std::move(source));
        EXPECT_EQ(contents(constructed), expected);
        EXPECT_TRUE(
            source.isEmpty());  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move): it is documented

        gtString assigned("before, and long enough to have memory of its own");
        assigned = std::move(constructed);
        EXPECT_EQ(contents(assigned), expected);
        EXPECT_TRUE(
            constructed.isEmpty());  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move): it is documented

        gtString& same = assigned;
        assigned = std::move(same);
        EXPECT_EQ(contents(assigned), expected);
    }
}

TEST(gtString, AssignsToItself)
{
    gtString text("abc\0def", 7);
    gtString& same = text;
    text = same;
    EXPECT_EQ(contents(text), std::string("abc\0def", 7));
}

TEST(gtString, CharactersMayLieInTheTextItself)
{
    for (const int length : {5, 20, 500})
    {
        std::string expected;
        for (int i = 0; i < length; ++i)
        {
            expected.push_back(static_cast<char>('a' + i % 26));
        }
        gtString text(expected.c_str());

        text.append(text);
        expected += std::string(expected);
        EXPECT_EQ(contents(text), expected);

        text.append(text.asCharArray() + 3);
        expected += expected.substr(3);
        EXPECT_EQ(contents(text), expected);

        text.append(text.asCharArray() + 2, 3);
        expected += expected.substr(2, 3);
        EXPECT_EQ(contents(text), expected);

        text.appendFormattedString("<%s>", text.asCharArray());
        expected += "<" + expected + ">";
        EXPECT_EQ(contents(text), expected);

        text = text.asCharArray() + 4;
        expected.erase(0, 4);
        EXPECT_EQ(contents(text), expected);
    }
}

TEST(gtString, OperationsGiveTheTextItself)
{
    gtString text;
    EXPECT_EQ(&text.append(gtString("a")), &text);
    EXPECT_EQ(&text.append("b"), &text);
    EXPECT_EQ(&text.append("cd", 1), &text);
    EXPECT_EQ(&text.append('d'), &text);
    EXPECT_EQ(&text.appendFormattedString("%d", 5), &text);
    EXPECT_EQ(&text.reserve(100), &text);
    EXPECT_EQ(contents(text), "abcd5");
    EXPECT_EQ(&(text = "x"), &text);
    EXPECT_EQ(&(text = gtString("y")), &text);
    EXPECT_EQ(&text.makeEmpty(), &text);
    EXPECT_TRUE(text.isEmpty());
    EXPECT_STREQ(text.asCharArray(), "");
}

TEST(gtString, FormatsAsPrintfDoes)
{
    gtString text("Line: ");
    text.appendFormattedString("%d|%08x|%08lx|%s|%%|%5.2f|%c", -12, 0xabcU, 120UL, "text", 3.14159, 'z');
    EXPECT_EQ(contents(text), "Line: -12|00000abc|00000078|text|%| 3.14|z");
    text.appendFormattedString("%s", "");
    EXPECT_EQ(contents(text), "Line: -12|00000abc|00000078|text|%| 3.14|z");
}

TEST(gtString, FormattedNulIsACharacter)
{
    gtString text;
    text.appendFormattedString("a%cb", '\0');
    EXPECT_EQ(contents(text), std::string("a\0b", 3));
}

TEST(gtString, FormatsAnyLength)
{
    for (const int length : {1, 254, 255, 256, 257, 511, 512, 1023, 1024, 1025, 4096, 65536, 3000000})
    {
        gtString text("<");
        text.appendFormattedString("%*d>", length, 7);
        EXPECT_EQ(contents(text), "<" + std::string(static_cast<std::size_t>(length) - 1, ' ') + "7>");
    }
}

TEST(gtString, FormatThatCannotBeCarriedOutAppendsNothing)
{
    ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
    gtString text("kept");
    text.appendFormattedString("lost %lc", static_cast<wint_t>(0x20AC));
    EXPECT_EQ(contents(text), "kept");

    const std::string filler(1000, 'f');
    text.appendFormattedString("%s%lc", filler.c_str(), static_cast<wint_t>(0x20AC));
    EXPECT_EQ(contents(text), "kept");
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
TEST(gtString, NullFormatAppendsNothing)
{
    gtString text("kept");
    text.appendFormattedString(pNoChars);
    EXPECT_EQ(contents(text), "kept");
}
#pragma GCC diagnostic pop

TEST(gtString, RefusesWhatIsLongerThanAnInt)
{
    // The check must come before the characters are looked at: there are not that many.
    gtString text("1");
    EXPECT_THROW(text.append("x", INT_MAX), std::length_error);
    EXPECT_EQ(contents(text), "1");
    if (!hasMemoryFor(3 * twoGiB))
    {
        // It takes the library seconds. Where there is memory, the next test has the same in less.
        volatile int longest = INT_MAX;  // the compiler would see it and refuse
        EXPECT_THROW(text.appendFormattedString("%*d", longest, 1), std::length_error);
        EXPECT_EQ(contents(text), "1");
    }
    const std::string_view tooLong("x", static_cast<std::size_t>(INT_MAX) + 1);
    EXPECT_THROW(gtString{tooLong}, std::length_error);
    EXPECT_THROW(text.append(tooLong), std::length_error);
    EXPECT_THROW(text = tooLong, std::length_error);
    EXPECT_EQ(contents(text), "1");
}

// The characters are pages of zeros that take no memory; the text's own do.
TEST(gtString, HoldsWhatIsAsLongAsAnInt)
{
    if (!hasMemoryFor(3 * twoGiB))
    {
        GTEST_SKIP() << "takes more memory than there is";
    }
    void* const pZeros = ::mmap(nullptr, twoGiB, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pZeros, MAP_FAILED);
    useLargePages(pZeros, twoGiB);
    {
        gtString text;
        text.reserve(INT_MAX);
        useLargePages(text.asCharArray(), INT_MAX);
        text.append(static_cast<const char*>(pZeros), INT_MAX - 300);
        text.appendFormattedString("%300d", 1);
        EXPECT_EQ(text.length(), INT_MAX);
        text.makeEmpty();
        text.append(static_cast<const char*>(pZeros), INT_MAX);
        EXPECT_EQ(text.length(), INT_MAX);
        unsigned long long before = amountOfAllocations();
        EXPECT_THROW(text.append('x'), std::length_error);
        EXPECT_EQ(text.length(), INT_MAX);
        // Refused before anything is allocated for it.
        const unsigned long long amountOfOneRefusal = amountOfAllocations() - before;
        before = amountOfAllocations();
        EXPECT_THROW(text.appendFormattedString("%300d", 1), std::length_error);
        EXPECT_EQ(amountOfAllocations() - before, amountOfOneRefusal);
        EXPECT_EQ(text.length(), INT_MAX);
        text.append(pNoChars);
    }
    EXPECT_EQ(::munmap(pZeros, twoGiB), 0);
}

TEST(gtString, RefusesToTakeWhatIsLongerThanAnInt)
{
    if (!hasMemoryFor(twoGiB / 2 * 3))
    {
        GTEST_SKIP() << "takes more memory than there is";
    }
    // A length that an int cannot hold, and then one that it can.
    std::string tooLong;
    tooLong.reserve(twoGiB);
    useLargePages(tooLong.data(), twoGiB);
    tooLong.assign(twoGiB, 'g');
    gtString text("1");
    EXPECT_THROW(text = std::move(tooLong), std::length_error);
    EXPECT_EQ(contents(text), "1");
    // What is refused stays where it is. NOLINTNEXTLINE(bugprone-use-after-move)
    EXPECT_EQ(tooLong.size(), twoGiB);
    tooLong.pop_back();
    text = std::move(tooLong);
    EXPECT_EQ(text.length(), INT_MAX);
}

TEST(gtString, TakesAndGivesTheStandardLibrarysTexts)
{
    const std::string bytes("a\0b\xff", 4);
    const std::string_view view(bytes);
    for (const gtString& text : {gtString(bytes), gtString(view), gtString(std::string(bytes))})
    {
        EXPECT_EQ(text.length(), 4);
        EXPECT_EQ(text.asStdString(), bytes);
        EXPECT_EQ(text.asStringView(), view);
        EXPECT_EQ(text.asStringView().data(), text.asCharArray());
    }
    EXPECT_TRUE(gtString(std::string_view()).isEmpty());
    EXPECT_TRUE(gtString().asStringView().empty());

    gtString text;
    text = bytes;
    EXPECT_TRUE(text == bytes);
    text = view.substr(1);
    EXPECT_TRUE(text == view.substr(1));
    EXPECT_TRUE(text != view);
    text = std::string("c");
    EXPECT_EQ(contents(text), "c");
    text.append(bytes).append(view).append(std::string("d"));
    EXPECT_EQ(contents(text), "c" + bytes + bytes + "d");
    text.append(text.asStringView().substr(0, 2));
    EXPECT_EQ(contents(text), "c" + bytes + bytes + "dca");
}

TEST(gtString, TakesAGivenAwayTextWithoutMemory)
{
    std::string givenAway(5000, 'g');
    const auto place = reinterpret_cast<std::uintptr_t>(givenAway.data());
    const unsigned long long before = amountOfAllocations();
    const gtString text(std::move(givenAway));
    EXPECT_EQ(amountOfAllocations(), before);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(text.asCharArray()), place);
    EXPECT_EQ(text.length(), 5000);
    // Not left in whatever state. NOLINTNEXTLINE(bugprone-use-after-move)
    EXPECT_TRUE(givenAway.empty());
}

TEST(gtString, IsAKeyOfHashTables)
{
    EXPECT_EQ(std::hash<gtString>()("abc"), std::hash<std::string_view>()("abc"));
    EXPECT_NE(std::hash<gtString>()(gtString("a\0b", 3)), std::hash<gtString>()(gtString("a\0c", 3)));
    std::unordered_map<gtString, int> amounts;
    ++amounts[gtString("a\0b", 3)];
    ++amounts["a"];
    ++amounts[std::string("a\0b", 3)];
    EXPECT_EQ(amounts.size(), 2U);
    EXPECT_EQ(amounts[gtString("a\0b", 3)], 2);
}

TEST(gtString, IsWrittenToStreams)
{
    std::ostringstream stream;
    stream << gtString("a\0b", 3) << '|' << std::setw(5) << std::setfill('.') << gtString("cd") << '|' << std::left
           << std::setw(4) << gtString("e") << gtString();
    EXPECT_EQ(stream.str(), std::string("a\0b|...cd|e...", 14));
}

TEST(gtString, EqualWhenLengthAndBytesAre)
{
    EXPECT_TRUE(gtString("abc") == gtString("abc"));
    EXPECT_FALSE(gtString("abc") != gtString("abc"));
    EXPECT_FALSE(gtString("abc") == gtString("abd"));
    EXPECT_TRUE(gtString("abc") != gtString("abd"));
    EXPECT_FALSE(gtString("abc") == gtString("ab"));
    EXPECT_FALSE(gtString("a\0b", 3) == gtString("a\0c", 3));
    EXPECT_FALSE(gtString("a\0b", 3) == gtString("a"));
    EXPECT_TRUE(gtString() == gtString(""));
    EXPECT_TRUE(gtString("abc") == "abc");
    EXPECT_FALSE(gtString("Abc") == "abc");
}

TEST(gtString, OrdersByUnsignedBytes)
{
    EXPECT_TRUE(gtString("a") < gtString("b"));
    EXPECT_FALSE(gtString("b") < gtString("a"));
    EXPECT_FALSE(gtString("a") < gtString("a"));
    EXPECT_TRUE(gtString("a") < gtString("ab"));
    EXPECT_TRUE(gtString("z") < gtString("\xff"));
    EXPECT_TRUE(gtString("a\0a", 3) < gtString("a\0b", 3));
}

TEST(gtString, ReserveMakesRoomAndNothingElse)
{
    gtString text("abc");
    text.reserve(5000);
    EXPECT_EQ(contents(text), "abc");
    const unsigned long long before = amountOfAllocations();
    for (int i = 3; i < 5000; ++i)
    {
        text.append('x');
    }
    text.reserve(10).reserve(0).reserve(-1).reserve(INT_MIN).reserve(5000);
    text.makeEmpty();
    text.append(std::string(5000, 'y').c_str());  // one allocation, the standard library's string
    EXPECT_EQ(amountOfAllocations() - before, 1U);
    EXPECT_EQ(text.length(), 5000);
}

TEST(gtString, IsAsItWasWhenMemoryRunsOut)
{
    const std::string longText(1000, 'l');
    const gtString before("a text that is too long to be kept inside the object, with a NUL: \0.", 68);
    const gtString longString(longText.c_str());

    expectStrongGuarantee(before, [&](gtString& text) { text.append(longText.c_str()); });
    expectStrongGuarantee(before, [&](gtString& text) { text.append(longText.c_str(), 900); });
    expectStrongGuarantee(before, [&](gtString& text) { text.append(longString); });
    expectStrongGuarantee(before, [&](gtString& text) { text.append(text); });
    expectStrongGuarantee(before, [&](gtString& text) { text.append(longText); });
    expectStrongGuarantee(before, [&](gtString& text) { text.append(std::string_view(longText)); });
    expectStrongGuarantee(before, [&](gtString& text) { text = longText; });
    expectStrongGuarantee(before, [&](gtString& text) { text = std::string_view(longText); });
    expectStrongGuarantee(before, [&](gtString& text) { text.appendFormattedString("%900d", 1); });
    expectStrongGuarantee(before, [&](gtString& text) { text.appendFormattedString("%200d", 1); });
    expectStrongGuarantee(before, [&](gtString& text) { text = longText.c_str(); });
    expectStrongGuarantee(before, [&](gtString& text) { text = longString; });
    expectStrongGuarantee(before, [&](gtString& text) { text.reserve(5000); });
    expectStrongGuarantee(before, [&](gtString& text) { text = gtString(longText.c_str()); });
    expectStrongGuarantee(before, [&](gtString& text) { text = gtString(longString); });
}

TEST(gtString, CharacterThatFindsNoMemoryIsNotAppended)
{
    gtString text;
    bool hasFailed = false;
    while (!hasFailed)
    {
        const int length = text.length();
        const FailingAllocation failing(0);
        try
        {
            text.append('c');
        }
        catch (const std::bad_alloc&)
        {
            hasFailed = true;
            EXPECT_EQ(text.length(), length);
        }
    }
    EXPECT_EQ(contents(text), std::string(static_cast<std::size_t>(text.length()), 'c'));
}
}  // namespace

// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtAssert.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/baseTools/gtAssertionFailureHandlerRegistry.h"
#include "tests/platform/gtAssertFromC.h"
#include "tests/support/failingAllocation.h"
#include "tests/support/tsAssertionRecorder.h"
#include "tests/support/tsCaughtErrors.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// Where a check may stand. All of them compile without a warning, their values unused.

inline int inHeader(int value)
{
    GT_ASSERT(value > 0);
    return value;
}

template <class T>
T inTemplate(T value)
{
    GT_ASSERT(value > 0);
    return value;
}

constexpr int inConstantExpression(int value)
{
    GT_ASSERT(value > 0);
    GT_ASSERT_EX(value > 0, "not above zero");
    return GT_ASSERT(value < 100), value;
}
static_assert(inConstantExpression(5) == 5, "a check that holds is part of a constant expression");

struct InConstructorsList
{
    explicit InConstructorsList(int value) : _value((GT_ASSERT(value > 0), value)) {}
    int _value;
};

const bool atNamespaceScope = GT_ASSERT(sizeof(int) >= 2);

const char* textThatIsCounted(int& amount)
{
    ++amount;
    return "composed";
}

}  // namespace

TEST(Assert, ThatHoldsReportsNothingAndIsTrue)
{
    const tsAssertionRecorder recorder;
    const unsigned long long allocations = amountOfAllocations();
    static_assert(std::is_same<decltype(GT_ASSERT(true)), bool>::value, "");
    static_assert(std::is_same<decltype(GT_ASSERT_EX(true, "")), bool>::value, "");
    EXPECT_TRUE(GT_ASSERT(1 + 1 == 2));
    EXPECT_TRUE(GT_ASSERT_EX(1 + 1 == 2, "text"));
    EXPECT_TRUE(GT_ASSERT_AT(1 + 1 == 2, "c", "f", "F", 3));
    EXPECT_TRUE(atNamespaceScope);
    EXPECT_EQ(amountOfAllocations(), allocations);
    EXPECT_THAT(recorder.reports, IsEmpty());
}

TEST(Assert, ThatFailsReportsItsPlaceAndConditionAndIsFalse)
{
    tsAssertionRecorder recorder;
    const int value = 1;
    const int line = __LINE__ + 1;
    EXPECT_FALSE(GT_ASSERT(value == 2));
    EXPECT_FALSE(GT_ASSERT_EX(value == 3, "it is one"));
    ASSERT_EQ(recorder.reports.size(), 2U);
    EXPECT_EQ(recorder.reports[0].functionName, "TestBody");
    EXPECT_EQ(recorder.reports[0].fileName, __FILE__);
    EXPECT_EQ(recorder.reports[0].lineNumber, line);
    EXPECT_EQ(recorder.reports[0].message, "Assertion failure (value == 2)");
    EXPECT_EQ(recorder.reports[1].functionName, "TestBody");
    EXPECT_EQ(recorder.reports[1].fileName, __FILE__);
    EXPECT_EQ(recorder.reports[1].lineNumber, line + 1);
    EXPECT_EQ(recorder.reports[1].message, "Assertion failure (value == 3): it is one");
}

TEST(Assert, ConditionStandsAsItIsWritten)
{
    tsAssertionRecorder recorder;
    const char* pText = nullptr;
    const int error = 5;
#define NOT_A_NULL nullptr
    GT_ASSERT(pText != NOT_A_NULL);
#undef NOT_A_NULL
    GT_ASSERT((error == 0) && (pText != nullptr));
    GT_ASSERT(std::is_same<int, long>::value);
    GT_ASSERT_EX(error % 5 != 0, "100%d %s");
    GT_ASSERT(std::string("\"%s\"\n").empty());
    EXPECT_THAT(recorder.messages(), ElementsAre("Assertion failure (pText != NOT_A_NULL)",
                                                 "Assertion failure ((error == 0) && (pText != nullptr))",
                                                 "Assertion failure (std::is_same<int, long>::value)",
                                                 "Assertion failure (error % 5 != 0): 100%d %s",
                                                 "Assertion failure (std::string(\"\\\"%s\\\"\\n\").empty())"));
}

TEST(Assert, TakesWhateverAnIfTakes)
{
    tsAssertionRecorder recorder;
    const std::unique_ptr<int> pNothing;
    const std::unique_ptr<int> pSomething(new int(1));
    const int* const pPlain = pSomething.get();
    EXPECT_TRUE(GT_ASSERT(pSomething));
    EXPECT_TRUE(GT_ASSERT(pPlain));
    EXPECT_TRUE(GT_ASSERT(*pPlain));
    EXPECT_FALSE(GT_ASSERT(pNothing));
    EXPECT_FALSE(GT_ASSERT(0.0));
    EXPECT_FALSE(GT_ASSERT_EX(pNothing, nullptr));
    EXPECT_THAT(recorder.messages(),
                ElementsAre("Assertion failure (pNothing)", "Assertion failure (0.0)", "Assertion failure (pNothing)"));
}

TEST(Assert, EvaluatesTheConditionOnceAndTheTextOnlyWhenItFails)
{
    tsAssertionRecorder recorder;
    int conditions = 0;
    int texts = 0;
    GT_ASSERT(++conditions > 0);
    EXPECT_EQ(conditions, 1);
    GT_ASSERT(++conditions < 0);
    EXPECT_EQ(conditions, 2);
    GT_ASSERT_EX(++conditions > 0, textThatIsCounted(texts));
    EXPECT_EQ(conditions, 3);
    EXPECT_EQ(texts, 0);
    GT_ASSERT_EX(++conditions < 0, textThatIsCounted(texts));
    EXPECT_EQ(conditions, 4);
    EXPECT_EQ(texts, 1);
    GT_ASSERT_AT(++conditions < 0, "c", "f", "F", 3);
    EXPECT_EQ(conditions, 5);
}

TEST(Assert, StandsWhereverAnExpressionMay)
{
    tsAssertionRecorder recorder;
    EXPECT_EQ(inHeader(-1), -1);
    EXPECT_EQ(inTemplate(-1L), -1L);
    volatile int runTimeValue = -5;
    EXPECT_EQ(inConstantExpression(runTimeValue), -5);
    EXPECT_EQ(InConstructorsList(-2)._value, -2);
    const auto lambda = [](int value) { return GT_ASSERT(value > 0) ? 1 : 2; };
    EXPECT_EQ(lambda(0), 2);
    EXPECT_EQ(lambda(1), 1);
    int i = 0;
    for (; GT_ASSERT(i < 2) && i < 10; ++i)
    {
    }
    EXPECT_EQ(i, 2);
    // One statement, so that it needs no braces.
    // NOLINTBEGIN(readability-braces-around-statements)
    if (i == 2)
        GT_ASSERT(i == 2);
    else
        GT_ASSERT(false);
    // NOLINTEND(readability-braces-around-statements)

    ASSERT_EQ(recorder.reports.size(), 7U);
    EXPECT_EQ(recorder.reports[0].functionName, "inHeader");
    EXPECT_THAT(recorder.reports[1].functionName, StartsWith("inTemplate"));
    EXPECT_EQ(recorder.reports[2].functionName, "inConstantExpression");
    EXPECT_EQ(recorder.reports[4].functionName, "InConstructorsList");
    EXPECT_EQ(recorder.reports[5].functionName, "operator()");
    EXPECT_EQ(recorder.reports[6].message, "Assertion failure (i < 2)");
}

TEST(Assert, CanBeKnownUnderAnotherPlace)
{
    tsAssertionRecorder recorder;
    EXPECT_FALSE(GT_ASSERT_AT(1 == 2, "(argc == 0)&&(argv == __null)", "MacOpenFile", "some/File.cpp", 109));
    ASSERT_EQ(recorder.reports.size(), 1U);
    EXPECT_EQ(recorder.reports[0].functionName, "MacOpenFile");
    EXPECT_EQ(recorder.reports[0].fileName, "some/File.cpp");
    EXPECT_EQ(recorder.reports[0].lineNumber, 109);
    EXPECT_EQ(recorder.reports[0].message, "Assertion failure ((argc == 0)&&(argv == __null))");
}

TEST(Assert, LeavesErrnoAlone)
{
    tsAssertionRecorder recorder;
    recorder.reports.reserve(3);
    errno = EPERM;
    GT_ASSERT(1 == 2);
    EXPECT_EQ(errno, EPERM);
    const std::string text(1000, 't');
    errno = ENOSPC;
    // Every allocation in this program changes errno.
    GT_ASSERT_EX(1 == 2, text.c_str());
    EXPECT_EQ(errno, ENOSPC);
    ASSERT_EQ(recorder.reports.size(), 2U);
    EXPECT_EQ(recorder.reports[0].errorNumber, EPERM);
    EXPECT_EQ(recorder.reports[1].errorNumber, ENOSPC);
}

TEST(Assert, WithoutMemoryTheConditionIsReportedAlone)
{
    class Plain : public gtIAssertionFailureHandler
    {
    public:
        Plain() { gtRegisterAssertionFailureHandler(this); }
        Plain(const Plain&) = delete;
        Plain& operator=(const Plain&) = delete;
        ~Plain() override { gtUnRegisterAssertionFailureHandler(this); }
        void onAssertionFailure(const char*, const char*, int, const char* message) override
        {
            lastMessage = std::string_view(message) == "Assertion failure (1 == 2)";
            ++amount;
        }
        bool lastMessage = false;
        int amount = 0;
    };
    Plain handler;
    const std::string text(1000, 't');
    {
        const FailingAllocation failure(0);
        EXPECT_FALSE(GT_ASSERT_EX(1 == 2, text.c_str()));
        EXPECT_TRUE(failure.hasFailed());
    }
    EXPECT_EQ(handler.amount, 1);
    EXPECT_TRUE(handler.lastMessage);
}

// One page of characters, over and over: more than a gtString holds, in hardly any memory.
class EndlessText
{
public:
    EndlessText()
    {
        const int page = memfd_create("text", 0);
        _isMade = page >= 0 && _pText != MAP_FAILED && ftruncate(page, pieceLength) == 0;
        for (std::size_t begin = 0; _isMade && begin < length; begin += pieceLength)
        {
            _isMade = mmap(_pText + begin, pieceLength, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, page, 0) !=
                      MAP_FAILED;
        }
        static_cast<void>(close(page));
        if (_isMade)
        {
            std::memset(_pText, 't', pieceLength);
        }
    }
    EndlessText(const EndlessText&) = delete;
    EndlessText& operator=(const EndlessText&) = delete;
    ~EndlessText() { munmap(_pText, length + pieceLength); }

    // Behind the pieces is memory of zeros.
    const char* characters() const { return _isMade ? _pText : nullptr; }

private:
    static constexpr std::size_t pieceLength = std::size_t{1} << 20;
    static constexpr std::size_t length = std::size_t{1} << 31;

    char* const _pText = static_cast<char*>(
        mmap(nullptr, length + pieceLength, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    bool _isMade = false;
};

TEST(Assert, TextOfMoreBytesThanATextHoldsIsLeftOut)
{
    const EndlessText text;
    ASSERT_NE(text.characters(), nullptr);
    tsAssertionRecorder recorder;
    EXPECT_FALSE(GT_ASSERT_EX(1 == 2, text.characters()));
    EXPECT_THAT(recorder.messages(), ElementsAre("Assertion failure (1 == 2)"));
}

TEST(Assert, LetsNoExceptionOfAHandlerOut)
{
    class Thrower : public gtIAssertionFailureHandler
    {
    public:
        void onAssertionFailure(const char*, const char*, int, const char*) override { throw 42; }
    };
    Thrower thrower;
    gtRegisterAssertionFailureHandler(&thrower);
    const tsCaughtErrors errors;
    EXPECT_FALSE(GT_ASSERT_AT(1 == 2, "c", "f", "F", 3));
    gtUnRegisterAssertionFailureHandler(&thrower);
    EXPECT_EQ(errors.take(), "F:3: f: Assertion failure (c)\n");
}

TEST(Assert, TakesNullWhereverThereIsText)
{
    const tsCaughtErrors errors;
    EXPECT_EQ(gtReportFailedAssertion(nullptr, nullptr, 7, nullptr, nullptr), 0);
    EXPECT_EQ(gtReportFailedAssertion(nullptr, nullptr, 7, nullptr, "text"), 0);
    EXPECT_EQ(errors.take(), "(null):7: (null): (null)\n(null):7: (null): : text\n");
}

TEST(AssertFromC, ReportsLikeTheOther)
{
    tsAssertionRecorder recorder;
    EXPECT_EQ(checkFromC(5), 5);
    EXPECT_THAT(recorder.reports, IsEmpty());
    EXPECT_EQ(checkFromC(-5), 0);
    ASSERT_EQ(recorder.reports.size(), 3U);
    EXPECT_EQ(recorder.reports[0].functionName, "checkFromC");
    EXPECT_EQ(recorder.reports[0].fileName, fileOfChecksFromC());
    EXPECT_EQ(recorder.reports[0].lineNumber, 9);
    EXPECT_THAT(recorder.messages(),
                ElementsAre("Assertion failure (value > 0)", "Assertion failure (value != -5): minus five",
                            "Assertion failure (pValue)"));
}

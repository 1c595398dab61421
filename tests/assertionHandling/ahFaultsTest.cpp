// SPDX-License-Identifier: Apache-2.0
// Every allocation of the kit's texts and of its list goes wrong in turn: std::bad_alloc comes out or the right result,
// and nothing is left behind.
#include <functional>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "assertionHandling/ahDialogBasedAssertionFailureHandler.h"
#include "platform/toolkit/gtTextConversion.h"
#include "tests/support/failingAllocation.h"
#include "tests/support/tsCaughtErrors.h"

namespace
{

// How many allocations there were.
int failEachAllocation(const std::function<void()>& work, const std::function<void()>& check)
{
    work();  // what is made once and kept is there now
    const long before = amountOfLiveAllocations();
    for (int number = 0;; ++number)
    {
        bool hasHappened = false;
        {
            const OneFailingAllocation broken(number);
            try
            {
                work();
            }
            catch (const std::bad_alloc&)
            {
            }
            hasHappened = broken.hasFailed();
        }
        EXPECT_EQ(amountOfLiveAllocations(), before) << number;
        check();
        if (!hasHappened || testing::Test::HasFailure())
        {
            return number;
        }
    }
}

int failEachConversion(const std::function<bool()>& isRight)
{
    bool isWrong = false;
    return failEachAllocation([&] { isWrong = !isRight() || isWrong; }, [&] { EXPECT_FALSE(isWrong); });
}

}  // namespace

TEST(KitFaults, LeaveTextsRight)
{
    const std::string name = "/a/path/that/no/short/string/holds/caf\xC3\xA9/\xE2\x82\xAC.cpp";
    const std::string invalid = "/a/path/that/no/short/string/holds/\xFF\xFE.cpp";
    const wxString text = wxString::FromUTF8(name);
    wxString withNul = text;
    withNul[3] = wxUniChar(0);
    const wxString shown = gtShowableText(withNul);
    const wxString latin = gtTextFromBytes(invalid.c_str());
    const wxString pathText = gtPathTextFromBytes(gtString(invalid.c_str()));
    EXPECT_GT(failEachConversion([&] { return gtTextFromBytes(name.c_str()) == text; }), 0);
    EXPECT_GT(failEachConversion([&] { return gtTextFromBytes(invalid.c_str()) == latin; }), 0);
    EXPECT_GT(failEachConversion([&] { return gtBytesFromText(text) == gtString(name.c_str()); }), 0);
    EXPECT_GT(failEachConversion([&] { return gtShowableText(withNul) == shown; }), 0);
    EXPECT_GT(failEachConversion([&] { return gtPathTextFromBytes(gtString(invalid.c_str())) == pathText; }), 0);
    EXPECT_GT(failEachConversion([&] { return gtPathBytesFromText(pathText) == gtString(invalid.c_str()); }), 0);
}

TEST(KitFaults, LeaveTheIgnoreListWhole)
{
    const osFilePath path(gtString("/a/path/that/no/short/string/holds/anywhere/file.cpp"));
    const osFilePath other(gtString("/another/path/that/no/short/string/holds/anywhere/file.cpp"));
    ahDialogBasedAssertionFailureHandler handler(1);
    handler.handleUsersDecision(8002, path, 7);
    EXPECT_EQ(failEachConversion(
                  [&] {
                      return handler.isInIgnoredSourceLocations(path, 7) &&
                             !handler.isInIgnoredSourceLocations(other, 7);
                  }),
              0);
    EXPECT_GT(failEachAllocation(
                  [&]
                  {
                      ahDialogBasedAssertionFailureHandler temporary(1);
                      temporary.handleUsersDecision(8002, other, 7);
                      temporary.handleUsersDecision(8002, path, 8);
                  },
                  [] {}),
              2);
}

TEST(KitFaults, LeaveTheReportToStandardErrorWholeOrOut)
{
    ahDialogBasedAssertionFailureHandler handler(1);
    const std::string message(200, 'm');
    int number = 0;
    const tsCaughtErrors errors;
    const auto write = [&] { handler.outputAssertionMessageToStderr("function", "/a/file.cpp", 7, message.c_str()); };
    number = failEachAllocation(write, [] {});
    const std::string written = errors.take();
    EXPECT_GT(number, 2);
    // Every line that began is whole.
    const std::string rest = message + " function /a/file.cpp line 7\r\n: ";
    std::size_t begun = 0;
    for (std::size_t at = written.find(" - Assertion failure: "); at != std::string::npos;
         at = written.find(" - Assertion failure: ", at + 1))
    {
        ++begun;
        EXPECT_EQ(written.compare(at + 22, rest.size(), rest), 0) << at;
    }
    EXPECT_GE(begun, 2U);
}

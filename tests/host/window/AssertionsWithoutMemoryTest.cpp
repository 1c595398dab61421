// SPDX-License-Identifier: Apache-2.0
// Assertions that fail on threads that find no memory, while the window and the report stand open.
#include "tests/host/MainFrameFixture.h"

#include "assertionHandling/ahAssertDialog.h"
#include "assertionReporting/arAssertionReport.h"
#include "assertionReporting/arAssertionReportWindow.h"
#include "assertionReporting/arInteractiveAssertionFailureHandler.h"
#include "platform/osWrappers/osProcess.h"
#include "tests/support/failingAllocation.h"
#include "tests/support/tsCaughtErrors.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <thread>
#include <unistd.h>

namespace
{
class AssertionsWithoutMemory : public MainFrameFixture
{
protected:
    // With the first allocations alone; gives whether there was one more.
    bool failWith(int allocations, int line)
    {
        bool hasFailed = false;
        std::thread(
            [&]
            {
                const std::string text(300, 't');
                const FailingAllocation broken(allocations);
                errno = EXDEV;
                // Nobody who fails an assertion is ready for an exception, a destructor least of all.
                EXPECT_NO_THROW(_pHandler->onAssertionFailure(text.c_str(), text.c_str(), line, text.c_str()));
                EXPECT_EQ(errno, EXDEV);
                hasFailed = broken.hasFailed();
            })
            .join();
        return hasFailed;
    }

    // Decides what comes up, until that line's turn has come. The lines in their order.
    std::vector<int> decideUntil(int line)
    {
        std::vector<int> lines;
        tsRunUntil("line " + std::to_string(line) + " is decided",
                   [&]
                   {
                       auto* pDialog = dynamic_cast<ahAssertDialog*>(tsTopModalDialog());
                       if (pDialog != nullptr && tsHasKeyboard(*pDialog))
                       {
                           const wxString title = pDialog->GetTitle();
                           lines.push_back(std::stoi(title.AfterLast(' ').ToStdString()));
                           pDialog->EndModal(AH_IGNORE_BUTTON_ID);
                       }
                       return pDialog == nullptr && !lines.empty() && lines.back() == line;
                   });
        return lines;
    }

    arAssertionRow rowOf(int line)
    {
        const std::vector<arAssertionRow> rows = _pReport->rows();
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const auto& one) { return one._line == line; });
        return row == rows.end() ? arAssertionRow() : *row;
    }

    const tsCaughtErrors _errors;
    const std::shared_ptr<arAssertionReport> _pReport = std::make_shared<arAssertionReport>();
    const std::shared_ptr<arInteractiveAssertionFailureHandler> _pHandler =
        std::make_shared<arInteractiveAssertionFailureHandler>(osGetCurrentThreadId(), _pReport);
};
}  // namespace

TEST_F(AssertionsWithoutMemory, LeaveTheWindowAndTheNextOnesAsTheyAre)
{
    start();
    arAssertionReportWindow window(_pFrame, _pReport);
    window.Show();
    tsRunUntil("the report has the keyboard", [&] { return tsHasKeyboard(window); });
    const int plenty = 100000;
    int number = 0;
    for (bool isMissing = true; isMissing && !HasFailure(); ++number)
    {
        SCOPED_TRACE("allocation " + std::to_string(number));
        // A lock that somebody keeps would hold this up for good. At rest a turn takes a tenth of a second.
        alarm(300);
        tsRunUntil("the report waits for news", [&] { return !window.isBehind(); });
        const int broken = 2 * number + 1;
        const int whole = broken + 1;
        isMissing = failWith(number, broken);
        EXPECT_FALSE(failWith(plenty, whole));
        const std::vector<int> lines = decideUntil(whole);
        if (isMissing)
        {
            EXPECT_THAT(lines, testing::AnyOf(testing::ElementsAre(whole), testing::ElementsAre(broken, whole)));
        }
        else
        {
            EXPECT_THAT(lines, testing::ElementsAre(broken, whole));
        }
        settle();
        EXPECT_EQ(rowOf(whole)._decision, arAssertionDecision::Ignore);
        EXPECT_EQ(rowOf(whole)._count, 1U);
        EXPECT_LE(rowOf(broken)._count, 1U);
    }
    alarm(0);
    EXPECT_GT(number, 10);
    EXPECT_FALSE(_pHandler->isDeciding());
}

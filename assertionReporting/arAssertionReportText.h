// SPDX-License-Identifier: Apache-2.0
// The words of the assertion report, and the report as text to paste or to keep. Safe from any thread as long
// as none changes the time zone.
#ifndef AR_ASSERTION_REPORT_TEXT_H
#define AR_ASSERTION_REPORT_TEXT_H

#include "assertionReporting/arAssertionReport.h"

#include <vector>

#pragma GCC visibility push(default)

// "none", "closed", "ignore", "ignore all", "open", "debug", "exit", "terminated".
const char* arDecisionWord(arAssertionDecision decision);

// "1234", "main (1234)", and behind it ", others" where other threads have failed before.
gtString arThreadWords(const arAssertionRow& row, unsigned int mainThreadId);

// Seconds since 1970 as local time: "2026-11-21 01:43:07".
gtString arReportTime(std::int64_t seconds);

// A line with the columns' names and one for each row, all without a line end: file, line, count, first, last, thread,
// decision, function, reason, stack (its frames with "; " between them) with a tab between them. Control characters
// inside a text are blanks, so a row is one line and a column one column; other bytes stay as they are.
std::vector<gtString> arAssertionReportLines(const std::vector<arAssertionRow>& rows, unsigned int mainThreadId);

#pragma GCC visibility pop

#endif

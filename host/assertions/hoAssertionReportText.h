// SPDX-License-Identifier: Apache-2.0
// The words of the assertion report, and the report as text to paste or to keep. Pure functions; safe from any thread
// as long as none changes the time zone.
#ifndef COUNTERSIGN_HO_ASSERTION_REPORT_TEXT_H
#define COUNTERSIGN_HO_ASSERTION_REPORT_TEXT_H

#include "host/assertions/hoAssertionReport.h"

#include <string>
#include <vector>

// "none", "closed", "ignore", "ignore all", "open", "debug", "exit".
const char* hoDecisionWord(hoAssertionDecision decision);

// "1234", "main (1234)", and behind it ", others" where other threads have failed before.
std::string hoThreadWords(const hoAssertionRow& row, unsigned int mainThreadId);

// Seconds since 1970 as local time: "2026-11-21 01:43:07".
std::string hoReportTime(std::int64_t seconds);

// A line with the columns' names and one for each row, all without a line end: file, line, count, first, last, thread,
// decision, function, reason with a tab between them. Control characters inside a text are blanks, so a row is one line
// and a column one column; other bytes stay as they are.
std::vector<std::string> hoAssertionReportLines(const std::vector<hoAssertionRow>& rows, unsigned int mainThreadId);

#endif

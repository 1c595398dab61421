// SPDX-License-Identifier: Apache-2.0
// Lays help texts out for a terminal of 80 columns.
#ifndef COUNTERSIGN_CL_HELP_LAYOUT_H
#define COUNTERSIGN_CL_HELP_LAYOUT_H

#include <string>
#include <string_view>

constexpr std::size_t clColumnsOfHelp = 80;

// Breaks lines that are too long at blanks. In a line that begins with blanks what follows stands below its last
// column, which begins behind two blanks or more. Words that are too long stay whole.
std::string clFitLines(std::string_view text);

// Fills paragraphs anew: lines that follow each other and begin with no blank. Others stay as they are.
std::string clFillParagraphs(std::string_view text);

#endif

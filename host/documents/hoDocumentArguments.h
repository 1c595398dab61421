// SPDX-License-Identifier: Apache-2.0
// Which of the application's arguments are documents.
#ifndef COUNTERSIGN_HO_DOCUMENT_ARGUMENTS_H
#define COUNTERSIGN_HO_DOCUMENT_ARGUMENTS_H

#include "platform/baseTools/gtString.h"

#include <functional>
#include <vector>

// The documents among arguments, in their order. The first argument is the program's own name and is left out, with one
// exception: a document that arrived before the window takes the place of an empty command line, so that a first
// argument that stands alone, is an absolute path and does not lead to the file at programPath is a document.
// Everything behind the first is a document, one that begins with a dash too; empty arguments are passed over.
std::vector<gtString> hoDocumentArguments(const std::vector<gtString>& arguments, const gtString& programPath);

// The toolkit takes its own options out of the command line, and drops an argument whose bytes the locale cannot
// express. The toolkit's arguments with those dropped ones back in their places: an argument of the process that the
// toolkit does not have is taken when isLost says so. When the toolkit's arguments do not come from the process's own
// ones in this way they are returned as they are.
std::vector<gtString> hoRestoreLostArguments(const std::vector<gtString>& toolkits,
                                             const std::vector<gtString>& process,
                                             const std::function<bool(const gtString&)>& isLost);

// The arguments that the process was started with, as the system keeps them; none where it does not tell.
std::vector<gtString> hoProcessArguments();

#endif

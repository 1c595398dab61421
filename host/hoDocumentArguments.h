// Which of the application's arguments are documents.
#ifndef COUNTERSIGN_HO_DOCUMENT_ARGUMENTS_H
#define COUNTERSIGN_HO_DOCUMENT_ARGUMENTS_H

#include "platform/baseTools/gtString.h"

#include <vector>

// The documents among arguments, in their order. The first argument is the program's own name and is left out, with one
// exception: a document that arrived before the window takes the place of an empty command line, so that a first
// argument that stands alone, is an absolute path and does not lead to the file at programPath is a document.
// Everything behind the first is a document, one that begins with a dash too; a first "--" among them is left out and
// empty arguments are passed over.
std::vector<gtString> hoDocumentArguments(const std::vector<gtString>& arguments, const gtString& programPath);

#endif

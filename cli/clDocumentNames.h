// SPDX-License-Identifier: Apache-2.0
// The documents that the arguments name: files, what is below folders (--recursive), and names from a file
// (--files0-from).
#ifndef COUNTERSIGN_CL_DOCUMENT_NAMES_H
#define COUNTERSIGN_CL_DOCUMENT_NAMES_H

#include "cli/clArguments.h"

// The arguments with every document in _files: those of a folder in its place and sorted by name, those of the file of
// names at the end. isComplete: false when a folder or the file could not be read, or there is no document, which has
// been told then.
//
// Of a folder regular files are taken. Left out are signature files (unless --also-signatures is given), this program's
// temporary files, and links, so that nothing outside of the folder is reached.
clArguments clGatherDocuments(const clArguments& arguments, bool& isComplete);

#endif

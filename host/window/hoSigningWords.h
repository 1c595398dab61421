// SPDX-License-Identifier: Apache-2.0
// What the window says about keys, signatures and what became of a work. Pure functions.
#ifndef COUNTERSIGN_HO_SIGNING_WORDS_H
#define COUNTERSIGN_HO_SIGNING_WORDS_H

#include "host/keys/hoKeyRing.h"
#include "host/signing/hoDocumentWork.h"

#include <wx/string.h>

#include <vector>

// Why a document cannot be opened or read, to follow its name and a colon.
wxString hoFileProblemText(osFileProblem problem);

// The state as a word or two. canTest: there is a key that could tell.
wxString hoStateText(hoDocumentState state, bool canTest);

// Why a key file was not loaded, as a sentence with the file's name.
wxString hoKeyProblemText(const gtString& path, const hoKeyFileFacts& facts);

// "2048-bit private key 1a2b3c4d, alice.pem"; empty when there is no key.
wxString hoKeyText(const hoLoadedKey& key, bool isPrivate);

// What the bar above the list says: one line, what its Details show, and whether nothing of it needs looking at.
struct hoWorkSummary
{
    wxString _line;
    wxString _details;
    bool _isAllWell;
};

// A warning if others can get at a private key through its file or folder; an empty line if they cannot.
hoWorkSummary hoKeyWarning(const hoLoadedKey& key);

// What a work came to, in one line ("5 documents tested: 3 good, 2 bad."), and document by document.
hoWorkSummary hoSummaryOf(hoDocumentWork::Kind kind, const std::vector<hoWorkOutcome>& outcomes, bool isCancelled);

// "1 document", "2,000 documents".
wxString hoAmountText(std::size_t amount, const char* one, const char* many);

// The last component of a path, for a message; the whole path when that is empty.
gtString hoLastComponent(const gtString& path);

// The text between double quotation marks.
wxString hoQuotedText(const wxString& text);

#endif

// SPDX-License-Identifier: Apache-2.0
// What the window says about keys, before a job and about its result. Pure functions.
#ifndef COUNTERSIGN_HO_SUMMARY_H
#define COUNTERSIGN_HO_SUMMARY_H

#include "host/documents/hoDocumentList.h"
#include "host/keys/hoKeyRing.h"
#include "host/signing/hoSigningJob.h"

#include <wx/string.h>

#include <vector>

// Why a key file was not loaded, as a sentence with the file's name.
wxString hoKeyProblemText(const gtString& path, const hoKeyFileFacts& facts);

// A document's state; where several keys were loaded, with the one that it came from: "Good", a dot in the middle of
// the line, "alice.pem".
wxString hoVerdictWords(const hoDocumentVerdict& verdict, bool canTest);

// "2048-bit private key 1a2b3c4d, alice.pem"; empty when there is no key.
wxString hoKeyText(const hoLoadedKey& key, bool isPrivate);

enum class hoSummaryTone
{
    AllWell,       // nothing of it needs looking at
    NotAllSigned,  // nothing failed; but tested documents have no signature, and somebody may have taken it away
    NotWell
};

// What the bar above the list says: one line, what its Details show, and how it is said.
struct hoSummary
{
    wxString _line;
    wxString _details;
    hoSummaryTone _tone = hoSummaryTone::NotWell;
};

// A warning if others can get at a private key through its file, its folder or this program's memory; an empty line if
// they cannot.
hoSummary hoKeyWarning(const hoLoadedKey& key);

// The result of a job in one line ("5 documents tested: 3 good, 2 bad."), and document by document, those
// that need looking at first.
hoSummary hoSummaryOf(hoSigningJob::Kind kind, const std::vector<hoSigningOutcome>& outcomes, bool isCancelled);

// The question whether to replace signatures that are there, which is not to be asked of none: how many, and what is
// known of them that speaks against it.
wxString hoReplacementQuestion(const std::vector<hoDocument>& documents);

// Why the selected documents cannot be signed or tested now; empty when they can.
wxString hoWhyNoJob(const hoDocumentList& documents, std::size_t amountSelected, const hoKeyRing& keys, bool isAtWork);

// Why nothing can be done with the selected documents; empty when there are some.
wxString hoWhyNoneSelected(const hoDocumentList& documents, std::size_t amountSelected);

// "3 paths copied"; empty for none.
wxString hoCopiedText(std::size_t amountOfPaths);

// The last component of a path, for a message; the whole path when that is empty.
gtString hoLastComponent(const gtString& path);

// A reason with a capital and a full stop.
wxString hoSentence(const gtString& reason);

// The text between double quotation marks.
wxString hoQuotedText(const wxString& text);

#endif

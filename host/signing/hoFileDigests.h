// SPDX-License-Identifier: Apache-2.0
// Both digests of a file from one reading: the exclusive-or digest of the toolkit, and SHA-256.
//
// CHANGES WHILE IT IS READ. The facts of the open file (size, time of change) are taken before and after the reading,
// and must be the same. Time stamps move in steps, so that a change right after another may leave them as they are:
// where the file's are that young, the reading waits for the clock to move first (some milliseconds, two seconds on
// file systems without fractions). What this cannot tell:
// - writes through a memory mapping that was written to before the reading began: the system stamps such a file late;
// - file systems that stamp by another machine's clock, or that answer from a cache (network file systems, some in user
//   space);
// - writes below the file system (the block device, the server's own disk), and a clock that is set back meanwhile.
#ifndef COUNTERSIGN_HO_FILE_DIGESTS_H
#define COUNTERSIGN_HO_FILE_DIGESTS_H

#include "host/signing/hoCountersignature.h"
#include "host/signing/hoDocumentSource.h"
#include "host/signing/hoIProgress.h"
#include "host/signing/hoSigningFacts.h"

class crRSAEncryptionKey;

struct hoFileDigests
{
    gtString _digestText;  // of the exclusive-or digest under a key of the given size
    hoSha256 _sha256 = {};
};

// Reads the document once, with memory that does not depend on its size. isShaWanted: otherwise _sha256 is left alone.
// digests is written only when there is no problem; pProgress may be null. The key must have at least
// hoSmallestSigningKeyBits. Throws std::bad_alloc. Safe from any thread.
hoSigningFacts hoReadDigests(const hoDocumentSource& source, const crRSAEncryptionKey& key, bool isShaWanted,
                             hoIProgress* pProgress, hoFileDigests& digests);

#endif

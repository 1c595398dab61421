// SPDX-License-Identifier: Apache-2.0
// Signs and tests files with the folder's file signer, and knows what the signer does not tell: whether the file could
// be read to its end and stayed the same meanwhile, how far the work has got, and whether it shall stop.
//
// Signatures are the signer's, character for character. Facts come back; the wording is up to the window and the command
// line. Nothing here throws or prints. A call may run on any thread, any number with the same key.
#ifndef COUNTERSIGN_HO_FILE_SIGNING_H
#define COUNTERSIGN_HO_FILE_SIGNING_H

#include "host/keys/hoKeyFile.h"
#include "platform/baseTools/gtString.h"
#include "platform/osWrappers/osFileFacts.h"
#include "platform/osWrappers/osResult.h"

enum class hoSigningProblem
{
    None,
    NoPrivateKey,      // signing takes one
    KeyTooSmall,       // the digest of a key of less than hoSmallestSigningKeyBits is empty: all files are equal to it
    FileCannotBeRead,  // _fileProblem tells why, _systemError the system's number if there is one
    FileChanged,       // while it was being read
    Cancelled,         // by the progress
    SelfTestFailed,    // the new signature does not come back: a failure of the machine or of this program
    NoMemory
};

constexpr int hoSmallestSigningKeyBits = 128;

struct hoSigningFacts : osResult<hoSigningProblem>
{
    osFileProblem _fileProblem = osFileProblem::None;
    osFileFacts _file;  // the file that was read, when there is no problem

    using osResult::osResult;
    hoSigningFacts() = default;
    // The file cannot be read, for this reason.
    explicit hoSigningFacts(const osFileResult& reading);
};

// Is told how far the reading of a file has got.
class hoIProgress
{
public:
    virtual ~hoIProgress();

    // Called about once a megabyte, on the thread that does the work; false cancels it. The size is that at the start.
    virtual bool onProgress(unsigned long long bytesDone, unsigned long long bytesInAll) = 0;
};

// The signature of the file under the private key. It is tested with the public key before it is given out. signature is
// written only when there is no problem; pProgress may be null.
hoSigningFacts hoSignFile(const gtString& path, const hoKey& key, hoIProgress* pProgress, gtString& signature);

// Whether the signature is that of the file; isGood is true only when there is no problem. A signature that is malformed
// or of another key is not good, which is no problem.
hoSigningFacts hoTestFile(const gtString& path, const hoKey& key, const gtString& signature, hoIProgress* pProgress,
                          bool& isGood);

// The digest's text of the file under a key of this size.
hoSigningFacts hoDigestOfFile(const gtString& path, const hoKey& key, hoIProgress* pProgress, gtString& digestText);

#endif

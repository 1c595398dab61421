// SPDX-License-Identifier: Apache-2.0
// What came of signing or reading a file. A plain value.
#ifndef COUNTERSIGN_HO_SIGNING_FACTS_H
#define COUNTERSIGN_HO_SIGNING_FACTS_H

#include "platform/osWrappers/osFileFacts.h"
#include "platform/osWrappers/osResult.h"

enum class hoSigningProblem
{
    None,
    NoPrivateKey,       // signing takes one
    KeyTooSmall,        // the digest of a key of less than hoSmallestSigningKeyBits is empty: all files are equal to it
    CannotCountersign,  // the key has less than hoLeastCountersigningBits; it can write the first line alone
    FileCannotBeRead,   // _fileProblem tells why, _systemError the system's number if there is one
    FileChanged,        // while it was being read
    Cancelled,          // by the progress
    CountersigningFailed,  // libcrypto cannot make or test a countersignature with this key
    SelfTestFailed,        // the new signature does not come back: a failure of the machine or of this program
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
    explicit hoSigningFacts(const osFileResult& reading)
        : osResult(hoSigningProblem::FileCannotBeRead, reading._systemError), _fileProblem(reading._problem)
    {
    }
};

#endif

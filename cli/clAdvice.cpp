// SPDX-License-Identifier: Apache-2.0
#include "cli/clAdvice.h"

#include <cerrno>

gtString clKeyAdvice(const hoKeyFileFacts& facts)
{
    switch (facts._problem)
    {
    case hoKeyFileProblem::NoKey:
    case hoKeyFileProblem::NotRsa:
        return "; countersign keygen makes one";
    default:
        return "";
    }
}

gtString clSigningAdvice(const hoSigningFacts& facts)
{
    if (facts._problem == hoSigningProblem::CannotCountersign)
    {
        return "; --digest-only writes the digest's line alone";
    }
    return facts._fileProblem == osFileProblem::IsFolder ? ", or take all by --recursive" : "";
}

gtString clVerdictAdvice(hoVerdict verdict)
{
    switch (verdict)
    {
    case hoVerdict::Weak:
        return "; signing again adds one, --accept-weak does without";
    case hoVerdict::NotSigned:
        return "; countersign sign makes one, --signature names another";
    default:
        return "";
    }
}

gtString clSignatureFileAdvice(const hoSignatureFileResult& facts)
{
    switch (facts._problem)
    {
    case hoSignatureFileProblem::CannotBeRead:
        return facts._systemError == ENOENT ? "; countersign sign makes one, --signature names another" : "";
    case hoSignatureFileProblem::Exists:
        return "; --skip-signed passes over what is still good, --force overwrites it";
    case hoSignatureFileProblem::NotRegular:
        return "; name a file with --output";
    case hoSignatureFileProblem::CannotBeWritten:
        return "; --output puts it elsewhere";
    default:
        return "";
    }
}

// SPDX-License-Identifier: Apache-2.0
// What to do about a problem on the command line, to stand behind its reason (host/messages/hoMessages.h). Each begins
// with "; ", and is empty where there is nothing to do.
#ifndef COUNTERSIGN_CL_ADVICE_H
#define COUNTERSIGN_CL_ADVICE_H

#include "host/keys/hoKeyFile.h"
#include "host/signing/hoFileSigning.h"

gtString clKeyAdvice(const hoKeyFileFacts& facts);

gtString clSigningAdvice(const hoSigningFacts& facts);

gtString clVerdictAdvice(hoVerdict verdict);

gtString clSignatureFileAdvice(const hoSignatureFileResult& facts);

#endif

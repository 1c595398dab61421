// SPDX-License-Identifier: Apache-2.0
// What the engines found, in words: what it was about, what is wrong, and the way out where there is one.
#ifndef COUNTERSIGN_CL_MESSAGES_H
#define COUNTERSIGN_CL_MESSAGES_H

#include <string>

#include "host/keys/hoKeyFile.h"
#include "host/signing/hoFileSigning.h"
#include "host/signing/hoSignatureFile.h"
#include "host/signing/hoTextEncryption.h"

std::string clSystemErrorText(int systemError);

// name is printable in each of these.
std::string clKeyMessage(const std::string& name, const hoKeyFileFacts& facts, bool isWithoutTerminal);
std::string clOpenKeyWarning(const std::string& name);
std::string clSigningMessage(const std::string& name, const std::string& keyName, int keyBits,
                             const hoSigningFacts& facts);
std::string clSignatureFileMessage(const std::string& name, const hoSignatureFileFacts& facts);
std::string clEncryptionMessage(hoTextProblem problem, int lengthOfText, int longestText, int keyBits);
std::string clDecryptionMessage(hoTextProblem problem, int lengthOfCipherText, int wantedLength, int longestText,
                                const std::string& keyName, int keyBits);

#endif

// SPDX-License-Identifier: Apache-2.0
// Looks for secrets in all memory that the test's own process may write to: variables, stacks, blocks that are in use
// and blocks that were given back.
//
// What is looked for must not be there for any other reason, so it is kept masked, and a process of its own reads it
// from the key. Nothing else may happen in the test's process meanwhile. Not for builds for sanitizers, whose memory is
// too large to be looked through.
#ifndef TS_SECRETS_H
#define TS_SECRETS_H

#include "host/keys/hoKeyFile.h"

#include <string>
#include <vector>

struct tsSecret
{
    std::string _name;                  // for messages
    std::vector<unsigned char> _bytes;  // masked
};

// What of a key file with a private key must not be found: a piece of the private exponent as digits, as bytes with the
// highest first, and as hexadecimal text, and a line of the file. Its passphrase is tsPassphraseSource's. Empty if the
// file has no private key.
std::vector<tsSecret> tsSecretsOfKey(const std::string& path);

// What of the passphrase must not be found: a piece of its middle, since the allocator writes to the beginning of a
// block that is given back, in bytes and as the toolkit's wide characters.
std::vector<tsSecret> tsSecretsOfPassphrase();

// Gives the passphrase to whoever loads a key.
class tsPassphraseSource : public hoIPassphraseSource
{
public:
    int getPassphrase(char* pBuffer, int size) override;
};

// Writes the passphrase into a file, without a line's end, for programs that are to know it.
void tsWritePassphrase(const std::string& path);

// How often the secret stands in memory, and whether it stands in a file.
int tsTimesInMemory(const tsSecret& secret);
bool tsStandsInFile(const tsSecret& secret, const std::string& path);

#endif

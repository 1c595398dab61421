// SPDX-License-Identifier: Apache-2.0
// The passphrase of a key file from where the arguments say: --passphrase-fd, --passphrase-file, or the terminal.
#ifndef COUNTERSIGN_CL_PASSPHRASE_H
#define COUNTERSIGN_CL_PASSPHRASE_H

#include "cli/clArguments.h"
#include "host/keys/hoKeyFile.h"

// A passphrase is one line without its end. From a descriptor nothing behind the line is read, so that the next key's
// passphrase, or a text, may follow.
class clPassphrase : public hoIPassphraseSource
{
public:
    // question: what the terminal shows, with the blank at its end. The arguments must stay.
    clPassphrase(const clArguments& arguments, const gtString& question);

    int getPassphrase(char* pBuffer, int size) override;

    // Why there was no passphrase, as a sentence without its end; empty where it was not asked for, or was there.
    const gtString& reason() const { return _reason; }

private:
    int readFrom(int descriptor, const gtString& name, char* pBuffer, int size);
    int readFile(char* pBuffer, int size);
    int ask(char* pBuffer, int size);

    const clArguments& _arguments;
    gtString _question;
    gtString _reason;
};

#endif

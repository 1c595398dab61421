// SPDX-License-Identifier: Apache-2.0
// The terminal that the program was started on.
#ifndef COUNTERSIGN_CL_TERMINAL_H
#define COUNTERSIGN_CL_TERMINAL_H

#include "host/keys/hoKeyFile.h"

// Asks for the passphrase of a key file on the terminal, whatever standard input and output are. Does not ask where the
// terminal would show what is typed.
class clTerminalPassphrase : public hoIPassphraseSource
{
public:
    // name is what the question calls the file.
    explicit clTerminalPassphrase(const gtString& name) : _name(name) {}

    int getPassphrase(char* pBuffer, int size) override;

    // After a question that could not be put.
    bool isWithoutTerminal() const { return _isWithoutTerminal; }

private:
    gtString _name;
    bool _isWithoutTerminal = false;
};

// Columns of the terminal that standard error is; 0 when it is none.
int clColumnsOfStandardError();

bool clIsOutputATerminal();

#endif

// SPDX-License-Identifier: Apache-2.0
// Passphrases that are typed on the terminal that the program was started on.
#ifndef COUNTERSIGN_CL_TERMINAL_PASSPHRASE_H
#define COUNTERSIGN_CL_TERMINAL_PASSPHRASE_H

#include "host/keys/hoKeyFile.h"

// Asks on the terminal, whatever standard input and output are. Does not ask where the terminal would show what is
// typed. The terminal shows it again afterwards, also when a signal ends or stops the program at the question; a
// program that is continued asks again.
class clTerminalPassphrase : public hoIPassphraseSource
{
public:
    // The question as it is printed, with the blank at its end.
    explicit clTerminalPassphrase(const gtString& question) : _question(question) {}

    int getPassphrase(char* pBuffer, int size) override;

    // After a question that could not be put.
    bool isWithoutTerminal() const { return _isWithoutTerminal; }

private:
    gtString _question;
    bool _isWithoutTerminal = false;
};

#endif

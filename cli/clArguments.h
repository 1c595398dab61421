// SPDX-License-Identifier: Apache-2.0
// The command line's arguments as facts.
#ifndef COUNTERSIGN_CL_ARGUMENTS_H
#define COUNTERSIGN_CL_ARGUMENTS_H

#include "platform/baseTools/gtString.h"

#include <vector>

enum class clCommand
{
    ShowText,  // help or version: _text, on standard output
    WrongUse,  // _text says what is wrong, on standard error
    Sign,
    Test,
    Encrypt,
    Decrypt,
    Key,
    Keygen,
    Digest
};

struct clArguments
{
    clCommand _command = clCommand::WrongUse;
    int _bits = 0;                      // --bits
    int _jobs = 0;                      // --jobs; 0: not given
    int _passphraseDescriptor = -1;     // --passphrase-fd; -1: not given
    gtString _text;                     // of ShowText and WrongUse, ready to be printed
    gtString _keyPath;                  // the first --key; empty: not given
    std::vector<gtString> _keyPaths;    // --key; of test there may be several
    std::vector<gtString> _keyFolders;  // --key-dir
    std::vector<gtString> _files;       // FILE...
    gtString _namesPath;                // --files0-from; empty: not given
    gtString _outputPath;               // --output
    gtString _signaturePath;            // --signature
    gtString _plainText;                // TEXT
    gtString _passphrasePath;           // --passphrase-file; empty: not given
    bool _hasOutput = false;            // --output
    bool _hasSignature = false;         // --signature
    bool _hasPlainText = false;         // TEXT
    bool _isRecursive = false;          // --recursive
    bool _isForced = false;             // --force
    bool _isDigestOnly = false;         // --digest-only
    bool _isWeakAccepted = false;       // --accept-weak
    bool _isPrivateWanted = false;      // --private
    bool _isPublicWanted = false;       // --public
    bool _areNumbersWanted = false;     // --numbers
    bool _areWarningsLeftOut = false;   // --no-warnings
    bool _areSignaturesWanted = false;  // --also-signatures
    bool _isSignedSkipped = false;      // --skip-signed
    bool _isQuiet = false;              // --quiet
    bool _isStatusOnly = false;         // --status
    bool _isSummaryWanted = false;      // --summary
    bool _isJsonWanted = false;         // --json
    bool _isPassphraseLeftOut = false;  // --no-passphrase
};

// Parses the arguments that follow the program's name. Never throws, but for missing memory.
clArguments clParseArguments(const std::vector<gtString>& arguments);

#endif

// SPDX-License-Identifier: Apache-2.0
// The command line's arguments as facts.
#ifndef COUNTERSIGN_CL_ARGUMENTS_H
#define COUNTERSIGN_CL_ARGUMENTS_H

#include <string>
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
    Digest
};

struct clArguments
{
    clCommand _command = clCommand::WrongUse;
    std::string _text = {};                // of ShowText and WrongUse, ready to be printed
    std::string _keyPath = {};             // --key
    std::vector<std::string> _files = {};  // FILE...
    bool _hasOutput = false;               // --output
    std::string _outputPath = {};
    bool _isForced = false;      // --force
    bool _hasSignature = false;  // --signature
    std::string _signaturePath = {};
    bool _isPrivateWanted = false;  // --private
    bool _hasPlainText = false;     // TEXT
    std::string _plainText = {};
};

// Understands the arguments that follow the program's name. Never throws, but for missing memory.
clArguments clParseArguments(const std::vector<std::string>& arguments);

#endif

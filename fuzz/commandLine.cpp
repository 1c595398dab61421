// SPDX-License-Identifier: Apache-2.0
// Any arguments: a command with what it needs, or a text. And any name made printable.
#include <algorithm>
#include <vector>

#include "cli/clArguments.h"
#include "cli/clPrintableName.h"
#include "fuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t size)
{
    FuzzInput input(pBytes, size);
    std::vector<gtString> arguments;
    while (!input.isEmpty() && arguments.size() < 40)
    {
        arguments.push_back(input.upTo('\0'));
    }
    const clArguments result = clParseArguments(arguments);
    switch (result._command)
    {
    case clCommand::WrongUse:
    case clCommand::ShowText:
        FUZZ_CHECK(!result._text.isEmpty() && result._text[result._text.length() - 1] == '\n');
        break;
    case clCommand::Sign:
    case clCommand::Test:
    case clCommand::Digest:
        FUZZ_CHECK(!result._files.empty());
        break;
    case clCommand::Encrypt:
    case clCommand::Decrypt:
    case clCommand::Key:
    case clCommand::Keygen:
        FUZZ_CHECK(result._files.empty());
        break;
    }

    // A value is never empty: an option that has none cannot have taken another argument for it.
    if (result._command == clCommand::Sign || result._command == clCommand::Test)
    {
        FUZZ_CHECK(!result._keyPaths.empty() || !result._keyFolders.empty());
        for (const std::vector<gtString>& paths : {result._keyPaths, result._keyFolders})
        {
            for (const gtString& path : paths)
            {
                FUZZ_CHECK(!path.isEmpty());
            }
        }
        FUZZ_CHECK(result._hasOutput != result._outputPath.isEmpty());
        FUZZ_CHECK(result._hasSignature != result._signaturePath.isEmpty());
    }

    // What stands behind the dashes arrives as it is; standard input can be read only once.
    std::vector<gtString> files = arguments;
    if (!files.empty())
    {
        files.insert(files.begin(), {"digest", "--key", "k", "--"});
        const clArguments digest = clParseArguments(files);
        if (std::count(arguments.begin(), arguments.end(), gtString("-")) > 1)
        {
            FUZZ_CHECK(digest._command == clCommand::WrongUse);
        }
        else
        {
            FUZZ_CHECK(digest._command == clCommand::Digest && digest._files == arguments);
        }
    }
    for (const gtString& argument : arguments)
    {
        const gtString name = clPrintableName(argument);
        for (const char character : name.asStringView())
        {
            FUZZ_CHECK(static_cast<unsigned char>(character) >= 0x20 && character != 0x7F);
        }
    }
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
#include "cli/clSignatureNames.h"

#include <string>
#include <string_view>
#include <sys/stat.h>

#include "host/signing/hoSignatureFile.h"

clNameKind clKindOfName(const gtString& name)
{
    const gtString ending = hoSignaturePath("");
    const std::string_view text = name.asStringView();
    const auto length = static_cast<std::size_t>(ending.length());
    // A file that has nothing but the ending for a name is nobody's signature.
    const bool isSignature = text.size() > length && text.find('\0') == std::string_view::npos &&
                             text.substr(text.size() - length) == ending.asStringView() &&
                             text[text.size() - length - 1] != '/';
    if (!isSignature)
    {
        return clNameKind::Document;
    }
    // A link to nowhere is a document that cannot be read, and its signature is a signature.
    struct stat status = {};
    const std::string document(text.substr(0, text.size() - length));
    return ::lstat(document.c_str(), &status) == 0 ? clNameKind::Signature : clNameKind::Orphan;
}

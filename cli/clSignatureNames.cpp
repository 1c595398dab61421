// SPDX-License-Identifier: Apache-2.0
#include "cli/clSignatureNames.h"

#include <string_view>
#include <sys/stat.h>

#include "host/signing/hoSignatureFile.h"

clNameKind clKindOfName(const gtString& name)
{
    const gtString document = hoDocumentOfSignature(name);
    if (document.isEmpty() || name.asStringView().find('\0') != std::string_view::npos)
    {
        return clNameKind::Document;
    }
    // A link to nowhere is a document that cannot be read, and its signature is a signature.
    struct stat status = {};
    return ::lstat(document.asCharArray(), &status) == 0 ? clNameKind::Signature : clNameKind::Orphan;
}

// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoOpenedPaths.h"

#include "host/documents/hoFolderFiles.h"
#include "host/signing/hoSignatureFile.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace fs = std::filesystem;

gtString hoDocumentMeant(const gtString& path)
{
    gtString document = hoDocumentOfSignature(path);
    std::error_code error;
    return fs::is_regular_file(document.asStdString(), error) ? document : path;
}

std::vector<gtString> hoDocumentsMeant(const std::vector<gtString>& paths)
{
    std::vector<gtString> documents;
    std::set<gtString> known;
    const auto add = [&](const gtString& path)
    {
        const gtString document = hoDocumentMeant(path);
        if (known.insert(document).second)
        {
            documents.push_back(document);
        }
    };
    for (const gtString& path : paths)
    {
        std::error_code error;
        const bool isFolder = fs::is_directory(path.asStdString(), error);
        const std::vector<gtString> files =
            isFolder ? hoFilesBelow(path, [] { return false; })._paths : std::vector<gtString>();
        if (files.empty())
        {
            add(path);
        }
        std::for_each(files.begin(), files.end(), add);
    }
    return documents;
}

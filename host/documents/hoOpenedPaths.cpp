// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoOpenedPaths.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>

namespace
{
namespace fs = std::filesystem;

std::vector<gtString> filesIn(const gtString& folder)
{
    std::vector<gtString> files;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder.asStdString(), fs::directory_options::skip_permission_denied, error);
    while (!error && entry != fs::recursive_directory_iterator())
    {
        std::error_code noStatus;
        if (entry->is_regular_file(noStatus))
        {
            files.emplace_back(entry->path().string());
        }
        entry.increment(error);
    }
    std::sort(files.begin(), files.end());
    return files;
}
}  // namespace

gtString hoDocumentMeant(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    const std::string_view ending = ".sig";
    if (bytes.size() <= ending.size() || bytes.substr(bytes.size() - ending.size()) != ending)
    {
        return path;
    }
    const std::string document(bytes.substr(0, bytes.size() - ending.size()));
    std::error_code error;
    return fs::is_regular_file(document, error) ? gtString(document) : path;
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
        const std::vector<gtString> files = isFolder ? filesIn(path) : std::vector<gtString>();
        if (files.empty())
        {
            add(path);
        }
        std::for_each(files.begin(), files.end(), add);
    }
    return documents;
}

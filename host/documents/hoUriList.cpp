// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoUriList.h"

#include "host/documents/hoPercentText.h"
#include "platform/baseTools/gtBytes.h"

#include <algorithm>

namespace
{
const char* const blanks = " \t\v\f";

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

// The path of a local file, or an empty text.
std::string pathOf(const std::string& uri, const std::string& thisHost)
{
    const std::size_t afterScheme = 5;
    if (lowerCase(uri.substr(0, afterScheme)) != "file:")
    {
        return "";
    }
    std::string path = uri.substr(afterScheme);
    if (path.compare(0, 2, "//") == 0)
    {
        const std::size_t slash = path.find('/', 2);
        const std::string host = lowerCase(path.substr(2, slash == std::string::npos ? slash : slash - 2));
        if (slash == std::string::npos || (!host.empty() && host != "localhost" && host != lowerCase(thisHost)))
        {
            return "";
        }
        path.erase(0, slash);
    }
    path = hoFromPercentText(path);
    const bool isPath = !path.empty() && path[0] == '/' && path.find('\0') == std::string::npos;
    return isPath ? path : "";
}
}  // namespace

hoUriList hoReadUriList(const std::string& text, const std::string& thisHost)
{
    hoUriList list;
    const std::string used = text.substr(0, text.find('\0'));
    std::size_t start = 0;
    while (start < used.size())
    {
        const std::size_t end = std::min(used.find_first_of("\r\n", start), used.size());
        std::string line = used.substr(start, end - start);
        start = end + 1;
        const std::size_t first = line.find_first_not_of(blanks);
        if (first == std::string::npos || line[first] == '#')
        {
            continue;
        }
        line = line.substr(first, line.find_last_not_of(blanks) - first + 1);
        const std::string path = pathOf(line, thisHost);
        if (path.empty())
        {
            list._refused.push_back(hoToText(line));
        }
        else
        {
            list._paths.push_back(hoToText(path));
        }
    }
    return list;
}

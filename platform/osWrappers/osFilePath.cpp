// SPDX-License-Identifier: Apache-2.0
#include "platform/osWrappers/osFilePath.h"

#include <string_view>
#include <utility>

namespace
{
std::string_view lastComponent(const gtString& fullPath)
{
    const std::string_view path(fullPath.asCharArray(), static_cast<std::size_t>(fullPath.length()));
    // Without any separator npos + 1 is 0: the component is the whole path.
    return path.substr(path.rfind(osFilePath::osPathSeparator) + 1);
}

// The index of the separator before the extension, or npos.
std::size_t extensionSeparatorIndex(std::string_view component)
{
    const std::size_t firstOther = component.find_first_not_of(osFilePath::osExtensionSeparator);
    const std::size_t lastSeparator = component.rfind(osFilePath::osExtensionSeparator);
    // Where there are none, they are npos, which is above every index.
    return lastSeparator < firstOther ? std::string_view::npos : lastSeparator;
}

void assign(gtString& target, std::string_view text)
{
    target = gtString(text.data(), static_cast<int>(text.size()));
}
}  // namespace

osFilePath::osFilePath(const gtString& fullPath) : _fullPath(fullPath) {}

void osFilePath::getFileName(gtString& fileName) const
{
    const std::string_view component = lastComponent(_fullPath);
    assign(fileName, component.substr(0, extensionSeparatorIndex(component)));
}

void osFilePath::getFileExtension(gtString& fileExtension) const
{
    const std::string_view component = lastComponent(_fullPath);
    const std::size_t separator = extensionSeparatorIndex(component);
    assign(fileExtension, separator == std::string_view::npos ? std::string_view() : component.substr(separator + 1));
}

void osFilePath::getFullFileName(gtString& fullFileName) const
{
    assign(fullFileName, lastComponent(_fullPath));
}

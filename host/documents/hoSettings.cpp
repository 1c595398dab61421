// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoSettings.h"

#include "host/documents/hoPercentText.h"

#include "platform/osWrappers/osAtomicFile.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace
{
const std::uintmax_t mostFileBytes = 1024 * 1024;

gtString listName(const gtString& name, std::size_t number)
{
    return gtString(name).append('.').append(std::to_string(number));
}

}  // namespace

gtString hoSettings::text(const gtString& name, const gtString& fallback) const
{
    const auto found = _values.find(name);
    return found == _values.end() ? fallback : found->second;
}

long hoSettings::number(const gtString& name, long fallback, long least, long most) const
{
    const gtString digits = text(name);
    char* pEnd = nullptr;
    errno = 0;
    const long value = std::strtol(digits.asCharArray(), &pEnd, 10);
    const bool isWhole = !digits.isEmpty() && *pEnd == '\0' && errno == 0;
    return isWhole && value >= least && value <= most ? value : fallback;
}

std::vector<gtString> hoSettings::texts(const gtString& name) const
{
    std::vector<gtString> found;
    for (std::size_t number = 1;; ++number)
    {
        const auto value = _values.find(listName(name, number));
        if (value == _values.end())
        {
            return found;
        }
        found.push_back(value->second);
    }
}

void hoSettings::setTexts(const gtString& name, const std::vector<gtString>& values)
{
    for (std::size_t number = 1; _values.erase(listName(name, number)) > 0; ++number)
    {
    }
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        _values[listName(name, i + 1)] = values[i];
    }
}

void hoSettings::remove(const gtString& beginning)
{
    const std::string_view wanted = beginning.asStringView();
    for (auto setting = _values.begin(); setting != _values.end();)
    {
        const bool isMeant = setting->first.asStringView().substr(0, wanted.size()) == wanted;
        setting = isMeant ? _values.erase(setting) : std::next(setting);
    }
}

bool hoSettings::load(const gtString& path)
{
    _values.clear();
    std::error_code error;
    if (!std::filesystem::is_regular_file(path.asStdString(), error) ||
        std::filesystem::file_size(path.asStdString(), error) > mostFileBytes)
    {
        return false;
    }
    std::map<gtString, gtString> values;
    std::ifstream file(path.asStdString(), std::ios::binary);
    std::string line;
    while (std::getline(file, line))
    {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos && equals > 0)
        {
            values[line.substr(0, equals)] = hoFromPercentText(line.substr(equals + 1));
        }
    }
    // Half of the values would be taken for all of them when they are saved.
    if (!file.eof() || file.bad())
    {
        return false;
    }
    _values.swap(values);
    return true;
}

bool hoSettings::save(const gtString& path) const
{
    // No stream: without memory that would fail unnoticed.
    gtString text;
    for (const auto& [name, value] : _values)
    {
        text.append(name).append('=').append(hoToPercentText(value)).append('\n');
    }
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(path.asStdString()).parent_path();
    if (!folder.empty())
    {
        std::filesystem::create_directories(folder, error);
    }
    const unsigned int ownersAlone = 0600;
    return osWriteFileAtomically(path, text.asStringView(), true, ownersAlone).isOk();
}

gtString hoUserSettingsPath()
{
    const std::string below = "/countersign/settings";
    const char* pFolder = std::getenv("XDG_CONFIG_HOME");
    if (pFolder != nullptr && pFolder[0] == '/')
    {
        return pFolder + below;
    }
    const char* pHome = std::getenv("HOME");
    return pHome != nullptr && pHome[0] == '/' ? pHome + ("/.config" + below) : "";
}

// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoSettings.h"

#include "host/documents/hoPercentText.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unistd.h>

namespace
{
const std::uintmax_t mostFileBytes = 1024 * 1024;

std::string listName(const std::string& name, std::size_t number)
{
    return name + "." + std::to_string(number);
}

bool writeAll(int file, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size())
    {
        const ssize_t written = write(file, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR)
        {
            return false;
        }
        done += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    return fsync(file) == 0;
}
}  // namespace

std::string hoSettings::text(const std::string& name, const std::string& fallback) const
{
    const auto found = _values.find(name);
    return found == _values.end() ? fallback : found->second;
}

long hoSettings::number(const std::string& name, long fallback, long least, long most) const
{
    const std::string digits = text(name);
    char* pEnd = nullptr;
    errno = 0;
    const long value = std::strtol(digits.c_str(), &pEnd, 10);
    const bool isWhole = !digits.empty() && *pEnd == '\0' && errno == 0;
    return isWhole && value >= least && value <= most ? value : fallback;
}

std::vector<std::string> hoSettings::texts(const std::string& name) const
{
    std::vector<std::string> found;
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

void hoSettings::setTexts(const std::string& name, const std::vector<std::string>& values)
{
    for (std::size_t number = 1; _values.erase(listName(name, number)) > 0; ++number)
    {
    }
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        _values[listName(name, i + 1)] = values[i];
    }
}

bool hoSettings::load(const std::string& path)
{
    _values.clear();
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) || std::filesystem::file_size(path, error) > mostFileBytes)
    {
        return false;
    }
    std::map<std::string, std::string> values;
    std::ifstream file(path, std::ios::binary);
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

bool hoSettings::save(const std::string& path) const
{
    // No stream: that would take what there was no memory for as written.
    std::string text;
    for (const auto& [name, value] : _values)
    {
        text += name + '=' + hoToPercentText(value) + '\n';
    }

    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty())
    {
        std::filesystem::create_directories(folder, error);
    }
    std::string beside = path + ".XXXXXX";
    const int file = mkstemp(beside.data());
    if (file < 0)
    {
        return false;
    }
    bool isWritten = writeAll(file, text);
    // Interrupted, it is closed all the same.
    isWritten = (close(file) == 0 || errno == EINTR) && isWritten;
    isWritten = isWritten && std::rename(beside.c_str(), path.c_str()) == 0;
    if (!isWritten)
    {
        unlink(beside.c_str());
    }
    return isWritten;
}

std::string hoUserSettingsPath()
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

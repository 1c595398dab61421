// SPDX-License-Identifier: Apache-2.0
#include "cli/clProgressLine.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr std::chrono::milliseconds untilShown(1000);
constexpr std::chrono::milliseconds betweenLines(100);
const char* const clearLine = "\r\033[K";

// The beginning of the text, without half a UTF-8 character at its end.
std::string cut(const std::string& text, std::size_t length)
{
    if (text.size() <= length)
    {
        return text;
    }
    while ((length > 0) && ((static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U))
    {
        length--;
    }
    return text.substr(0, length);
}

}  // namespace

clProgressLine::clProgressLine(std::string name, int columns, Clock clock, Writer writer,
                               std::function<bool()> isCancelled)
    : _name(std::move(name)),
      _columns(columns),
      _clock(std::move(clock)),
      _writer(std::move(writer)),
      _isCancelled(std::move(isCancelled)),
      _next(_clock() + untilShown)
{
}

clProgressLine::~clProgressLine()
{
    clear();
}

bool clProgressLine::onProgress(unsigned long long bytesDone, unsigned long long bytesInAll)
{
    if (_isCancelled())
    {
        return false;
    }
    const std::chrono::milliseconds now = _clock();
    if (_writer && (now >= _next) && (bytesDone < bytesInAll))
    {
        _next = now + betweenLines;
        _isShown = true;
        const auto percent = static_cast<int>(static_cast<double>(bytesDone) * 100.0 / static_cast<double>(bytesInAll));
        const std::string line = std::to_string(percent) + " % of " + clAmountOfBytes(bytesInAll) + "  ";
        const auto room = static_cast<std::size_t>(std::max(_columns - 1 - static_cast<int>(line.size()), 0));
        _writer(clearLine + line + cut(_name, room));
    }
    return true;
}

void clProgressLine::clear()
{
    if (_isShown)
    {
        _writer(clearLine);
        _isShown = false;
    }
}

std::string clAmountOfBytes(unsigned long long bytes)
{
    if (bytes < 1000)
    {
        return std::to_string(bytes) + " bytes";
    }
    const char* const units[] = {" KB", " MB", " GB", " TB", " PB", " EB"};
    std::size_t unit = 0;
    unsigned long long tenths = bytes / 100;
    while (tenths >= 10000)
    {
        tenths /= 1000;
        unit++;
    }
    std::string number = std::to_string(tenths / 10);
    if (tenths < 100)
    {
        number += "." + std::to_string(tenths % 10);
    }
    return number + units[unit];
}

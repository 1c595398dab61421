// SPDX-License-Identifier: Apache-2.0
#include "cli/clProgressLine.h"

#include <algorithm>
#include <string>
#include <utility>

#include "host/messages/hoNumbers.h"
#include "platform/baseTools/gtUtf8.h"

namespace
{

constexpr std::chrono::milliseconds untilShown(1000);
constexpr std::chrono::milliseconds betweenLines(100);
const char* const clearLine = "\r\033[K";

}  // namespace

clProgressLine::clProgressLine(gtString name, int columns, Clock clock, Writer writer,
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
    if (_writer && now >= _next && bytesDone < bytesInAll)
    {
        _next = now + betweenLines;
        _isShown = true;
        const auto percent = static_cast<int>(static_cast<double>(bytesDone) * 100.0 / static_cast<double>(bytesInAll));
        const gtString line =
            gtString(std::to_string(percent)).append(" % of ").append(hoSizeText(bytesInAll)).append("  ");
        const auto room = static_cast<std::size_t>(std::max(_columns - 1 - line.length(), 0));
        _writer(gtString(clearLine).append(line).append(gtBeginningOfUtf8(_name.asStringView(), room)));
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

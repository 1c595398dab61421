// SPDX-License-Identifier: Apache-2.0
#include "assertionReporting/arAssertionReport.h"

#include <cstring>

namespace
{

gtString keptText(const char* pText)
{
    if (pText == nullptr)
    {
        return gtString();
    }
    std::size_t length = strnlen(pText, arAssertionReport::mostTextBytes + 1);
    if (length > arAssertionReport::mostTextBytes)
    {
        const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
        length = arAssertionReport::mostTextBytes;
        // No character has more than three bytes behind its first.
        for (int step = 0; step < 3 && isContinuation(pText[length]); ++step)
        {
            --length;
        }
    }
    return gtString(pText, static_cast<int>(length));
}

std::pair<gtString, int> placeOf(const char* file, int line)
{
    return {gtString(file), line};
}

}  // namespace

void arAssertionReport::record(const char* function, const char* file, int line, const char* message,
                               unsigned int threadId, std::int64_t seconds, std::vector<std::uintptr_t> stack)
{
    std::pair<gtString, int> place = placeOf(file, line);
    gtString keptFunction = keptText(function);
    gtString keptMessage = keptText(message);

    const std::lock_guard<std::mutex> lock(_mutex);
    const auto position = _positions.find(place);
    if (position == _positions.end() && _rows.size() == mostRows)
    {
        ++_amountWithoutRow;
    }
    else
    {
        if (position == _positions.end())
        {
            arAssertionRow row;
            row._file = place.first;
            row._line = line;
            row._firstSeconds = seconds;
            row._threadId = threadId;
            if (_rows.size() == _rows.capacity())
            {
                _rows.reserve(2 * _rows.size() + 1);
            }
            _positions.emplace(std::move(place), _rows.size());
            _rows.push_back(std::move(row));
        }
        arAssertionRow& row = position == _positions.end() ? _rows.back() : _rows[position->second];
        std::swap(row._function, keptFunction);
        std::swap(row._message, keptMessage);
        row._stack.swap(stack);
        ++row._count;
        row._lastSeconds = seconds;
        row._isOfSeveralThreads = row._isOfSeveralThreads || row._threadId != threadId;
        row._threadId = threadId;
    }
    ++_amountOfFailures;
    notify();
}

void arAssertionReport::decide(const char* file, int line, arAssertionDecision decision)
{
    const std::pair<gtString, int> place = placeOf(file, line);
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto position = _positions.find(place);
    if (position != _positions.end())
    {
        _rows[position->second]._decision = decision;
        notify();
    }
}

std::vector<arAssertionRow> arAssertionReport::rows()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    std::vector<arAssertionRow> copies(_rows);
    _isListenerNotified = false;
    return copies;
}

std::uint64_t arAssertionReport::amountOfFailures() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _amountOfFailures;
}

std::uint64_t arAssertionReport::amountWithoutRow() const
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return _amountWithoutRow;
}

void arAssertionReport::setListener(std::function<void()> listener)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _listener.swap(listener);
}

void arAssertionReport::notify()
{
    if (_listener && !_isListenerNotified)
    {
        _isListenerNotified = true;
        _listener();
    }
}

// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtString.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace
{
constexpr std::size_t longestText = INT_MAX;

std::size_t lengthOf(const char* pChars)
{
    return pChars == nullptr ? 0 : std::strlen(pChars);
}

std::size_t lengthOf(const char* pChars, int length)
{
    return pChars == nullptr ? 0 : static_cast<std::size_t>(std::max(length, 0));
}

[[noreturn]] void throwTooLong()
{
    throw std::length_error("gtString: a text of more than INT_MAX bytes");
}

void appendChecked(std::string& text, const char* pChars, std::size_t length)
{
    if (length > longestText - text.size())
    {
        throwTooLong();
    }
    text.append(pChars, length);
}
}  // namespace

gtString::gtString(const char* pChars)
{
    appendChecked(_text, pChars, lengthOf(pChars));
}

gtString::gtString(const char* pChars, int length)
{
    appendChecked(_text, pChars, lengthOf(pChars, length));
}

gtString::gtString(std::string_view text)
{
    appendChecked(_text, text.data(), text.size());
}

gtString::gtString(const std::string& text) : gtString(std::string_view(text)) {}

gtString::gtString(std::string&& text)
{
    if (text.size() > longestText)
    {
        throwTooLong();
    }
    _text.swap(text);
}

gtString::gtString(gtString&& other) noexcept
{
    _text.swap(other._text);
}

gtString& gtString::operator=(const char* pChars)
{
    return *this = gtString(pChars);
}

gtString& gtString::operator=(gtString&& other) noexcept
{
    gtString taken(std::move(other));
    _text.swap(taken._text);
    return *this;
}

gtString& gtString::append(const gtString& other)
{
    return append(other.asStringView());
}

gtString& gtString::append(std::string_view other)
{
    appendChecked(_text, other.data(), other.size());
    return *this;
}

gtString& gtString::append(const std::string& other)
{
    return append(std::string_view(other));
}

gtString& gtString::append(const char* pChars)
{
    appendChecked(_text, pChars, lengthOf(pChars));
    return *this;
}

gtString& gtString::append(const char* pChars, int length)
{
    appendChecked(_text, pChars, lengthOf(pChars, length));
    return *this;
}

gtString& gtString::append(char aChar)
{
    appendChecked(_text, &aChar, 1);
    return *this;
}

gtString& gtString::appendFormattedString(const char* pFormat, ...)
{
    if (pFormat == nullptr)
    {
        return *this;
    }

    // Most results fit here; a longer one is written a second time, into memory of the length that the first told.
    // Neither is the text itself, which the arguments may point into.
    char shortResult[256];
    va_list arguments;
    va_start(arguments, pFormat);
    const int length = std::vsnprintf(shortResult, sizeof shortResult, pFormat, arguments);
    va_end(arguments);

    // A negative length appends nothing.
    if (length < static_cast<int>(sizeof shortResult))
    {
        return append(shortResult, length);
    }
    if (static_cast<std::size_t>(length) > longestText - _text.size())
    {
        throwTooLong();
    }

    const std::size_t size = static_cast<std::size_t>(length) + 1;
    const std::unique_ptr<char[]> pLongResult(new char[size]);
    va_list sameArguments;
    va_start(sameArguments, pFormat);
    const int sameLength = std::vsnprintf(pLongResult.get(), size, pFormat, sameArguments);
    va_end(sameArguments);
    return sameLength == length ? append(pLongResult.get(), length) : *this;
}

gtString& gtString::makeEmpty() noexcept
{
    _text.clear();
    return *this;
}

gtString& gtString::reserve(int length)
{
    // Some libraries shrink to what is less than there is.
    _text.reserve(std::max(static_cast<std::size_t>(std::max(length, this->length())), _text.capacity()));
    return *this;
}

std::ostream& operator<<(std::ostream& stream, const gtString& text)
{
    return stream << text.asStringView();
}

// SPDX-License-Identifier: Apache-2.0
#include "cli/clJsonObject.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/baseTools/gtUtf8.h"

namespace
{

void appendCodeUnit(gtString& result, std::uint32_t unit)
{
    result.append("\\u");
    for (int shift = 12; shift >= 0; shift -= 4)
    {
        result.append("0123456789abcdef"[(unit >> shift) & 0xf]);
    }
}

void appendCharacter(gtString& result, std::uint32_t codePoint)
{
    if (codePoint == '"' || codePoint == '\\')
    {
        result.append('\\').append(static_cast<char>(codePoint));
    }
    else if (codePoint >= ' ' && codePoint < 0x7f)
    {
        result.append(static_cast<char>(codePoint));
    }
    else if (codePoint < 0x10000)
    {
        appendCodeUnit(result, codePoint);
    }
    else
    {
        appendCodeUnit(result, 0xd800 + ((codePoint - 0x10000) >> 10));
        appendCodeUnit(result, 0xdc00 + ((codePoint - 0x10000) & 0x3ff));
    }
}

gtString quoted(const gtString& text)
{
    gtString result("\"");
    std::string_view rest = text.asStringView();
    while (!rest.empty())
    {
        const std::size_t length = gtLengthOfUtf8Character(rest);
        const std::string_view character = rest.substr(0, std::max(length, std::size_t(1)));
        appendCharacter(result, length == 0 ? 0xfffd : gtCodePointOfUtf8Character(character));
        rest.remove_prefix(character.size());
    }
    return result.append('"');
}

gtString base64(std::string_view bytes)
{
    const char* const pDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    gtString result;
    while (!bytes.empty())
    {
        const std::size_t amount = std::min(bytes.size(), std::size_t(3));
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 3; ++i)
        {
            bits = bits << 8 | (i < amount ? static_cast<unsigned char>(bytes[i]) : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i)
        {
            result.append(i <= amount ? pDigits[bits >> (18 - 6 * i) & 0x3f] : '=');
        }
        bytes.remove_prefix(amount);
    }
    return result;
}

}  // namespace

clJsonObject& clJsonObject::add(const char* pName, const gtString& text)
{
    return addValue(pName, quoted(text));
}

clJsonObject& clJsonObject::addNumber(const char* pName, std::size_t number)
{
    return addValue(pName, std::to_string(number));
}

clJsonObject& clJsonObject::addFlag(const char* pName, bool flag)
{
    return addValue(pName, flag ? "true" : "false");
}

clJsonObject& clJsonObject::addObject(const char* pName, const clJsonObject& object)
{
    return addValue(pName, object.text());
}

clJsonObject& clJsonObject::addMessages(const char* pName, const std::vector<clMessage>& messages)
{
    gtString values;
    for (const clMessage& message : messages)
    {
        clJsonObject object;
        object.add("level", message._isWarning ? "warning" : "error").add("text", message._text);
        values.append(values.isEmpty() ? "" : ",").append(object.text());
    }
    return addValue(pName, gtString("[").append(values).append(']'));
}

clJsonObject& clJsonObject::addFileName(const char* pName, const gtString& path)
{
    return gtIsUtf8(path.asStringView())
               ? add(pName, path)
               : add(gtString(pName).append("Base64").asCharArray(), base64(path.asStringView()));
}

clJsonObject& clJsonObject::append(const clJsonObject& other)
{
    _members.append(_members.isEmpty() || other._members.isEmpty() ? "" : ",").append(other._members);
    return *this;
}

gtString clJsonObject::text() const
{
    return gtString("{").append(_members).append('}');
}

clJsonObject& clJsonObject::addValue(const char* pName, const gtString& value)
{
    _members.append(_members.isEmpty() ? "" : ",").append('"').append(pName).append("\":").append(value);
    return *this;
}

// SPDX-License-Identifier: Apache-2.0
#include "cli/clPrintableName.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "platform/baseTools/gtCharacters.h"
#include "platform/baseTools/gtUtf8.h"

namespace
{

void appendEscaped(gtString& result, unsigned char byte)
{
    switch (byte)
    {
    case '\n':
        result.append("\\n");
        break;
    case '\r':
        result.append("\\r");
        break;
    case '\t':
        result.append("\\t");
        break;
    case '\\':
        result.append("\\\\");
        break;
    default:
        result.append("\\x");
        result.append("0123456789abcdef"[byte >> 4]);
        result.append("0123456789abcdef"[byte & 0xf]);
        break;
    }
}

}  // namespace

gtString clPrintableName(const gtString& name)
{
    gtString result;
    std::string_view rest = name.asStringView();
    std::uint32_t before = 0;
    while (!rest.empty())
    {
        const std::size_t length = gtLengthOfUtf8Character(rest);
        const std::string_view character = rest.substr(0, std::max(length, std::size_t(1)));
        const std::uint32_t codePoint = length == 0 ? 0 : gtCodePointOfUtf8Character(character);
        if (length > 0 && codePoint != '\\' && gtKindOfCharacter(codePoint, before) == gtCharacterKind::Harmless)
        {
            result.append(character);
        }
        else
        {
            for (const char byte : character)
            {
                appendEscaped(result, static_cast<unsigned char>(byte));
            }
        }
        before = codePoint;
        rest.remove_prefix(character.size());
    }
    return result;
}

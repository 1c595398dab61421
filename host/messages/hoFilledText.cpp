// SPDX-License-Identifier: Apache-2.0
#include "host/messages/hoFilledText.h"

gtString hoFilledText(const gtString& format, std::initializer_list<gtString> values)
{
    std::vector<std::string> texts;
    texts.reserve(values.size());
    for (const gtString& value : values)
    {
        texts.push_back(value.asStdString());
    }
    return hoFill(format.asStringView(), texts);
}

// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoDocument.h"

gtString hoDocument::name() const
{
    const std::string_view path = _path.asStringView();
    return path.substr(path.rfind('/') + 1);
}

gtString hoDocument::folder() const
{
    const std::string_view path = _path.asStringView();
    const std::size_t lastSeparator = path.rfind('/');
    return lastSeparator == 0 ? gtString("/") : gtString(path.substr(0, lastSeparator));
}

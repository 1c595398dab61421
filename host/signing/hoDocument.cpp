// SPDX-License-Identifier: Apache-2.0
#include "host/signing/hoDocument.h"

#include "platform/baseTools/gtBytes.h"

gtString hoDocument::name() const
{
    const std::string path = hoToBytes(_path);
    return hoToText(path.substr(path.rfind('/') + 1));
}

gtString hoDocument::folder() const
{
    const std::string path = hoToBytes(_path);
    const std::size_t lastSeparator = path.rfind('/');
    return lastSeparator == 0 ? gtString("/") : hoToText(path.substr(0, lastSeparator));
}

// SPDX-License-Identifier: Apache-2.0
#include "host/keys/hoKeyFolderTrial.h"

#include <string>
#include <unistd.h>

osWritingResult hoTryKeyFolder(const gtString& path)
{
    const std::string_view bytes = path.asStringView();
    const std::string folder(bytes.substr(0, bytes.rfind('/') + 1));
    const gtString trial = folder + ".countersign-trial-" + std::to_string(::getpid());
    const osWritingResult result = osWriteFileAtomically(trial, "", false);
    if (result.isOk())
    {
        ::unlink(trial.asCharArray());
    }
    return result;
}

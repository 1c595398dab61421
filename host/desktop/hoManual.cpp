// SPDX-License-Identifier: Apache-2.0
#include "host/desktop/hoManual.h"

#include <filesystem>

gtString hoManualPath(const gtString& program)
{
    std::error_code error;
    std::filesystem::path folder = std::filesystem::path(program.asStdString()).parent_path();
    while (folder.has_relative_path())
    {
        const std::filesystem::path installed = folder / "share/doc/countersign/manual.html";
        if (std::filesystem::is_regular_file(installed, error))
        {
            return installed.string();
        }
        // Other projects have a folder of that name, too.
        const std::filesystem::path built = folder / "docs/manual.html";
        if (std::filesystem::is_regular_file(built, error) &&
            std::filesystem::is_regular_file(folder / "desktop/org.countersign.Countersign.desktop", error))
        {
            return built.string();
        }
        folder = folder.parent_path();
    }
    return gtString();
}

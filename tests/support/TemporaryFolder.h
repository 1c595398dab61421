// SPDX-License-Identifier: Apache-2.0
// A folder of a test's own, which goes away with everything in it.
#ifndef COUNTERSIGN_TESTS_HOST_TEMPORARY_FOLDER_H
#define COUNTERSIGN_TESTS_HOST_TEMPORARY_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

class TemporaryFolder
{
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path())
    {
        std::string path = (parent / "countersign.XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr)
        {
            throw std::runtime_error("no temporary folder");
        }
        // Comparisons are with absolute paths: the temporary folder itself may lie behind a link.
        _path = std::filesystem::canonical(path).string();
    }
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(_path, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return _path; }
    std::string path(const std::string& name) const { return _path + "/" + name; }

    std::string write(const std::string& name, const std::string& contents) const
    {
        std::ofstream file(path(name), std::ios::binary);
        file << contents;
        file.close();
        if (!file)
        {
            throw std::runtime_error("cannot write " + path(name));
        }
        return path(name);
    }

    std::string read(const std::string& name) const
    {
        std::ostringstream bytes;
        bytes << std::ifstream(path(name), std::ios::binary).rdbuf();
        return bytes.str();
    }

private:
    std::string _path;
};

// For thousands of files: where there is one, in a folder that no disk is behind. A disk takes minutes to delete so
// many.
class ManyFilesFolder : public TemporaryFolder
{
public:
    ManyFilesFolder()
        : TemporaryFolder(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::filesystem::temp_directory_path())
    {
    }
};

#endif

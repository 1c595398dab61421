// SPDX-License-Identifier: Apache-2.0
#include "cliTestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/tsProcess.h"

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (fs::temp_directory_path() / "countersign-cli-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::runtime_error("no temporary folder");
    }
    _path = pattern;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(_path, ignored))
    {
        if (entry.is_directory(ignored))
        {
            fs::permissions(entry.path(), fs::perms::owner_all, ignored);
        }
    }
    fs::permissions(_path, fs::perms::owner_all, ignored);
    fs::remove_all(_path, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& contents) const
{
    std::ofstream file(*this / name, std::ios::binary);
    file << contents;
    file.close();
    EXPECT_TRUE(file.good()) << name;
    return *this / name;
}

std::string TemporaryFolder::read(const std::string& name) const
{
    return readFile(*this / name);
}

bool TemporaryFolder::has(const std::string& name) const
{
    return fs::exists(fs::symlink_status(*this / name));
}

std::vector<std::string> TemporaryFolder::names() const
{
    std::vector<std::string> result;
    for (const fs::directory_entry& entry : fs::directory_iterator(_path))
    {
        result.push_back(entry.path().filename().string());
    }
    std::sort(result.begin(), result.end());
    return result;
}

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    std::ostringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

void runOpenSSL(const TemporaryFolder& folder, const std::vector<std::string>& arguments)
{
    tsCommand command;
    command._arguments = {"openssl"};
    command._arguments.insert(command._arguments.end(), arguments.begin(), arguments.end());
    command._folder = folder.path();
    const tsOutcome outcome = tsRun(command);
    ASSERT_EQ(outcome._exitStatus, 0) << outcome._errors;
}

void makeKeys(const TemporaryFolder& folder, int bits)
{
    runOpenSSL(folder, {"genrsa", "-out", "private.pem", std::to_string(bits)});
    runOpenSSL(folder, {"rsa", "-in", "private.pem", "-pubout", "-out", "public.pem"});
}

void loseRootsRights()
{
    // The program that comes next gets no right that is out of bounds by then; the files stay root's own.
    if (geteuid() == 0 && (prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) != 0 ||
                           prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0) != 0))
    {
        _exit(125);
    }
}

// SPDX-License-Identifier: Apache-2.0
// What the tests of this folder share.
#ifndef COUNTERSIGN_TESTS_CLITESTSUPPORT_H
#define COUNTERSIGN_TESTS_CLITESTSUPPORT_H

#include <string>
#include <vector>

// A folder that is removed with what is in it, whatever its permissions have become.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return _path; }
    std::string operator/(const std::string& name) const { return _path + "/" + name; }
    // Writes a file and returns its path.
    std::string write(const std::string& name, const std::string& contents) const;
    std::string read(const std::string& name) const;
    bool has(const std::string& name) const;
    // All names in the folder, sorted.
    std::vector<std::string> names() const;

private:
    std::string _path;
};

// All of a file; the test fails when there is none.
std::string readFile(const std::string& path);

// Runs openssl in the folder; the test fails when it fails.
void runOpenSSL(const TemporaryFolder& folder, const std::vector<std::string>& arguments);

// Makes private.pem and public.pem in the folder.
void makeKeys(const TemporaryFolder& folder, int bits);

// For the _prepare of a command: permissions count for the program even if the test is run by root.
void loseRootsRights();

#endif

// SPDX-License-Identifier: Apache-2.0
// A path to a file, kept and compared exactly as it was given: nothing is normalised, no case is folded, no encoding is
// assumed, the file system is never asked.
//
// The path's last component is what follows its last osPathSeparator; a path that ends in a separator has an empty one.
// In it, the extension is what follows the last osExtensionSeparator, and the name what precedes it. Separators that
// the component begins with belong to the name and start no extension:
//
//     path                   name           extension
//     /src/main.window.cpp   main.window    cpp
//     Makefile               Makefile       (empty)
//     odd.                   odd            (empty)
//     .profile               .profile       (empty)
//     .profile.bak           .profile       bak
//     ..                     ..             (empty)
//     /src/                  (empty)        (empty)
//     (empty)                (empty)        (empty)
//
// What finds no memory throws std::bad_alloc and leaves everything as it was. Threads may read one path together;
// whoever changes it must be alone with it.
#ifndef OS_FILE_PATH_H
#define OS_FILE_PATH_H

#include "platform/baseTools/gtString.h"

#pragma GCC visibility push(default)

class osFilePath
{
public:
    static constexpr char osExtensionSeparator = '.';
    static constexpr char osPathSeparator = '/';

    // The empty path.
    osFilePath() noexcept = default;
    explicit osFilePath(const gtString& fullPath);

    // The three put their answer in the place of what the argument holds.
    // The last component without its extension:
    void getFileName(gtString& fileName) const;
    // The extension without its separator:
    void getFileExtension(gtString& fileExtension) const;
    // The last component whole:
    void getFullFileName(gtString& fullFileName) const;

    // The path as it was given.
    gtString asString() const { return _fullPath; }

    // The same without a copy: the characters with a NUL after them, valid as long as the path is not changed, and how
    // many they are (a path may hold NULs, but no file has such a name).
    const char* asCharArray() const noexcept { return _fullPath.asCharArray(); }
    int length() const noexcept { return _fullPath.length(); }

    bool isEmpty() const noexcept { return _fullPath.isEmpty(); }

    // Equal when the paths are the same bytes: "a/b" and "a//b" differ.
    bool operator==(const osFilePath& other) const noexcept { return _fullPath == other._fullPath; }
    bool operator!=(const osFilePath& other) const noexcept { return _fullPath != other._fullPath; }

private:
    gtString _fullPath;
};

#pragma GCC visibility pop

#endif

// SPDX-License-Identifier: Apache-2.0
// The files that the program reads, so that it never overwrites one of them.
#ifndef COUNTERSIGN_CL_INPUTS_H
#define COUNTERSIGN_CL_INPUTS_H

#include "platform/baseTools/gtString.h"

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

class clInputs
{
public:
    // Files are told apart by device and number, so that links and hard links do not hide one. Those that are not there
    // are left out.
    clInputs(const std::vector<gtString>& documents, const std::vector<gtString>& keyPaths);

    // What is at the path, links followed: "the key k.pem", "the document report", printable; empty: none of them.
    gtString inputAt(const gtString& path) const;

private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>;

    static bool identify(const gtString& path, Identity& identity);
    // Of a name that may stand for standard input, which may be a file.
    static bool identifyInput(const gtString& name, Identity& identity);

    std::map<Identity, gtString> _names;
};

#endif

// SPDX-License-Identifier: Apache-2.0
// An outside program that has the sources as a subproject: prints the digest of a file.
#include <cstdio>

#include "digests.h"

int main(int argc, char** argv)
{
    const std::string digest = argc == 2 ? digestOf(argv[1]) : std::string();
    std::printf("%s\n", digest.c_str());
    return digest.empty() ? 1 : 0;
}

// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "digests.h"

int main(int argc, char** argv)
{
    const gtString digest = argc == 2 ? digestOf(osFilePath(gtString(argv[1]))) : gtString();
    std::cout << digest << '\n';
    return digest.isEmpty() ? 1 : 0;
}

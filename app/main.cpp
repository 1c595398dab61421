// SPDX-License-Identifier: Apache-2.0
// The process entry.
#include <wx/init.h>

int main(int argc, char** argv)
{
    return wxEntry(argc, argv);
}

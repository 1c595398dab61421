# SPDX-License-Identifier: Apache-2.0
# Writes the icon's PNG files as a header of byte arrays.
#
#   cmake -DFOLDER=<the files' folder> -DHEADER=<what to write> -P makeIconData.cmake
set(arrays "")
set(table "")
foreach(size IN ITEMS 16 24 32 48 64 128)
    file(READ "${FOLDER}/${size}.png" hex HEX)
    string(REGEX REPLACE "(..)" "0x\\1," bytes "${hex}")
    string(APPEND arrays "inline constexpr unsigned char hoIcon${size}[] = {${bytes}};\n")
    string(APPEND table "    {hoIcon${size}, sizeof hoIcon${size}},\n")
endforeach()
file(WRITE "${HEADER}" "// Made from the files in desktop/icons; do not edit.
#ifndef COUNTERSIGN_HO_ICON_DATA_H
#define COUNTERSIGN_HO_ICON_DATA_H
#include <cstddef>
${arrays}
struct hoIconFile
{
    const unsigned char* _pBytes;
    std::size_t _length;
};
inline constexpr hoIconFile hoIconFiles[] = {
${table}};
#endif
")

# SPDX-License-Identifier: Apache-2.0
# Writes the icon's SVG file as a header with its text.
#
#   cmake -DFILE=<the SVG file> -DHEADER=<what to write> -P makeIconData.cmake
file(READ "${FILE}" text)
file(WRITE "${HEADER}" "// Made from the file in desktop/icons; do not edit.
#ifndef COUNTERSIGN_HO_ICON_DATA_H
#define COUNTERSIGN_HO_ICON_DATA_H
inline constexpr char hoIconData[] = R\"svg(${text})svg\";
#endif
")

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Draws the PNG sizes of the application's icon and of the signature files' icon anew from their SVG files (needs
# rsvg-convert, package librsvg2-bin).
#
#   scripts/make-icons.sh
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

command -v rsvg-convert >/dev/null || fail "looking for rsvg-convert (install librsvg2-bin)"

# draw WHAT SVG-FILE FOLDER
draw() {
    local size
    for size in 16 22 24 32 48 64 128 256; do
        step "drawing $1 in ${size}x${size}" rsvg-convert -w "$size" -h "$size" -o "$3/$size.png" "$2"
    done
}

icons=$root/desktop/icons
draw "the application's icon" "$icons/org.countersign.Countersign.svg" "$icons"
draw "the signature files' icon" "$icons/signature/org.countersign.Countersign.signature.svg" "$icons/signature"

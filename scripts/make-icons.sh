#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Draws the icon's PNG sizes anew from its SVG (needs rsvg-convert, package librsvg2-bin).
#
#   scripts/make-icons.sh
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

command -v rsvg-convert >/dev/null || fail "looking for rsvg-convert (install librsvg2-bin)"
icons=$root/desktop/icons
for size in 16 22 24 32 48 64 128 256; do
    step "drawing the icon in ${size}x${size}" \
        rsvg-convert -w "$size" -h "$size" -o "$icons/$size.png" "$icons/org.countersign.Countersign.svg"
done

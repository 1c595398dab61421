#!/usr/bin/env bash
# Takes the pictures in docs/images anew, each on a virtual display of its own, from what is built now.
#
#   scripts/make-pictures.sh
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

"$root/scripts/install-dependencies.sh" test || exit
configureAndBuild release picture_assertion_dialog

programs=$root/build/release/bin
images=$root/docs/images
mkdir -p "$images" || fail "making the folder $images"

step "taking docs/images/assertion-dialog.png" \
    "$root/scripts/with-display.sh" "$programs/picture_assertion_dialog" "$images/assertion-dialog.png"

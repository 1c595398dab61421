#!/usr/bin/env bash
# Takes the pictures in docs/images anew, each on a virtual display of its own, from what is built now.
#
#   scripts/make-pictures.sh
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

"$root/scripts/install-dependencies.sh" test || exit
configureAndBuild release picture_assertion_dialog countersign_desktop

programs=$root/build/release/bin
images=$root/docs/images
mkdir -p "$images" || fail "making the folder $images"

step "taking docs/images/assertion-dialog.png" \
    "$root/scripts/with-display.sh" "$programs/picture_assertion_dialog" "$images/assertion-dialog.png"

# The main window, with settings and documents of its own.
files=$(mktemp -d) || fail "making a temporary folder"
trap 'rm -rf "$files"' EXIT
export XDG_CONFIG_HOME=$files/config
documents=$files/Documents
mkdir -p "$documents"
head -c 48213 /dev/zero >"$documents/contract.pdf"
head -c 1520 /dev/zero >"$documents/letter to the council.odt"
head -c 2411724 /dev/zero >"$documents/recording.flac"
head -c 903 /dev/zero >"$documents/minutes.txt"
touch -d '2026-03-14 15:09' "$documents"/*

# mainWindow NAME [ARGUMENT...]
mainWindow() {
    local name=$1
    shift
    step "taking docs/images/$name.png" "$root/scripts/with-display.sh" "$root/scripts/take-picture.sh" \
        "$images/$name.png" "$programs/countersign-desktop" "$@"
}
mainWindow main-window-empty
COUNTERSIGN_PICTURE_KEYS=Down mainWindow main-window "$documents"/*

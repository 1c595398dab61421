#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
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
step "taking docs/images/assertion-dialog-dark.png" env GTK_THEME=Adwaita:dark \
    "$root/scripts/with-display.sh" "$programs/picture_assertion_dialog" "$images/assertion-dialog-dark.png"
step "taking docs/images/assertion-dialog-high-contrast.png" env GTK_THEME=HighContrast \
    "$root/scripts/with-display.sh" "$programs/picture_assertion_dialog" "$images/assertion-dialog-high-contrast.png"

# The main window, with settings and documents of its own.
files=$(mktemp -d /tmp/countersign.XXXXXX) || fail "making a temporary folder"
trap 'rm -rf "$files"' EXIT
export XDG_CONFIG_HOME=$files/config
# In English, wherever they are taken.
export LC_ALL=C.UTF-8
unset LANGUAGE
documents=$files/Documents
mkdir -p "$documents" "$files/config/countersign"
# The offer of the last key would be in every picture.
echo offerKey=0 >"$files/config/countersign/settings"
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

# A signed document, one that was tampered with, one that was not signed, under a key of its own.
openssl genrsa -out "$files/alice.pem" 2048 2>/dev/null || fail "making a key"
chmod 600 "$files/alice.pem"
keys="ctrl+k type:$files/alice.pem Return"
COUNTERSIGN_PICTURE_KEYS="$keys ctrl+shift+s" mainWindow main-window "$documents"/[clm]*
printf x >>"$documents/minutes.txt"
COUNTERSIGN_PICTURE_KEYS="$keys ctrl+shift+t Down" mainWindow main-window \
    "$documents"/*.pdf "$documents"/*.odt "$documents"/*.txt "$documents"/*.flac
COUNTERSIGN_PICTURE_KEYS="$keys ctrl+shift+t shift+Tab shift+Tab shift+Tab space" mainWindow details \
    "$documents"/*.pdf "$documents"/*.odt "$documents"/*.txt "$documents"/*.flac

COUNTERSIGN_PICTURE_KEYS="$keys ctrl+shift+t alt+Return" mainWindow properties "$documents/contract.pdf"

# A file that takes a while, of holes alone.
truncate -s 40G "$documents/backup.img" || fail "making a large file"
COUNTERSIGN_PICTURE_KEYS="$keys dialog:ctrl+shift+s" mainWindow progress "$documents/backup.img"
rm "$documents/backup.img"

# The assertion report, with a failure that was ignored twice.
COUNTERSIGN_PICTURE_KEYS="alt+d a alt+d f Return alt+d f alt+d r" mainWindow assertion-report

COUNTERSIGN_PICTURE_KEYS="alt+h a" mainWindow about
XDG_CONFIG_HOME=$files/usual COUNTERSIGN_PICTURE_KEYS="ctrl+comma" mainWindow preferences
COUNTERSIGN_PICTURE_KEYS="$keys ctrl+e type:Meet-me-at-noon. alt+e" mainWindow texts

COUNTERSIGN_PICTURE_KEYS="alt+k n" mainWindow new-key-pair

openssl rsa -aes128 -passout pass:secret -in "$files/alice.pem" -out "$files/locked.pem" 2>/dev/null ||
    fail "encrypting a key"
chmod 600 "$files/locked.pem"
COUNTERSIGN_PICTURE_KEYS="ctrl+k type:$files/locked.pem Return" mainWindow passphrase

# In German.
export LANGUAGE=de
COUNTERSIGN_PICTURE_KEYS="$keys ctrl+shift+t Down" mainWindow main-window-german \
    "$documents"/*.pdf "$documents"/*.odt "$documents"/*.txt "$documents"/*.flac
COUNTERSIGN_PICTURE_KEYS="alt+s n" mainWindow new-key-pair-german

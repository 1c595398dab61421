#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Takes pictures of the windows, each on a virtual display of its own, from what is built now.
#
#   scripts/make-pictures.sh                        those of the documents, into docs/images
#   scripts/make-pictures.sh FOLDER [LOOK...]       for example: scripts/make-pictures.sh /tmp/pictures dark german
#
# With FOLDER every window is taken in every look, into FOLDER/LOOK, to be looked at: light, dark, highContrast,
# highContrastInverse, german, french. COUNTERSIGN_WINDOWS names those that are wanted if not all are ("offer details").
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

allLooks=(light dark highContrast highContrastInverse german french)
folder=${1:-}
looks=("${@:2}")
[ "${#looks[@]}" -gt 0 ] || looks=("${allLooks[@]}")
for look in "${looks[@]}"; do
    [[ " ${allLooks[*]} " = *" $look "* ]] || fail "there is no look '$look': ${allLooks[*]}"
done

"$root/scripts/install-dependencies.sh" test || exit
configureAndBuild release picture_assertion_dialog countersign_desktop countersign_cli

programs=$root/build/release/bin
images=$root/docs/images

# Settings, documents and keys of our own.
files=$(mktemp -d /tmp/countersign.XXXXXX) || fail "making a temporary folder"
trap 'rm -rf "$files"' EXIT
documents=$files/Documents
mkdir -p "$documents" "$files/usual" "$files/config/countersign" "$files/offer/countersign"
# The offer of the last key would be in every picture.
echo offerKey=0 >"$files/config/countersign/settings"
echo "recentKey.1=$files/alice.pem" >"$files/offer/countersign/settings"
head -c 48213 /dev/zero >"$documents/contract.pdf"
head -c 1520 /dev/zero >"$documents/letter to the council.odt"
head -c 2411724 /dev/zero >"$documents/recording.flac"
head -c 903 /dev/zero >"$documents/minutes.txt"
touch -d '2026-03-14 15:09' "$documents"/*

makeKey() {
    openssl genrsa -out "$files/$1.pem" 2048 2>/dev/null &&
        openssl rsa -in "$files/$1.pem" -pubout -out "$files/$1.pub.pem" 2>/dev/null &&
        chmod 600 "$files/$1.pem"
}
makeKey alice && makeKey bob || fail "making keys"
openssl rsa -aes128 -passout pass:secret -in "$files/alice.pem" -out "$files/locked.pem" 2>/dev/null ||
    fail "encrypting a key"
chmod 600 "$files/locked.pem"
# Signed documents, one that was tampered with, one that was not signed; one by another key where all is looked at.
other=$files/alice.pem
[ -z "$folder" ] || other=$files/bob.pem
step "signing" "$programs/countersign" sign --quiet --key "$files/alice.pem" "$documents"/[cm]*
step "signing" "$programs/countersign" sign --quiet --key "$other" "$documents/letter to the council.odt"
printf x >>"$documents/minutes.txt"

# use LOOK: the theme and the language of the pictures that follow.
use() {
    unset GTK_THEME LANGUAGE
    # In English, wherever they are taken.
    export LC_ALL=C.UTF-8
    case $1 in
        dark) export GTK_THEME=Adwaita:dark ;;
        highContrast) export GTK_THEME=HighContrast ;;
        highContrastInverse) export GTK_THEME=HighContrastInverse ;;
        german) export LANGUAGE=de ;;
        french) export LANGUAGE=fr ;;
    esac
}

# letter TEXT: the key that a text of the window is chosen by, in the present language.
letter() {
    local text
    text=$(TEXTDOMAINDIR=$programs/../share/locale gettext -d countersign "$1") || fail "looking for '$1'"
    text=${text#*&}
    tr '[:upper:]' '[:lower:]' <<<"${text:0:1}"
}

# mainWindow NAME KEYS [ARGUMENT...]
mainWindow() {
    local name=$1 keys=$2
    shift 2
    COUNTERSIGN_PICTURE_KEYS=$keys step "taking $name" "$root/scripts/with-display.sh" \
        "$root/scripts/take-picture.sh" "$folder/$name.png" "$programs/countersign-desktop" "$@"
}

# take NAME [FILE-NAME]
take() {
    local name=$1 file=${2:-$1}
    local all=("$documents"/*.pdf "$documents"/*.odt "$documents"/*.txt "$documents"/*.flac)
    local key="ctrl+k type:$files/alice.pem Return"
    local developer keys
    developer=alt+$(letter '&Developer')
    keys=alt+$(letter '&Key')
    export XDG_CONFIG_HOME=$files/config
    case $name in
        assertion-dialog)
            step "taking $name" "$root/scripts/with-display.sh" "$programs/picture_assertion_dialog" "$folder/$file.png"
            ;;
        main-window-empty) mainWindow "$file" "" ;;
        main-window) mainWindow "$file" "$key ctrl+shift+t Down" "${all[@]}" ;;
        several-keys)
            mainWindow "$file" "ctrl+shift+k type:$files/alice.pub.pem Return
                ctrl+shift+k type:$files/bob.pub.pem Return ctrl+shift+t Down" "${all[@]}"
            ;;
        offer) XDG_CONFIG_HOME=$files/offer mainWindow "$file" "" "${all[@]}" ;;
        menu) mainWindow "$file" "$keys" "${all[@]}" ;;
        details) mainWindow "$file" "$key ctrl+shift+t shift+Tab shift+Tab shift+Tab space" "${all[@]}" ;;
        properties) mainWindow "$file" "$key ctrl+shift+t alt+Return" "$documents/contract.pdf" ;;
        replace) mainWindow "$file" "$key ctrl+shift+t ctrl+shift+s" "${all[@]}" ;;
        key-information) mainWindow "$file" "$key ctrl+i" ;;
        progress)
            # A file that takes a while, of holes alone.
            truncate -s 40G "$documents/backup.img" || fail "making a large file"
            mainWindow "$file" "$key dialog:ctrl+shift+s" "$documents/backup.img"
            rm "$documents/backup.img"
            ;;
        assertion-report)
            # With a failure that was ignored twice.
            keys=$(letter '&Fail an assertion')
            mainWindow "$file" "$developer $(letter '&Assertion dialogs') $developer $keys Return $developer $keys
                $developer $(letter 'Assertion &report...')"
            ;;
        about) mainWindow "$file" "alt+$(letter '&Help') $(letter '&About Countersign')" ;;
        preferences) XDG_CONFIG_HOME=$files/usual mainWindow "$file" "ctrl+comma" ;;
        texts) mainWindow "$file" "$key ctrl+e type:Meet-me-at-noon. alt+$(letter '&Encrypt')" ;;
        new-key-pair) mainWindow "$file" "$keys $(letter '&New key pair...')" ;;
        passphrase) mainWindow "$file" "ctrl+k type:$files/locked.pem Return" ;;
        *) fail "there is no window '$name'" ;;
    esac
}

if [ -z "$folder" ]; then
    folder=$images
    mkdir -p "$folder" || fail "making the folder $folder"
    use light
    for name in assertion-dialog main-window-empty main-window details properties progress assertion-report about \
        preferences texts new-key-pair passphrase; do
        take "$name"
    done
    use dark && take assertion-dialog assertion-dialog-dark
    use highContrast && take assertion-dialog assertion-dialog-high-contrast
    use german && take main-window main-window-german && take new-key-pair new-key-pair-german
    exit
fi

top=$(mkdir -p "$folder" && cd "$folder" && pwd) || fail "making the folder $folder"
for look in "${looks[@]}"; do
    folder=$top/$look
    mkdir -p "$folder" || fail "making the folder $folder"
    use "$look"
    for name in ${COUNTERSIGN_WINDOWS:-assertion-dialog main-window-empty main-window several-keys offer menu details \
        properties replace key-information progress assertion-report about preferences texts new-key-pair \
        passphrase}; do
        take "$name"
    done
done

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What the desktop is told, as its own programs understand it, in data folders of the test's own.
#
#   desktopFiles.sh CASE SOURCE-FOLDER FOLDER-WITH-PROGRAMS
set -u
case=$1 source=$2 programs=$3
desktop=$source/desktop id=org.countersign.Countersign type=application/vnd.countersign.signature

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT
export HOME=$here/home XDG_DATA_HOME=$here/home/data XDG_CONFIG_HOME=$here/home/config XDG_CONFIG_DIRS=$here/config
export XDG_DATA_DIRS=$here/data XDG_CACHE_HOME=$here/home/cache PATH=$programs:$PATH
unset XDG_CURRENT_DESKTOP DESKTOP_SESSION
# What is made here need not reach the disk.
export PKGSYSTEM_ENABLE_FSYNC=0
mkdir -p "$here/home" "$here/data/applications" "$here/data/mime/packages"

complain() {
    printf '%s\n' "$*" >&2
    exit 1
}

# needs PROGRAM PACKAGE: the test is skipped where that is not installed.
needs() {
    command -v "$1" >/dev/null 2>&1 && return
    echo "skipped: $1 is not installed (package $2)"
    exit 77
}

# The types that every desktop has, and ours.
fillMimeDatabase() {
    needs update-mime-database shared-mime-info
    cp /usr/share/mime/packages/freedesktop.org.xml "$here/data/mime/packages/" ||
        complain "shared-mime-info is not installed"
    cp "$desktop/$id.mime.xml" "$here/data/mime/packages/$id.xml"
    update-mime-database "$here/data/mime" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
    ! grep -i "$id" "$here/log" || complain "update-mime-database finds fault"
}

typeOf() {
    gio info -a standard::content-type "$1" | sed -n 's/^ *standard::content-type: //p'
}

# expectTypes WANTED|"another" FILE...
expectTypes() {
    local wanted=$1 file found
    shift
    for file in "$@"; do
        found=$(typeOf "$file")
        [ -n "$found" ] || complain "$file has no type"
        if [ "$wanted" = another ]; then
            [ "$found" != "$type" ] || complain "$file is taken for ours: $(head -c 60 "$file")"
        else
            [ "$found" = "$wanted" ] || complain "$file is $found instead of $wanted: $(head -c 60 "$file")"
        fi
    done
}

case $case in
    signaturesHaveOurType)
        fillMimeDatabase
        cd "$here" || exit 1
        for bits in 512 544 1024 2048 4096; do
            openssl genrsa -out "$bits.pem" "$bits" 2>/dev/null || complain "openssl made no key"
            # Small keys do not countersign.
            lines=()
            [ "$bits" -ge 1024 ] || lines=(--digest-only)
            for text in one two three; do
                echo "$text" >"$text.$bits"
                countersign sign --key "$bits.pem" "${lines[@]}" "$text.$bits" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
            done
        done
        expectTypes "$type" ./*.sig
        # With a second line below.
        cp one.2048.sig two-lines.sig
        echo 'second: line' >>two-lines.sig
        expectTypes "$type" two-lines.sig
        # Other names stay what they are.
        cp one.1024.sig one.txt
        expectTypes text/plain one.txt
        ;;

    othersKeepTheirs)
        fillMimeDatabase
        cd "$here" || exit 1
        printf -- '-----BEGIN PGP SIGNATURE-----\n\niQEz\n-----END PGP SIGNATURE-----\n' >armoured.sig
        printf '\211\001\063\004\000\001\010\000\035\026\041' >binary.sig
        printf 'untrusted comment: verify with x.pub\nRWQf6LRCGA9i53mlYecO4IzT51TGPpvWucNSCh1CBM0QTaLn\n' >commented.sig
        expectTypes application/pgp-signature armoured.sig binary.sig commented.sig
        digits=0123456789abcdef0123456789abcdef0123456789abcdef
        printf '00000078%s\n' "${digits^^}" >capitals.sig
        printf '00000071%s\n' "$digits" >noMultipleOf8.sig
        printf '00000878%s\n' "$digits" >tooLong.sig
        printf '00001078%s\n' "$digits" >muchTooLong.sig
        printf '00000078%s\n' "0123" >tooShort.sig
        printf '000000x8%s\n' "$digits" >noDigit.sig
        printf '00000078 %s\n' 'as many words as a signature has letters' >words.sig
        printf '%s  file\n' "$digits" >sum.sig
        printf '\060\202\001\000%s' "$digits" >certificate.sig
        printf ' 00000078%s\n' "$digits" >blank.sig
        : >empty.sig
        expectTypes another ./*.sig
        # That what is refused above is refused for its own reason.
        printf '00000078%s\n' "$digits" >ours.sig
        expectTypes "$type" ours.sig
        ;;

    onlySignaturesByDefault)
        needs update-desktop-database desktop-file-utils
        needs xdg-mime xdg-utils
        fillMimeDatabase
        cp "$desktop/$id.desktop" "$here/data/applications/"
        update-desktop-database "$here/data/applications" || complain "update-desktop-database failed"
        grep -q "^$type=$id.desktop" "$here/data/applications/mimeinfo.cache" ||
            complain "not in the cache: $(cat "$here/data/applications/mimeinfo.cache")"

        gio mime "$type" >"$here/found" 2>&1
        grep -q "Default application for .*: $id.desktop" "$here/found" || complain "$(cat "$here/found")"
        [ "$(xdg-mime query default "$type")" = "$id.desktop" ] || complain "xdg-mime finds another default"
        for other in application/octet-stream text/plain application/pdf application/pgp-signature \
            application/zip image/png inode/directory; do
            gio mime "$other" >"$here/found" 2>&1
            ! grep -q "$id" "$here/found" || complain "$(cat "$here/found")"
            [ -z "$(xdg-mime query default "$other")" ] || complain "xdg-mime finds a default for $other"
        done
        ;;

    fileManagersOfferTheWindow)
        # valueOf KEY GROUP FILE: one value, or the test ends.
        valueOf() {
            awk -v key="$1" -v group="[$2]" '
                $0 == group { inside = 1; next }
                /^\[/ { inside = 0 }
                inside && index($0, key "=") == 1 { print substr($0, length(key) + 2); found++ }
                END { exit found != 1 }' "$3" || complain "no single $1 in [$2] of $3"
        }
        # expectValue VALUE KEY GROUP FILE
        expectValue() {
            local found
            found=$(valueOf "$2" "$3" "$4") || exit 1
            [ "$found" = "$1" ] || complain "$2 of $4 is '$found' instead of '$1'"
        }
        # The program by its name, with all selected files as arguments and nothing else.
        exec=$(valueOf Exec 'Desktop Entry' "$desktop/$id.desktop")
        [ "$exec" = 'countersign-desktop %F' ] || complain "the desktop entry starts '$exec'"
        icon=$(valueOf Icon 'Desktop Entry' "$desktop/$id.desktop")

        file=$desktop/actions/$id.file-manager.desktop
        expectValue Action Type 'Desktop Entry' "$file"
        profile=$(valueOf Profiles 'Desktop Entry' "$file")
        expectValue "$icon" Icon 'Desktop Entry' "$file"
        expectValue 'all/allfiles;' MimeTypes "X-Action-Profile ${profile%;}" "$file"
        expectValue "$exec" Exec "X-Action-Profile ${profile%;}" "$file"

        file=$desktop/actions/$id.kio.desktop
        expectValue Service Type 'Desktop Entry' "$file"
        action=$(valueOf Actions 'Desktop Entry' "$file")
        expectValue 'all/allfiles;' MimeType 'Desktop Entry' "$file"
        expectValue "$exec" Exec "Desktop Action ${action%;}" "$file"
        expectValue "$icon" Icon "Desktop Action ${action%;}" "$file"

        file=$desktop/actions/$id.nemo_action
        expectValue "$exec" Exec 'Nemo Action' "$file"
        expectValue 'nodirs;' Extensions 'Nemo Action' "$file"
        expectValue notnone Selection 'Nemo Action' "$file"
        expectValue "$icon" Icon-Name 'Nemo Action' "$file"
        ;;

    iconsHaveTheirSizes)
        for folder in "$desktop/icons" "$desktop/icons/signature"; do
            amount=0
            for file in "$folder"/*.png; do
                size=$(basename "$file" .png)
                # A PNG file begins with a signature and its first block's head; then come width and height.
                [ "$(od -An -N 8 -j 16 -t u1 "$file" | tr -s ' ')" = " 0 0 $((size / 256)) $((size % 256)) 0 0 $((size / 256)) $((size % 256))" ] ||
                    complain "$file has another size"
                amount=$((amount + 1))
            done
            [ "$amount" -eq 8 ] || complain "$amount sizes in $folder"
        done
        # A sandbox hands out only what begins with the application's name.
        icon=$(sed -n 's/.*<icon name="\(.*\)"\/>.*/\1/p' "$desktop/$id.mime.xml")
        [ "${icon#"$id".}" != "$icon" ] || complain "the type's icon is called '$icon'"
        [ -f "$desktop/icons/signature/$icon.svg" ] || complain "the type's icon is not there"
        ;;

    *)
        complain "unknown case '$case'"
        ;;
esac

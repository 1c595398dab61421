#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Looks at what is installed and packaged.
#
#   installation.sh CASE BUILD-FOLDER SOURCE-FOLDER
set -u
case=$1 build=$2 source=$3

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT

complain() {
    printf '%s\n' "$*" >&2
    exit 1
}

version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' "$source/CMakeLists.txt" | head -n 1)
abi=$(sed -n 's/^set(countersignAbiVersion \([0-9]*\))$/\1/p' "$source/CMakeLists.txt")

# expectProgramsFindLibraries PROGRAMS-FOLDER LIBRARIES-FOLDER: the two libraries with their versions, and programs that
# find them relative to themselves, wherever the folders are moved together.
expectProgramsFindLibraries() {
    local programs=$1 libraries=$2 program library
    for library in libKXBaseTools.so libKXOSWrappers.so; do
        [ -f "$libraries/$library.$version" ] || complain "$library.$version does not lie in $libraries"
        readelf -d "$libraries/$library" | grep -qF "Library soname: [$library.$abi]" ||
            complain "the name in $library: $(readelf -d "$libraries/$library" | grep -F SONAME)"
    done
    for program in countersign countersign-desktop; do
        [ -x "$programs/$program" ] || complain "$program does not lie in $programs"
        ! readelf -d "$programs/$program" | grep -E 'R(UN)?PATH.*(\[|:)/' ||
            complain "$program looks for libraries in a folder of this machine"
        for library in "libKXBaseTools.so.$abi" "libKXOSWrappers.so.$abi"; do
            found=$(ldd "$programs/$program" | sed -n "s/^[[:space:]]*$library => \(.*\) (0x.*/\1/p")
            [ "$found" -ef "$libraries/$library" ] || complain "$program finds $library in '$found'"
        done
    done
}

case $case in
    buildTree)
        expectProgramsFindLibraries "$build/bin" "$build/bin"
        ;;

    installed)
        cmake --install "$build" --prefix "$here/one" >"$here/log" || complain "$(cat "$here/log")"
        mv "$here/one" "$here/another place"
        libraries=$(find "$here/another place" -name "libKXBaseTools.so.$abi" -printf '%h')
        expectProgramsFindLibraries "$here/another place/bin" "$libraries"
        said=$("$here/another place/bin/countersign" --version) || complain "the installed program does not run"
        case $said in
            *"$version"*) ;;
            *) complain "the installed program says '$said', not version $version" ;;
        esac
        ! grep -rlF "$source" "$libraries/cmake" "$libraries/pkgconfig" ||
            complain "the installed package points back into the sources"
        ;;

    package)
        if ! command -v dpkg-shlibdeps >/dev/null || ! command -v file >/dev/null; then
            echo "skipped: making a package takes the packages dpkg-dev and file"
            exit 77
        fi
        (cd "$build" && cpack -G DEB -B "$here/packages") >"$here/log" 2>&1 || complain "$(cat "$here/log")"
        package=$(find "$here/packages" -maxdepth 1 -name 'countersign_*.deb')
        [ -f "$package" ] || complain "no package was made: $(cat "$here/log")"
        dpkg-deb --info "$package" >"$here/info" || complain "the package cannot be read"
        dpkg-deb --contents "$package" >"$here/contents"

        for dependency in libc6 libstdc++6 libssl3 'libwxgtk3.2-1' libglib2.0-0; do
            grep -E '^ Depends:' "$here/info" | grep -qF -- "$dependency" ||
                complain "it does not depend on $dependency: $(cat "$here/info")"
        done
        ! grep -E '^ Depends:' "$here/info" | grep -qE -- '-dev|libgtest|libgmp' || complain "it depends on too much"
        grep -qE "^ Version: $version\$" "$here/info" || complain "another version: $(cat "$here/info")"

        for file in bin/countersign bin/countersign-desktop 'lib.*/libKXBaseTools\.so' "lib.*/libKXBaseTools\.so\.$abi" \
            "lib.*/libKXOSWrappers\.so\.$version" \
            share/applications/org.countersign.Countersign.desktop \
            share/metainfo/org.countersign.Countersign.metainfo.xml \
            share/dbus-1/services/org.countersign.Countersign.service \
            share/icons/hicolor/scalable/apps/org.countersign.Countersign.svg \
            share/icons/hicolor/48x48/apps/org.countersign.Countersign.png \
            share/mime/packages/org.countersign.Countersign.xml \
            share/icons/hicolor/48x48/mimetypes/application-vnd.countersign.signature.png \
            share/file-manager/actions/org.countersign.Countersign.desktop \
            share/kio/servicemenus/org.countersign.Countersign.desktop \
            share/nemo/actions/org.countersign.Countersign.nemo_action \
            share/man/man1/countersign.1 share/man/man1/countersign-desktop.1 \
            share/bash-completion/completions/countersign include/countersign/bigdigits.h; do
            grep -qE " \./usr/$file( ->.*|\.gz)?\$" "$here/contents" || complain "/usr/$file is not in the package"
        done
        # Nothing outside of /usr, nothing that another user could write, nothing of the tests.
        ! awk '{ print $6 }' "$here/contents" | grep -vE '^\./(usr/.*)?$' || complain "it reaches outside of /usr"
        ! grep -vE '^l' "$here/contents" | grep -E '^.(.{4}w|.{7}w)' || complain "others may write into these"
        ! grep -iE 'gtest|gmock|test_' "$here/contents" || complain "there are tests in it"

        dpkg-deb --extract "$package" "$here/root"
        grep -qx 'Exec=/usr/bin/countersign-desktop' \
            "$here/root/usr/share/dbus-1/services/org.countersign.Countersign.service" ||
            complain "the bus would start: $(cat "$here"/root/usr/share/dbus-1/services/*)"
        "$here/root/usr/bin/countersign" --version >/dev/null || complain "the packaged program does not run"
        ;;

    *)
        complain "unknown case '$case'"
        ;;
esac

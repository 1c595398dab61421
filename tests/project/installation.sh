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
    options)
        # README tells of every option, and of none that is not there.
        inSources=$(sed -nE 's/^(option|set)\((COUNTERSIGN_[A-Z_]+) .*/\2/p' "$source/CMakeLists.txt" | sort)
        inReadme=$(sed -nE 's/^\| `(COUNTERSIGN_[A-Z_]+)` .*/\1/p' "$source/README.md" | sort)
        [ -n "$inSources" ] || complain "no options were found"
        [ "$inSources" = "$inReadme" ] || complain "$(diff <(echo "$inSources") <(echo "$inReadme"))"
        # And of their defaults.
        while read -r option default; do
            found=$(sed -nE "s/^\| \`$option\` \| ([^|]*) \|.*/\1/p" "$source/README.md")
            # shellcheck disable=SC2016
            case $default:$found in
                '"":empty' | ON:on | OFF:off | 'OFF:off (on in presets)') ;;
                '${countersignIsWhole}:on (off in another project, and where components are named)') ;;
                '${countersignIsWhole}:the same' | '${countersignHasTests}:the same; off with `BUILD_SHARED_LIBS`') ;;
                *) complain "$option is $default in the sources, and '$found' in README" ;;
            esac
            inSources=$(grep -vx "$option" <<<"$inSources")
        done < <(sed -nE -e 's/^option\((COUNTERSIGN_[A-Z_]+) .* ([^ ]+)\)$/\1 \2/p' \
            -e 's/^set\((COUNTERSIGN_[A-Z_]+) ([^ ]*) CACHE .*/\1 \2/p' "$source/CMakeLists.txt")
        [ -z "$inSources" ] || complain "no default was found of: $inSources"
        ;;

    presets)
        # Those that README names, each with what it says of them, and what builds and tests by hand.
        python3 - "$source" <<'END' || exit 1
import json
import pathlib
import sys

source = pathlib.Path(sys.argv[1])
presets = json.loads((source / "CMakePresets.json").read_text(encoding="utf-8"))
variables = {preset["name"]: preset["cacheVariables"] for preset in presets["configurePresets"]}
expected = [
    ("release", "CMAKE_BUILD_TYPE", "Release"),
    ("release", "CMAKE_CXX_FLAGS_RELEASE", "-O3 -DNDEBUG"),
    ("debug", "CMAKE_BUILD_TYPE", "Debug"),
    ("asan", "COUNTERSIGN_SANITIZE", "address,undefined"),
    ("tsan", "COUNTERSIGN_SANITIZE", "thread"),
    ("base", "COUNTERSIGN_WERROR", "ON"),
]
wrong = [f"{name}: {key} is {variables[name].get(key)}" for name, key, value in expected if variables[name].get(key) != value]
for kind in ("configurePresets", "buildPresets", "testPresets"):
    names = {preset["name"] for preset in presets[kind]}
    wrong += [f"{name} is not in {kind}" for name in ("release", "debug", "asan", "tsan") if name not in names]
sys.exit("\n".join(wrong) or 0)
END
        ;;

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
        # Where the window looks for them, relative to itself. Without msgfmt there are none.
        if command -v msgfmt >/dev/null; then
            while read -r language; do
                [ -s "$here/another place/bin/../share/locale/$language/LC_MESSAGES/countersign.mo" ] ||
                    complain "the catalogue of '$language' is not installed"
            done <"$source/po/LINGUAS"
        fi
        ! grep -rlF "$source" "$libraries/cmake" "$libraries/pkgconfig" ||
            complain "the installed package points back into the sources"
        ;;

    macRunPaths)
        # What CMake writes for that system, whose loader has another word for a file's own folder. Nothing is compiled: the
        # compiler's checks are answered beforehand.
        forMac() {
            cmake -G Ninja "$@" -DCMAKE_SYSTEM_NAME=Darwin -DCMAKE_SYSTEM_VERSION=22.0.0 \
                -DCMAKE_C_COMPILER_WORKS=1 -DCMAKE_CXX_COMPILER_WORKS=1 -DCMAKE_HAVE_LIBC_PTHREAD=1 \
                -DCMAKE_SHARED_LIBRARY_RUNTIME_CXX_FLAG=-Wl,-rpath, -DCMAKE_EXECUTABLE_RUNTIME_CXX_FLAG=-Wl,-rpath, \
                -DCMAKE_INSTALL_NAME_TOOL="$(command -v true)" >"$here/log" 2>&1 || complain "$(cat "$here/log")"
        }
        # What the file that is linked by a build statement gets.
        runPathsOf() {
            sed -n "\\|^build $1:|,/^\$/p" "$2/build.ninja" | grep -oE -- '-rpath,[^ ]*' | sed 's/^-rpath,//' | tr '\n' ' '
        }
        forMac -S "$source" -B "$here/mac" -DCMAKE_INSTALL_LIBDIR=lib -DCOUNTERSIGN_WITH_TOOLKIT=OFF \
            -DCOUNTERSIGN_BUILD_DESKTOP=OFF -DCOUNTERSIGN_BUILD_TESTS=OFF
        found=$(runPathsOf bin/countersign "$here/mac")
        [ "$found" = "@loader_path/../lib @loader_path " ] || complain "the program's run path: $found"
        found=$(runPathsOf 'bin/libKXOSWrappers[.0-9]*dylib' "$here/mac")
        [ "$found" = "@loader_path " ] || complain "the library's run path: $found"

        # In another project the run path is put in by the script that installs.
        forMac -S "$source/tests/consumers/subproject" -B "$here/sub" -DCMAKE_INSTALL_LIBDIR=lib \
            -DCOUNTERSIGN_SOURCE="$source"
        grep -qF -- '-add_rpath "@loader_path"' "$here/sub/countersign/cmake_install.cmake" ||
            complain "the script that installs gives no run path: $(cat "$here/sub/countersign/cmake_install.cmake")"
        printf -v expected -- '-Wl,-rpath,@loader_path/../lib\n-Wl,-rpath,@loader_path'
        [ "$(cat "$here/sub/countersign/runPathOptions.txt")" = "$expected" ] || complain "what other programs get"
        ! grep -rlF 'ORIGIN' "$here/mac" "$here/sub" --include=build.ninja --include=cmake_install.cmake \
            --include=runPathOptions.txt || complain "the word of another system's loader"
        ;;

    package)
        if ! command -v dpkg-shlibdeps >/dev/null || ! command -v file >/dev/null; then
            echo "skipped: making a package takes the packages dpkg-dev and file"
            exit 77
        fi
        (cd "$build" && cpack -G DEB -B "$here/packages") >"$here/log" 2>&1 || complain "$(cat "$here/log")"
        # field FIELD PACKAGE
        field() {
            dpkg-deb --field "$here/packages/$2.deb" "$1"
        }
        libraries=libcountersign$abi
        for package in countersign countersign-desktop countersign-doc "$libraries" libcountersign-dev; do
            file=$(find "$here/packages" -maxdepth 1 -name "${package}_*.deb")
            [ -f "$file" ] || complain "no package $package was made: $(cat "$here/log")"
            mv "$file" "$here/packages/$package.deb"
            [ "$(field Package "$package")" = "$package" ] || complain "$package has another name inside"
            [ "$(field Version "$package")" = "$version" ] || complain "$package has another version"
            dpkg-deb --contents "$here/packages/$package.deb" >"$here/$package.contents"
            dpkg-deb --extract "$here/packages/$package.deb" "$here/root"
            cmp -s "$source/debian/copyright" "$here/root/usr/share/doc/$package/copyright" ||
                complain "$package does not have its copyright file"
        done

        # expectDependencies PACKAGE WANTED... [not PATTERN]
        expectDependencies() {
            local package=$1 found
            found=$(field Depends "$package")
            shift
            while [ "$#" -gt 0 ] && [ "$1" != not ]; do
                case $found in
                    *"$1"*) ;;
                    *) complain "$package does not depend on $1: $found" ;;
                esac
                shift
            done
            [ "$#" -eq 0 ] || ! grep -E -- "$2" <<<"$found" || complain "$package depends on too much"
        }
        same="$libraries (= $version)"
        expectDependencies "$libraries" libc6 libstdc++6 not '-dev|wx|gtk|glib|ssl|countersign'
        # The command line runs where there is no window system.
        expectDependencies countersign libc6 libssl3 "$same" not '-dev|wx|gtk|glib|libx'
        expectDependencies countersign-desktop libc6 libssl3 'libwxgtk3.2-1' libgtk-3-0 libglib2.0-0 "$same" \
            not '-dev|libgtest|libgmp'
        expectDependencies libcountersign-dev "$same" libssl-dev
        [ "$(field Architecture countersign-doc)" = all ] || complain "the documentation is for one processor only"
        [ -z "$(field Depends countersign-doc)" ] || complain "the documentation depends on: $(field Depends countersign-doc)"

        # expectFiles PACKAGE FILE...
        expectFiles() {
            local package=$1 file
            shift
            for file in "$@"; do
                grep -qE " \./usr/$file( ->.*|\.gz)?\$" "$here/$package.contents" ||
                    complain "/usr/$file is not in $package: $(cat "$here/$package.contents")"
            done
        }
        expectFiles "$libraries" "lib.*/libKXBaseTools\.so\.$abi" "lib.*/libKXBaseTools\.so\.$version" \
            "lib.*/libKXOSWrappers\.so\.$abi" "lib.*/libKXOSWrappers\.so\.$version"
        expectFiles libcountersign-dev 'lib.*/libKXBaseTools\.so' include/countersign/bigdigits.h \
            'lib.*/cmake/countersign/countersignConfig\.cmake' 'lib.*/pkgconfig/countersign-bigdigits\.pc'
        expectFiles countersign bin/countersign share/man/man1/countersign.1 \
            share/doc/countersign/countersign-output.schema.json share/bash-completion/completions/countersign \
            share/zsh/vendor-completions/_countersign share/fish/vendor_completions.d/countersign.fish
        expectFiles countersign-desktop bin/countersign-desktop share/applications/org.countersign.Countersign.desktop \
            share/metainfo/org.countersign.Countersign.metainfo.xml \
            share/dbus-1/services/org.countersign.Countersign.service \
            share/icons/hicolor/scalable/apps/org.countersign.Countersign.svg \
            share/icons/hicolor/48x48/apps/org.countersign.Countersign.png \
            share/icons/hicolor/48x48/mimetypes/org.countersign.Countersign.signature.png \
            share/mime/packages/org.countersign.Countersign.xml \
            share/file-manager/actions/org.countersign.Countersign.desktop \
            share/kio/servicemenus/org.countersign.Countersign.desktop \
            share/nemo/actions/org.countersign.Countersign.nemo_action share/man/man1/countersign-desktop.1
        expectFiles countersign-doc share/doc/countersign/manual.html share/doc/countersign/images/main-window.png

        # Nothing outside of /usr, nothing that another user could write, nothing of the tests, and no file twice.
        cat "$here"/*.contents >"$here/contents"
        ! awk '{ print $6 }' "$here/contents" | grep -vE '^\./(usr/.*)?$' || complain "they reach outside of /usr"
        ! grep -vE '^l' "$here/contents" | grep -E '^.(.{4}w|.{7}w)' || complain "others may write into these"
        ! grep -iE 'gtest|gmock|test_' "$here/contents" || complain "there are tests in them"
        twice=$(grep -v '^d' "$here/contents" | awk '{ print $6 }' | sort | uniq -d)
        [ -z "$twice" ] || complain "in two packages: $twice"

        grep -qx 'Exec=/usr/bin/countersign-desktop' \
            "$here/root/usr/share/dbus-1/services/org.countersign.Countersign.service" ||
            complain "the bus would start: $(cat "$here"/root/usr/share/dbus-1/services/*)"
        "$here/root/usr/bin/countersign" --version >/dev/null || complain "the packaged program does not run"
        ;;

    *)
        complain "unknown case '$case'"
        ;;
esac

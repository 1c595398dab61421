#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs a build into a fresh folder and uses it as outside projects would.
#
#   consumers.sh findPackage|pkgConfig|subproject BUILD-FOLDER SOURCE-FOLDER
set -eu
unset LD_LIBRARY_PATH
way=$1 build=$2 source=$3

here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT

expect() {
    if [ "$2" != "$3" ]; then
        printf '%s: expected\n%s\nbut found\n%s\n' "$1" "$2" "$3" >&2
        exit 1
    fi
}

case $way in
    findPackage | pkgConfig)
        cmake --install "$build" --prefix "$here/installed" >"$here/install.log"
        # What a project sees may not depend on where it was installed first.
        mv "$here/installed" "$here/moved"
        # How ours is compiled is no other project's affair.
        if grep -rnE -- '-fstack-|-fcf-|FORTIFY|-Wl,-z' "$here/moved"/lib*/cmake "$here/moved"/lib*/pkgconfig; then
            echo "the hardening reaches the projects that link" >&2
            exit 1
        fi
        ;;
esac

case $way in
    findPackage)
        cmake -S "$source/tests/consumers/findPackage" -B "$here/build" -G Ninja \
            -DCMAKE_PREFIX_PATH="$here/moved" >"$here/log" 2>&1 || { cat "$here/log"; exit 1; }
        cmake --build "$here/build" >"$here/log" 2>&1 || { cat "$here/log"; exit 1; }
        expect "the program's output" $'000000036362610164646464\n1 handler' "$("$here/build/signerWithAssertions")"
        ;;
    pkgConfig)
        export PKG_CONFIG_PATH
        PKG_CONFIG_PATH=$(dirname "$(find "$here/moved" -name countersign-bigdigits.pc)")
        # shellcheck disable=SC2046
        cc -std=c99 -pedantic -Werror "$source/tests/consumers/pkgConfig/main.c" -o "$here/program" \
            $(pkg-config --cflags --libs countersign-bigdigits)
        expect "the program's output" "39 340282366920938463426481119284349108225" "$("$here/program")"
        if ldd "$here/program" | grep -E 'KX|crypto|wx|stdc\+\+'; then
            echo "the plain C program depends on more than the module" >&2
            exit 1
        fi
        # shellcheck disable=SC2046
        c++ -std=c++17 "$source/tests/consumers/findPackage/main.cpp" -o "$here/withToolkit" \
            $(pkg-config --cflags --libs countersign-assertionHandling countersign-crypto)
        expect "the program's output" $'000000036362610164646464\n1 handler' "$("$here/withToolkit")"
        ;;
    subproject)
        cmake -S "$source/tests/consumers/subproject" -B "$here/build" -G Ninja -DCOUNTERSIGN_SOURCE="$source" \
            -DCOUNTERSIGN_WITH_TOOLKIT=OFF >"$here/log" 2>&1 || { cat "$here/log"; exit 1; }
        cmake --build "$here/build" >"$here/log" 2>&1 || { cat "$here/log"; exit 1; }
        : >"$here/empty"
        # 4 digits give a digest of one digit, eight characters 0 behind the marker.
        expect "the program's output" "0000000830303001303030306464643064646464" "$("$here/build/digest" "$here/empty")"
        ;;
    *)
        echo "unknown way '$way'" >&2
        exit 2
        ;;
esac

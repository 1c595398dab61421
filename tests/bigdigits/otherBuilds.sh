#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the module with other compilers and options, and compares what all of it computes with the plain way of
# building it. A way that is not installed here is left out and named.
#
#   otherBuilds.sh REPOSITORY COMPILER
set -u

repository=$1
compiler=$2
folder=$(mktemp -d) || exit 1
trap 'rm -rf "$folder"' EXIT
digest=$repository/tests/bigdigits/digest.cpp
module=$repository/src/bigdigits.cpp

# build NAME COMMAND...: sets "result" to what the program prints.
build() {
    local name=$1
    shift
    # A compiler for 32 bits may be there without the library and its headers.
    if ! echo '#include <cstdio>
        int main() { return std::puts(""); }' | "$@" -x c++ - -o "$folder/try" 2>/dev/null; then
        echo "left out, its compiler or library is not installed here: $name"
        return 1
    fi
    # What prints is compiled once for each compiler and word size.
    local word=() option object
    for option; do
        [ "$option" != -m32 ] || word=(-m32)
    done
    object=$folder/digest-${1##*/}${word[*]}.o
    { [ -f "$object" ] || "$1" "${word[@]}" -O1 -std=c++17 -I"$repository/src" -c "$digest" -o "$object"; } &&
        "$@" -std=c++17 -I"$repository/src" "$object" "$module" -o "$folder/program" ||
        { echo "FAILED to build: $name"; exit 1; }
    result=$("$folder/program") || { echo "FAILED to run: $name"; exit 1; }
    echo "$result $name"
}

build "rows only, optimised" "$compiler" -O1 -DMP_WITHOUT_COLUMNS || exit 1
expected=$result

failures=0
compare() {
    build "$@" || return 0
    [ "$result" = "$expected" ] || { echo "FAILED: differs: $1"; failures=$((failures + 1)); }
}
compare "optimised" "$compiler" -O2
compare "not optimised" "$compiler" -O0
compare "for this processor" "$compiler" -O2 -march=native
case $("$compiler" -dumpmachine) in
    x86_64-*) compare "registers of 512 bits, emulated" "$compiler" -O2 -DMP_EMULATED \
        -include "$repository/tests/bigdigits/emulatedVectors.h" ;;
esac
compare "signed overflow trapped, unsigned char" "$compiler" -O1 -ftrapv -funsigned-char
compare "32 bits" "$compiler" -O2 -m32
compare "32 bits, x87 arithmetic" "$compiler" -O1 -m32 -march=i686 -mfpmath=387
compare "32 bits, not optimised" "$compiler" -O0 -m32
compare "clang" clang++ -O2
compare "clang, not optimised" clang++ -O0
compare "clang, for this processor" clang++ -O2 -march=native
compare "clang, 32 bits" clang++ -O1 -m32
exit "$((failures > 0))"

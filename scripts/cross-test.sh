#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the tests of the multiple-precision module on other processors: built by cross compilers, run by qemu.
#
#   scripts/cross-test.sh [--fetch] [MACHINE...]      for example: scripts/cross-test.sh s390x riscv64
#
# MACHINE is s390x (the low octet comes last), aarch64, arm (32 bits), arm-neon (with vector registers, which Debian's
# compiler does not take for granted) or riscv64; without one, all are taken. Compilers that are installed are used.
# --fetch unpacks Debian's, and qemu, into build/cross/root, without installing anything: the installed compilers and
# g++-multilib exclude each other. A machine that cannot be built for is left out and named; the status is 77 when none is
# left.
#
# COUNTERSIGN_TEST_PERCENT: how many of the random cases are run (5).
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

build=$root/build/cross
fetched=$build/root
googletest=/usr/src/googletest/googletest
allMachines=(s390x aarch64 arm arm-neon riscv64)

# Sets "triplet", "architecture" (Debian's name), "processor" (qemu's name) and "flags" of the compiler for a machine.
describe() {
    processor=$1
    flags=()
    case $1 in
        s390x) triplet=s390x-linux-gnu architecture=s390x ;;
        aarch64) triplet=aarch64-linux-gnu architecture=arm64 ;;
        arm) triplet=arm-linux-gnueabihf architecture=armhf ;;
        arm-neon)
            triplet=arm-linux-gnueabihf architecture=armhf processor=arm
            flags=(-march=armv7-a+simd -mfpu=neon)
            ;;
        riscv64) triplet=riscv64-linux-gnu architecture=riscv64 ;;
        *) fail "unknown machine '$1': ${allMachines[*]}" ;;
    esac
}

# fetch MACHINE...: the packages of the cross compilers and of qemu, GMP for the machines that Debian has, and GMP's
# source, whose small variant serves the others. apt-get keeps its lists in the build folder, so the system's are not
# changed. A list that it cannot get need not be one that is needed: a package that is missing is an error.
fetch() {
    local machine packages lists=$build/lists sourceLists=$build/sourceLists
    local options=(-o Dir::Cache="$build/cache" -o Debug::NoLocking=1 -o APT::Sandbox::User="" -o APT::Architectures::=amd64)
    local sources=(-o Dir::Etc::sourcelist="$build/source.list" -o Dir::Etc::sourceparts=/dev/null
        -o Dir::State::lists="$sourceLists")
    mkdir -p "$lists/partial" "$sourceLists/partial" "$build/cache/archives/partial" "$build/packages" "$fetched"
    for machine in "$@"; do
        describe "$machine"
        [ "$architecture" = riscv64 ] || options+=(-o "APT::Architectures::=$architecture")
    done
    echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian bookworm main" \
        >"$build/source.list"
    apt-get "${options[@]}" -o Dir::State::lists="$lists" update || say "not all lists of packages could be got"
    apt-get "${options[@]}" "${sources[@]}" update || return
    cd "$build/packages" || return
    if ! command -v qemu-aarch64-static >/dev/null 2>&1; then
        apt-get "${options[@]}" -o Dir::State::lists="$lists" download qemu-user-static || return
    fi
    apt-get "${options[@]}" "${sources[@]}" source --download-only gmp || return
    tar xf gmp_*.orig.tar.* -C "$build" || return
    for machine in "$@"; do
        describe "$machine"
        packages=("binutils-$triplet" "cpp-12-$triplet" "gcc-12-$triplet" "g++-12-$triplet"
            "libgcc-12-dev-$architecture-cross" "libgcc-s1-$architecture-cross" "libatomic1-$architecture-cross"
            "libstdc++-12-dev-$architecture-cross" "libstdc++6-$architecture-cross" "libc6-dev-$architecture-cross"
            "libc6-$architecture-cross" "linux-libc-dev-$architecture-cross")
        [ "$architecture" = riscv64 ] || packages+=("libgmp-dev:$architecture")
        apt-get "${options[@]}" -o Dir::State::lists="$lists" download "${packages[@]}" || return
    done
    for package in *.deb; do
        dpkg -x "$package" "$fetched" || return
    done
}

# compile SOURCE OBJECT OPTION...
compile() {
    local source=$1 object=$2
    shift 2
    "${compiler[@]}" "${flags[@]}" -std=c++17 "$@" -I"$root/src" -I"$root/tests/bigdigits" -I"$root" -isystem "$googletest/include" \
        "${gmpInclude[@]}" -c "$source" -o "$folder/$object" || fail "compiling $source for $machine"
}

# Sets "compiler", "emulator", "gmpInclude" and "gmp", or says why it cannot and fails.
prepare() {
    local name found=
    for name in "$triplet-g++" "$triplet-g++-12"; do
        [ -n "$found" ] || found=$(command -v "$name")
    done
    if [ -z "$found" ] && [ -x "$fetched/usr/bin/$triplet-g++-12" ]; then
        found=$fetched/usr/bin/$triplet-g++-12
    fi
    if [ -z "$found" ]; then
        say "left out: $machine: there is no compiler $triplet-g++ (scripts/cross-test.sh --fetch $machine gets one)"
        return 1
    fi
    emulator=$(command -v "qemu-$processor-static") || emulator=$fetched/usr/bin/qemu-$processor-static
    if [ ! -x "$emulator" ]; then
        say "left out: $machine: there is no qemu-$processor-static (package qemu-user-static, or --fetch $machine)"
        return 1
    fi
    compiler=("$found")
    # What is fetched finds its own libraries only when it is told where.
    [ "${found#"$fetched"}" = "$found" ] ||
        compiler=(env "LD_LIBRARY_PATH=$fetched/usr/lib/x86_64-linux-gnu" "$found")
    gmpInclude=()
    local place
    for place in /usr "$fetched/usr"; do
        if [ -f "$place/lib/$triplet/libgmp.a" ]; then
            gmp=("$place/lib/$triplet/libgmp.a")
            mkdir -p "$folder/include"
            cp "$place/include/$triplet/gmp.h" "$folder/include/gmp.h"
            gmpInclude=(-isystem "$folder/include")
            return 0
        fi
    done
    for place in "$build"/gmp-*/mini-gmp; do
        if [ -f "$place/mini-gmp.c" ]; then
            mkdir -p "$folder/include"
            echo '#include "mini-gmp.h"' >"$folder/include/gmp.h"
            gmpInclude=(-isystem "$folder/include" -isystem "$place")
            "${compiler[@]}" -x c++ -O2 -w -c "$place/mini-gmp.c" -o "$folder/mini-gmp.o" || fail "compiling mini-gmp.c for $machine"
            gmp=("$folder/mini-gmp.o")
            return 0
        fi
    done
    say "left out: $machine: there is no GMP for it (scripts/cross-test.sh --fetch $machine gets one)"
    return 1
}

# run PROGRAM ARGUMENT...: runs it, and shows the end of what it printed when it fails.
run() {
    local program=$1
    shift
    COUNTERSIGN_TEST_PERCENT=${COUNTERSIGN_TEST_PERCENT:-5} "$emulator" "$folder/$program" \
        --gtest_brief=1 "$@" >"$folder/$program.log" 2>&1 && return 0
    tail -n 60 "$folder/$program.log" >&2
    return 1
}

# link PROGRAM OBJECT... OPTION...
link() {
    local program=$1
    shift
    "${compiler[@]}" -static "$@" -pthread -o "$folder/$program" 2>"$folder/$program.log" && return 0
    cat "$folder/$program.log" >&2
    fail "linking $program for $machine"
}

testOne() {
    local source name objects=()
    folder=$build/$machine
    mkdir -p "$folder" || fail "making the folder $folder"
    prepare || return 1
    say "building for $machine"
    compile "$googletest/src/gtest-all.cc" gtest.o -O1 -isystem "$googletest"
    compile "$googletest/src/gtest_main.cc" main.o -O1
    compile "$root/src/bigdigits.cpp" bigdigits.o -O3
    for source in "$root"/tests/bigdigits/*.cpp "$root"/tests/bigdigits/fromC.c; do
        name=$(basename "$source")
        case $name in
            columns.cpp | digest.cpp) ;;
            fromC.c)
                # The C compiler has the same name but for this.
                "${compiler[@]/$triplet-g++/$triplet-gcc}" -std=c99 -I"$root/src" -c "$source" -o "$folder/$name.o" ||
                    fail "compiling $source for $machine"
                objects+=("$folder/$name.o")
                ;;
            *)
                compile "$source" "$name.o" -O1
                objects+=("$folder/$name.o")
                ;;
        esac
    done
    compile "$root/tests/bigdigits/columns.cpp" columns.o -O3
    compile "$root/tests/bigdigits/digest.cpp" digest.o -O1
    link tests -Wl,--wrap=calloc,--wrap=free,--wrap=rand,--wrap=srand,--wrap=time "${objects[@]}" \
        "$folder/bigdigits.o" "$folder/gtest.o" "$folder/main.o" "${gmp[@]}"
    link columns "$folder/columns.o" "$folder/gtest.o" "$folder/main.o" "${gmp[@]}"
    link digest "$folder/digest.o" "$folder/bigdigits.o"

    say "testing on $machine"
    # qemu does not limit the memory of the program that it runs, so what fills it up is left out.
    run tests --gtest_filter='-OutOfMemoryDeathTest.EndsTheProcessWhen*:OutOfMemoryDeathTest.EndsTheProcessInTheConverters' ||
        fail "testing on $machine"
    run columns || fail "testing the fast forms on $machine"
    digest=$("$emulator" "$folder/digest") || fail "computing the digest on $machine"
    [ "$digest" = "$expected" ] || fail "the digest on $machine is $digest, here it is $expected"
}

isFetching=false
if [ "${1:-}" = --fetch ]; then
    isFetching=true
    shift
fi
machines=("$@")
[ "${#machines[@]}" -gt 0 ] || machines=("${allMachines[@]}")
for machine in "${machines[@]}"; do
    describe "$machine"
done
if $isFetching; then
    step "fetching cross compilers for ${machines[*]}" fetch "${machines[@]}"
fi
if [ ! -f "$googletest/src/gtest-all.cc" ]; then
    say "left out: there is no source of GoogleTest in $googletest (package googletest)"
    exit 77
fi

mkdir -p "$build" || fail "making the folder $build"
c++ -std=c++17 -O2 -I"$root/src" "$root/tests/bigdigits/digest.cpp" "$root/src/bigdigits.cpp" -o "$build/digest" ||
    fail "building the digest here"
expected=$("$build/digest") || fail "computing the digest here"
tested=0
for machine in "${machines[@]}"; do
    describe "$machine"
    if testOne; then
        tested=$((tested + 1))
    fi
done
say "tested on $tested of ${#machines[@]} machines"
[ "$tested" -gt 0 ] || exit 77

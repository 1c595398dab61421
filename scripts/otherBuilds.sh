#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the project in other ways than the presets do, and runs the quick tests of each build.
#
#   scripts/otherBuilds.sh [VARIANT...]      for example: scripts/otherBuilds.sh clang arm64
#
#   clang          the other compiler
#   libc++         its own standard library; without windows, as the toolkit's C++ library is another one
#   c++20, c++23   later standards of the language
#   lto            optimised over all sources at once
#   debugMode      containers and iterators that check their use (_GLIBCXX_DEBUG)
#   makefiles      make instead of ninja
#   path           in a folder with blanks and letters beyond ASCII
#   user           as a user without rights, with ./run.sh and ./test.sh
#   offline        once as usual, and after a change once more with no network, not even the loopback
#   arm64          for another processor, without windows; what is built runs under qemu
#
# Without VARIANT, all of them. They are built in build/other/VARIANT, which the next run takes up again; its log lies
# beside it. At the end there is a line for each: passed with the number of tests, SKIPPED with the reason, or FAILED.
# The status is 1 if one has failed, 77 if all have been skipped.
#
# COUNTERSIGN_OTHER_TESTS: the labels of tests that are not run, as ctest's -LE takes them. By default these are the long
# ones, windows, and the project's scripts, which are the same in every build: "^(long|window|project)$".
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

known=(clang libc++ c++20 c++23 lto debugMode makefiles path user offline arm64)
variants=("$@")
[ "${#variants[@]}" -gt 0 ] || variants=("${known[@]}")
for variant in "${variants[@]}"; do
    printf '%s\n' "${known[@]}" | grep -qxF -- "$variant" || fail "there is no variant '$variant'; known: ${known[*]}"
done

case " ${variants[*]} " in
    *' libc++ '* | *' makefiles '* | *' arm64 '*) packages='release' ;;
    *) packages='test' ;;
esac
"$root/scripts/install-dependencies.sh" "$packages" || exit
work=$root/build/other
mkdir -p "$work" || fail "making the folder $work"
skippedTests=${COUNTERSIGN_OTHER_TESTS:-^(long|window|project)$}
skipped=77

# ccache would not keep what is compiled with precompiled headers.
export CCACHE_SLOPPINESS=pch_defines,time_macros
launcher=()
if command -v ccache >/dev/null 2>&1; then
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi

# skip REASON: ends the variant.
skip() {
    echo "skipped: $*"
    exit "$skipped"
}

need() {
    command -v "$1" >/dev/null 2>&1 || skip "$1 is not installed (package $2)"
}

# build SOURCE-FOLDER BUILD-FOLDER [ARGUMENT of cmake...]
build() {
    local source=$1 folder=$2
    shift 2
    (cd "$source" && cmake --preset release -B "$folder" -DCOUNTERSIGN_BUILD_TESTS=ON "${launcher[@]}" "$@") &&
        cmake --build "$folder" --parallel "$(nproc)"
}

# runTests BUILD-FOLDER [ARGUMENT of ctest...]
runTests() {
    local folder=$1
    shift
    ctest --test-dir "$folder" --output-on-failure --no-tests=error -j "$(nproc)" -LE "$skippedTests" "$@"
}

# copySources FOLDER: what git knows and what it would take, as it is now; a repository of its own.
copySources() {
    mkdir -p "$1" || return
    (cd "$root" && git ls-files -z --cached --others --exclude-standard --deduplicate |
        while IFS= read -r -d '' file; do [ ! -e "$file" ] || printf '%s\0' "$file"; done |
        tar --null --files-from=- --create --file=-) | tar --extract --file=- -C "$1" || return
    git -C "$1" rev-parse --git-dir 2>/dev/null | grep -qx .git ||
        (git -C "$1" init -q -b main && git -C "$1" add . &&
            git -C "$1" -c user.name=build -c user.email=build@invalid commit -q -m sources)
}

# googleTest FOLDER ARGUMENT...: builds the tests' framework in the same way and installs it into FOLDER/installed.
googleTest() {
    local folder=$1
    shift
    [ -f /usr/src/googletest/CMakeLists.txt ] || skip "the sources of GoogleTest are not installed (package googletest)"
    cmake -S /usr/src/googletest -B "$folder" -G Ninja "${launcher[@]}" -DCMAKE_INSTALL_PREFIX="$folder/installed" "$@" &&
        cmake --build "$folder" --parallel "$(nproc)" && cmake --install "$folder"
}

withoutWindows=(-DCOUNTERSIGN_WITH_TOOLKIT=OFF -DCOUNTERSIGN_BUILD_DESKTOP=OFF -DCOUNTERSIGN_WINDOW_TESTS=OFF)

variant_clang() {
    need clang++ clang
    # Tests with windows are built where they are run.
    local windows=ON
    ! grep -qE -- "$skippedTests" <<<window || windows=OFF
    # Missing includes are for the other variants to find.
    build "$root" "$work/clang" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCOUNTERSIGN_PRECOMPILE=ON \
        -DCOUNTERSIGN_WINDOW_TESTS="$windows" &&
        runTests "$work/clang"
}

variant_libc++() {
    local clang=(-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-stdlib=libc++)
    need clang++ clang
    echo '#include <string>
        int main() { return int(std::string().size()); }' |
        clang++ -stdlib=libc++ -x c++ - -o "$work/libc++.probe" || skip "libc++ is not installed (packages libc++-dev, libc++abi-dev)"
    googleTest "$work/libc++.googletest" "${clang[@]}" &&
        build "$root" "$work/libc++" "${clang[@]}" "${withoutWindows[@]}" -DCMAKE_BUILD_TYPE=Debug \
            -DGTest_DIR="$work/libc++.googletest/installed/lib/cmake/GTest" &&
        runTests "$work/libc++" || return
    # It is the library that was meant.
    ldd "$work/libc++/bin/countersign" | grep -q 'libc++\.so' || { echo "the command line has another C++ library"; return 1; }
}

variant_c++20() {
    build "$root" "$work/c++20" -DCMAKE_CXX_STANDARD=20 -DCMAKE_BUILD_TYPE=Debug && runTests "$work/c++20"
}

variant_c++23() {
    build "$root" "$work/c++23" -DCMAKE_CXX_STANDARD=23 -DCMAKE_BUILD_TYPE=Debug && runTests "$work/c++23"
}

variant_lto() {
    build "$root" "$work/lto" -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON && runTests "$work/lto"
}

variant_debugMode() {
    local checked=(-DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS=-D_GLIBCXX_DEBUG -D_GLIBCXX_DEBUG_PEDANTIC")
    googleTest "$work/debugMode.googletest" "${checked[@]}" &&
        build "$root" "$work/debugMode" "${checked[@]}" \
            -DGTest_DIR="$work/debugMode.googletest/installed/lib/cmake/GTest" &&
        runTests "$work/debugMode"
}

variant_makefiles() {
    need make make
    build "$root" "$work/makefiles" -G "Unix Makefiles" -DCMAKE_BUILD_TYPE=Debug && runTests "$work/makefiles"
}

variant_path() {
    local source="$work/path/a folder of größe & ünïcode 路径"
    copySources "$source" && build "$source" "$source/build/release" && runTests "$source/build/release"
}

# The command line of the build and the application's window.
runProgram() {
    env -u DISPLAY -u WAYLAND_DISPLAY ./run.sh README.md && [ -s build/countersign.png ]
}

variant_user() {
    local source
    if [ "$(id -u)" -ne 0 ]; then
        skip "this is not root, so all other builds are another user's"
    fi
    need setpriv util-linux
    # Of a user who may not write elsewhere, nor enter the folder above.
    source=$(mktemp -d /tmp/countersign.XXXXXX) || return
    copySources "$source/countersign" || return
    export -f runProgram
    chown -R nobody: "$source" &&
        setpriv --reuid=nobody --regid="$(id -g nobody)" --clear-groups env HOME="$source" CCACHE_DIR="$source/.ccache" \
            bash -c 'cd "$HOME/countersign" && runProgram && ./test.sh -LE "$1"' - "$skippedTests"
    local status=$?
    rm -rf "$source"
    return "$status"
}

variant_offline() {
    local source=$work/offline/countersign nothing=()
    need unshare util-linux
    [ "$(id -u)" -eq 0 ] || nothing=(--map-root-user)
    unshare "${nothing[@]}" --net true || skip "a network of its own is not permitted here"
    export -f runProgram
    copySources "$source" &&
        (cd "$source" && ./test.sh -R '^osWrappers' && runProgram) &&
        printf '\n' | tee -a "$source/platform/baseTools/gtString.cpp" "$source/host/MainFrame.cpp" >/dev/null &&
        unshare "${nothing[@]}" --net bash -c 'cd "$1" && runProgram && ./test.sh -LE "$2"' - "$source" "$skippedTests"
}

# arm64Root FOLDER: an arm64 system's libraries and headers, unpacked and not installed, so that nothing here has to go.
arm64Root() {
    local folder=$1 mirror codename package
    local packages=g++,libssl-dev,libgmp-dev,libcli11-dev,libbsd-dev,libglib2.0-dev,nlohmann-json3-dev,zlib1g-dev
    [ "$(cat "$folder/complete" 2>/dev/null)" != "$packages" ] || return 0
    [ "$(id -u)" -eq 0 ] || skip "debootstrap takes root"
    need debootstrap debootstrap
    mirror=$(debianMirror)
    codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
    [ -n "$mirror" ] || skip "this system's package mirror is not known"
    rm -rf "$folder"
    debootstrap --arch=arm64 --foreign --variant=minbase \
        --include="$packages" "$codename" "$folder" "$mirror" || return
    for package in "$folder"/var/cache/apt/archives/*.deb; do
        dpkg -x "$package" "$folder" || return
    done
    # What is absolute there would lead out of the folder.
    find "$folder/usr/lib" -type l -lname '/*' | while read -r package; do
        ln -sfn "$folder$(readlink "$package")" "$package"
    done
    echo "$packages" >"$folder/complete"
}

variant_arm64() {
    local system=$work/arm64.system folder=$work/arm64 emulator=qemu-aarch64-static cross
    need clang++ clang
    need ld.lld lld
    command -v "$emulator" >/dev/null 2>&1 || emulator=qemu-aarch64
    need "$emulator" qemu-user-static
    if [ "$(uname -m)" = aarch64 ]; then
        skip "this is such a processor"
    fi
    arm64Root "$system" || return
    export QEMU_LD_PREFIX=$system
    # Of that system's libraries, not of those here.
    export PKG_CONFIG_SYSROOT_DIR=$system
    export PKG_CONFIG_LIBDIR=$system/usr/lib/aarch64-linux-gnu/pkgconfig:$system/usr/share/pkgconfig
    cross=(-DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64 -DCMAKE_SYSROOT="$system"
        -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++
        -DCMAKE_C_COMPILER_TARGET=aarch64-linux-gnu -DCMAKE_CXX_COMPILER_TARGET=aarch64-linux-gnu
        -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld
        -DCMAKE_MODULE_LINKER_FLAGS=-fuse-ld=lld
        -DCMAKE_CROSSCOMPILING_EMULATOR="$(command -v "$emulator")"
        -DCMAKE_FIND_ROOT_PATH="$system" -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY
        -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY -DCMAKE_LIBRARY_ARCHITECTURE=aarch64-linux-gnu)
    googleTest "$folder.googletest" "${cross[@]}" &&
        build "$root" "$folder" "${cross[@]}" "${withoutWindows[@]}" \
            -DGTest_DIR="$folder.googletest/installed/lib/cmake/GTest" || return
    # Tests that start programs would start them without the emulator; scripts/cross-test.sh has those of bigdigits.
    runTests "$folder" -R '^crypto\.' || return
    tryCommandLine "$emulator" "$folder/bin/countersign"
}

# tryCommandLine [EMULATOR] PROGRAM: signs, tests, encrypts and decrypts.
tryCommandLine() (
    folder=$(mktemp -d) && cd "$folder" || exit
    trap 'rm -rf "$folder"' EXIT
    complain() {
        echo "the command line ($1) does not do what it should"
        exit 1
    }
    openssl genrsa -out private.pem 1024 2>/dev/null && chmod 600 private.pem &&
        openssl rsa -in private.pem -pubout -out public.pem 2>/dev/null || exit
    echo "All is well." >report.txt
    "$@" sign --key private.pem report.txt || complain sign
    "$@" test --key public.pem report.txt || complain test
    echo "All is ill." >report.txt
    "$@" test --key public.pem report.txt
    [ $? -eq 1 ] || complain "test of a changed file"
    "$@" encrypt --key public.pem "at noon" >note.cipher || complain encrypt
    [ "$("$@" decrypt --key private.pem <note.cipher)" = "at noon" ] || complain decrypt
    echo "the command line runs: $*"
)

summary=()
status=77
for variant in "${variants[@]}"; do
    log=$work/$variant.log
    say "$variant ($log)"
    (set -o pipefail && "variant_$variant") >"$log" 2>&1 </dev/null
    case $? in
        0)
            tests=$(sed -n 's/^100% tests passed, 0 tests failed out of \([0-9]*\)$/\1/p' "$log" | tail -n 1)
            summary+=("$variant: passed, $tests tests")
            [ "$status" -ne 77 ] || status=0
            ;;
        "$skipped") summary+=("$variant: SKIPPED, $(sed -n 's/^skipped: //p' "$log" | tail -n 1)") ;;
        *)
            tail -n 60 "$log" >&2
            summary+=("$variant: FAILED; see $log")
            status=1
            ;;
    esac
done
printf '%s\n' "${summary[@]}"
exit "$status"

# SPDX-License-Identifier: Apache-2.0
# Shared by the scripts that people start; sourced, not run. Sets "root" to the repository.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() {
    printf 'countersign: %s\n' "$*" >&2
}

fail() {
    say "FAILED: $*"
    exit 1
}

# step TEXT COMMAND...: says in one line what is being done, keeps the command's talk in a log, and ends with the
# step's name and that log when it fails.
step() {
    local text=$1 log status
    shift
    mkdir -p "$root/build" || fail "making the folder $root/build"
    log=$(mktemp "$root/build/step.XXXXXX") || fail "writing in $root/build"
    say "$text"
    "$@" >"$log" 2>&1
    status=$?
    if [ "$status" -ne 0 ]; then
        tail -n 60 "$log" >&2
        rm -f "$log"
        say "FAILED (status $status) while: $text"
        exit "$status"
    fi
    rm -f "$log"
}

# hasDisplay: whether a window can be opened where this runs.
hasDisplay() {
    if [ -n "${WAYLAND_DISPLAY:-}" ] && [ -S "${XDG_RUNTIME_DIR:-/nonexistent}/$WAYLAND_DISPLAY" ]; then
        return 0
    fi
    [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1
}

# configure PRESET: with ccache where it is installed and with the caller's further arguments to cmake, if there are any.
cmakeArguments=()
configure() {
    local cacheArguments=()
    if command -v ccache >/dev/null 2>&1; then
        cacheArguments=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    step "configuring (preset $1)" env -C "$root" cmake --preset "$1" "${cacheArguments[@]}" "${cmakeArguments[@]}"
}

# build PRESET [TARGET...]: on all processors, what is configured.
build() {
    local preset=$1
    shift
    local targets=() target
    for target in "$@"; do
        targets+=(--target "$target")
    done
    step "building (preset $preset; the first time takes some minutes)" \
        env -C "$root" cmake --build --preset "$preset" "${targets[@]}"
}

# configureAndBuild PRESET [TARGET...]
configureAndBuild() {
    configure "$1"
    build "$@"
}

# debianMirror: where this system gets its packages from, as its own configuration says.
debianMirror() {
    local codename
    codename=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
    apt-get indextargets --format '$(REPO_URI)' "Codename: $codename" 'Created-By: Packages' 2>/dev/null | head -n 1
}

# fuzzingCompiler: the name of a clang++ that can build fuzzers, of whatever version; nothing if there is none.
fuzzingCompiler() {
    local compiler folder
    folder=$(mktemp -d) || return
    for compiler in clang++ $(compgen -c clang++- | grep -E '^clang\+\+-[0-9]+$' | sort -u -t - -k 2 -n -r); do
        if echo 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }' |
            "$compiler" -fsanitize=fuzzer,address,undefined -x c++ - -o "$folder/fuzzer" 2>/dev/null; then
            echo "$compiler"
            break
        fi
    done
    rm -rf "$folder"
}

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the Debian packages that Countersign needs, and only those that are missing.
#
#   scripts/install-dependencies.sh [run|test|develop]
#
# run: to build and run the programs; test: also to run the tests (the default); develop: also to lint, measure,
# fuzz and package.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# The one list of packages, by what they are for.
run=(
    g++ cmake ninja-build pkg-config ccache
    libwxgtk3.2-dev libgtk-3-dev libssl-dev libcli11-dev
    # Without a display: a virtual one, a window manager and a camera.
    xvfb openbox xdotool wmctrl x11-utils imagemagick fonts-dejavu-core adwaita-icon-theme
)
test=(
    libgtest-dev libgmock-dev libgmp-dev
    gdb openssl
    # A session bus to meet on, and the desktop's own validators.
    dbus libglib2.0-bin desktop-file-utils appstream
    # What makes the package, and what reads the manual pages.
    dpkg-dev file man-db
    # The fuzzers' compiler.
    clang libclang-rt-14-dev
    # What changes the sources for scripts/mutate.sh.
    python3 python3-clang
)
develop=(
    clang-format clang-tidy gcovr git
    libx11-dev libbenchmark-dev libtommath-dev valgrind librsvg2-bin shellcheck
)

# For 32-bit builds of the multiple-precision module.
if [ "$(dpkg --print-architecture 2>/dev/null)" = amd64 ]; then
    test+=(g++-multilib)
fi

case "${1:-test}" in
    run) wanted=("${run[@]}") ;;
    test) wanted=("${run[@]}" "${test[@]}") ;;
    develop) wanted=("${run[@]}" "${test[@]}" "${develop[@]}") ;;
    *) fail "unknown set of packages '$1': run, test or develop" ;;
esac

if ! command -v dpkg-query >/dev/null 2>&1; then
    say "this is not Debian: install by hand what README.md lists for your system"
    exit 0
fi

missing=()
for package in "${wanted[@]}"; do
    state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)
    [ "$state" = installed ] || missing+=("$package")
done
[ "${#missing[@]}" -gt 0 ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
    asRoot=()
elif command -v sudo >/dev/null 2>&1 && { sudo -n true 2>/dev/null || [ -t 0 ]; }; then
    asRoot=(sudo)
else
    say "these packages are missing: ${missing[*]}"
    fail "installing packages: it takes root or sudo. Run as root: apt-get install ${missing[*]}"
fi

installThem() {
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 install -y \
        --no-install-recommends "${missing[@]}" </dev/null
}

# sudo's question for the password must be seen, so it is asked before the step's talk goes into a log.
[ "${#asRoot[@]}" -eq 0 ] || sudo -v || fail "becoming root through sudo"
step "refreshing the package lists" "${asRoot[@]}" apt-get update
step "installing missing packages: ${missing[*]}" installThem

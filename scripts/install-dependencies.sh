#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the Debian packages that Countersign needs, and only those that are missing. Removes none.
#
#   scripts/install-dependencies.sh [run|test|develop|release]
#
# run: to build and run the programs; test: also to run the tests (the default); develop: also to lint, measure,
# fuzz and package; release: also what scripts/release-check.sh needs.
#
# Some packages are optional: without one, a test is skipped and says so. An optional package that is not available, or
# only by removing another one, is skipped with a word, and is tried again when the installed packages have changed.
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# The one list of packages, by what they are for. The names are those of Debian 12 and 13.
run=(
    g++ cmake ninja-build pkgconf ccache gettext
    libwxgtk3.2-dev libgtk-3-dev libssl-dev libcli11-dev libbsd-dev nlohmann-json3-dev
    # Without a display: a virtual one, a window manager and a camera.
    xvfb openbox xdotool wmctrl x11-utils imagemagick fonts-dejavu-core adwaita-icon-theme
)
test=(
    libgtest-dev libgmock-dev libgmp-dev
    gdb git openssl python3
    # A session bus to meet on.
    dbus libglib2.0-bin
)
testOptional=(
    # What dates look like elsewhere.
    locales
    # The desktop's own validators.
    desktop-file-utils appstream shared-mime-info xdg-utils python3-yaml python3-jsonschema
    # A screen reader's view of the window.
    at-spi2-core gir1.2-atspi-2.0 python3-pyatspi
    # A Wayland compositor and its keyboard.
    sway wtype
    # What makes the package, and what reads the manual pages.
    dpkg-dev file man-db
    # The fuzzers' compiler.
    clang libclang-rt-dev
    # What changes the sources for scripts/mutate.sh.
    python3-clang
    # The shells that completion is tried with, and the programs that the manual compares with.
    zsh fish minisign signify-openbsd gpg gpg-agent
)
developOptional=(
    clang-format clang-tidy gcovr shellcheck mandoc doxygen
    libx11-dev libbenchmark-dev libtommath-dev valgrind librsvg2-bin
)
releaseOptional=(
    # Other compilers' libraries, other generators, other processors, other releases of the system.
    libc++-dev libc++abi-dev make lld qemu-user-static debootstrap
    # The packages, what looks at them, and the other packages' builder.
    debhelper lintian autopkgtest diffoscope-minimal flatpak-builder
)

# For 32-bit builds of the multiple-precision module. It cannot be installed beside compilers for other processors.
if [ "$(dpkg --print-architecture 2>/dev/null)" = amd64 ]; then
    testOptional+=(g++-multilib)
fi

case "${1:-test}" in
    run)
        needed=("${run[@]}")
        optional=()
        ;;
    test)
        needed=("${run[@]}" "${test[@]}")
        optional=("${testOptional[@]}")
        ;;
    develop)
        needed=("${run[@]}" "${test[@]}")
        optional=("${testOptional[@]}" "${developOptional[@]}")
        ;;
    release)
        needed=("${run[@]}" "${test[@]}")
        optional=("${testOptional[@]}" "${developOptional[@]}" "${releaseOptional[@]}")
        ;;
    *) fail "unknown set of packages '$1': run, test, develop or release" ;;
esac

if ! command -v dpkg-query >/dev/null 2>&1; then
    say "this is not Debian: install by hand what README.md lists for your system"
    exit 0
fi

isInstalled() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

missing=()
for package in "${needed[@]}"; do
    isInstalled "$package" || missing+=("$package")
done

# Which optional packages are not available, one a line. It holds for as long as nothing else gets installed.
statusFile=${COUNTERSIGN_DPKG_STATUS:-/var/lib/dpkg/status}
unavailable=$root/build/unavailable-packages
known=
if [ -f "$unavailable" ] && [ ! "$statusFile" -nt "$unavailable" ]; then
    known=$(cat "$unavailable")
fi
wished=()
for package in "${optional[@]}"; do
    isInstalled "$package" || grep -qxF -- "$package" <<<"$known" || wished+=("$package")
done
[ "${#missing[@]}" -gt 0 ] || [ "${#wished[@]}" -gt 0 ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
    asRoot=()
elif command -v sudo >/dev/null 2>&1 && { sudo -n true 2>/dev/null || [ -t 0 ]; }; then
    asRoot=(sudo)
elif [ "${#missing[@]}" -eq 0 ]; then
    say "skipped, as it takes root or sudo to install them: ${wished[*]}"
    exit 0
else
    say "these packages are missing: ${missing[*]}"
    fail "installing packages: it takes root or sudo. Run as root: apt-get install --no-remove ${missing[*]}"
fi

aptOptions=(-y --no-remove --no-install-recommends -o DPkg::Lock::Timeout=300)

installThem() {
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get "${aptOptions[@]}" install "$@" </dev/null
}

canBeInstalled() {
    apt-get -s "${aptOptions[@]}" install "$@" >/dev/null 2>&1 </dev/null
}

# sudo's question for the password must be seen, so it is asked before the step's talk goes into a log.
[ "${#asRoot[@]}" -eq 0 ] || sudo -v || fail "becoming root through sudo"
say "refreshing the package lists"
"${asRoot[@]}" apt-get update >/dev/null 2>&1 </dev/null ||
    say "not all package lists could be refreshed; going on with those that are here"
[ "${#missing[@]}" -eq 0 ] ||
    step "installing missing packages: ${missing[*]}" installThem "${missing[@]}"

# One after the other joins those that can be installed together.
together=()
for package in "${wished[@]}"; do
    if canBeInstalled "${together[@]}" "$package"; then
        together+=("$package")
    fi
done
if [ "${#together[@]}" -gt 0 ]; then
    say "installing optional packages: ${together[*]}"
    if ! installThem "${together[@]}" >/dev/null 2>&1; then
        # One of them fails; the others need not.
        for package in "${together[@]}"; do
            installThem "$package" >/dev/null 2>&1
        done
    fi
fi
out=()
for package in "${wished[@]}"; do
    isInstalled "$package" || out+=("$package")
done
if [ "${#out[@]}" -gt 0 ]; then
    say "skipped, not available here without removing other packages: ${out[*]}"
    mkdir -p "$root/build" && printf '%s\n' "$known" "${out[@]}" | sed '/^$/d' | sort -u >"$unavailable"
fi
exit 0

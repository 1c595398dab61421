#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the Debian packages from debian/ and looks at them.
#
#   scripts/debian-package.sh [--work FOLDER] [STEP...]
#
# Steps, all of them in this order unless some are named:
#   build      the source package and the binary packages, into FOLDER/packages (FOLDER is build/debian by default)
#   lint       lintian over these; an error or a warning is a failure, everything else is shown
#   compare    builds them again in a folder with another name and length, in another language and time zone, and compares
#              byte for byte
#   test       installs them in a small system of its own (debootstrap, in FOLDER/system, as root) and runs debian/tests
#
# What is built are the files that git knows, as they are in the working tree. COUNTERSIGN_DEBIAN is the release for the
# small system (that of this machine by default), COUNTERSIGN_MIRROR where it comes from (the mirror of this machine).
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

work=$root/build/debian
if [ "${1:-}" = --work ]; then
    mkdir -p "$2" || fail "making the folder $2"
    work=$(cd "$2" && pwd)
    shift 2
fi
steps=("$@")
[ "${#steps[@]}" -gt 0 ] || steps=(build lint compare test)
# The small system of the last step.
system=$work/system
version=$(sed -nE '1s/^countersign \(([^)]*)\) .*/\1/p' "$root/debian/changelog")

# need PROGRAM PACKAGE
need() {
    command -v "$1" >/dev/null 2>&1 || fail "looking for $1 (install $2)"
}

# unpackSources FOLDER: a copy of our files in FOLDER/countersign-VERSION, and of nothing that a build has left there.
unpackSources() {
    local folder=$1/countersign-$version
    rm -rf "$1"
    mkdir -p "$folder" || fail "making the folder $folder"
    (cd "$root" && git ls-files -z --cached --others --exclude-standard |
        while IFS= read -r -d '' file; do [ -e "$file" ] && printf '%s\0' "$file"; done |
        tar --create --null --files-from=-) | tar --extract --directory "$folder" || fail "copying the sources"
}

build() {
    need dpkg-buildpackage dpkg-dev
    need dh debhelper
    unpackSources "$work/packages"
    step "building the packages" env -C "$work/packages/countersign-$version" dpkg-buildpackage -us -uc
    say "built: $(cd "$work/packages" && echo *.deb)"
}

lint() {
    need lintian lintian
    say "looking at the packages (lintian)"
    # As root it takes a word; it only reads.
    lintian --allow-root -EvIL +pedantic --fail-on error,warning "$work"/packages/*.changes 2>&1 |
        grep -v '^N: Using profile\|^N: Starting on\|^N: Finished\|^N: Unpacking\|^N: Processing\|^N: Checking\|^N: ----' |
        tee "$work/lintian.log"
    [ "${PIPESTATUS[0]}" -eq 0 ] || fail "looking at the packages (lintian)"
    say "lintian finds no error and warns of nothing"
}

compare() {
    local other=$work/another-folder-with-a-longer-name difference=0 file
    # From the same source package: the working tree may have changed meanwhile.
    rm -rf "$other"
    mkdir -p "$other" || fail "making the folder $other"
    step "unpacking the source package" env -C "$other" \
        dpkg-source --extract "$work/packages/countersign_$version.dsc" "countersign-$version"
    # Without tests, which are in no package, and without a compiler cache, which would hand out what the first build made.
    step "building the packages again" env -C "$other/countersign-$version" LC_ALL=C.UTF-8 LANGUAGE=fr TZ=Asia/Tokyo \
        HOME="$other" CCACHE_DISABLE=1 DEB_BUILD_PROFILES=nocheck DEB_BUILD_OPTIONS='nocheck parallel=1' \
        sh -c 'umask 027 && exec dpkg-buildpackage -us -uc'
    for file in "$work"/packages/*.deb "$work"/packages/*.dsc "$work"/packages/*.tar.*; do
        if ! cmp "$file" "$other/$(basename "$file")"; then
            difference=1
            ! command -v diffoscope >/dev/null || diffoscope --max-report-size 20000 "$file" "$other/$(basename "$file")"
        fi
    done
    [ "$difference" -eq 0 ] || fail "comparing the packages of two builds"
    say "the packages of both builds are the same, byte for byte"
}

# This machine's mirror of the system's release.
mirror() {
    apt-cache policy 2>/dev/null | sed -nE 's/^ *[0-9]+ (http[^ ]*) ([^/ ]*)\/main .*/\2 \1/p' |
        awk -v release="$1" '$1 == release { print $2; exit }'
}

leaveSystem() {
    local folder
    for folder in "$system/proc" "$system/dev"; do
        ! mountpoint -q "$folder" || umount "$folder"
    done
}

testInstalled() {
    local release address status
    need autopkgtest autopkgtest
    need debootstrap debootstrap
    [ "$(id -u)" -eq 0 ] || fail "making a small system: it takes root"
    release=${COUNTERSIGN_DEBIAN:-$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)}
    address=${COUNTERSIGN_MIRROR:-$(mirror "$release")}
    [ -n "$address" ] || fail "looking for a mirror of $release: name one in COUNTERSIGN_MIRROR"
    if [ ! -e "$system/etc/debian_version" ]; then
        step "making a small system ($release)" debootstrap --variant=minbase "$release" "$system" "$address"
        # How this machine reaches its mirror.
        cp -r /etc/apt/apt.conf.d/. "$system/etc/apt/apt.conf.d/"
        step "refreshing its package lists" chroot "$system" apt-get update
    fi
    trap leaveSystem EXIT
    mount --bind /proc "$system/proc" || fail "giving the system /proc"
    mount --bind /dev "$system/dev" || fail "giving the system /dev"
    say "running debian/tests in $system"
    rm -rf "$work/tests"
    autopkgtest --output-dir "$work/tests" "$work"/packages/*.deb "$work"/packages/*.dsc -- chroot "$system"
    status=$?
    leaveSystem
    [ "$status" -eq 0 ] || fail "running debian/tests (status $status)"
    say "debian/tests pass on $release"
}

for wanted in "${steps[@]}"; do
    case $wanted in
        build) build ;;
        lint) lint ;;
        compare) compare ;;
        test) testInstalled ;;
        *) fail "unknown step '$wanted': build, lint, compare or test" ;;
    esac
done
say "packages: passed, ${steps[*]}"

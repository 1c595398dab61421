#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the two commands of README.md as a newcomer would: on a Debian that holds nothing but its base, in a clean clone of
# what is committed here.
#
#   scripts/fresh-debian.sh RELEASE [MIRROR]     for example: scripts/fresh-debian.sh trixie
#
# RELEASE is a name such as bookworm (12) or trixie (13); MIRROR is where its packages are, by default where this system has
# its own from. It takes root. The base, the downloaded packages and the compiler's cache stay in build/fresh for the next
# run; the system itself is made anew each time and removed at the end, and all that was mounted goes with the run.
#
# COUNTERSIGN_FRESH_COMMAND: what is run there instead of "./run.sh README.md && ./test.sh".
set -u
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

release=${1:-}
case $release in
    '' | *[!a-z]*) fail "'$release' is no release; scripts/fresh-debian.sh RELEASE [MIRROR]" ;;
esac
[ "$(id -u)" -eq 0 ] || fail "making a system of its own: it takes root"
"$root/scripts/install-dependencies.sh" release || exit
command -v debootstrap >/dev/null 2>&1 || fail "looking for debootstrap (package debootstrap)"
mirror=${2:-$(debianMirror)}
[ -n "$mirror" ] || fail "this system's package mirror is not known; scripts/fresh-debian.sh $release MIRROR"
command=${COUNTERSIGN_FRESH_COMMAND:-./run.sh README.md && ./test.sh}

kept=$root/build/fresh
base=$kept/$release.tar
mkdir -p "$kept/$release-packages/partial" "$kept/$release-ccache" || fail "making the folder $kept"

# The folder may be large, so it does not lie where memory may be.
system=$(mktemp -d "/var/tmp/countersign-$release.XXXXXX") || fail "making a temporary folder"
trap 'rm -rf --one-file-system "$system"' EXIT
trap 'exit 143' TERM
trap 'exit 130' INT

if [ ! -f "$base" ]; then
    step "making the base of $release" debootstrap --variant=minbase "$release" "$system" "$mirror"
    step "keeping the base of $release" tar --create --file="$base.part" --numeric-owner -C "$system" .
    mv "$base.part" "$base" || fail "keeping the base"
else
    step "unpacking the base of $release" tar --extract --file="$base" --numeric-owner -C "$system"
fi

# Everybody enters a system's root.
chmod 755 "$system" || fail "opening the folder $system"

# How this system reaches the mirror, it does too.
cp -L /etc/resolv.conf /etc/hosts "$system/etc/" || fail "copying the network's configuration"
apt-config dump | grep -E '^Acquire::(http|https|Check|Retries|ForceIPv)' >"$system/etc/apt/apt.conf.d/00host"
cp -r /etc/apt/auth.conf.d "$system/etc/apt/" 2>/dev/null
[ ! -d /usr/local/share/ca-certificates ] || cp -r /usr/local/share/ca-certificates "$system/usr/local/share/"

step "cloning what is committed" git clone --quiet --no-hardlinks "$root" "$system/root/countersign"

inside() {
    mount --make-rprivate / &&
        mount -t proc proc "$system/proc" &&
        mount --rbind /dev "$system/dev" &&
        mount -t tmpfs -o mode=1777 tmpfs "$system/dev/shm" &&
        mount --bind "$kept/$release-packages" "$system/var/cache/apt/archives" &&
        mkdir -p "$system/root/.cache/ccache" &&
        mount --bind "$kept/$release-ccache" "$system/root/.cache/ccache" || exit
    exec chroot "$system" env -i HOME=/root USER=root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        LANG=C.UTF-8 ${http_proxy:+"http_proxy=$http_proxy"} ${https_proxy:+"https_proxy=$https_proxy"} \
        bash -c 'cd /root/countersign && eval "$1"' - "$command"
}
export -f inside
export system kept release command

log=$kept/$release.log
say "running in a fresh $release: $command ($log)"
started=$(git -C "$root" rev-parse --short HEAD)
# Processes that are left behind end with the first one.
unshare --mount --pid --fork --kill-child bash -c inside >"$log" 2>&1 </dev/null
status=$?
summary=$(grep -E 'tests passed, |^countersign: FAILED' "$log" | tail -n 1)
if [ "$status" -ne 0 ]; then
    tail -n 60 "$log" >&2
    fail "$release, commit $started: status $status, ${summary:-nothing was tested}"
fi
say "$release, commit $started: passed, ${summary:-nothing was tested}"

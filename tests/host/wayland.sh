#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs a command in a Wayland session of its own: a compositor (sway) without screen, seat and graphics processor, and
# a session bus. Nothing of the user's session is reached.
#
#   wayland.sh COMMAND [ARGUMENT...]
#
# SWAYSOCK is the compositor's for swaymsg; HOME, XDG_CONFIG_HOME and XDG_RUNTIME_DIR are the command's own.
set -u

skip() {
    echo "skipped: $1"
    exit 77
}
for tool in sway swaymsg wtype dbus-run-session; do
    command -v "$tool" >/dev/null || skip "there is no $tool (packages sway, wtype and dbus)"
done

compositor=
here=$(mktemp -d)
cleanUp() {
    trap '' TERM INT HUP
    [ -z "$compositor" ] || kill "$compositor" 2>/dev/null
    wait
    rm -rf "$here"
}
trap cleanUp EXIT
trap 'exit 143' TERM
trap 'exit 130' INT
trap 'exit 129' HUP

mkdir -m 700 "$here/compositor" "$here/run" "$here/home" || exit 1
# What asks for the keyboard gets it if it may; what may not is marked.
cat >"$here/sway.conf" <<'EOF'
xwayland disable
output HEADLESS-1 resolution 1280x900
focus_on_window_activation focus
EOF
together=()
if setpriv --pdeathsig TERM true 2>/dev/null; then
    together=(setpriv --pdeathsig TERM)
fi
if [ "$(id -u)" -eq 0 ]; then
    # Sway does not run as root.
    chown 65534:65534 "$here/compositor" && chmod 755 "$here" && chmod 644 "$here/sway.conf"
    together=(setpriv --reuid 65534 --regid 65534 --clear-groups "${together[@]}")
fi
unset DISPLAY WAYLAND_DISPLAY WAYLAND_SOCKET SWAYSOCK DBUS_SESSION_BUS_ADDRESS XDG_ACTIVATION_TOKEN DESKTOP_STARTUP_ID
unset XKB_DEFAULT_LAYOUT
HOME=$here/compositor XDG_RUNTIME_DIR=$here/compositor SWAYSOCK=$here/compositor/sway.sock \
    WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman \
    "${together[@]}" sway -c "$here/sway.conf" >"$here/sway.log" 2>&1 &
compositor=$!

# The answer comes when all is there, the socket for windows too.
for _ in $(seq 3000); do
    swaymsg -s "$here/compositor/sway.sock" -t get_outputs >/dev/null 2>&1 && break
    kill -0 "$compositor" 2>/dev/null || break
    sleep 0.1
done
socket=$(find "$here/compositor" -type s -name 'wayland-*' | head -n 1)
if [ -z "$socket" ]; then
    cat "$here/sway.log"
    skip "the compositor does not start here"
fi

export HOME=$here/home XDG_CONFIG_HOME=$here/home/config XDG_RUNTIME_DIR=$here/run LC_ALL=C.UTF-8 LANGUAGE=
export WAYLAND_DISPLAY=$socket SWAYSOCK=$here/compositor/sway.sock GDK_BACKEND=wayland GSETTINGS_BACKEND=memory
export NO_AT_BRIDGE=1 GTK_A11Y=none
cd "$here/home" || exit 1
dbus-run-session -- "$@"

#!/usr/bin/env bash
# Runs a Windows program under Wine with a prefix of the project's own, on an X server of its own when there is no
# display. CTest starts every Windows test through this script; ./run uses it too.
#
#   scripts/wine.sh [--bits 32|64] PROGRAM [ARGUMENT...]
#   scripts/wine.sh --stop      ends what still runs in the prefix, and its X server
#
#   --bits 64            in a prefix for 64-bit programs (and 32-bit ones); default 32
#   ORBIKON_WINEPREFIX   folder of the Wine prefix (default: build/wine or build/wine64 in this checkout)
#   ORBIKON_DISPLAY      use this X display (":0" and the like) instead of a virtual one
set -euo pipefail
exec 5>&-  # the lock of the run that has started this
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bits=32
if [ "${1:-}" = --bits ]; then
    bits=$2
    shift 2
fi
prefix=wine
[ "$bits" = 32 ] || prefix=wine64
export WINEPREFIX=${ORBIKON_WINEPREFIX:-$root/build/$prefix}
# winemenubuilder would put menu entries and file types into the user's home.
export WINEARCH=win$bits WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe=' WINEDEBUG=${WINEDEBUG:--all}
# Whatever the user's locale is: file names of any kind, and English as the language of the system.
export LANG=C.UTF-8 LC_ALL=C.UTF-8
mkdir -p "$(dirname "$WINEPREFIX")"

if [ "${1:-}" = --stop ]; then
    [ ! -d "$WINEPREFIX" ] || wineserver -k 2>/dev/null || true
    if [ -r "$WINEPREFIX.display" ]; then
        read -r _ server <"$WINEPREFIX.display"
        kill "$server" 2>/dev/null || true
        rm -f "$WINEPREFIX.display"
    fi
    exit 0
fi

# One virtual display for each Wine prefix; it stays up between programs until --stop.
if [ -n "${ORBIKON_DISPLAY:-}" ]; then
    export DISPLAY=$ORBIKON_DISPLAY
    managed=Y
else
    . "$root/scripts/display.sh"
    managed=N  # without a window manager Wine would wait seconds for its answers and leave title bars black
    # No cursor themes: the library that loads one asks the X server on the connection that all threads share, and when
    # one of them shows a window at that moment, the two wait for each other for good.
    export XCURSOR_PATH=/nonexistent
fi

# The prefix is made once for its kind of display; two tests that start at the same time must not both make it.
is_ready() { [ "$(cat "$WINEPREFIX/.ready" 2>/dev/null)" = "$managed" ]; }
if ! is_ready; then
    exec 9>"$WINEPREFIX.lock"
    flock 9
    if ! is_ready; then
        { wineboot --init && wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d "$managed" /f; } \
            >"$WINEPREFIX.log" 2>&1 9>&- || { cat "$WINEPREFIX.log" >&2; exit 1; }
        wineserver -w 9>&-
        # The symbols of the caption buttons; Debian's package lies where its Wine does not look.
        [ ! -r /usr/share/wine/fonts/marlett.ttf ] ||
            cp /usr/share/wine/fonts/marlett.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
        echo "$managed" >"$WINEPREFIX/.ready"
    fi
    exec 9>&-
fi

# Services that Wine starts along with a program keep its standard output open and would hold up whoever reads it to
# the end. So the program writes to a file, which is passed on while it grows.
output=$(mktemp)
trap 'rm -f "$output"' EXIT
wine "$@" >"$output" 2>&1 &
program=$!
trap 'kill "$program" 2>/dev/null' TERM INT
tail -n +1 -s 0.1 -f --pid="$program" "$output" &  # in the background, so that the traps run at once
follower=$!
status=0
wait "$program" || status=$?
wait "$follower"
exit $status

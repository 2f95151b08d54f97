#!/usr/bin/env bash
# Runs a Windows program of a build folder in Wine, without a display, and with a Windows of its own in PREFIX, which is
# made first where there is none. A test program that ends before its last test fails, whatever its exit code.
# Usage: scripts/wine.sh PREFIX PROGRAM [ARGUMENT...]
set -euo pipefail

export WINEPREFIX=$1 WINEDEBUG=${WINEDEBUG:--all}
export WINELOADER=/usr/lib/wine/wine64
unset DISPLAY
shift

# One program makes the folder and the others wait.
mkdir -p "$WINEPREFIX"
exec 9>"$WINEPREFIX/lock"
flock 9
if [[ ! -f $WINEPREFIX/made ]]; then
    # Neither .NET nor a browser: Wine would offer to download them.
    WINEDLLOVERRIDES=mscoree,mshtml= "$WINELOADER" wineboot --init >/dev/null 2>&1 9>&-
    touch "$WINEPREFIX/made"
fi
exec 9>&-

# A program needs no services and no desktop. They take seconds to start, and on a busy machine a minute when the ones
# before are still ending.
export WINEDLLOVERRIDES=wineboot.exe,services.exe,explorer.exe,mscoree,mshtml=

# GoogleTest makes this file as it starts and removes it at its end.
unfinished=$(mktemp -u "$WINEPREFIX/unfinished.XXXXXX")
trap 'rm -f "$unfinished"' EXIT
TEST_PREMATURE_EXIT_FILE="Z:$unfinished" "$WINELOADER" "$@"
[[ ! -e $unfinished ]] || { echo "wine: $1 ended early" >&2; exit 1; }

#!/usr/bin/env bash
# Checks plug-ins for Windows from outside: each exports the two functions of OFX and nothing else, needs no library but
# the system's, and moves no 32-byte vector to memory as if it were aligned, which the stack of 64-bit Windows is not.
# Prints what is wrong. Usage: scripts/check-windows.sh PLUGIN...
set -euo pipefail

fail() {
    echo "check-windows: $*" >&2
    exit 1
}

for plugin in "$@"; do
    case $(od -An -tx2 -j$(($(od -An -tu4 -j60 -N4 "$plugin") + 4)) -N2 "$plugin") in
    *8664) objdump=x86_64-w64-mingw32-objdump ;;
    *014c) objdump=i686-w64-mingw32-objdump ;;
    *) fail "$plugin is no library for x86 or x86-64" ;;
    esac
    headers=$("$objdump" -p "$plugin")
    exports=$(awk '/Ordinal\/Name Pointer/ { on = 1; next } on && NF == 0 { exit } on { print $NF }' <<<"$headers" | sort)
    [[ $exports == $'OfxGetNumberOfPlugins\nOfxGetPlugin' ]] || fail "$plugin exports" $exports
    needed=$(awk '/DLL Name:/ { print tolower($3) }' <<<"$headers" | sort)
    [[ $needed == *kernel32.dll* ]] || fail "$plugin has no list of libraries"
    foreign=$(grep -vxE '(kernel32|gdi32|opengl32|user32|msvcrt)\.dll' <<<"$needed" || true)
    [[ -z $foreign ]] || fail "$plugin needs" $foreign
    if [[ $objdump == x86_64* ]]; then
        aligned=$("$objdump" -d --no-show-raw-insn "$plugin" | grep -cE 'vmov(aps|apd|dqa) .*\(.*ymm|vmov(aps|apd|dqa) .*ymm.*\(' || true)
        [[ $aligned -eq 0 ]] || fail "$plugin has $aligned aligned moves of 32 bytes"
    fi
done

#!/usr/bin/env bash
# Unpacks the zip for Windows and looks at what is in it: every file of the bundle, both plug-ins, and pictures that the
# 64-bit one renders in Wine from there. Usage: check-windows-zip.sh ZIP BUILD WORK, where BUILD is the folder of the
# preset win64, with its tests, and WORK a folder for everything that is made
set -euo pipefail

here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
zip=$(realpath "$1")
build=$(realpath "$2")
rm -rf "$3"
mkdir -p "$3"
work=$(realpath "$3")
fail() {
    echo "check-windows-zip: $*" >&2
    exit 1
}

mkdir "$work/zip"
(cd "$work/zip" && cmake -E tar xf "$zip")
contents=Tesseret.ofx.bundle/Contents
icon=$contents/Resources/com.orvane.brisant.tesseret
expected=$(printf '%s\n' $contents/Info.plist $contents/Resources/LICENSE $icon{,-256,-512}.png $icon.svg \
    $contents/Win{32,64}/Tesseret.ofx)
files=$(cd "$work/zip" && find . -type f -printf '%P\n')
diff <(sort <<<"$expected") <(sort <<<"$files") >&2 || fail "the zip has other files than these"
"$here/../../scripts/check-windows.sh" "$work/zip/$contents"/Win{32,64}/Tesseret.ofx

# Renders some of the recorded pictures with the plug-in $1.
render() {
    (cd "$work" && TESSERET_TEST_PLUGIN=$1 "$here/../../scripts/wine.sh" "$build/wine" "$build/bin/test_endToEnd.exe" \
        --gtest_filter='*Recorded*/Plain:*Recorded*/Star' >"$work/log" 2>&1)
}
render "$work/zip/$contents/Win64/Tesseret.ofx" || { cat "$work/log" >&2; fail "the plug-in renders other pictures"; }
grep -q 'PASSED.* 2 tests' "$work/log" || fail "no pictures were rendered"
! render "$work/zip/absent.ofx" || fail "another plug-in than the zip's was used"

#!/usr/bin/env bash
# Builds the plug-in for 32-bit and 64-bit Windows and packs both as one bundle, without debugging information, into
# build/tesseret-VERSION-Windows.zip. Prints the file's name.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix googletest >&2
staged=$(mktemp -d)
trap 'rm -rf "$staged"' EXIT
for bits in 32 64; do
    scripts/build.sh "win$bits" tesseret_plugin
    cmake --install "build/win$bits" --strip --prefix "$staged" >"$staged.log" || { cat "$staged.log" >&2; exit 1; }
    rm "$staged.log"
done
bundle=$staged/OFX/Plugins/Tesseret.ofx.bundle
scripts/check-windows.sh "$bundle"/Contents/Win{32,64}/Tesseret.ofx
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:.*=//p' build/win64/CMakeCache.txt)
zip=$PWD/build/tesseret-$version-Windows.zip
rm -f "$zip"
(cd "$staged/OFX/Plugins" && cmake -E tar cf "$zip" --format=zip Tesseret.ofx.bundle)
echo "$zip"

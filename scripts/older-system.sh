#!/usr/bin/env bash
# Loads the plug-in of build/release on Debian 11, with glibc 2.31: builds the embedded host and the tests of whole
# pictures there with that system's compiler, and runs them on this machine's plug-in. Every recorded picture has to be
# the same, and failures on worker threads have to arrive. Needs root; takes about ten minutes, and three when the
# system of an earlier run is still in build/older-system. Usage: scripts/older-system.sh [options of the test program...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

root=$PWD/build/older-system/root
log=$PWD/build/older-system/log

[[ $(id -u) == 0 ]] || { echo "older-system: run as root, to change into the other system" >&2; exit 2; }
quietly() {
    "$@" >"$log" 2>&1 || { tail -n 40 "$log" >&2; echo "older-system: '$1' failed, see $log" >&2; exit 1; }
}

mkdir -p "$(dirname "$root")"
scripts/install-deps.sh debootstrap
scripts/build.sh release tesseret_plugin
if [[ ! -f $root/complete ]]; then
    rm -rf "$root"
    quietly debootstrap --variant=minbase --include=g++,libgmock-dev,libgtest-dev,make bullseye "$root"
    touch "$root/complete"
fi

# The sources of the test program and the plug-in, unchanged files with their times.
rm -rf "$root/Tesseret.ofx.bundle"
cp -r build/release/Tesseret.ofx.bundle "$root"
mkdir -p "$root/source"
git ls-files '*.h' '*.cpp' | while read -r file; do [[ ! -f $file ]] || echo "$file"; done |
    tar -c --files-from=- | tar -x -C "$root/source"
cat >"$root/source/Makefile" <<'MAKE'
sources := $(filter-out host/ThreadPool.cpp,$(wildcard host/*.cpp picture/*.cpp tests/endToEnd/*.cpp)) \
    tests/olderSystem/ThreadPool.cpp platform/LibraryFilePosix.cpp \
    $(patsubst %,tests/fixtures/%.cpp,CallRecorder LibraryImportsPosix PluginMemory QuirkyHost TestHost)
CXXFLAGS := -std=c++20 -O1 -ffp-contract=off -MMD -I. -DTESSERET_BUNDLE='"/Tesseret.ofx.bundle"' \
    -DTESSERET_PLUGIN_FILE='"/Tesseret.ofx.bundle/Contents/Linux-x86-64/Tesseret.ofx"'
objects := $(sources:.cpp=.o)
test_endToEnd: $(objects)
	g++ -o $@ $^ -lgmock -lgtest -lgtest_main -lpthread -ldl
-include $(objects:.o=.d)
MAKE
quietly chroot "$root" make --directory=/source --jobs="$(nproc)"
chroot "$root" sh -c 'ldd --version | head -n 1; cd /source && exec ./test_endToEnd "$@"' sh --gtest_brief=1 "$@"

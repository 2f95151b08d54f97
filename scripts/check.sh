#!/usr/bin/env bash
# The checks of a change besides the tests: clang-tidy on the changed files, a build of the benchmarks, the tests for
# Windows in Wine, the 32-bit plug-in for it, the zip with both, the tests as 32-bit code, and the recorded pictures under
# the address sanitizer. Prints nothing on success. Usage: scripts/check.sh [tidy|bench|win64|win32|winzip|linux32|asan ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

[[ $# -gt 0 ]] || set -- tidy bench win64 win32 winzip linux32 asan

# The base of the comparison: the last tag, else the newest commit from before the day of the last one.
base() {
    git describe --tags --abbrev=0 2>/dev/null && return
    local day
    day=$(git log -1 --format=%cd --date=short)
    git log --format='%cd %H' --date=short | awk -v day="$day" '$1 < day { print $2; exit }'
}

# The sources with the most changed lines, up to a limit, as each takes about ten seconds. A file that only moved, or of
# which only the includes changed, has no changed lines.
changed_sources() {
    local most=$1 from
    from=$(base)
    git diff --numstat -M --ignore-blank-lines -I '^#include' "${from:-$(git hash-object -t tree /dev/null)}" -- \
        '*.cpp' ':!*Windows.cpp' ':!bench' |
        sed -E 's/\{[^}]* => ([^}]*)\}/\1/; s/[^\t]* => //; s#//#/#' |
        awk -F '\t' '$1 + $2 > 0 { print $1 + $2 "\t" $3 }' | sort -rn | cut -f 2 |
        while read -r file; do [[ ! -f $file ]] || echo "$file"; done | head -n "$most"
}

check_tidy() {
    mapfile -t files < <(changed_sources "${TIDY_FILES:-10}")
    [[ ${#files[@]} -eq 0 ]] || scripts/tidy.sh "${files[@]}"
}

check_bench() {
    scripts/build.sh bench
}

# The tests of a preset, which print nothing unless one fails.
run_tests() {
    local preset=$1 log
    shift
    log=$(mktemp)
    ctest --test-dir "build/$preset" --parallel "$(nproc)" --output-on-failure --no-tests=error "$@" >"$log" 2>&1 ||
        { cat "$log" >&2; rm "$log"; exit 1; }
    rm "$log"
}

check_win64() {
    scripts/install-deps.sh g++-mingw-w64-x86-64-posix googletest wine64
    scripts/build.sh win64
    run_tests win64
}

# Debian has no Wine for 32-bit programs on amd64: the plug-in is only looked at, and its code is run on Linux.
check_win32() {
    scripts/install-deps.sh g++-mingw-w64-i686-posix googletest
    scripts/build.sh win32 tesseret_plugin
    scripts/check-windows.sh build/win32/Tesseret.ofx.bundle/Contents/Win32/Tesseret.ofx
}

check_winzip() {
    local zip
    scripts/install-deps.sh g++-mingw-w64-x86-64-posix googletest wine64
    scripts/build.sh win64 tesseret_plugin test_endToEnd
    zip=$(scripts/package-windows.sh)
    tests/package/check-windows-zip.sh "$zip" build/win64 build/win64/package
}

check_linux32() {
    scripts/install-deps.sh g++-multilib googletest qemu-user
    scripts/build.sh release tesseret_plugin
    scripts/build.sh linux32
    run_tests linux32
}

# Only whole renders at every depth; scripts/sanitize.sh runs all tests.
check_asan() {
    scripts/build.sh asan-renders tesseret_plugin test_endToEnd
    # Without its leak check, which now and then ends itself ("Tracer caught signal 11") after copies of the plug-in
    # were loaded and unloaded between threads. scripts/sanitize.sh has it.
    ASAN_OPTIONS=detect_leaks=0 run_tests asan-renders --tests-regex '^endToEnd/'
}

for check in "$@"; do
    "check_$check"
done

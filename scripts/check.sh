#!/usr/bin/env bash
# The checks of a change besides the tests: clang-tidy on the changed files, builds of the benchmarks and the 32-bit
# Windows plug-in, and the recorded pictures under the address sanitizer. Prints nothing on success.
# Usage: scripts/check.sh [tidy|bench|win32|asan ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

[[ $# -gt 0 ]] || set -- tidy bench win32 asan

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
    mapfile -t files < <(changed_sources "${TIDY_FILES:-16}")
    [[ ${#files[@]} -eq 0 ]] || scripts/tidy.sh "${files[@]}"
}

check_bench() {
    scripts/build.sh bench
}

check_win32() {
    scripts/install-deps.sh g++-mingw-w64-i686-posix
    scripts/build.sh win32
}

# Only whole renders at every depth; scripts/sanitize.sh runs all tests.
check_asan() {
    scripts/build.sh asan tesseret_plugin test_endToEnd
    local log
    log=$(mktemp)
    # Without its leak check, which now and then ends itself ("Tracer caught signal 11") after copies of the plug-in
    # were loaded and unloaded between threads. scripts/sanitize.sh has it.
    ASAN_OPTIONS=detect_leaks=0 ctest --test-dir build/asan --parallel "$(nproc)" --output-on-failure --no-tests=error \
        --tests-regex '^endToEnd/.*(Recorded|Masked)' >"$log" 2>&1 || { cat "$log" >&2; rm "$log"; exit 1; }
    rm "$log"
}

for check in "$@"; do
    "check_$check"
done

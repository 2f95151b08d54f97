#!/usr/bin/env bash
# Installs what is missing, builds, checks the formatting and runs every test.
# Usage: scripts/test.sh [preset]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

preset=${1:-release}
scripts/install-deps.sh
scripts/build.sh "$preset"

git ls-files --cached -- '*.h' '*.c' '*.cpp' | while read -r file; do [[ ! -f $file ]] || echo "$file"; done |
    xargs clang-format --dry-run --Werror

results=$(mktemp)
trap 'rm -f "$results"' EXIT
if ! ctest --test-dir "build/$preset" --parallel "$(nproc)" --output-on-failure --no-tests=error \
    >"$results" 2>&1; then
    grep -vE '^ +Start +[0-9]+:|^ *[0-9]+/[0-9]+ Test .* Passed ' "$results" >&2
    exit 1
fi
grep 'tests passed' "$results"

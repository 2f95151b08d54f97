#!/usr/bin/env bash
# Runs clang-tidy over every source, or over the files given, with the checks of .clang-tidy.
# Usage: scripts/tidy.sh [FILE...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh clang-tidy
[[ -f build/release/compile_commands.json ]] || cmake --preset release >/dev/null
[[ $# -gt 0 ]] || mapfile -t files < <(git ls-files '*.cpp' ':!*Windows.cpp')
[[ $# -eq 0 ]] || files=("$@")
log=$(mktemp)
trap 'rm -f "$log"' EXIT
printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p build/release >"$log" 2>/dev/null ||
    { cat "$log" >&2; exit 1; }

#!/usr/bin/env bash
# Builds with the sanitizers and runs every test under them. Usage: scripts/sanitize.sh [asan|tsan ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

[[ $# -gt 0 ]] || set -- asan tsan
for preset in "$@"; do
    echo "$preset"
    scripts/test.sh "$preset"
done

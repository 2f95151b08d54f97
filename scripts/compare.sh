#!/usr/bin/env bash
# Times the jobs of bench_jobs with the plug-in of another commit and with this tree's, in turn, and prints the ratios.
# Fails when a picture differs. Usage: scripts/compare.sh COMMIT PICTURES [options of bench_jobs...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

[[ $# -ge 2 ]] || { echo "usage: scripts/compare.sh COMMIT PICTURES [options of bench_jobs...]" >&2; exit 2; }
commit=$(git rev-parse --verify --short "$1^{commit}")
pictures=$(realpath "$2")
shift 2

scripts/install-deps.sh
older=$PWD/build/compare/$commit
if [[ ! -d $older/build/release/Tesseret.ofx.bundle ]]; then
    mkdir -p "$older"
    git archive "$commit" | tar -x -C "$older"
    cmake -S "$older" --preset release -DTESSERET_HOST=OFF -DTESSERET_TESTS=OFF >/dev/null
    cmake --build "$older/build/release" --target tesseret_plugin >/dev/null
fi
scripts/build.sh bench bench_jobs tesseret_plugin
library=Tesseret.ofx.bundle/Contents/Linux-x86-64/Tesseret.ofx
build/bench/bin/bench_jobs "$pictures" "$older/build/release/$library" "build/bench/$library" "$@"

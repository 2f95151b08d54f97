#!/usr/bin/env bash
# Builds a fuzzer with the address and undefined-behaviour sanitizers and runs it from the kept cases. What it finds lies
# in build/fuzz/found/TARGET; `build/fuzz/bin/replay_TARGET FILE` repeats it. Usage: scripts/fuzz.sh TARGET SECONDS
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if [[ $# -ne 2 || ! -d tests/fuzz/cases/$1 || ! $2 =~ ^[0-9]+$ ]]; then
    echo "Usage: scripts/fuzz.sh TARGET SECONDS; targets: $(ls tests/fuzz/cases | tr '\n' ' ')" >&2
    exit 2
fi
target=$1 seconds=$2

cmake --preset fuzz
cmake --build build/fuzz --target "fuzz_$target" "replay_$target"
mkdir -p "build/fuzz/corpus/$target" "build/fuzz/found/$target"
# The plug-in's own lines on standard error are left out; the fuzzer's and the sanitizers' are not.
"build/fuzz/bin/fuzz_$target" "build/fuzz/corpus/$target" "tests/fuzz/cases/$target" \
    -max_total_time="$seconds" -max_len=512 -timeout=60 -close_fd_mask=2 -print_final_stats=1 \
    -artifact_prefix="build/fuzz/found/$target/"

#!/usr/bin/env bash
# Builds a preset (default: release) into build/<preset>: the plug-in as Tesseret.ofx.bundle, the command
# line as bin/tesseret. Prints nothing on success. Usage: scripts/build.sh [preset [target...]]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

preset=${1:-release}
shift || true
targets=()
[[ $# -eq 0 ]] || targets=(--target "$@")

log=$(mktemp)
trap 'rm -f "$log"' EXIT
quietly() {
    "$@" >"$log" 2>&1 || { cat "$log" >&2; echo "build: '$*' failed" >&2; exit 1; }
}
if [[ ! -f build/$preset/build.ninja ]]; then
    quietly cmake --preset "$preset"
fi
quietly cmake --build --preset "$preset" "${targets[@]}"

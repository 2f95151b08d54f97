#!/usr/bin/env bash
# Runs the command line that a document shows for a result, so that text and picture always agree.
# Usage: docs/run-example.sh DOCUMENT RESULT FOLDER [further options]
# DOCUMENT is README.md or docs/guide.md, RESULT the file named by the example's --output, FOLDER where
# docs/scenes.sh has drawn the example's inputs. The built tesseret is used.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

example=$(awk -v result="--output $2" '
    sub(/^    /, "") {
        line = line $0
        if (sub(/\\$/, "", line)) next
        if (line ~ /^tesseret render/ && index(line " ", result " ")) print line
    }
    { line = "" }' "$root/$1")
[[ -n $example ]] || { echo "run-example: $1 shows no command for $2" >&2; exit 1; }

cd "$3"
PATH=$root/build/release/bin:$PATH
eval "$example ${*:4}"

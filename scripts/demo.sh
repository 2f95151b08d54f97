#!/usr/bin/env bash
# Installs what is missing, builds, and removes a tripod from a real photograph (CC0, 512 x 512 pixels) with
# the command that README.md shows. Writes before, matte and after side by side into one PNG and prints its path.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh
scripts/build.sh release tesseret_command tesseret_plugin

demo=build/demo
docs/scenes.sh "$demo"
times=$(docs/run-example.sh README.md no-tripod.png "$demo" --verbose)
gm montage -tile 3x1 -geometry +4+4 "$demo"/{camera,tripod,no-tripod}.png "$demo/before-matte-after.png"

echo "A tripod removed from a photograph of 512 x 512 pixels:"
grep -E '^(blocks|render  .* ms|total|peak memory)' <<<"$times"
echo "Before, matte and after: $PWD/$demo/before-matte-after.png"

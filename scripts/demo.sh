#!/usr/bin/env bash
# Installs what is missing, builds, and quilts a real photograph of grass (CC0, 512 x 512 pixels) over a
# whole picture of 1920 x 1080. Leaves before and after side by side as one PNG and says where.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh
scripts/build.sh release tesseret_command tesseret_plugin

pictures=$(scripts/fetch-pictures.sh build/pictures)
demo=build/demo
mkdir -p "$demo"

# The plug-in fills the source's window, so a blank plate of the wanted size is the source, and the
# photograph a texture.
gm convert -size 1920x1080 xc:black "$demo/plate.png"
times=$(build/release/bin/tesseret render --verbose --source "$demo/plate.png" \
    --texture1 "$pictures/grass.png" --sample-box 0,0,512,512 --output "$demo/after.png" \
    blockSize=100 overlap=25 numSamples=50)

gm convert "$pictures/grass.png" -background '#303030' -gravity center -extent 552x1080 \
    "$demo/before.png"
gm convert "$demo/before.png" "$demo/after.png" +append "$demo/before-after.png"
echo "A 512 x 512 photograph of grass, quilted to 1920 x 1080 pixels:"
grep -E '^(blocks laid|render  .* ms|all|peak memory)' <<<"$times"
echo "Before and after: $PWD/$demo/before-after.png"

#!/usr/bin/env bash
# Makes the README's pictures: each a 512 x 512 photograph beside what is quilted from it, at one scale.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh
scripts/build.sh release tesseret_command tesseret_plugin
pictures=$(scripts/fetch-pictures.sh build/pictures)
work=build/docs
mkdir -p "$work" docs/pictures
gm convert -size 1920x1080 xc:black "$work/plate.png"

# Stones and grass need few candidates; the lines of a brickwork only meet when there are many.
quilt() {
    local name=$1 samples=$2
    build/release/bin/tesseret render --quiet --source "$work/plate.png" \
        --texture1 "$pictures/$name.png" --sample-box 0,0,512,512 --output "$work/$name.png" \
        blockSize=100 overlap=25 numSamples="$samples"
    gm convert "$pictures/$name.png" -background white -gravity center -extent 572x1080 \
        "$work/before.png"
    gm convert "$work/before.png" "$work/$name.png" +append -resize 34% -quality 80 \
        "docs/pictures/$name.jpg"
}
quilt grass 50
quilt gravel 50
quilt brick 1000

bytes=$(cat docs/pictures/*.jpg | wc -c)
((bytes <= 300 * 1024)) || { echo "make-pictures: $bytes bytes are more than 300 KB" >&2; exit 1; }

#!/usr/bin/env bash
# Makes the pictures of README.md and docs/guide.md, and writes the guide's section on the parameters.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh
scripts/build.sh release tesseret_command tesseret_plugin
work=build/docs
docs/scenes.sh "$work"
mkdir -p docs/pictures

# strip NAME HEIGHT FILE... sets pictures side by side, at one height.
strip() {
    gm montage -tile "$(($# - 2))x1" -geometry "x$2+3+0" -background gray60 "${@:3}" -quality 82 \
        "docs/pictures/$1.jpg"
}
example() { docs/run-example.sh "$1" "$2" "$work" --quiet; }

example README.md no-tripod.png
strip tripod 300 "$work"/{camera,tripod,no-tripod}.png
example README.md wide.png
strip wide 190 "$work"/{corner,rest,wide}.png
example README.md even.png
example README.md unmatched.png
strip uneven 225 "$work"/{uneven,patch,unmatched,even}.png

example README.md grass-plate.png
gm convert "$work/grass.png" -background white -gravity center -extent 572x1080 "$work/before.png"
gm convert "$work/before.png" "$work/grass-plate.png" +append -resize 34% -quality 80 \
    docs/pictures/grass.jpg

example docs/guide.md foot-tight.png
example docs/guide.md foot-grown.png
for name in foot-shown foot-tight foot-grown; do
    gm convert "$work/$name.png" -crop 190x150+300+362 +repage -scale 200% "$work/$name-crop.png"
done
strip margin 240 "$work"/foot-{shown,tight,grown}-crop.png

python3 docs/parameters.py --pictures "$work"

bytes=$(cat docs/pictures/*.jpg | wc -c)
((bytes <= 1500000)) || { echo "make-pictures: $bytes bytes are more than 1.5 MB" >&2; exit 1; }

#!/usr/bin/env bash
# Draws the inputs of the examples of README.md and docs/guide.md into a folder: CC0 photographs
# (camera: Lav Varshney; grass, gravel, brick: CC0Textures) and their mattes, white where to fill.
# Usage: docs/scenes.sh FOLDER
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

pictures=$(scripts/fetch-pictures.sh build/pictures)
mkdir -p "$1"
cp "$pictures"/{camera,grass,gravel,brick}.png "$1"
cd "$1"

# matte FILE WIDTHxHEIGHT SHAPE
matte() { gm convert -size "$2" xc:black -fill white -draw "$3" -depth 8 "$1"; }

# The tripod, drawn generously; and its right foot, not a pixel wider than it is.
matte tripod.png 512x512 'polygon 282,291 306,291 308,304 326,304 344,296 344,312 320,318 330,352
    350,400 410,490 417,512 210,512 240,430 262,340 268,312 282,304'
matte foot.png 512x512 'polygon 337,390 345,387 379,460 389,467 398,481 412,512 401,512 393,490
    382,482 377,472'
gm composite -compose Screen foot.png camera.png foot-shown.png

# The gravel in the lower left corner of a wider frame; the rest is to be filled.
gm convert -size 1280x720 xc:black corner.png
gm composite -geometry +0+208 gravel.png corner.png corner.png
gm convert -size 1280x720 xc:white -fill black -draw 'rectangle 0,208 499,719' rest.png

# The gravel, lit from the left: a smooth shade multiplied in.
gm convert -size 512x512 gradient:white-gray30 -rotate -90 +repage shade.png
gm composite -compose Multiply shade.png gravel.png uneven.png
matte patch.png 512x512 'ellipse 360,256 100,90 0,360'
matte disc.png 512x512 'circle 256,256 256,156'

# The gravel with an alpha of its own, set on the left; and a matte at its lower edge.
matte left.png 512x512 'rectangle 0,0 180,511'
gm composite -compose CopyOpacity left.png gravel.png alpha.png
matte arch.png 512x512 'circle 320,511 320,320'

# Grass that grows in the middle of the gravel.
gm composite grass.png gravel.png disc.png tuft.png

# A blank plate.
gm convert -size 1920x1080 xc:black plate.png

# Two frames of a camera that pans over the gravel.
gm convert gravel.png -crop 400x400+0+0 +repage pan.0.png
gm convert gravel.png -crop 400x400+60+40 +repage pan.1.png
matte pan-disc.png 400x400 'circle 200,200 200,80'

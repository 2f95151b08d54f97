#!/usr/bin/env bash
# Makes README.md's picture of the viewer, on a screen of its own.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD

scripts/install-deps.sh
scripts/build.sh release tesseret_command tesseret_plugin
docs/scenes.sh build/docs
mkdir -p build/docs/viewer
cd build/docs/viewer
source "$root/tests/viewer/screen.sh"

rm -f result.png
start_viewer "$root/build/release/bin/tesseret" 1280x800 --source ../camera.png --matte ../tripod.png \
    --output result.png --sample-box 420,340,512,512 blockSize=50 overlap=16 numSamples=40 seed=2 \
    pathWidth=2 edgeBlend=1
xdotool key ctrl+s
until_true "the result" test -s result.png
shot start
changes 840x568+0+100 start split "the split view" mousemove 157 46 click 1
changes 840x568+0+100 split view "the line to move" mousemove 420 200 mousedown 1 mousemove 472 200
xdotool mouseup 1
quit_viewer
gm convert view.png -quality 82 "$root/docs/pictures/viewer.jpg"

bytes=$(wc -c <"$root/docs/pictures/viewer.jpg")
((bytes <= 120 * 1024)) || { echo "make-view-picture: $bytes bytes are more than 120 KB" >&2; exit 1; }

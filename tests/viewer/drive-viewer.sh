#!/usr/bin/env bash
# Uses `tesseret view` like a user, in a real window on a virtual screen: drags the sample box, types
# a value, undoes it, saves, quits; then opens a picture in an empty window, paints a matte with the
# pointer, lets it choose settings, picks another fill, and saves matte, result and parameters. Screenshots and files stay in the folder.
# Usage: drive-viewer.sh TESSERET FOLDER
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/screen.sh"

tesseret=$1
folder=$2
rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"

# A window of 1280 x 800 shows a picture of 600 x 400 in an area of 840 x 568 from (0, 100), with 16 free on
# each side: 808 / 600 screen units a pixel about (420, 384). The box is at 0.2 and 0.8 of the picture.
picture=840x568+0+100
edge_x=178 edge_y=384  # on its left edge
target_x=97            # 60 pixels to the left: 0.1 of the picture
beside=250             # a place on the edge that the pointer does not cover
block_size="1196 269"  # the field

# save_as KEYS FILE: in the dialog that the keys open.
save_as() {
    shot before-dialog
    changes 300x60+490+350 before-dialog dialog "the dialog for $2" key "$1"
    xdotool key ctrl+a type "$2"
    xdotool key Return
    until_true "$2" test -s "$2"
}

# has_edge SHOT X: whether a red line runs through (X, beside).
has_edge() {
    gm convert "$1.png" -crop "3x1+$(($2 - 1))+$beside" -depth 8 rgb:- | od -An -tu1 -w3 |
        awk '$1 > $2 + 60 && $1 > $3 + 60 { red = 1 } END { exit !red }'
}

value() { python3 -c 'import json, sys; print(json.load(open(sys.argv[1]))["parameters"][sys.argv[2]])' "$@"; }
expect() { [[ $2 == "$3" ]] || fail "$1 is $2, not $3"; }

gm convert -size 600x400 tile:granite: source.png
# With stones large enough for fills that differ.
gm convert -size 150x100 tile:granite: -filter Cubic -resize '600x400!' -normalize coarse.png
start_viewer "$tesseret" 1280x800 --source source.png --output result.png

xdotool key ctrl+s
until_true "the first result" test -s result.png
mv result.png first.png

# The edge lights up near the pointer, is held and dragged, and stays where it was let go.
xdotool key x
until_true "the box" eval "shot 1-start && has_edge 1-start $edge_x"
has_edge 1-start $edge_x || fail "the box is not where it should be"
changes $picture 1-start 2-hover "the edge to light up" mousemove $((edge_x + 6)) $edge_y
changes $picture 2-hover 3-held "the edge to be held" mousedown 1
changes $picture 3-held 4-dragged "the box to move" mousemove 140 $edge_y mousemove $((target_x + 6)) $edge_y
xdotool mouseup 1 mousemove 420 760
until_true "the edge in its new place" eval "shot 5-released && has_edge 5-released $target_x"
! has_edge 5-released $edge_x || fail "the box is still in its old place"

# A typed value, undo and redo.
xdotool mousemove $block_size click 1 key ctrl+a type 64
xdotool key Return
save_as ctrl+e typed.json
shot 6-typed
xdotool key ctrl+z
save_as ctrl+e undone.json
xdotool key ctrl+shift+z
save_as ctrl+e redone.json
expect "the block size typed" "$(value typed.json blockSize)" 64
expect "the block size undone" "$(value undone.json blockSize)" 100
expect "the block size done again" "$(value redone.json blockSize)" 64
for file in typed undone; do
    read -r x y < <(value $file.json sampleCorner1 | tr -d '[],')
    awk -v x="$x" -v y="$y" 'BEGIN { exit !(x > 0.09 && x < 0.11 && y > 0.199 && y < 0.201) }' ||
        fail "the lower left corner in $file.json is $x $y"
done

# The command line renders the same result from the saved parameters.
xdotool key ctrl+s
until_true "the last result" test -s result.png
shot 7-saved
quit_viewer
"$tesseret" render --quiet --source source.png --output rendered.png --parameters redone.json
cmp result.png rendered.png || fail "the viewer's result is not that of the command line"
! cmp -s result.png first.png || fail "the result has not changed"

# An empty window says how to begin. A name that is no picture stays as typed, and the reason is shown.
unset viewer
rm -f display window
start_viewer "$tesseret" 1280x800
shot 8-empty
changes 300x60+490+350 8-empty 9-open "the dialog for the picture" key ctrl+o
xdotool type coars
changes 460x40+410+420 9-open 10-wrong "the reason" key Return
xdotool type e.png
xdotool key Return
has_title() { xdotool getwindowname "$(<window)" | grep -q "$1"; }
until_true "the picture" has_title coarse.png
shot 11-opened

# A stroke of the brush, one of the lasso, and one of the eraser; the fill follows.
xdotool mousemove 300 300
shot 12-before
changes $picture 12-before 13-stroke "the stroke" mousedown 1 mousemove 340 310 mousemove 400 330
xdotool mouseup 1
xdotool key l mousemove 600 450 mousedown 1 mousemove 660 455 mousemove 640 520 mousemove 600 500 mouseup 1
xdotool key e mousemove 400 330 mousedown 1 mousemove 420 335 mouseup 1
save_as ctrl+m painted.png
save_as ctrl+s filled.png
shot 14-filled
"$tesseret" render --source coarse.png --matte painted.png --output rendered.png >render.log
grep -q "2 areas to fill" render.log || fail "the matte has not two areas"
cmp filled.png rendered.png || fail "the fill of what was painted is not that of the saved matte"
! gm compare -metric mse coarse.png filled.png | grep -q "Total: 0.0000000000" || fail "nothing was filled"

# Settings are chosen; the panel says that each area has its own. Another fill is picked from the strip.
panel=400x70+860+105
strip=840x144+0+524
changes $panel 14-filled 15-chosen "the chosen settings" key c
save_as ctrl+e chosen.json
save_as ctrl+shift+s chosen.png
shot 16-strip
changes $strip 16-strip 17-hover "the second fill" mousemove 205 600
xdotool click 1 mousemove 420 300
save_as ctrl+e picked.json
save_as ctrl+shift+s picked.png
shot 18-picked
for name in chosen picked; do
    "$tesseret" render --quiet --source coarse.png --matte painted.png --parameters $name.json --output rendered.png
    cmp $name.png rendered.png || fail "the fill $name is not what its parameters give"
done
! cmp -s chosen.png picked.png || fail "the picked fill is the same"
! cmp -s chosen.png filled.png || fail "the chosen fill is the same as before"
"$tesseret" fill --quiet --source coarse.png --matte painted.png --output rendered.png
cmp chosen.png rendered.png || fail "the viewer chooses something else than the command"
xdotool key ctrl+z key ctrl+z
save_as ctrl+shift+s again.png
cmp again.png filled.png || fail "the choice was not one step"

# One stroke less; then nothing is left, and nothing is filled.
xdotool key ctrl+z key ctrl+shift+m
save_as ctrl+shift+m undone.png
! cmp -s painted.png undone.png || fail "the stroke was not undone"
xdotool key Delete
save_as ctrl+shift+m cleared.png
save_as ctrl+shift+s unfilled.png
"$tesseret" render --quiet --source coarse.png --matte cleared.png --output rendered.png
cmp unfilled.png rendered.png || fail "an erased matte fills something"

# Paint that is not saved is not lost without a question.
xdotool key b mousemove 300 300 mousedown 1 mousemove 340 310 mouseup 1
shot 19-unsaved
changes 340x110+470+345 19-unsaved 20-question "the question" key ctrl+q
xdotool key Escape
save_as ctrl+shift+m last.png
xdotool mousemove 300 400 mousedown 1 mousemove 340 410 mouseup 1
shot 21-unsaved
changes 340x110+470+345 21-unsaved 22-question "the question again" key ctrl+q
xdotool mousemove 618 437 click 1
drop_code=0
wait "$viewer" || drop_code=$?
expect "the exit code" "$drop_code" 0

# With a matte settings are chosen at once, as by the command.
unset viewer
rm -f display window
start_viewer "$tesseret" 1280x800 --source coarse.png --matte painted.png --output opened.png
xdotool key ctrl+s
until_true "the chosen fill" test -s opened.png
shot 23-opened
cmp opened.png chosen.png || fail "the first fill is not the chosen one"
quit_viewer

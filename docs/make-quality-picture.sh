#!/usr/bin/env bash
# Makes docs/pictures/quality.jpg: each photograph of a folder before and after `tesseret fill`, cut round its matte, in the
# order of the names. Prints name and score of each. Usage: docs/make-quality-picture.sh FOLDER NAME...
# FOLDER has NAME.png and NAME_matte.png, white where to fill.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$1
shift
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
tile=150

# cut_box MATTE prints the box round its white pixels with a margin, as gm wants it.
cut_box() {
    python3 - "$1" <<'PYTHON'
import subprocess, sys
size = subprocess.run(["gm", "identify", "-format", "%w %h", sys.argv[1]], capture_output=True, check=True, text=True)
width, height = map(int, size.stdout.split())
grey = subprocess.run(["gm", "convert", sys.argv[1], "-depth", "8", "gray:-"], capture_output=True, check=True).stdout
rows = [y for y in range(height) if any(grey[y * width:(y + 1) * width])]
columns = [x for x in range(width) if any(grey[x::width])]
side = max(rows[-1] - rows[0], columns[-1] - columns[0]) * 8 // 5 + 40
side = min(side, width, height)
x = min(max((columns[0] + columns[-1] - side) // 2, 0), width - side)
y = min(max((rows[0] + rows[-1] - side) // 2, 0), height - side)
print(f"{side}x{side}+{x}+{y}")
PYTHON
}

tiles=()
number=0
for name in "$@"; do
    number=$((number + 1))
    source=$folder/$name.png matte=$folder/${name}_matte.png
    score=$("$root/build/release/bin/tesseret" fill "$source" "$matte" "$work/$name.png" 2>&1 | grep -o 'score [0-9.]*' | tail -1)
    echo "$number $name $score"
    box=$(cut_box "$matte")
    gm convert "$matte" -fill magenta -opaque white "$work/tint.png"
    gm composite -dissolve 55 "$work/tint.png" "$source" "$matte" "$work/before.png"
    gm convert "$work/before.png" -crop "$box" +repage -resize "${tile}x$tile!" \
        "$work/$number-a.png"
    gm convert "$work/$name.png" -crop "$box" +repage -resize "${tile}x$tile!" "$work/$number-b.png"
    tiles+=("$work/$number-a.png" "$work/$number-b.png")
done
gm montage -tile 8x -geometry "${tile}x$tile+2+2" -background gray30 "${tiles[@]}" -quality 84 "$root/docs/pictures/quality.jpg"

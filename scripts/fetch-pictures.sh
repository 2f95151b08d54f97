#!/usr/bin/env bash
# Unpacks the CC0 pictures of Debian's package python3-skimage into a folder, without installing the
# package, and prints their folder: camera.png, grass.png, gravel.png, brick.png (512 x 512, grey), ...
# Usage: scripts/fetch-pictures.sh FOLDER
set -euo pipefail

folder=$1
data=usr/lib/python3/dist-packages/skimage/data
if [[ ! -f $folder/$data/grass.png ]]; then
    mkdir -p "$folder"
    log=$folder/apt.log
    fetch() { (cd "$folder" && apt-get -qq download python3-skimage) >"$log" 2>&1; }
    root=()
    [[ $(id -u) -eq 0 ]] || root=(sudo)
    # An old list of packages may name files that no longer exist.
    fetch || { "${root[@]}" apt-get -qq update >"$log" 2>&1 && fetch; } ||
        { cat "$log" >&2; echo "fetch-pictures: cannot download python3-skimage" >&2; exit 1; }
    dpkg-deb -x "$folder"/python3-skimage_*.deb "$folder"
fi
echo "$folder/$data"

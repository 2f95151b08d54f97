#!/usr/bin/env bash
# Installs the missing Debian 12 packages for building and testing.
# Runs as root or through sudo. Prints nothing when no package is missing.
# Usage: scripts/install-deps.sh [further package...]
set -euo pipefail

packages=(
    ccache clang-format cmake dpkg-dev fish fonts-dejavu-core g++ git graphicsmagick groff-base
    libbenchmark-dev libcli11-dev libelf-dev libfreetype-dev libgl-dev libgl1-mesa-dri
    libglfw3-dev libglu1-mesa libgmock-dev libgtest-dev libimgui-dev libopengl-dev
    libopenimageio-dev libosmesa6-dev libpng-dev libpugixml-dev librsvg2-bin ninja-build
    munge nlohmann-json3-dev pkgconf python3 slurm-client slurmctld slurmd xdotool xvfb zlib1g-dev zsh "$@"
)

installed() {
    dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null | grep -qx installed
}

missing=()
for package in "${packages[@]}"; do
    installed "$package" || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

root=()
if [[ $(id -u) -ne 0 ]]; then
    command -v sudo >/dev/null || { echo "install-deps: run as root to install: ${missing[*]}" >&2; exit 1; }
    root=(sudo)
fi

echo "Installing ${missing[*]}"
log=$(mktemp)
policy=/usr/sbin/policy-rc.d
clean_up() {
    rm -f "$log"
    [[ -z ${own_policy:-} ]] || "${root[@]}" rm -f "$policy"
}
trap clean_up EXIT
# The tests start daemons of their own; those of the packages stay off unless the machine has a rule for that.
if [[ ! -e $policy ]]; then
    own_policy=yes
    printf '#!/bin/sh\nexit 101\n' | "${root[@]}" tee "$policy" >/dev/null
    "${root[@]}" chmod 755 "$policy"
fi
apt() {
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 "$@" >"$log" 2>&1 ||
        { cat "$log" >&2; echo "install-deps: apt-get $1 failed" >&2; exit 1; }
}
apt update
apt install --yes --no-install-recommends "${missing[@]}"

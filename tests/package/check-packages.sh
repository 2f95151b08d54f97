#!/usr/bin/env bash
# Makes the packages of a build folder, unpacks each, and uses what is in it from there: inspects the plug-in, renders
# with the command line, which has to find the plug-in by itself, and reads the manual page and the completions.
# Usage: check-packages.sh BUILD WORK, where WORK is a folder for everything that is made
set -euo pipefail

build=$(realpath "$1")
rm -rf "$2"
mkdir -p "$2"
work=$(realpath "$2")
fail() {
    echo "check-packages: $*" >&2
    exit 1
}
quietly() {
    "$@" >"$work/log" 2>&1 || { tail -n 30 "$work/log" >&2; fail "'$*' failed"; }
}

# Whether a program or library has what Hardening.cmake asks for.
check_hardened() {
    local all
    all=$(readelf --wide --segments --dynamic --dyn-syms "$1")
    grep -q GNU_RELRO <<<"$all" || fail "$1 has no table that is read-only after loading"
    grep -q BIND_NOW <<<"$all" || fail "$1 resolves its symbols late"
    grep -Eq 'GNU_STACK.* RW ' <<<"$all" || fail "$1 has an executable stack"
    grep -q __stack_chk_fail <<<"$all" || fail "$1 has no protected stack"
}
check_calls() {
    grep -Eq '__[a-z]+_chk@' <<<"$(readelf --wide --dyn-syms "$1")" || fail "$1 has no checked calls"
}

# Uses what was unpacked below the prefix $1.
check_prefix() {
    local prefix=$1 bundle=$1/OFX/Plugins/Tesseret.ofx.bundle
    local out=$work/$2.png
    check_hardened "$prefix/bin/tesseret"
    check_hardened "$prefix/lib/tesseret/tesseret_oiio.so"
    check_hardened "$bundle/Contents/Linux-x86-64/Tesseret.ofx"
    check_calls "$prefix/bin/tesseret"
    check_calls "$bundle/Contents/Linux-x86-64/Tesseret.ofx"
    quietly "$prefix/bin/tesseret" inspect "$bundle" --glibc 2.17
    # Only the plug-in of the package can be found.
    quietly env -u OFX_PLUGIN_PATH "$prefix/bin/tesseret" render --source "$work/source.png" --output "$out" blockSize=30
    [[ -s $out ]] || fail "nothing was rendered from $prefix"
    # Formats other than PNG come with a module of their own.
    quietly env -u OFX_PLUGIN_PATH "$prefix/bin/tesseret" render --source "$work/source.png" --output "$work/$2.tif" \
        blockSize=30
    zcat "$prefix/share/man/man1/tesseret.1.gz" >"$work/tesseret.1"
    bash -n "$prefix/share/bash-completion/completions/tesseret"
    [[ -s $prefix/share/zsh/vendor-completions/_tesseret ]] || fail "the completion of zsh is missing"
    [[ -s $prefix/share/fish/vendor_completions.d/tesseret.fish ]] || fail "the completion of fish is missing"
    [[ -s $prefix/share/doc/tesseret/copyright ]] || fail "the licence is missing"
}

gm convert -size 160x120 plasma:fractal "$work/source.png"
quietly cpack --config "$build/CPackConfig.cmake" -B "$work/packages"

deb=$(find "$work/packages" -maxdepth 1 -name '*.deb')
archive=$(find "$work/packages" -maxdepth 1 -name '*.tar.gz')
[[ -f $deb && -f $archive ]] || fail "expected one .deb and one .tar.gz in $work/packages"

dpkg-deb --extract "$deb" "$work/deb"
check_prefix "$work/deb/usr" deb
depends=$(dpkg-deb --field "$deb" Depends)
[[ $depends == *libopenimageio* && $depends == *libc6* ]] || fail "the .deb depends on: $depends"

mkdir "$work/tar"
tar -xf "$archive" -C "$work/tar"
check_prefix "$(find "$work/tar" -mindepth 1 -maxdepth 1)" tar

quietly cmake --install "$build" --prefix "$work/installed"
check_prefix "$work/installed" installed
cmp "$work/deb.png" "$work/tar.png" && cmp "$work/deb.png" "$work/installed.png" || fail "the pictures differ"

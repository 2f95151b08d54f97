#!/usr/bin/env bash
# Asks bash, zsh and fish for the completions of `tesseret` as a user does, and lets roff read the manual page.
# Usage: check-pages.sh TESSERET PAGES, where PAGES is the folder of the files
set -euo pipefail

tesseret=$(realpath "$1")
pages=$(realpath "$2")
fail() {
    echo "check-pages: $*" >&2
    exit 1
}

# The words that bash offers after "tesseret WORDS...", the last of which is being typed.
in_bash() {
    bash --norc -c 'source "$1"; shift; COMP_WORDS=(tesseret "$@"); COMP_CWORD=$#; _tesseret; printf "%s\n" "${COMPREPLY[@]}"' \
        bash "$pages/tesseret.bash" "$@" 2>&1
}
in_fish() {
    fish --no-config -c "source $pages/tesseret.fish; complete -C 'tesseret $*'" | cut -f 1
}
# zsh completes only in a terminal, so what _arguments is given stands for it.
in_zsh() {
    zsh -f -c '
        _arguments() { print -rl -- "$@" }
        _describe() { print -rl -- "${(@P)4}" }
        compdef() { }
        typeset -i CURRENT=$(( $# - 1 ))
        words=("${@[2,-1]}")
        source "$1"' zsh "$pages/_tesseret" tesseret "$@" 2>&1
}
expect() {
    local name=$1 offered=$2 word
    for word in "${@:3}"; do
        grep -qxF -e "$word" <<<"$offered" || fail "$name does not offer $word, but: $offered"
    done
}

# The long options that the program's own help shows for a command.
options_of() {
    "$tesseret" "$@" --help | grep -oE '^ +(-[a-z],)?--[a-z0-9-]+' | grep -oE -e '--[a-z0-9-]+'
}

expect bash "$(in_bash '')" render view describe inspect
expect bash "$(in_bash ins)" inspect
expect bash "$(in_bash render --areas '')" all first
expect bash "$(in_bash fill --effort '')" best normal quick
expect bash "$(in_bash render --depth s)" short
expect bash "$(in_bash farm submit --queue p)" print
expect fish "$(in_fish '')" render view describe inspect
expect fish "$(in_fish 'render --depth ')" byte short float
zsh -n "$pages/_tesseret"
page=$(zcat "$pages/tesseret.1.gz" | groff -man -Tascii -P-cbou)
[[ $(in_zsh '') == *"render:Renders a picture"*"inspect:"* ]] || fail "zsh does not offer the commands: $(in_zsh '')"
for command in fill wedge render view describe inspect; do
    mapfile -t options < <(options_of "$command")
    [[ ${#options[@]} -ge 3 ]] || fail "tesseret $command --help shows no options"
    expect bash "$(in_bash "$command" --)" "${options[@]}"
    expect fish "$(in_fish "$command --")" "${options[@]}"
    offered=$(in_zsh "$command" '')
    for option in "${options[@]}"; do
        [[ $offered == *")$option["* ]] || fail "zsh does not offer $command $option, but: $offered"
    done
    for option in "${options[@]}"; do
        [[ $page == *"$option"* ]] || fail "the manual page does not have $option"
    done
done
# The commands of a group, and nothing of another group's.
expect bash "$(in_bash farm '')" submit status retry cancel
expect fish "$(in_fish 'farm ')" submit status retry cancel
[[ $(in_zsh farm '') == *"submit:Divides a shot"*"retry:"* ]] || fail "zsh does not offer the farm's commands"
! grep -qx submit <<<"$(in_bash render '')$(in_fish 'farm status ')" || fail "submit is offered where it does not belong"
# Files where a file belongs, and none where a number does.
here=$(mktemp -d)
trap 'rm -rf "$here"' EXIT
cd "$here"
touch 'a picture.png'
expect bash "$(in_bash render --source a)" 'a picture.png'
expect bash "$(in_bash inspect a)" 'a picture.png'
[[ -z $(in_bash render --threads a) ]] || fail "bash offers a file as the number of threads"

warnings=$(zcat "$pages/tesseret.1.gz" | groff -man -Tascii -ww -z 2>&1)
[[ -z $warnings ]] || fail "the manual page: $warnings"

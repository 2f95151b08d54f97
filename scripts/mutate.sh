#!/usr/bin/env bash
# Changes the engine in small ways that alter pictures, one at a time, in a copy of the tree, and
# expects a test to fail each time. Prints one line for each; fails when no test notices a change, or
# when it does not apply or build.
# Usage: scripts/mutate.sh [--list | NAME...]   (names from scripts/mutations.txt; all unless given)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

list=scripts/mutations.txt
work=build/mutate
copy=$work/src
out=$work/release

# One test run a line: the program and a filter. The first that fails ends the search.
runs=(
    "test_endToEnd *Recorded*"
    "test_engine *"
    "test_endToEnd -*Recorded*"
)

fail() {
    echo "mutate.sh: $*" >&2
    exit 1
}

# The blocks of the list as arrays by number. A block may have several pairs of find and with.
names=() whys=() files=() finds=() withs=() counts=() owners=()
read_list() {
    local line key value
    while IFS= read -r line; do
        [[ -z $line || $line == \#* ]] && continue
        key=${line%%:*}
        value=${line#"$key":}
        value=${value# }
        case $key in
            name) names+=("$value") whys+=("") files+=("") ;;
            file) files[-1]=$value ;;
            find) finds+=("$value") withs+=("") counts+=(1) owners+=($((${#names[@]} - 1))) ;;
            count) counts[-1]=$value ;;
            with) withs[-1]=$value ;;
            why) whys[-1]=$value ;;
            *) fail "$list: a line that is none: $line" ;;
        esac
    done <"$list"
}

tracked_files() {
    git ls-files --cached --others --exclude-standard | while IFS= read -r file; do
        [[ ! -f $file ]] || echo "$file"
    done
}

# Updates the copy from the tree; unchanged files keep their times.
copy_tree() {
    local file
    mkdir -p "$copy"
    tracked_files | sort >"$work/files"
    (cd "$copy" && find . -type f | sed 's|^\./||' | sort) | comm -13 "$work/files" - |
        while IFS= read -r file; do rm "$copy/$file"; done
    while IFS= read -r file; do
        cmp -s "$file" "$copy/$file" && continue
        mkdir -p "$copy/$(dirname "$file")"
        cp "$file" "$copy/$file"
    done <"$work/files"
}

# The path of the only file with a base name.
path_of() {
    local found
    found=$(grep -E "(^|/)${1//./\\.}\$" "$work/files") || fail "there is no file $1"
    [[ $found != *$'\n'* ]] || fail "more than one file is called $1"
    echo "$found"
}

# Applies all pairs of a mutation to its file in the copy.
apply() {
    local mutation=$1 path=$2 text i occurrences
    text=$(cat "$copy/$path" && echo x)
    text=${text%x}
    for i in "${!finds[@]}"; do
        [[ ${owners[i]} == "$mutation" ]] || continue
        occurrences=$(grep -oF -- "${finds[i]}" "$copy/$path" | wc -l)
        if [[ $occurrences != "${counts[i]}" ]]; then
            echo "${names[mutation]}: found $occurrences times instead of ${counts[i]}: ${finds[i]}"
            return 1
        fi
        text=${text//"${finds[i]}"/"${withs[i]}"}
    done
    printf %s "$text" >"$copy/$path"
}

build() {
    cmake --build "$out" --parallel "$(nproc)" --target "$@" >"$work/build.log" 2>&1
}

# Sets `outcome` to the first test that fails, or to an error.
run_tests() {
    local run program filter
    outcome=""
    for run in "${runs[@]}"; do
        read -r program filter <<<"$run"
        build tesseret_plugin "$program" || { outcome="DOES NOT BUILD, see $work/build.log"; return 1; }
        if ! timeout 300 "$out/bin/$program" --gtest_filter="$filter" --gtest_brief=1 \
            --gtest_fail_fast=1 >"$work/test.log" 2>&1; then
            outcome=$(sed -nE 's/^\[  FAILED  \] ([^ ,]+).*/\1/p' "$work/test.log" | head -n 1)
            outcome="found by ${outcome:-$program, which crashed or did not end}"
            return 0
        fi
    done
    outcome="SURVIVED"
    return 1
}

read_list
if [[ ${1:-} == --list ]]; then
    for i in "${!names[@]}"; do printf '%-28s %s\n' "${names[i]}" "${whys[i]}"; done
    exit 0
fi
for name in "$@"; do
    printf '%s\n' "${names[@]}" | grep -qxF -- "$name" || fail "there is no mutation $name"
done

mkdir -p "$work"
copy_tree
[[ -f $out/build.ninja ]] || cmake -S "$copy" -B "$out" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
if run_tests || [[ $outcome != SURVIVED ]]; then
    fail "the tree itself: $outcome"
fi

bad=0
for i in "${!names[@]}"; do
    [[ $# == 0 || " $* " == *" ${names[i]} "* ]] || continue
    path=$(path_of "${files[i]}")
    cp "$copy/$path" "$work/original"
    if ! apply "$i" "$path"; then
        bad=1
    else
        run_tests || bad=1
        printf '%-28s %s\n' "${names[i]}" "$outcome"
    fi
    cp "$work/original" "$copy/$path"  # which is newer than what was built
done
exit "$bad"

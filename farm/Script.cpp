#include "farm/Script.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

#include "files/Sequence.h"

namespace Tesseret::Farm {

namespace {

std::string quoted(const std::string& word)
{
    constexpr std::string_view kPlain = "_-+=.,/:@%";
    const bool isPlain = !word.empty() && std::ranges::all_of(word, [&](unsigned char c) {
        return (c < 128 && std::isalnum(c) != 0) || kPlain.find(char(c)) != kPlain.npos;
    });
    if (isPlain) return word;
    std::string result = "'";
    for (const char c : word) {
        if (c == '\'') result.append("'\\'");
        result.push_back(c);
    }
    result.push_back('\'');
    return result;
}

constexpr const char* kStart = R"bash(#!/bin/bash
# Renders one chunk of a job and reports on it: chunk.sh NUMBER, or as a task of a Slurm array.
set -u
number=${1:-${SLURM_ARRAY_TASK_ID:?a chunk number is missing}}
printf -v name %04d "$number"
)bash";

// A report is written beside its file and renamed, so that no reader ever sees half of one. The
// heartbeat lets a reader tell a running chunk from one whose machine is gone.
constexpr const char* kBody = R"bash(
now() { printf '%(%s)T' -1; }
report() { # STATE CODE ERROR
    local part=$folder/status/.$name.$HOSTNAME.$$
    printf '%s\n' "state=$1" "code=$2" "job=${SLURM_ARRAY_JOB_ID:-}" "attempt=$attempt" "host=$HOSTNAME" \
        "started=$started" "reported=$(now)" "error=$3" >"$part" && mv -f "$part" "$folder/status/$name"
}
# The line of this attempt that tells the first error, else the last line.
first_error() {
    local line last="" lists=""
    while IFS= read -r line; do
        [[ -z $lists ]] || break
        [[ -z $line ]] || last=$line
        [[ $line != "tesseret: "*" frames failed: "* ]] || lists=yes
        [[ $line != "tesseret: "* || -n $lists ]] || break
    done < <(tail -c +$((begin + 1)) "$log")
    [[ -z $lists ]] || last=$line
    printf %s "${last#tesseret: }"
}

log=$folder/logs/chunk-$name.log
exec 3>&2 >>"$log" 2>&1
begin=$(stat -c %s "$log")
attempt=$((${SLURM_RESTART_COUNT:-0} + 1))
started=$(now)
printf 'chunk %s on %s, attempt %s, %(%F %T)T\n' "$name" "$HOSTNAME" "$attempt" -1
report running "" ""

render 3>&- & # in the background, so that a signal reaches this script at once
child=$!
trap 'kill -TERM "$child" 2>/dev/null' TERM INT
while sleep 15 && kill -0 $$; do touch -c "$folder/status/$name"; done </dev/null >/dev/null 2>&1 3>&- &
heartbeat=$!
wait "$child"
code=$?
while kill -0 "$child" 2>/dev/null; do # a signal ended the wait
    wait "$child"
    code=$?
done
kill "$heartbeat" && wait "$heartbeat" 2>/dev/null

if ((code == 0)); then
    report "done" 0 ""
    exit 0
fi
error=$(first_error)
# What was killed is run again, perhaps on another machine; TERM and INT are wishes of somebody.
if ((code > 128 && code != 130 && code != 143)); then
    error="ended by signal $((code - 128))"
    if [[ -n ${SLURM_JOB_ID:-} ]] && ((attempt <= 3)); then
        report requeued "$code" "$error"
        scontrol requeue "$SLURM_JOB_ID" && sleep 60
    fi
fi
report failed "$code" "$error"
[[ -n ${SLURM_JOB_ID:-} ]] || echo "chunk $name: $error; see $log" >&3
exit "$code"
)bash";

}  // namespace

std::string shellText(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words) {
        if (!text.empty()) text.push_back(' ');
        text.append(quoted(word));
    }
    return text;
}

std::string scriptOf(const Job& job)
{
    std::ostringstream script;
    script << kStart << "folder=" << quoted(job.folder.string()) << "\nrender() {\n"
           << "    " << shellText({job.program.string(), "farm", "verify", job.folder.string()})
           << " \"$number\" || exit\n    local frames\n    case $number in\n";
    for (const Chunk& chunk : job.chunks()) {
        script << "        " << chunk.number << ") frames=" << Files::framesText(chunk.frames)
               << " ;;\n";
    }
    script << "        *) echo \"tesseret: the job has no chunk $number\"; exit 2 ;;\n    esac\n"
           << "    exec " << shellText(job.renderCommand()) << " --frames=\"$frames\"\n}\n"
           << kBody;
    return script.str();
}

}  // namespace Tesseret::Farm

#!/usr/bin/env bash
# Renders shots through a real Slurm, and compares them with the same shots rendered by one process: one while a node and
# a running chunk are killed, and one with a damaged frame, which is mended. Files and logs stay in the folder.
# Usage: render-on-slurm.sh TESSERET FOLDER
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/slurm.sh"

tesseret=$1
folder=$2
rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"
frames=40
width=480 height=270

expect() { [[ $2 == "$3" ]] || fail "$1 is $2, not $3"; }
matches() { [[ $2 == *"$3"* ]] || fail "$1 does not say \"$3\", but: $2"; }

# A camera that moves over granite, and a matte that stays.
gm convert -size $((width + frames))x$((height + frames)) tile:granite: ground.png
for ((i = 1; i <= frames; ++i)); do
    gm convert ground.png -crop "${width}x$height+$i+$((i / 2))" +repage "$(printf 'plate.%04d.png' "$i")"
done
gm convert -size ${width}x$height xc:black -fill white -draw 'rectangle 200,100 290,170' matte.png
shot=(--source plate.####.png --matte matte.png --compression 9 blockSize=30 overlap=8 luminanceMatch=on)
consistent=("${shot[@]}" temporalConsistancy=on)

# Whether all files of two names are the same.
same_files() { # NAME OTHER FRAMES
    local i
    for ((i = 1; i <= $3; ++i)); do
        cmp "$(printf "$1.%04d.png" "$i")" "$(printf "$2.%04d.png" "$i")" || fail "frame $i of $2 is not that of one machine"
    done
    [[ $(find . -maxdepth 1 -name "$2.*" | grep -c png) == "$3" ]] || fail "files are left beside those of $2"
}

"$tesseret" render --quiet "${consistent[@]}" --frames 1-$frames --output one.####.png --threads 1
"$tesseret" render --quiet "${shot[@]}" --frames 1-10 --output alone.####.png --threads 1
start_slurm

# The state of a job by its exit code: 0 done, 1 failures, 3 running.
job_state() { "$tesseret" farm status "$1" >status.txt && echo 0 || echo $?; }
has_ended() { [[ $(job_state "$1") != 3 ]]; }

# A damaged frame: the others are rendered, and the status names it.
cp plate.0007.png whole.png
head -c 2000 whole.png >plate.0007.png
"$tesseret" farm submit "${shot[@]}" --frames 1-10 --chunk 5 --output mended.####.png --cpus 1 >submitted.txt
matches "the submission" "$(<submitted.txt)" "10 frames in 2 chunks"
until_true 60 "the shot with a damaged frame" has_ended mended.farm
expect "the exit code of a shot with a damaged frame" "$(job_state mended.farm)" 1
matches "the status" "$(<status.txt)" "9 done, 1 failed"
matches "the status" "$(<status.txt)" "chunk 1, frames 7: frame 7: "
matches "the status" "$(<status.txt)" "plate.0007.png: "
mv whole.png plate.0007.png
"$tesseret" farm retry mended.farm >retried.txt
matches "the second submission" "$(<retried.txt)" "1 frame in 1 chunk again"
expect "the exit code after a retry" "$(job_state mended.farm)" 3
until_true 60 "the mended shot" has_ended mended.farm
expect "the exit code of the mended shot" "$(job_state mended.farm)" 0
same_files alone mended 10

# Stops a chunk's process while some of its frames are written and others are not.
hold_chunk() { # NODE
    local id chunk written
    for id in $(job_processes "$1" tesseret); do
        kill -STOP "$id" 2>/dev/null || continue
        chunk=$(variable SLURM_ARRAY_TASK_ID "$id")
        written=0
        for ((i = 5 * chunk + 1; i <= 5 * chunk + 5; ++i)); do
            [[ ! -e $(printf 'farm.%04d.png' "$i") ]] || written=$((written + 1))
        done
        if ((written > 0 && written < 5)); then
            held=$id held_chunk=$chunk
            return 0
        fi
        kill -CONT "$id" 2>/dev/null || true
    done
    return 1
}

# Killed in the middle: a node with its chunk, and a chunk on the other node.
"$tesseret" farm submit "${consistent[@]}" --frames 1-$frames --chunk 5 --output farm.####.png --cpus 1 --time 10 >submitted.txt
until_true 60 "a chunk on the second node" hold_chunk farm2
lost_chunk=$held_chunk
kill_node farm2
until_true 60 "a chunk on the first node" hold_chunk farm1
killed_chunk=$held_chunk
kill -9 "$held"
expect "the exit code while chunks are missing" "$(job_state farm.farm)" 3
until_true 120 "the shot" has_ended farm.farm
expect "the exit code of the shot" "$(job_state farm.farm)" 0
matches "the status" "$(<status.txt)" "40 frames in 8 chunks: 40 done"
for chunk in "$lost_chunk" "$killed_chunk"; do
    log=$(printf 'farm.farm/logs/chunk-%04d.log' "$chunk")
    [[ $(grep -c ', attempt ' "$log") -ge 2 ]] || fail "chunk $chunk was not run again: $(<"$log")"
done
same_files one farm $frames

# A job that is taken out of the queue has failed, and can be submitted again.
"$tesseret" farm submit "${shot[@]}" --frames 1-10 --chunk 5 --output taken.####.png --cpus 1 >submitted.txt
"$tesseret" farm cancel taken.farm
until_true 60 "the cancelled job" has_ended taken.farm
expect "the exit code of a cancelled job" "$(job_state taken.farm)" 1
matches "the status" "$(<status.txt)" "left the queue before it started"
"$tesseret" farm retry taken.farm >retried.txt
until_true 60 "the job that was cancelled" has_ended taken.farm
expect "the exit code after a retry" "$(job_state taken.farm)" 0
same_files alone taken 10

# What Slurm refuses leaves nothing behind.
"$tesseret" farm submit "${shot[@]}" --frames 1-10 --chunk 5 --output refused.####.png --partition none >submitted.txt 2>&1 &&
    fail "a job for a partition that does not exist was submitted"
matches "the refusal" "$(<submitted.txt)" "tesseret: sbatch refused the job: sbatch: error: "
[[ ! -e refused.farm ]] || fail "a job that was refused left its folder"

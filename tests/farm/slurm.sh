# shellcheck shell=bash
# A small Slurm for scripts that source this: munge, a controller and two nodes on this machine, with a key, ports,
# sockets and state of their own; nothing in /etc is read or written, and any user can run it. It ends with the script,
# by the ids of the processes that it started. Logs stay in the folder of the caller.

PATH=$PATH:/usr/sbin:/sbin
slurm_base=""
declare -A slurm_ids=() # by munged, slurmctld, farm1, farm2

fail() {
    echo "$(basename "$0"): $*" >&2
    for log in munged slurmctld farm1 farm2; do
        [[ ! -s $log.log ]] || { echo "--- the end of $log.log" && tail -n 12 "$log.log"; } >&2
    done
    exit 1
}

# until_true SECONDS WHAT COMMAND...: repeats the command until it succeeds.
until_true() {
    local end=$((SECONDS + $1)) what=$2
    shift 2
    until "$@"; do
        ((SECONDS < end)) || fail "waited in vain for $what"
        sleep 0.1
    done
}

free_ports() { # COUNT
    python3 -c '
import socket, sys
sockets = [socket.socket() for _ in range(int(sys.argv[1]))]
for each in sockets:
    each.bind(("127.0.0.1", 0))
print(*[each.getsockname()[1] for each in sockets])' "$1"
}

# variable NAME ID: of a process's environment; empty where there is none.
variable() {
    local words word
    mapfile -d '' -t words <"/proc/$2/environ"
    for word in "${words[@]}"; do
        [[ $word != "$1="* ]] || echo "${word#*=}"
    done
} 2>/dev/null

# Processes of this Slurm's jobs on a node, of all programs or of one. Without other programs, to be quick.
job_processes() { # NODE [PROGRAM]
    local folder name words all
    for folder in /proc/[0-9]*; do
        { read -r name <"$folder/comm" && [[ $name == "${2:-$name}" ]]; } || continue
        { mapfile -d '' -t words <"$folder/environ"; } || continue
        all=" ${words[*]} "
        [[ $all != *" SLURM_CONF=$slurm_base/slurm.conf "* || $all != *" SLURMD_NODENAME=$1 "* ]] ||
            echo "${folder#/proc/}"
    done
} 2>/dev/null

# The process of Slurm above each of these, which reports the job's end.
steps_above() {
    local id parent
    for id in "$@"; do
        parent=$(awk '$1 == "PPid:" { print $2 }' "/proc/$id/status" 2>/dev/null) || continue
        [[ $(cat "/proc/$parent/comm" 2>/dev/null) != slurmstepd* ]] || echo "$parent"
    done | sort -u
}

write_slurm_conf() {
    local host ports
    host=$(hostname -s)
    read -ra ports < <(free_ports 3)
    cat >"$slurm_base/slurm.conf" <<END
ClusterName=tesseret
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=${ports[0]}
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
CredType=cred/munge
AuthInfo=socket=$slurm_base/munge.socket,cred_expire=5
StateSaveLocation=$slurm_base/state
SlurmdSpoolDir=$slurm_base/%n
SlurmctldPidFile=$slurm_base/slurmctld.pid
SlurmdPidFile=$slurm_base/%n.pid
PlugStackConfig=$slurm_base/plugins.conf
SlurmctldLogFile=$PWD/slurmctld.log
SlurmdLogFile=$PWD/%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SchedulerType=sched/builtin
SchedulerParameters=batch_sched_delay=0,sched_interval=1,sched_min_interval=0
AccountingStorageType=accounting_storage/none
JobAcctGatherType=jobacct_gather/none
SwitchType=switch/none
MpiDefault=none
MailProg=/bin/true
ReturnToService=2
SlurmdTimeout=5
MessageTimeout=5
KillWait=2
MinJobAge=2
NodeName=farm1 NodeHostname=$host NodeAddr=127.0.0.1 Port=${ports[1]} CPUs=1
NodeName=farm2 NodeHostname=$host NodeAddr=127.0.0.1 Port=${ports[2]} CPUs=1
PartitionName=all Nodes=ALL Default=YES MaxTime=INFINITE State=UP
END
    : >"$slurm_base/plugins.conf"
}

start_munge() {
    (umask 077 && head -c 128 /dev/urandom >"$slurm_base/munge.key")
    munged --foreground --key-file="$slurm_base/munge.key" --socket="$slurm_base/munge.socket" \
        --pid-file="$slurm_base/munge.pid" --seed-file="$slurm_base/munge.seed" \
        --log-file="$slurm_base/munge.log" >munged.log 2>&1 &
    slurm_ids[munged]=$!
    until_true 10 "munge" test -S "$slurm_base/munge.socket"
}

start_node() { # NAME
    slurmd -D -N "$1" >/dev/null 2>&1 &
    slurm_ids[$1]=$!
}

nodes_are_idle() { [[ $(sinfo --noheader --format='%D %t' 2>/dev/null) == "2 idle" ]]; }

# Returns when both nodes wait for jobs; else ends the script and says why.
start_slurm() {
    local program
    for program in munged slurmctld slurmd sbatch; do
        command -v "$program" >/dev/null || fail "$program is missing: run scripts/install-deps.sh"
    done
    # Names of sockets have at most 107 characters, so this is not in the caller's folder.
    slurm_base=$(mktemp -d)
    chmod 755 "$slurm_base"
    trap stop_slurm EXIT
    mkdir "$slurm_base/state"
    write_slurm_conf
    export SLURM_CONF=$slurm_base/slurm.conf
    start_munge
    slurmctld -D -i >/dev/null 2>&1 &
    slurm_ids[slurmctld]=$!
    start_node farm1
    start_node farm2
    until_true 60 "both nodes" nodes_are_idle
}

# Ends a node's daemon and all that it runs at once, like a machine that loses its power.
kill_node() { # NAME
    local jobs steps
    mapfile -t jobs < <(job_processes "$1")
    mapfile -t steps < <(steps_above "${jobs[@]}")
    kill -9 "${slurm_ids[$1]}" "${steps[@]}" "${jobs[@]}" 2>/dev/null || true
    wait "${slurm_ids[$1]}" 2>/dev/null || true
    unset "slurm_ids[$1]"
}

stop_slurm() {
    local node program
    for node in farm1 farm2; do
        [[ -z ${slurm_ids[$node]:-} ]] || kill_node "$node"
    done
    for program in slurmctld munged; do
        [[ -n ${slurm_ids[$program]:-} ]] || continue
        kill "${slurm_ids[$program]}" 2>/dev/null || true
        wait "${slurm_ids[$program]}" 2>/dev/null || true
    done
    rm -rf "$slurm_base"
}

# Sourced by scripts that use `tesseret view` on a virtual screen. They run in a folder where files may be
# left, and end by `fail`, which shows the viewer's log.

timeout=600  # tenths of a second
pids=()
cleanup() { for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done; }
trap cleanup EXIT
fail() {
    echo "$(basename "$0"): $*" >&2
    sed 's/^/    /' view.log >&2 || true
    exit 1
}

# until_true WHAT COMMAND...: repeats the command until it succeeds.
until_true() {
    local what=$1
    shift
    for ((i = 0; i < timeout; ++i)); do
        "$@" && return
        [[ -z ${viewer:-} ]] || kill -0 "$viewer" 2>/dev/null || fail "the viewer ended, waiting for $what"
        sleep 0.1
    done
    fail "waited in vain for $what"
}

shot() { gm import -window root "$1.png"; }
part() { gm convert "$1.png" -crop "$2" ppm:- | cksum; }
changed_since() { shot "$3" && [[ $(part "$2" "$1") != "$(part "$3" "$1")" ]]; }
# changes AREA FROM TO WHAT ACTION...: does it, and waits until this part of the screen (WxH+x+y) is another than
# in the screenshot FROM; then TO is a screenshot.
changes() {
    local area=$1 from=$2 to=$3 what=$4
    shift 4
    xdotool "$@"
    until_true "$what" changed_since "$area" "$from" "$to"
}

# kept_libraries TESSERET: what a program with the address sanitizer has to keep to its end. Mesa's driver leaves
# memory behind that only its own variables point to, which looks lost once the driver has been unloaded.
kept_libraries() {
    ldd "$1" | awk '/libasan/ { print $3; system("ls /usr/lib/*/dri/swrast_dri.so") }' | xargs
}

# start_viewer TESSERET WxH OPTION...: with a window that fills the screen and has the keyboard.
start_viewer() {
    local tesseret=$1 size=$2
    shift 2
    Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp 3>display 2>xvfb.log &
    pids+=($!)
    until_true "a display" test -s display
    DISPLAY=:$(<display)
    # Drawn by the processor, without threads of which a sanitizer would know only half.
    export DISPLAY LIBGL_ALWAYS_SOFTWARE=1 LP_NUM_THREADS=0
    LD_PRELOAD=$(kept_libraries "$tesseret") "$tesseret" view --size "$size" "$@" >view.log 2>&1 &
    viewer=$!
    pids+=("$viewer")
    until_true "the window" find_window
    xdotool windowfocus --sync "$(<window)"
}
find_window() { xdotool search --onlyvisible --pid "$viewer" >window 2>/dev/null; }

# quit_viewer: by its shortcut; fails unless it ends well.
quit_viewer() {
    xdotool key ctrl+q
    local code=0
    wait "$viewer" || code=$?
    [[ $code == 0 ]] || fail "the viewer ended with $code"
}

# Sourced by scripts that run scalerctl against pwsimd. sim_launch PWSIMD
# [PREFIX...] starts PWSIMD (through PREFIX, e.g. taskset) in a new temporary
# folder, sets $sim_dir and $sim_pid, waits for its ready line, and arranges
# for the simulator to be stopped and the folder removed on exit.
sim_launch() {
    local pwsimd=$1
    shift
    sim_dir=$(mktemp -d /tmp/pwsim.XXXXXX)
    "$@" "$pwsimd" --dir "$sim_dir" > "$sim_dir.ready" 2> /dev/null &
    sim_pid=$!
    trap 'kill "$sim_pid" 2> /dev/null; wait "$sim_pid" 2> /dev/null || true; rm -rf "$sim_dir" "$sim_dir".*' EXIT
    local _
    for _ in $(seq 100); do
        grep -q 'ready' "$sim_dir.ready" 2> /dev/null && return 0
        sleep 0.05
    done
    echo "pwsimd did not become ready in $sim_dir" >&2
    return 1
}

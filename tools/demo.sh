#!/usr/bin/env bash
# Builds scalerctl and pwsimd, starts pwsimd in a temporary folder, runs the
# typical run and a few other actions against it, shows what each prints and
# its exit status, and stops the simulator. Set SCALERCTL_WRAPPER to run each
# scalerctl under a tool, e.g. SCALERCTL_WRAPPER="valgrind --error-exitcode=1 -q".
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/default
cmake --preset default > /dev/null
cmake --build "$build" -j2 --target scalerctl pwsimd > /dev/null

. tools/pwsimd/launch.sh
sim_launch "$build/tools/pwsimd/pwsimd"
dir=$sim_dir

status=0
run() {
    echo "\$ scalerctl $*"
    local rc=0
    ${SCALERCTL_WRAPPER:-} "$build/diags/video/pixelworks/scalerctl" --pipepath "$dir" "$@" || rc=$?
    echo "(exit status $rc)"
    echo
    # With a wrapper, an exit status the tool would not give is the wrapper's finding.
    if [ -n "${SCALERCTL_WRAPPER:-}" ] && [ "$rc" -gt 1 ]; then status=1; fi
}

run -d 0 -i 1 -c svideo -m 720p60 -Q
run -d 0 --reset
run -d 0 --pxwver
run -d 0 --query-in
run -d 2 -i 4 -c dvi-d --query-in-cable
exit $status

#!/usr/bin/env bash
# Times the typical run of scalerctl against pwsimd beside `scalerctl
# --version`, which only starts the program, with hyperfine, and prints the
# ratio of the two medians. The gap is what the run itself costs: the
# exchanges on the pipes. Run it on a quiet machine; other work on the cores
# lengthens the waits on the daemon far more than the start-up.
# PIN_CPU=N runs the daemon and both commands on CPU N (through taskset), so
# that no wake-up crosses processors: what is left of the gap is the tool's.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${BUILD:-build/default}
runs=${RUNS:-300}
pin=()
[ -n "${PIN_CPU:-}" ] && pin=(taskset -c "$PIN_CPU")
cmake --preset default > /dev/null
cmake --build "$build" -j2 --target scalerctl pwsimd > /dev/null

. tools/pwsimd/launch.sh
sim_launch "$build/tools/pwsimd/pwsimd" "${pin[@]}"
dir=$sim_dir

tool="${pin[*]} $build/diags/video/pixelworks/scalerctl"
# --version ends with status 1, so hyperfine ignores exit statuses: the
# typical run is checked once here instead.
$tool -p "$dir" -d 0 -i 1 -c svideo -m 720p60 -Q > /dev/null
hyperfine -N -i --warmup 30 --runs "$runs" --export-csv "$dir.csv" \
    -n typical "$tool -p $dir -d 0 -i 1 -c svideo -m 720p60 -Q" \
    -n version "$tool --version"
# The CSV's columns: command, mean, stddev, median, user, system, min, max.
awk -F, '$1 == "typical" { t = $4 } $1 == "version" { v = $4 }
         END { printf "median typical %.3f ms, version %.3f ms, ratio %.2f\n", t * 1000, v * 1000, t / v }' \
    "$dir.csv"

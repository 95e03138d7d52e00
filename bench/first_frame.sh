#!/usr/bin/env bash
# first_frame.sh HOME [RUNS] [-- TELVERRA ARGUMENTS]: the time from start to the first frame of Telverra with the home
# HOME (its address book and store), against a bare Qt Quick Controls window started the same way; RUNS runs of each,
# alternating, and their medians. The first frame is the scene graph's first "Frame prepared" line
# (qt.scenegraph.time.renderloop). Needs a display: under xvfb-run when there is none.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$here/build/ci}
home=$(cd "$1" && pwd)
runs=${2:-11}
shift $(($# >= 2 ? 2 : 1))
[[ ${1:-} == -- ]] && shift
if [[ -z ${DISPLAY:-} ]]; then
    exec xvfb-run -a -s "-screen 0 1280x800x24" "$0" "$home" "$runs" -- "$@"
fi

# Seconds from the start of the command to its first frame; the program is stopped there.
first_frame() {
    local start line stamp
    start=$(date +%s.%N)
    line=$(QT_MESSAGE_PATTERN='%{time yyyy-MM-ddTHH:mm:ss.zzz}|%{message}' \
        QT_LOGGING_RULES='qt.scenegraph.time.renderloop=true' timeout 20 "$@" 2>&1 | grep -m1 'Frame prepared' || true)
    [[ -n $line ]] || { echo "no frame" >&2; return 1; }
    stamp=$(date -d "${line%%|*}" +%s.%N)
    python3 -c "print(f'{$stamp - $start:.3f}')"
}

export HOME=$home XDG_DATA_HOME=$home/.local/share XDG_CONFIG_HOME=$home/.config
app=() bare=()
for ((i = 0; i < runs; ++i)); do
    app+=("$(first_frame "$build/bin/telverra" "$@")")
    bare+=("$(first_frame "$build/bench/bare_window")")
done
python3 - "${app[*]}" "${bare[*]}" <<'PY'
import statistics, sys
app = [float(x) for x in sys.argv[1].split()]
bare = [float(x) for x in sys.argv[2].split()]
print(f"telverra:    median {statistics.median(app):.3f} s  (runs: {' '.join(f'{x:.3f}' for x in app)})")
print(f"bare window: median {statistics.median(bare):.3f} s  (runs: {' '.join(f'{x:.3f}' for x in bare)})")
print(f"ratio of the medians: {statistics.median(app) / statistics.median(bare):.2f}")
PY

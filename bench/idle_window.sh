#!/usr/bin/env bash
# idle_window.sh [MINUTES] [SCREEN...]: idle_window on every screen (or those named), each on an X server of its own
# (xvfb-run, 1280x800, Mesa's software OpenGL), all at once: a window at rest costs so little that they do not get in
# each other's way, and the CPU figures are each process's own. One line of figures per screen.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$here/build/ci}
minutes=${1:-10}
shift $(($# > 0 ? 1 : 0))
screens=("$@")
((${#screens[@]})) || screens=(welcome dialer recents favorites contacts settings weather waiting)

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
for screen in "${screens[@]}"; do
    xvfb-run -a -s "-screen 0 1280x800x24" "$build/bench/idle_window" "$screen" "$minutes" \
        >/dev/null 2>"$out/$screen" &
    sleep 20 # each reads its address book and builds its window while the others are at rest
done
wait
for screen in "${screens[@]}"; do
    grep -E "^$screen |did not|no hand-over" "$out/$screen" || echo "$screen: no figures (see its output)"
done

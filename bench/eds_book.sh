#!/usr/bin/env bash
# eds_book.sh [COUNT] [RUNS]: the address book read from Evolution Data Server against the same contacts in vCard
# folders. Makes a throw-away home holding COUNT generated contacts (10,000 by default) twice: in EDS's personal book
# (make_eds_book) and as a vdir root (make_vdir); on a private session bus whose EDS services see that home, it runs
# RUNS times (5 by default), alternately, contacts_screen over EDS (--desktop) and over the vdir, printing when the list
# is in (from the process's start) and the memory; then Telverra's window RUNS times, printing when EDS's books have
# been read; then first_frame.sh for Telverra with the EDS book, with EDS read and with it turned off, each against a
# bare window. Needs xvfb-run and dbus-run-session.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
export BUILD=${BUILD:-$here/build/ci}
count=${1:-10000}
runs=${2:-5}

if [[ -z ${EDS_BOOK_HOME:-} ]]; then
    home=$(mktemp -d)
    trap 'rm -rf "$home" 2>/dev/null || true' EXIT
    mkdir -p "$home/runtime" && chmod 700 "$home/runtime"
    # Set before the bus starts: the services it starts take its environment.
    EDS_BOOK_HOME=$home HOME=$home XDG_DATA_HOME=$home/.local/share XDG_CONFIG_HOME=$home/.config \
        XDG_CACHE_HOME=$home/.cache XDG_RUNTIME_DIR=$home/runtime \
        dbus-run-session -- xvfb-run -a -s "-screen 0 1280x800x24" "$0" "$count" "$runs"
    exit
fi

"$BUILD/bench/make_eds_book" "$count"
"$BUILD/bench/make_vdir" "$HOME/vdir" "$count"
for ((i = 0; i < runs; ++i)); do
    echo "EDS:   $("$BUILD/bench/contacts_screen" --desktop 100000000 2>&1 >/dev/null | grep 'list in')"
    echo "vCard: $("$BUILD/bench/contacts_screen" "$HOME/vdir" 100000000 2>&1 >/dev/null | grep 'list in')"
done
# The window itself: seconds from its start to EDS's books read (the list is published right after).
echo "window, EDS's books read after (s):"
for ((i = 0; i < runs; ++i)); do
    log=$(mktemp)
    start=$(date +%s.%N)
    QT_MESSAGE_PATTERN='%{time yyyy-MM-ddTHH:mm:ss.zzz}|%{message}' QT_LOGGING_RULES='telverra.eds.debug=true' \
        "$BUILD/bin/telverra" >"$log" 2>&1 &
    window=$!
    for ((wait = 0; wait < 300; ++wait)); do
        grep -q '|read: ' "$log" && break
        sleep 0.1
    done
    kill "$window" && wait "$window" || true
    line=$(grep -m1 '|read: ' "$log" || true)
    rm "$log"
    [[ -n $line ]] || { echo "not read" >&2; continue; }
    python3 -c "print(f'{$(date -d "${line%%|*}" +%s.%N) - $start:.3f}')"
done
echo "first frame, EDS read:"
"$here/bench/first_frame.sh" "$HOME" 11
mkdir -p "$HOME/.config/telverra"
printf '[General]\nuseEvolutionDataServer=false\n' >"$HOME/.config/telverra/telverra.conf"
echo "first frame, EDS turned off:"
"$here/bench/first_frame.sh" "$HOME" 11
rm "$HOME/.config/telverra/telverra.conf"

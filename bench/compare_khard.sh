#!/usr/bin/env bash
# compare_khard.sh ROOT [BUILD]: loads the vdir address books under ROOT (as make_vdir writes them) with load_contacts
# and lists the same books with khard, back to back, and prints both times, both peaks of memory and the ratio.
# khard is Debian's package (apt-get install khard); BUILD defaults to build/ci.
set -euo pipefail
root=$(realpath "$1")
build=${2:-$(dirname "$0")/../build/ci}
command -v khard >/dev/null || { echo "khard is not installed (apt-get install khard)" >&2; exit 2; }

config=$(mktemp -d)
trap 'rm -rf "$config"' EXIT
mkdir -p "$config/khard"
{
    echo "[addressbooks]"
    for book in "$root"/*/; do
        name=$(basename "$book")
        printf '[[%s]]\npath = %s\n' "$name" "$book"
    done
    printf '[general]\ndefault_action = list\n[contact table]\ndisplay = first_name\n'
} >"$config/khard/khard.conf"

measure() { # command...: prints its wall seconds and peak resident kilobytes
    /usr/bin/time -f '%e %M' -o "$config/time" "$@" >/dev/null 2>"$config/stderr" ||
        { cat "$config/stderr" >&2; exit 1; }
    tail -1 "$config/time"
}

"$build/bench/load_contacts" "$root" >/dev/null # into the page cache
read -r ours_s ours_kb < <(measure "$build/bench/load_contacts" "$root")
read -r khard_s khard_kb < <(measure env XDG_CONFIG_HOME="$config" khard list)
printf 'load_contacts: %s s, %s MB\n' "$ours_s" "$((ours_kb / 1024))"
printf 'khard list:    %s s, %s MB\n' "$khard_s" "$((khard_kb / 1024))"
awk -v a="$khard_s" -v b="$ours_s" 'BEGIN { if (b > 0) printf "khard takes %.1f times as long\n", a / b }'

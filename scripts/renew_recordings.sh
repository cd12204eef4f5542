#!/usr/bin/env bash
# renew_recordings.sh [BUILD]: plays the scripts of tests/replay again and renews the recordings beside them. For each
# recording that changes it prints every field that differs, with its frame, the old value and the new one. Use it after a
# change that is meant to change how the game plays, and look at what it prints.
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-$root/build}
folder=$root/tests/replay
new=$(mktemp)
trap 'rm -f "$new"' EXIT

# A script's lines "#: NAME OPTIONS" each make one recording.
for script in "$folder"/*.txt; do
    while read -r _ name options; do
        # shellcheck disable=SC2086  # several words
        "$build/tarnwick" --headless --data "$root/tests/levels/data" --script "$script" --record "$new" $options \
            >/dev/null </dev/null
        cmp -s "$new" "$folder/$name.rec" && continue
        echo "$name:"
        if [ -f "$folder/$name.rec" ]; then
            "$build/tests/show_recordings" differences "$folder/$name.rec" "$new" | sed 's/^/    /'
        else
            echo "    is new"
        fi
        cat "$new" >"$folder/$name.rec"
    done < <(grep '^#: ' "$script")
done
"$build/tests/show_recordings" coverage "$folder"/*.rec

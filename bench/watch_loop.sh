#!/usr/bin/env bash
# bench/watch_loop.sh [BUILD [ROUNDS]]: how long an author waits who saves a map of about 800 brushes while the game plays it
# (./play --map FILE --watch): from the saving to the first picture of the new geometry, and to the first with all its light.
# The game plays in a window, on a display of its own where there is none. What to look at: on two idle cores, under 1 s and
# under 3 s.
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(realpath "${1:-$root/build}") rounds=${2:-5}
data=$(sed -n 's/^TARNWICK_DATA:[A-Z]*=//p' "$build/CMakeCache.txt")
data=${data:-$build/data}
if [ -z "${DISPLAY:-}${SDL_VIDEODRIVER:-}" ]; then
    exec xvfb-run -a "$0" "$build" "$rounds"
fi
scratch=$(mktemp -d)
game=
trap '[ -z "$game" ] || kill "$game"; wait; rm -rf "$scratch"' EXIT
export XDG_CACHE_HOME=$scratch/cache
map=$scratch/played.map

"$build/bench/map_compiler" "$scratch/rooms.map" || exit 1
sed -i 's/ wall / brick_red /; s/ floor / flagstones /; s/ ceiling / coffer_wood /; s/ tall / planks_oak /' "$scratch/rooms.map"

# save HEIGHT: the map with one more box, of that height, in its first room.
save() {
    local box="( 100 0 0 ) ( 100 1 0 ) ( 100 0 1 ) ( 140 0 0 ) ( 140 0 1 ) ( 140 1 0 ) ( 0 700 0 ) ( 0 700 1 ) ( 1 700 0 )"
    box+=" ( 0 740 0 ) ( 1 740 0 ) ( 0 740 1 ) ( 0 0 0 ) ( 1 0 0 ) ( 0 1 0 ) ( 0 0 $1 ) ( 0 1 $1 ) ( 1 0 $1 )"
    {
        cat "$scratch/rooms.map"
        printf '{\n"classname" "func_group"\n{\n'
        xargs -n 15 <<<"$box" | sed 's/$/ flagstones 0 0 0 2 2/'
        printf '}\n}\n'
    } >"$scratch/saved.map"
    mv "$scratch/saved.map" "$map"
}

# wait_for_picture: waits until the game shows a level for the first time; sets seconds to the time since `saved`.
wait_for_picture() {
    local line
    while read -r line <&"$log"; do
        [[ $line == *"watch: the first picture of "* ]] || continue
        seconds=$(awk "BEGIN { print $EPOCHREALTIME - $saved }")
        return
    done
    echo "the game has ended" >&2
    exit 1
}

median() { printf '%s\n' "$@" | sort -n | sed -n "$((($# + 1) / 2))p"; }

save 64
mkfifo "$scratch/log"
(
    game=$BASHPID
    options=$("$root/scripts/watch.sh" "$build" "$data" "$game" "$map") || exit 1
    mapfile -t options <<<"$options"
    exec "$build/tarnwick" --verbose --window 640x480 --renderer software --settings "$scratch/settings.txt" "${options[@]}" \
        >/dev/null 2>"$scratch/log"
) &
game=$!
exec {log}<"$scratch/log"
saved=$EPOCHREALTIME
wait_for_picture  # the first map's full light
geometry=() lit=()
for ((round = 1; round <= rounds; ++round)); do
    sleep 1
    save $((64 + round * 4))
    saved=$EPOCHREALTIME
    wait_for_picture
    geometry+=("$seconds")
    wait_for_picture
    lit+=("$seconds")
    printf 'round %d: geometry after %.2f s, lit after %.2f s\n' $round "${geometry[-1]}" "${lit[-1]}"
done
printf 'median: geometry after %.2f s, lit after %.2f s; load %s\n' "$(median "${geometry[@]}")" "$(median "${lit[@]}")" \
    "$(cut -d' ' -f1 /proc/loadavg)"

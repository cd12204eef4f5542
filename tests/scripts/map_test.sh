#!/usr/bin/env bash
# map_test.sh BUILD DATA: any map can be compiled and played as ./play --map does it: the examples with their defaults, and
# one under a sky with keys of its own, with a picture and a recipe beside it, and one from elsewhere; a map that cannot be is
# told by line, and leaves the one before it as it was. A map that is watched is compiled again after each change.
set -u
build=$1 data=$2
cd "$(dirname "${BASH_SOURCE[0]}")/../.." || exit 1
for tool in texc mapc skyc mapconvert; do [ -x "$build/tools/$tool" ] || exit 77; done
if [ ! -x "$build/tarnwick" ] || [ ! -r "$build/materials/brick_red.png" ] || [ ! -r "$data/disc/track02.flac" ]; then exit 77; fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export XDG_CACHE_HOME=$scratch/cache
failures=0

fail() {
    echo "$1"
    failures=$((failures + 1))
}

# plays MAP LEVEL [--foreign]: it is compiled as that level and runs for some frames.
plays() {
    local options
    options=$(scripts/map.sh "$build" "$data" "$1" "${@:3}" --fast) || { fail "$1 is not compiled"; return; }
    mapfile -t options <<<"$options"
    [ "${options[3]}" = "$2" ] || fail "$1 is level ${options[3]}, not $2"
    "$build/tarnwick" --log /dev/null --headless --frames 30 "${options[@]}" || fail "$1 does not run"
    folder=${options[1]}
}

map=$scratch/my\ map.map
cp content/examples/ten_brushes.map "$map"
plays "$map" 3
before=$(cksum "$folder"/game/data/levels/level3/*.*)
sed -i 's/flagstones/flagstonez/' "$map"
if text=$(scripts/map.sh "$build" "$data" "$map" 2>&1); then fail "an unknown texture is taken"; fi
[[ $text == *"my map.map:11: the texture \"flagstonez\""* ]] || fail "the texture's line is not told: $text"
[ "$(cksum "$folder"/game/data/levels/level3/*.*)" = "$before" ] || fail "the map before it is gone"

sed -E 's/coffer_wood/sky/; s/"ambient" "12"/"ticks" "2"\n"track" "2"/' content/examples/ten_brushes.map >"$scratch/open.map"
plays "$scratch/open.map" 6
[ -r "$folder/game/data/levels/level6/sky.sob" ] || fail "the open map has no sky"
[ "$(readlink -f "$folder/disc/track03.flac")" = "$(readlink -f "$data/disc/track02.flac")" ] || fail "the wrong music"
plays content/examples/valley.map 6

# Materials of its own, and the name alone of a map that was compiled before.
mkdir "$scratch/materials"
cp "$build/materials/crate.png" "$scratch/materials/mine.png"
printf 'size = [64, 64]\nmoving = true\n[[layer]]\npattern = "fill"\ncolour = "#804020"\n' >"$scratch/materials/red.toml"
sed -E 's/trim_stone/mine/; s/planks_oak/red/' content/examples/ten_brushes.map >"$scratch/own.map"
plays "$scratch/own.map" 3
plays own 3

# As if it came from elsewhere: other names of textures and classes, and a table of its own beside it.
sed -E 's/flagstones/Base\/FLAGSTONES/; s/"classname" "light"/"classname" "light_torch"/; s/coffer_wood/GONE/' \
    content/examples/ten_brushes.map >"$scratch/away.map"
sed "s,^pictures = .*,pictures = ['$(realpath "$build")/materials']," content/foreign.toml >"$scratch/foreign.toml"
box="( 900 0 0 ) ( 900 1 0 ) ( 900 0 1 ) ( 940 0 0 ) ( 940 0 1 ) ( 940 1 0 ) ( 0 0 0 ) ( 0 0 1 ) ( 1 0 0 )"
box+=" ( 0 40 0 ) ( 1 40 0 ) ( 0 40 1 ) ( 0 0 0 ) ( 1 0 0 ) ( 0 1 0 ) ( 0 0 40 ) ( 0 1 40 ) ( 1 0 40 )"
{ printf '{\n"classname" "func_group"\n{\n' && xargs -n 15 <<<"$box" | sed 's/$/ brick_red 0 0 0 1 1/' && printf '}\n}\n'; } \
    >>"$scratch/away.map"
plays "$scratch/away.map" 3 --foreign 2>"$scratch/notes"
line=$(grep -n '^( 900' "$scratch/away.map")
grep -q "away.map:$((${line%%:*} - 1)): 1 brush around" "$scratch/notes" || fail "beyond reach: $(cat "$scratch/notes")"

# What the map editor gets: of each level its own materials, none of them missing, and one frame of what moves.
mkdir -p "$scratch/editor" && ln -s "$(realpath "$build/editor/all")" "$scratch/editor"
scripts/editor.sh "$scratch/editor" || fail "the editor is not set up"
for level in "$scratch"/editor/level*/materials; do
    for picture in "$level"/*; do [ -r "$picture" ] || fail "the editor misses $picture"; done
    [ ! -e "$level/zero_body.png" ] || fail "the editor offers a skin"
done
[ -e "$scratch/editor/level6/materials/swamp_pool.png" ] || fail "the editor misses what moves in level 6"
[ ! -e "$scratch/editor/level6/materials/brick_red.png" ] || fail "the editor offers materials that level 6 does not have"
size() { od -An -j16 -N8 -tx1 "$1" | tr -d ' '; }
[ "$(size "$build/editor/all/materials/water.png")" = 0000004000000040 ] ||
    fail "the editor shows a moving material as a strip"
play=$(sed -nE 's/.*"(tool|path)": "(.*)".*/\2/p' "$scratch"/editor/games/tarnwick/*Profiles.cfg | sort -u)
[ "$play" -ef play ] || fail "the editor starts \"$play\""

# says TEXT: the news come to have it.
says() {
    for ((tries = 0; tries < 3000; ++tries)); do
        [[ $(cat "$news" 2>/dev/null) == *"$1"* ]] && return
        sleep 0.1
    done
    fail "the news are never \"$1\": $(cat "$news")"
}

# watch MAP: sets options to what watch.sh prints for it, and news to the file that it tells the game of levels in.
watch() {
    sleep 1000 &
    game=$!
    mapfile -t options < <(scripts/watch.sh "$build" "$data" $game "$1" 2>"$scratch/faults")
    news=${options[5]}
}

# The watcher ends with the game.
end_watch() {
    kill $game
    for ((tries = 0; tries < 100; ++tries)); do [ -e "$news" ] && sleep 0.1; done
    [ ! -e "$news" ] || fail "the watcher does not end with the game"
}

export TMPDIR=$scratch
cp content/examples/ten_brushes.map "$map"
watch "$map"
number=${options[1]##*.}
says "data.$((number + 1))"$'\n'"level 3"  # lit
sed -i 's/"light" "90"/"light" "80"/' "$map"
says "data.$((number + 3))"$'\n'"level 3"  # a quick look, then lit again
sed -i 's/flagstones/flagstonez/' "$map"
says $'\nmy map.map:11 (entity 0, brush 0): the texture "flagstonez"'
place=$(grep '^place' "$news")
grep -q flagstonez "$scratch/faults" || fail "the watcher does not tell the fault"
sed -i 's/flagstonez/flagstones/; s/-300 -300 40/-200 -300 40/' "$map"
says "data.$((number + 5))"
[ "$(grep -c . "$news")" = 4 ] || fail "the fault stays: $(cat "$news")"
[ "$(grep '^place' "$news")" != "$place" ] || fail "that the start has moved is not told"
music=$(grep '^music' "$news")
sed -i 's/"ambient"/"track" "3"\n"ambient"/' "$map"
says "data.$((number + 7))"
[ "$(grep '^music' "$news")" != "$music" ] || fail "that the music has changed is not told"
end_watch

# Faulty at first: an empty room stands in for it.
sed -i 's/flagstones/flagstonez/' "$map"
watch "$map"
[[ ${options[1]} == */empty_room-* ]] || fail "${options[1]} stands in for a faulty map"
says $'\nmy map.map:12 (entity 0, brush 0): the texture "flagstonez"'
place=$(grep '^place' "$news")
sed -i 's/flagstonez/flagstones/' "$map"
says "/my map-"
[ "$(grep '^place' "$news")" != "$place" ] || fail "the mended map begins where the player stands in the empty room"
end_watch
exit $((failures > 0))

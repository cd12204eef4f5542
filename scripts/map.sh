#!/usr/bin/env bash
# map.sh BUILD DATA FILE.map [--fast]: compiles any map into a folder of its own below the user's cache, and prints the
# options with which the game plays it, a line each. DATA is the game's data folder; everything but the level is linked
# from there. Nothing is written beside the map or in the repository; when the map cannot be compiled, what was compiled
# last stays, and the status is 1.
#
# Keys of worldspawn that say how it is played:
#   sky    a sky.toml beside the map, or the number of the level whose sky it is; 1 where faces are painted with sky
#   ticks  1, 2 or 4: the length of a frame in ticks of 16 ms; 1
#   track  of the music; that of the level whose place it takes
# Beside the map, textures.toml lists its materials; without one it gets those that its faces name.
set -u
build=$1 data=$2 map=$3
shift 3
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

give_up() {
    echo "$map: $*" >&2
    exit 1
}

[ -r "$map" ] || give_up "cannot be read: name a .map file"
map=$(realpath "$map")
home=$(dirname "$map")
name=$(basename "$map" .map)
folder=${XDG_CACHE_HOME:-$HOME/.cache}/tarnwick/maps/$name-$(cksum <<<"$map" | cut -d' ' -f1)
made=$folder/made
mkdir -p "$made" || give_up "$folder cannot be made"

# world_key NAME: of the first entity.
world_key() {
    awk -v name="\"$1\"" '/^[ \t]*{/ { ++depth } /^[ \t]*}/ { if (--depth == 0) exit }
        depth == 1 && $1 == name { sub(/^[^"]*"[^"]*"[ \t]*"/, ""); sub(/".*/, ""); print; exit }' "$map"
}

# The row of the game's table that has the sky and the ticks: sets level and row_track.
find_row() {
    local number sky ticks track
    while read -r number sky ticks track; do
        [ "$sky" = "$1" ] && [ "$ticks" = "$2" ] && level=$number row_track=$track && return
    done < <(sed -nE 's/^ +LEVEL\(([0-9]+),.*(OPEN|CLOSED), +([0-9]+), +0x[0-9A-F]+, +([0-9]+),.*/\1 \2 \3 \4/p' \
        "$root/src/records/levels.h")
    return 1
}

textures() { awk '$1 == "(" && NF > 20 { print $16 }' "$map" | sort -u; }  # that the map's faces name

sky=$(world_key sky)
[ -z "$sky" ] && textures | grep -qx sky && sky=1
case $sky in
'') ;;
[0-9]) sky=$root/content/levels/level$sky/sky.toml ;;
*) sky=$home/$sky ;;
esac
[ -z "$sky" ] || [ -r "$sky" ] ||
    give_up "there is no sky $sky: give the key sky a file beside the map, or the number of a level with a sky"
ticks=$(world_key ticks)
find_row "$([ -n "$sky" ] && echo OPEN || echo CLOSED)" "${ticks:-1}" ||
    give_up "frames of ${ticks:-1} ticks are not possible: use 1 or 2, or 4 with a sky"
track=$(world_key track)
track=${track:-$row_track}
[ -r "$data/disc/track0$track.flac" ] || give_up "there is no track $track: use 2 or 3"

list=$home/textures.toml
if [ ! -r "$list" ]; then
    list=$made/textures.toml
    read -r red green blue <<<"$(world_key dark_color)"
    {
        printf 'dark = "#%02x%02x%02x"\nground = "#000000"\n' $((${red:-0} * 4)) $((${green:-0} * 4)) $((${blue:-0} * 4))
        printf 'skin = ["zero_body", "zero_head"]\nmaterials = [\n'
        # A name without a picture is left out: mapc tells it, with its line in the map.
        { textures; [ -z "$sky" ] || grep -oE 'material *= *.*' "$sky" | grep -oE '"[^"]+"' | tr -d '"'; } | sort -u | grep -vxE "clip|sky" |
            while read -r texture; do
                [ -r "$build/materials/$texture.png" ] && printf '    "%s",\n' "$texture"
            done
        printf ']\n'
    } >"$list"
fi

new=$made/level
rm -rf "$new" && mkdir -p "$new"
log=$made/compile.log
: >"$log"

# tool NAME ARGUMENT...: ends the script with its message when it fails.
tool() {
    local program=$build/tools/$1
    shift
    "$program" "$@" >>"$log" 2>"$made/errors" && return
    cat "$made/errors" >&2
    exit 1
}


tool texc level "$list" --pictures "$build/materials" --texture "$new/texture.bin" --accelerator "$new/glidetex" \
    --materials "$made/materials.txt"
tool mapc "$map" --materials "$made/materials.txt" --prefabs "$root/content/prefabs" --output "$new" --level "$level" "$@"
[ -z "$sky" ] || tool skyc "$sky" --materials "$made/materials.txt" --output "$new/sky.sob"
grep '^note: ' "$log" >&2

play=$folder/data
rm -rf "$play"
mkdir -p "$play"
cp -rs "$(realpath "$data")"/. "$play" || give_up "$play cannot be made"
rm -rf "$play/game/data/levels/level$level" && mv "$new" "$play/game/data/levels/level$level"
ln -sf "$(realpath "$data")/disc/track0$track.flac" "$play/disc/track0$row_track.flac"
printf -- '--data\n%s\n--level\n%s\n' "$play" "$level"

#!/usr/bin/env bash
# map.sh BUILD DATA FILE.map [--foreign] [--fast] [--list FILE]: compiles any map into a data folder below the user's cache, and prints the
# options with which the game plays it, one a line. BUILD has the tools. DATA is the game's data folder; everything but the
# level is linked from there. Each compilation makes a new folder; the folder before it stays, for a game that may be playing
# it. Nothing is written beside the map or in the repository. Status 1: the map cannot be compiled. A FILE.map that does not
# exist and names no folder is taken for the name of a map that was compiled before.
#
# Keys of worldspawn that say how the map is played:
#   sky    a sky.toml beside the map, or the number of the level whose sky it takes. By default 1 where faces are painted
#          with sky, and none elsewhere
#   ticks  1, 2 or 4: the length of a frame in ticks of 16 ms. By default 1
#   track  the track of the music. By default that of the level whose place the map takes
# textures.toml beside the map lists its materials; without one it gets those that its faces name. Pictures and recipes
# in the folder materials beside the map take precedence over the game's.
#
# --foreign: the map was made for something else. mapconvert adapts it first, by the rules of foreign.toml beside the map, or
# else of content/foreign.toml.
# --fast: a quick look, as mapc's option of that name makes it.
# --list: writes to FILE which files the level is made of, the map first, one a line; of a faulty map those that are known.
set -u
shopt -s nullglob
build=$(realpath "$1") data=$(realpath "$2") map=$3
shift 3
quality=() is_foreign='' list_file=''
while [ $# -gt 0 ]; do
    case $1 in
    --foreign) is_foreign=yes ;;
    --fast) quality=(--fast) ;;
    --list) list_file=$2 && shift ;;
    *) echo "map.sh has no option $1" >&2 && exit 2 ;;
    esac
    shift
done
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

give_up() {
    echo "$map: $*" >&2
    exit 1
}

cache=${XDG_CACHE_HOME:-$HOME/.cache}/tarnwick/maps

# compiled_before NAME: sets map to the one of that name that was compiled last.
compiled_before() {
    local place newest=
    for place in "$cache/$1"-*/place.txt; do
        [ -r "$place" ] && [[ -z $newest || $place -nt $newest ]] && newest=$place
    done
    [ -n "$newest" ] && map=$(<"$newest")
}

[ -r "$map" ] || [[ $map == */* ]] || compiled_before "${map%.map}"
if [ ! -f "$map" ] || [ ! -r "$map" ]; then give_up "cannot be read: name a .map file"; fi
map=$(realpath "$map")
home=$(dirname "$map")
name=$(basename "$map" .map)
folder=$cache/$name-$(cksum <<<"$map" | cut -d' ' -f1)
made=$folder/made
mkdir -p "$made"/{pictures,painted} || give_up "$folder cannot be made"
exec 8>"$folder/.lock"
flock 8
echo "$map" >"$folder/place.txt"
log=$made/compile.log
: >"$log"

# The files that the level is made of.
sources=("$map")
write_list() { printf '%s\n' "${sources[@]}" >"$list_file.new" && mv "$list_file.new" "$list_file"; }
[ -z "$list_file" ] || trap write_list EXIT

# Copies messages. Lines of an adapted map become those of the author's: mapconvert has left them above brushes and entities.
with_authors_lines() {
    if [ "$map" = "${sources[0]}" ]; then
        cat
        return
    fi
    awk -v map="$map" -v authors="${sources[0]}" '
        BEGIN {
            for (line = 1; (getline text < map) > 0; ++line) {
                if (text ~ /^\/\/ line /) above = substr(text, 9)
                from[line] = above
            }
        }
        at = index($0, map ":") {
            rest = substr($0, at + length(map) + 1)
            line = match(rest, /^[0-9]+/) ? from[substr(rest, 1, RLENGTH)] substr(rest, RLENGTH + 1) : rest
            $0 = substr($0, 1, at - 1) authors ":" line
        }
        { print }'
}

# tool NAME ARGUMENT...: runs one of the tools; when it fails, prints its message and ends the script.
tool() {
    local program=$build/tools/$1
    shift
    "$program" "$@" >>"$log" 2>"$made/errors" && return
    with_authors_lines <"$made/errors" >&2
    exit 1
}

# Replaces a map from elsewhere by its adapted copy: sets map and home.
adapt() {
    local rules=$home/foreign.toml file
    [ -r "$rules" ] || rules=$root/content/foreign.toml
    sources+=("$rules" "$home"/*.[wW][aA][dD])
    while read -r file; do
        sources+=("$file")
    done < <(find "$home/textures" -type f 2>/dev/null)
    mkdir -p "$made/adapted"
    tool mapconvert "$map" --rules "$rules" --output "$made/adapted"
    home=$made/adapted
    map=$home/$name.map
}

if [ -n "$is_foreign" ]; then
    adapt
else
    sources+=("$home/textures.toml" "$home/materials")
fi

# world_key NAME: prints the value of that key of the first entity.
world_key() {
    awk -v name="\"$1\"" '/^[ \t]*{/ { ++depth } /^[ \t]*}/ { if (--depth == 0) exit }
        depth == 1 && $1 == name { sub(/^[^"]*"[^"]*"[ \t]*"/, ""); sub(/".*/, ""); print; exit }' "$map"
}

# find_row OPEN|CLOSED TICKS: sets level, skin and row_track to those of the first level with that sky and these ticks.
find_row() {
    local number who sky ticks track
    while read -r number who sky ticks track; do
        [ "$sky" = "$1" ] && [ "$ticks" = "$2" ] && level=$number skin=${who,,} row_track=$track && return
    done < <(sed -nE \
        's/^ +LEVEL\(([0-9]+),.* ([A-Z]+), +(OPEN|CLOSED), +([0-9]+), +0x[0-9A-F]+, +([0-9]+),.*/\1 \2 \3 \4 \5/p' \
        "$root/src/records/levels.h")
    return 1
}

# Sets maps to the map, its prefabs, and the prefabs of these.
find_maps() {
    local i place file
    maps=("$map")
    for ((i = 0; i < ${#maps[@]}; ++i)); do
        while read -r file; do
            for place in "${maps[i]%/*}/$file" "$root/content/prefabs/$file"; do
                [ -r "$place" ] || continue
                [[ $'\n'$(printf '%s\n' "${maps[@]}")$'\n' == *$'\n'"$place"$'\n'* ]] || maps+=("$place")
                break
            done
        done < <(sed -nE 's/^[ \t]*"file"[ \t]+"([^"]+)".*/\1/p' "${maps[i]}" | sort -u)
    done
}

# Prints the textures that faces name, and those that keys of terrains and prefabs name.
textures() {
    awk '$1 == "(" && NF > 20 { print $16 }
        $1 ~ /^"(steep|high|replace[0-9]+)"$/ { gsub(/"/, ""); for (i = 2; i <= NF; ++i) print $i }' "${maps[@]}" | sort -u
}

find_maps
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

# Adds files to the level's sources, unless mapconvert has made them.
add_sources() {
    local file
    for file in "$@"; do
        [[ $file == "$made/adapted/"* ]] || sources+=("$file")
    done
}

[ -z "$sky" ] || add_sources "$sky" "${sky%/*}"/*.glb

# read_depfile OF: sets it to the files that a file was made of, from the line that its tool has left beside it.
read_depfile() {
    it=()
    # shellcheck disable=SC2162 # the backslashes stand before blanks of names
    [ ! -r "$1.d" ] || read -a it <"$1.d"
    it=("${it[@]:1}")
}

# is_fresh PICTURE: none of its recipes has changed since it was painted.
is_fresh() {
    local it file
    [ -r "$1" ] && read_depfile "$1" || return
    for file in "${it[@]}"; do
        [ "$file" -nt "$1" ] && return 1
    done
    return 0
}

# picture NAME: sets it to the material's picture, painted anew if need be. False: there is none.
picture() {
    local recipe
    it=$home/materials/$1.png
    [ -r "$it" ] && add_sources "$it" && return
    recipe=$home/materials/$1.toml
    if [ ! -r "$recipe" ]; then
        it=$build/materials/$1.png recipe=$root/content/materials/$1.toml
        [ -r "$recipe" ] || { [ -r "$it" ]; return; }
        watch_recipes "$it"
        is_fresh "$it" && return
    fi
    it=$made/painted/$1.png
    is_fresh "$it" || tool texc paint "$recipe" -o "$it" --depfile "$it.d"
    watch_recipes "$it"
}

watch_recipes() {
    local it
    read_depfile "$1" && add_sources "${it[@]}"
}

quoted() { grep -oE '"[^"]+"' | tr -d '"'; }

# Prints the names of all pictures that the level may need; names that are no material do no harm.
names() {
    if [ -r "$home/textures.toml" ]; then
        quoted <"$home/textures.toml"
    else
        textures
        echo "${skin}_body"
        echo "${skin}_head"
        [ -z "$sky" ] || grep -oE 'material *= *.*' "$sky" | quoted
    fi | sort -u | grep -vxE 'clip|sky'
}

materials=() moving=() pictures=()
while read -r texture; do
    # A name without a picture is left out: mapc tells it, with its line in the map.
    picture "$texture" || continue
    pictures+=("$it")
    [[ $texture == "$skin"_* ]] && continue
    read_depfile "$it"
    if grep -qs '^moving *= *true' "${it[@]}" /dev/null; then moving+=("$texture"); else materials+=("$texture"); fi
done < <(names)

list=$home/textures.toml
if [ ! -r "$list" ]; then
    list=$made/textures.toml
    [ ${#moving[@]} -lt 2 ] || give_up "${moving[0]} and ${moving[1]} both move: a level has room for one such material"
    read -r red green blue <<<"$(world_key dark_color)"
    {
        printf 'dark = "#%02x%02x%02x"\nground = "#000000"\n' $((${red:-0} * 4)) $((${green:-0} * 4)) $((${blue:-0} * 4))
        [ ${#moving[@]} = 0 ] || printf 'animated = "%s"\n' "${moving[0]}"
        printf 'skin = ["%s_body", "%s_head"]\nmaterials = [\n' "$skin" "$skin"
        printf '    "%s",\n' "${materials[@]}"
        printf ']\n'
    } >"$list"
fi

# Compiles the textures, unless nothing has changed that they are made of.
stamp=$(cat "$list"; stat -Lc '%n %y %s' "$build/tools/texc" "${pictures[@]}")
if [ "$stamp" != "$(cat "$made/textures.stamp" 2>/dev/null)" ]; then
    rm -rf "$made"/{textures.stamp,textures,pictures} && mkdir -p "$made"/{textures,pictures}
    ln -st "$made/pictures" "${pictures[@]}"
    tool texc level "$list" --pictures "$made/pictures" --texture "$made/textures/texture.bin" \
        --accelerator "$made/textures/glidetex" --materials "$made/materials.txt"
    echo "$stamp" >"$made/textures.stamp"
fi

new=$made/level
rm -rf "$new" && cp -r "$made/textures" "$new"
tool mapc "$map" --materials "$made/materials.txt" --prefabs "$root/content/prefabs" --output "$new" --level "$level" \
    --depfile "$made/level.d" "${quality[@]}"
[ -z "$sky" ] || tool skyc "$sky" --materials "$made/materials.txt" --output "$new/sky.sob"
grep '^note: ' "$log" | with_authors_lines >&2

# Removes the data folders of earlier compilations but for the newest, which a game may still be playing.
number=0 old=()
for play in $(cd "$folder" && printf '%s\n' data.* | sort -t. -k2n); do
    [ -d "$folder/$play" ] && number=${play#data.} old+=("$folder/$play")
done
[ ${#old[@]} -lt 3 ] || rm -rf "${old[@]::${#old[@]}-2}"
play=$folder/data.$((number + 1))
mkdir -p "$play"/{disc,game/data/levels} || give_up "$play cannot be made"
mv "$new" "$play/game/data/levels/level$level"
ln -s "$data/disc/track0$track.flac" "$play/disc/track0$row_track.flac"
for part in '' disc/ game/ game/data/ game/data/levels/; do
    links=()
    for entry in "$data/$part"*; do
        [ -e "$play/$part${entry##*/}" ] || links+=("$entry")
    done
    [ ${#links[@]} = 0 ] || ln -st "$play/$part" "${links[@]}"
done
read_depfile "$made/level" && add_sources "${it[@]}"
while read -r image; do
    add_sources "$home/$image"
done < <(sed -nE 's/^[ \t]*"image"[ \t]+"([^"]+)".*/\1/p' "${maps[@]}")
printf -- '--data\n%s\n--level\n%s\n' "$play" "$level"

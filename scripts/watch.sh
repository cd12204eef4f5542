#!/usr/bin/env bash
# watch.sh BUILD DATA GAME FILE.map [--foreign]: compiles a map as map.sh does, as a quick look, and prints the options with which
# the game plays it, one a line. A map that has faults at first is played when it is mended, and an empty room until then. From
# then on it runs in the background until the process GAME ends: it computes the full light, and compiles the map again whenever
# the map changes, or a file that it is made of, a quick look first. A file of news tells the game of each (option
# --watch). Faults go there, too, and to standard error; the game then plays the last good level on. Status 1: the map cannot
# be read.
set -u
build=$1 data=$2 game=$3 map=$4
adapt=("${@:5}")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
news=$(mktemp --tmpdir tarnwick-news.XXXXXX) || exit 1
compiling=

# compile_map FILE.map [OPTION...]: prints what map.sh prints, which leaves in NEWS.files what the map is made of.
compile_map() {
    "$root/scripts/map.sh" "$build" "$data" "$@" --list "$news.files" 2>"$news.errors"
}

# take OPTION...: sets played and level from what map.sh printed.
take() { played=$2 level=$4; }

# tell [LINE...]: writes to NEWS which level was compiled last, and the lines that say what is wrong with the newest map.
tell() {
    local placement music
    placement=$(grep '^map ' "$played/game/data/levels/level$level/places.txt")
    music=$(readlink -f "$played"/disc/* | tr '\n' ' ')
    printf '%s\n' "data $played" "level $level" "place level $level in ${played%/*}: $placement" "music level $level: $music" \
        "$@" >"$news.new" && mv "$news.new" "$news"
}

# Prints the faults as the game's picture shows them: without folders, for which it has no room, and with the entity and the
# brush in which the line lies, counted from 0 as editors do.
for_picture() {
    local text
    text=$(sed 's/^[a-z]*: //' "$news.errors")
    awk -v map="$map" -v name="${map##*/}:" '
        BEGIN {
            entity = brush = -1
            for (line = 1; (getline text < map) > 0; ++line) {
                if (text ~ /^[ \t]*\{/) {
                    ++depth
                    if (depth == 1) { ++entity; brush = -1 }
                    if (depth == 2) ++brush
                }
                if (depth >= 2) place[line] = " (entity " entity ", brush " brush ")"
                if (text ~ /^[ \t]*\}/) --depth
            }
        }
        {
            rest = substr($0, length(name) + 1)
            if (index($0, name) == 1 && match(rest, /^[0-9]+/)) {
                line = substr(rest, 1, RLENGTH)
                $0 = name line place[line] substr(rest, RLENGTH + 1)
            }
            print
        }' <<<"${text//"${map%/*}/"/}"
}

# compile [--fast]: compiles the map and tells the game of the level or of the faults. False: the map has faults.
compile() {
    local options fault
    if ! options=$(compile_map "$map" "${adapt[@]}" "$@"); then
        cat "$news.errors" >&2
        mapfile -t fault < <(for_picture)
        tell "${fault[@]}"
        return 1
    fi
    mapfile -t options <<<"$options"
    take "${options[@]}"
    tell
}

# Takes the level now played from NEWS: a compilation that was ended may already have told the game of its quick look.
read_news() {
    { read -r _ played && read -r _ level; } <"$news"
}

start_compiling() {
    set -m
    if [ "$1" = light ]; then
        compile &
    else
        { compile --fast && compile; } &
    fi
    compiling=$!
    set +m
}

end_compiling() {
    [ -n "$compiling" ] || return
    kill -- "-$compiling" 2>/dev/null
    wait "$compiling" 2>/dev/null
    compiling=
    read_news
}

declare -A stamps=()  # time and size of each file when it was last looked at

# files_changed: true when a file has changed since the last look. A file that is new in the list is only remembered.
files_changed() {
    local name stamp changed=
    while read -r name; do
        stamps[$name]=${stamps[$name]-new}
    done <"$news.files"
    declare -A found=()
    while IFS=$'\t' read -r stamp name; do
        found[$name]=$stamp
    done < <(stat -c $'%y %s\t%n' -- "${!stamps[@]}" 2>/dev/null)
    for name in "${!stamps[@]}"; do
        stamp=${found[$name]-missing}
        [ "${stamps[$name]}" = new ] || [ "${stamps[$name]}" = "$stamp" ] || changed=yes
        stamps[$name]=$stamp
    done
    [ -n "$changed" ]
}

watch() {
    files_changed
    start_compiling "$1"
    while kill -0 "$game" 2>/dev/null; do
        sleep 0.05
        files_changed || continue
        # An editor may still be writing.
        while sleep 0.05 && files_changed; do :; done
        end_compiling
        start_compiling geometry
    done
}

trap 'rm -f "$news" "$news".*' EXIT
if printed=$(compile_map "$map" "${adapt[@]}" --fast); then first=light; else first=geometry; fi
# Faults are told by the next compilation, too.
if [ $first = light ] || [ ! -s "$news.files" ]; then cat "$news.errors" >&2; fi
if [ $first = geometry ]; then
    [ -s "$news.files" ] || exit 1
    printed=$("$root/scripts/map.sh" "$build" "$data" "$root/content/examples/empty_room.map" --fast) || exit 1
fi
mapfile -t options <<<"$printed"
map=$(head -n 1 "$news.files")
take "${options[@]}"
tell
(
    trap 'end_compiling; rm -f "$news" "$news".*; exit' EXIT
    trap 'exit 1' INT TERM HUP
    watch $first
) >/dev/null &
trap - EXIT
printf '%s\n' "${options[@]}" --watch "$news"

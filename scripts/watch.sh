#!/usr/bin/env bash
# watch.sh BUILD DATA GAME NEWS OPTION...: compiles a map again whenever it changes, or a file that it is made of, until the
# process GAME ends. The OPTIONs are what map.sh printed for the quick look that is played at first; its full light is
# computed at once. After each change comes a quick look, then the full light. The file NEWS tells the game of each (option
# --watch). Faults go to NEWS, too, and to standard error; the game then plays the last good level on.
set -u
build=$1 data=$2 game=$3 news=$4
shift 4
map=$(<"${2%/*}/place.txt")
adapt=()
[ ! -d "${2%/*}/made/adapted" ] || adapt=(--foreign)
scripts=$(dirname "${BASH_SOURCE[0]}")
compiling=

# take OPTION...: sets played and level from what map.sh printed.
take() { played=$2 level=$4; }

# tell [LINE...]: writes to NEWS which level was compiled last, and the lines that say what is wrong with the newest map.
tell() {
    local placement
    placement=$(grep '^map ' "$played/game/data/levels/level$level/places.txt")
    printf '%s\n' "data $played" "level $level" "place level $level $placement" "$@" >"$news.new" && mv "$news.new" "$news"
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
                if (text ~ /^[ \t]*\{/ && ++depth == 1) { ++entity; brush = -1 }
                else if (text ~ /^[ \t]*\{/) ++brush
                if (depth == 2) place[line] = " (entity " entity ", brush " brush ")"
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
    if ! options=$("$scripts/map.sh" "$build" "$data" "$map" "${adapt[@]}" "$@" 2>"$news.errors"); then
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

# Prints the files that the level is made of, with the time and size of each.
state() {
    local files
    mapfile -t files <"$played/watched.txt"
    stat -c '%n %y %s' -- "${files[@]}" 2>/dev/null
}

take "$@"
tell
seen=$(state)
trap 'end_compiling; rm -f "$news" "$news".*; exit' EXIT
trap 'exit 1' INT TERM HUP
start_compiling light
while kill -0 "$game" 2>/dev/null; do
    sleep 0.1
    now=$(state)
    [ "$now" = "$seen" ] && continue
    # An editor may still be writing.
    while sleep 0.05 && seen=$now && now=$(state) && [ "$now" != "$seen" ]; do :; done
    end_compiling
    start_compiling geometry
done

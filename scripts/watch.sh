#!/usr/bin/env bash
# watch.sh BUILD DATA GAME NEWS OPTION...: compiles a map again whenever it changes, or anything that it is made of, until
# the process GAME ends. OPTION... are those that map.sh printed for the level that is played at first; its light is made
# good now. First comes a quick look, then the full light; NEWS tells the game of each (option --watch).
# A fault goes to NEWS, too, and to standard error; the level before it is played on.
set -u
build=$1 data=$2 game=$3 news=$4
shift 4
map=$(<"${2%/*}/place.txt")
adapt=()
[ ! -d "${2%/*}/made/adapted" ] || adapt=(--foreign)
scripts=$(dirname "${BASH_SOURCE[0]}")
compiling=

# take OPTION...: what map.sh prints.
take() { played=$2 level=$4; }

# tell [LINE...]: of the level compiled last, and what is wrong with the newest.
tell() {
    local placement
    placement=$(grep '^map ' "$played/game/data/levels/level$level/places.txt")
    printf '%s\n' "data $played" "level $level" "place level $level $placement" "$@" >"$news.new" && mv "$news.new" "$news"
}

# The faults as the picture shows them: without the folders, for which it has no room, and with the brush that the line
# is in, counted from 0 in its entity as editors do.
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

# compile [--fast]: one level, which the game is told of. False: the map has faults.
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

# The level before is the one that the news name: a compilation that was ended may have told of its quick look.
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

# What the level is made of, with the time of each.
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

#!/usr/bin/env bash
# docs_test.sh BUILD: what README and docs/ name can be had. Every path in the tree exists, every path build/... is made by
# the build or by ./play and ./check, every target is one, every option in a command line is one of that program's --help, every other option in
# the text one of some program's. Every option of the game is told, and so is every key and kind that the tools know; the
# map editor is told of the keys, too.
set -u
build=$1
cd "$(dirname "${BASH_SOURCE[0]}")/../.." || exit 1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
documents=(README.md docs/*.md)
folders='src|host|tools|content|tests|scripts|fuzz|bench|docs|packaging|cmake'
failures=0

fail() {
    echo "$1"
    failures=$((failures + 1))
}

ninja -C "$build" -t targets all | sed -E 's/: [^:]*$//' | grep -v '^/.*/CMakeFiles/' |
    sed -E "s,^$build/,," >"$scratch/made"
# Folders are made with what lies in them.
awk -F/ '{ path = $1; print path; for (i = 2; i <= NF; i++) print path = path "/" $i }' "$scratch/made" | sort -u >"$scratch/paths"

# exists PATH: below the build folder; <name> and N stand for any.
exists() {
    local pattern=${1%/}
    pattern=$(sed -E 's/[].[*^$\\]/\\&/g; s/<[^>]*>|N\b/[^\/]*/g' <<<"$pattern")
    grep -qxE "$pattern" "$scratch/paths" || grep -qE "\\\$build/$pattern\\b|build/$pattern\\b" play check scripts/*.sh
}

for document in "${documents[@]}"; do
    while read -r path; do
        case $path in
        build-debug/fuzz/*) [ -f "fuzz/${path#build-debug/fuzz/}_fuzz.cpp" ] ;;
        build/) ;;
        *.rec) exists "$(sed 's,^build/,,; s,rec$,log,' <<<"$path")" ;;  # the game leaves recordings beside its log
        build/explorer/*) exists tools/explorer ;;  # what it has found
        *) exists "${path#build/}" ;;
        esac || fail "$document: nothing makes $path"
    done < <(grep -oE '\bbuild(-debug)?/[A-Za-z0-9_./<>-]*' "$document" | sed 's/[.]$//' | sort -u)
    while read -r path; do
        compgen -G "$(sed -E 's/<[^>]*>|N\b/*/g' <<<"$path")" >/dev/null || fail "$document: there is no $path"
    done < <(grep -oE "\`($folders)/[A-Za-z0-9_./<>*-]+" "$document" | tr -d '`' | sort -u)
    while read -r target; do
        grep -qxE "(.*/)?$target" "$scratch/made" || fail "$document: there is no target $target"
    done < <(grep -oE -e '--target [a-z_]+' "$document" | sed 's/.* //')
done

# help_of PROGRAM [SUBCOMMAND]: a file with what it says, and nothing for what is not ours.
help_of() {
    local program=$1 file
    [ "$program" = ./play ] && program=build/tarnwick
    [ "$program" = tarnwick ] && program=build/tarnwick
    case $program in
    build/tarnwick | build/tools/*) program=$build/${program#build/} ;;
    scripts/*) ;;
    *) return ;;
    esac
    file=$scratch/help-$(basename "$program")-${2:-}
    [ -f "$file" ] || "$program" ${2:+"$2"} --help >"$file" 2>&1
    echo "$file"
}

has_option() {  # file option
    grep -qE -e "(^|[ ,[])$2([ ,=]|\$|])" "$1"
}

# Lines of commands: those of code blocks that begin with a program.
for document in "${documents[@]}"; do
    while read -r line; do
        line=${line%%#*}
        # Several of them, joined.
        while read -r program first rest; do
            case $program in build/texc | build/tools/texc) file=$(help_of "$program" "$first") ;; *) file=$(help_of "$program") ;; esac
            [ -n "$file" ] || continue
            for option in $(grep -oE -e '(^| )--?[a-z][a-z-]*' <<<" $first $rest"); do
                has_option "$file" "$option" || fail "$document: $program knows no $option: $line"
            done
        done <<<"${line//&&/$'\n'}"
    done < <(grep -E '^( {4})?(\./play|\./check|build/|scripts/)' "$document")
done

for program in tarnwick scripts/fresh_machine.sh $(cd "$build/tools" && find . -maxdepth 1 -type f -executable -printf 'build/tools/%f\n'); do
    cat "$(help_of "$program")"
done >"$scratch/all"
for subcommand in paint level sheet; do cat "$(help_of build/tools/texc $subcommand)" >>"$scratch/all"; done
for document in "${documents[@]}"; do
    for option in $(grep -oE '`--[a-z][a-z-]*' "$document" | tr -d '`' | sort -u); do
        has_option "$scratch/all" "$option" || fail "$document: no program knows $option"
    done
done
for option in $(grep -oE -e '^  --[a-z-]+' "$(help_of tarnwick)" | grep -vE 'help|version'); do
    cat "${documents[@]}" | grep -qE -e "$option\\b" || fail "README and docs say nothing of $option"
done

# known COMMAND...: the names that a tool lists when it refuses one.
known() {
    local said
    said=$("$@" 2>&1 | sed -nE 's/.*(known are|use one of|use) //p')
    [ -n "$said" ] || fail "$1 does not say what it knows" >&2
    tr -d ' ' <<<"$said" | tr , '\n' | grep -vxE 'mapversion|message|wad|origin'  # those that any map editor writes
}

# told_in DOCUMENT: the names on standard input.
told_in() {
    local name
    while read -r name; do
        grep -qF "\`$name\`" "$1" || fail "$1 says nothing of $name"
    done
}

tools=$build/tools
printf '[[layer]]\npattern = "x"\n' >"$scratch/recipe.toml"
told_in docs/materials.md < <(known "$tools/texc" paint "$scratch/recipe.toml" -o "$scratch/out.png")
printf '[[item]]\nkind = "x"\n' >"$scratch/picture.toml"
told_in docs/materials.md < <(known "$tools/picc" "$scratch/picture.toml" -o "$scratch/out.bmp" --materials . --fonts .)
printf '[[layer]]\nkind = "x"\n' >"$scratch/sky.toml"
: >"$scratch/materials.txt"
told_in docs/skies.md < <(known "$tools/skyc" "$scratch/sky.toml" --materials "$scratch/materials.txt" -o "$scratch/sky.sob")

# keys_of CLASS LINE...: the names that mapc lists when it refuses an entity with these lines.
keys_of() {
    local class=$1
    shift
    {
        printf '{\n"classname" "worldspawn"\n'
        [ "$class" = worldspawn ] || printf '}\n{\n"classname" "%s"\n' "$class"
        printf '%s\n' "$@" '}'
    } >"$scratch/keys.map"
    known "$tools/mapc" "$scratch/keys.map" --materials "$scratch/materials.txt" --output "$scratch/level"
}

for class in worldspawn func_detail func_terrain func_instance info_route light; do
    keys_of $class '"x" "1"' >"$scratch/keys"
    told_in docs/authoring.md <"$scratch/keys"
    while read -r key; do
        sed -n "/= $class :/,/^]/p" content/editor/tarnwick.fgd | grep -qE "^ +$key\(" ||
            fail "content/editor/tarnwick.fgd: the class $class lacks the key $key"
    done <"$scratch/keys"
done
keys_of light '"origin" "0 0 0"' '"style" "x"' >"$scratch/keys"
told_in docs/authoring.md <"$scratch/keys"
while read -r style; do
    grep -qE "^ +\"$style\" :" content/editor/tarnwick.fgd || fail "content/editor/tarnwick.fgd lacks the style $style"
done <"$scratch/keys"
[ $failures = 0 ]

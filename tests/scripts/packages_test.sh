#!/usr/bin/env bash
# packages_test.sh BUILD: everything that the build read outside of the tree (headers, libraries, CMake's packages), and
# every program that the scripts call, belongs to a Debian package that scripts/packages.sh brings, directly or as a
# dependency, or to the base system. Status 77: not on Debian.
set -u
build=$1
cd "$(dirname "${BASH_SOURCE[0]}")/../.." || exit 1
command -v dpkg-query >/dev/null && command -v ninja >/dev/null || exit 77
failures=0
optional="clang-format|sudo|git"  # the scripts do without the first two, and whoever has a clone has git

# closure WHAT: packages.sh's list for WHAT, the base system, and all that they depend on.
closure() {
    { scripts/packages.sh --list "$1" | sed "s/VERSION/$(clang++ -dumpversion | cut -d. -f1)/"; } |
        awk -v RS='\n' -F'|' '
        function names(list, out,   n, i, parts) {
            n = split(list, parts, /[,;]/)
            for (i = 1; i <= n; i++) { gsub(/\([^)]*\)|:[a-z0-9]+| /, "", parts[i]); out[i] = parts[i] }
            return n
        }
        NR == FNR { wanted[++count] = $1; next }
        {
            gsub(/ \| /, ",", $0)
            split($1, name, ":")
            depends[name[1]] = $4
            if ($2 == "yes" || $3 == "required") wanted[++count] = name[1]
            for (i = names($5, provided); i > 0; i--) provider[provided[i]] = provider[provided[i]] "," name[1]
        }
        END {
            for (i = 1; i <= count; i++) {
                if (!(wanted[i] in depends)) { m = names(provider[wanted[i]], found) } else { m = 0 }
                for (; m > 0; m--) if (found[m] != "") wanted[++count] = found[m]
                if (seen[wanted[i]]++) continue
                print wanted[i]
                for (m = names(depends[wanted[i]], found); m > 0; m--) if (!seen[found[m]]) wanted[++count] = found[m]
            }
        }' - <(dpkg-query -W -f '${binary:Package}|${Essential}|${Priority}|${Depends},${Pre-Depends}|${Provides}\n') |
        sort -u
}

# packages_of: for each file a line "package file"; those of no package have "none". dpkg knows a file by one of its
# names only, and not by links that lead to it.
packages_of() {
    local file real
    while read -r file; do
        real=$(realpath -m "$file")
        printf '%s %s\n' "$file" "$file" "$file" "$real" "$file" "${real#/usr}"
    done >"$scratch/names"
    cut -d' ' -f2 "$scratch/names" | sort -u | xargs dpkg-query -S 2>/dev/null | grep -v '^diversion' |
        awk 'NR == FNR { name = $NF; sub(/[,:].*/, ""); owner[name] = $1; next }
             owner[$2] { found[$1] = owner[$2] }
             { asked[$1] }
             END { for (path in asked) print (found[path] ? found[path] : "none"), path }' - "$scratch/names"
}

# refuse WHAT: of the lines "package file" in owners the first of each package that is not in the closure for WHAT.
refuse() {
    local package file
    [ -f "$scratch/$1" ] || closure "$1" >"$scratch/$1"
    while read -r package file; do
        grep -qxF "$package" "$scratch/$1" && continue
        echo "$file, of the package $package: name it in scripts/packages.sh, in the list for $1"
        failures=$((failures + 1))
    done < <(sort "$scratch/owners" | awk '!seen[$1]++')
}

# The programs that a script calls: words where a command may stand that are programs on this machine.
programs_in() {
    sed -E 's/(^|[[:blank:]])#.*//' "$1" |
        grep -oE '((^|[;&(!`]|\| )[[:blank:]]*|[^a-z](then|do|else|if|while|exec|env|nice|job|as_root|sudo|step "[^"]*"|inside "[^"]*" [a-z"$]+)[[:blank:]]+|sh -c .)[a-z][a-z0-9_+-]+([[:blank:];)]|$)' |
        sed -E 's/[[:blank:];)]$//' | grep -oE '[a-z][a-z0-9_+-]*$' | sort -u |
        while read -r word; do
            [ "$(type -t "$word")" = file ] && type -P "$word"
        done
}

list_for() {
    case $1 in
    play | packaging/*) echo play ;;
    */fresh_machine.sh) echo fresh ;;
    */package.sh) echo package ;;
    */other_processors.sh) echo processors ;;
    check | */web.sh) echo browser ;;
    *) echo check ;;
    esac
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
{
    ninja -C "$build" -t deps | sed -n 's/^    //p'
    ninja -C "$build" -t inputs all
    ninja -C "$build" -t inputs build.ninja
} | grep '^/' | grep -vF -e "$PWD/" -e "$build/" | sort -u >"$scratch/read"
[ "$(wc -l <"$scratch/read")" -gt 500 ] || { echo "too few files: is $build built?" && exit 1; }
# Of CMake's files those that find a package; it takes in others that happen to lie beside them.
grep -vE '\.cmake$' "$scratch/read" >"$scratch/files"
grep -E '[cC]onfig\.cmake$' "$scratch/read" >>"$scratch/files"
packages_of <"$scratch/files" >"$scratch/owners"
refuse check
for script in play check scripts/*.sh packaging/*.sh tests/scripts/*.sh .ci/run; do
    programs_in "$script" | grep -vE "/($optional)$" | packages_of >"$scratch/owners"
    refuse "$(list_for "$script")"
done
[ $failures = 0 ]

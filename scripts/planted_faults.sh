#!/usr/bin/env bash
# planted_faults.sh [--build DIR] [--limit SECONDS] [--tests "NAME..."] [REGEX]: would the tests notice? Plants each fault
# listed in planted_faults.txt (only those in whose lines the regular expression occurs, when one is given) in a copy of
# the tree, one at a time, builds what it touches and runs the tests that should see it, up to the first that fails.
# Tests that do not end within the limit (600 s) have seen it too. Before that the tests must pass without a fault.
# --tests runs these instead of each fault's own: what would they see alone?
# Status: 0 all were found, 1 some were missed, 2 the list is wrong: an old text is not in its file exactly once, a
# fault does not compile, or the tests fail without one.
# The copy and its build lie in build/planted (--build); the working tree is only read. A fault acts with your rights, so
# no test named in the list may hand the code anything outside the test's own folder that would be missed.
set -u
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 2
list=scripts/planted_faults.txt place=$PWD/build/planted limit=600 filter=. instead=
while [ $# -gt 0 ]; do
    case $1 in
    --build) place=$2 && shift ;;
    --limit) limit=$2 && shift ;;
    --tests) instead=$2 && shift ;;
    --*) sed -n '2,11s/^# //p' "$0" && exit 2 ;;
    *) filter=$1 ;;
    esac
    shift
done
copy=$place/source build=$place/build log=$place/log.txt
mkdir -p "$copy" "$build"
files=() olds=() news=() tests=() sights=()

fail() {
    echo "planted_faults.sh: $1" >&2
    exit 2
}

add_fault() {  # line; takes what has been read before it
    [ -n "$file" ] || return 0
    [ -f "$file" ] || fail "$list:$1: there is no $file"
    local text rest
    text=$(<"$file")
    rest=${text#*"$old"}
    [ -n "$old" ] && [ "$rest" != "$text" ] || fail "$list:$1: the old text above is not in $file"
    [ "${rest#*"$old"}" = "$rest" ] || fail "$list:$1: the old text above is more than once in $file"
    [ -n "$suites" ] && [ -n "$sight" ] || fail "$list:$1: there is no tests: or seen: above"
    grep -qE -- "$filter" <<<"$file $old $new $suites $sight" || return 0
    files+=("$file") olds+=("$old") news+=("$new") tests+=("${instead:-$suites}") sights+=("$sight")
}

read_list() {
    local text number=0 file='' old='' new='' suites='' sight=''
    while IFS= read -r text || [ -n "$text" ]; do
        number=$((number + 1))
        case $text in
        '#'*) ;;
        '') add_fault $number && file='' old='' new='' suites='' sight='' ;;
        'old: '*) old+=${old:+$'\n'}${text#old: } ;;
        'new: '*) new+=${new:+$'\n'}${text#new: } ;;
        'old:') old+=${old:+$'\n'} ;;
        'new:') new+=${new:+$'\n'} ;;
        'tests: '*) suites=${text#tests: } ;;
        'seen: '*) sight=${text#seen: } ;;
        src/* | host/* | tools/*) file=$text ;;
        *) fail "$list:$number: neither a file of src/, host/ or tools/ nor old:, new:, tests: or seen:" ;;
        esac
    done <$list
    add_fault $number
    [ ${#files[@]} -gt 0 ] || fail "no fault has \"$filter\" in it"
}

# Only what differs: its new time makes it built again.
copy_tree() {
    local file
    (cd "$copy" && find . -type f -printf '%P\0') | while IFS= read -r -d '' file; do
        [ -e "$file" ] || rm "$copy/$file"
    done
    git ls-files -z --cached --others --exclude-standard | while IFS= read -r -d '' file; do
        [ -f "$file" ] || continue
        cmp -s "$file" "$copy/$file" || { mkdir -p "$copy/$(dirname "$file")" && cp "$file" "$copy/$file"; }
    done
}

configure() {
    local data=$PWD/build/data
    [ -f build/CMakeCache.txt ] && data=$(sed -n 's/^TARNWICK_DATA:PATH=//p' build/CMakeCache.txt)
    cmake -S "$copy" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O1 -DNDEBUG" \
        -DTARNWICK_WERROR=OFF -DTARNWICK_DATA="$data" >"$log" 2>&1 || fail "the copy cannot be configured, see $log"
}

# A test's name begins with the folder of its program: the longest part of it that names one.
programs_of() {
    local suite name
    for suite in "$@"; do
        name=test_${suite//\//_}
        while ! grep -qx "$name" <<<"$programs"; do
            [ "${name%_*}" != "$name" ] || fail "no test program has the tests \"$suite\""
            name=${name%_*}
        done
        echo "$name"
    done | sort -u
}

# Tests; status 0: they pass, 1: one fails, its name is in $first; 2: they do not compile
run_tests() {
    local suites targets regex status
    read -ra suites <<<"$1"
    targets=$(programs_of "${suites[@]}") || exit 2
    # shellcheck disable=SC2086  # one word a target
    nice ninja -C "$build" $targets >>"$log" 2>&1 || return 2
    regex="^($(sed 's/ /|/g' <<<"${suites[*]}"))"
    nice timeout "$limit" ctest --test-dir "$build" -R "$regex" --stop-on-failure -j 2 >"$place/tests.txt" 2>&1
    status=$?
    cat "$place/tests.txt" >>"$log"
    [ $status = 0 ] && return 0
    first=$(sed -n 's|^\t *[0-9]* - \([^#]*[^ #]\) .*|\1|p' "$place/tests.txt" | head -n 1)
    [ $status = 124 ] && first='they never end'
    return 1
}

planted='' first=''
remove_fault() {
    [ -z "$planted" ] || cp "$planted" "$copy/$planted"
    planted=''
}
trap remove_fault EXIT
trap 'exit 2' INT TERM HUP

plant() {  # number of the fault
    local text
    planted=${files[$1]}
    text=$(<"$planted")
    printf '%s\n' "${text%%"${olds[$1]}"*}${news[$1]}${text#*"${olds[$1]}"}" >"$copy/$planted"
}

read_list
copy_tree
configure
programs=$(ninja -C "$build" -t targets all | sed -n 's/^\(test_[a-z_]*\): phony$/\1/p')
run_tests "$(printf '%s\n' "${tests[@]}" | tr ' ' '\n' | sort -u | xargs)" ||
    fail "without any fault ${first:-something} fails or does not compile, see $log"

found=0 missed=0 broken=0 table=''
for i in "${!files[@]}"; do
    plant "$i"
    first=''
    run_tests "${tests[$i]}"
    case $? in
    0) result='missed' && missed=$((missed + 1)) ;;
    1) result='found' && found=$((found + 1)) ;;
    *) result='BROKEN' first="does not compile, see $log" && broken=$((broken + 1)) ;;
    esac
    remove_fault
    printf '%3d of %d  %-7s %-30s %s\n' $((i + 1)) ${#files[@]} $result "${files[$i]}" "$first"
    table+=$(printf '%-7s %-30s %s' $result "${files[$i]#src/}" "${sights[$i]}")$'\n'
done
echo
printf '%s' "$table" | sort -s -k1,1
echo "$found found, $missed missed, $broken errors in the list"
[ $broken = 0 ] || exit 2
[ $missed = 0 ]

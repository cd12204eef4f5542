#!/bin/sh
# man_page.sh PROGRAM SECTION VERSION DESCRIPTION OUTPUT.gz [MORE]: writes the manual page of a program, compressed. It is
# made from what the program's --help prints, so that the two cannot differ. DESCRIPTION is used where the help has no
# first line; MORE is a file of further sections in troff's language.
set -eu
program=$1 section=$2 version=$3 description=$4 output=$5 more=${6:-}
name=$(basename "$program")
PATH=$(dirname "$program"):$PATH  # called by its name alone, it does not show where it was built

all_help() {
    "$name" --help
    for command in $("$name" --help | sed -n '/^Subcommands:/,$ s/^  \([a-z]*\) .*/\1/p'); do
        echo "Subcommand: $command"
        "$name" "$command" --help
    done
}

all_help | awk -v name="$name" -v section="$section" -v version="$version" -v description="$description" '
function plain(text) {
    gsub(/\\/, "\\e", text)
    gsub(/-/, "\\-", text)
    sub(/^\./, "\\\\\\&.", text)
    return text
}
function head() {
    sub(/\.$/, "", description)
    printf ".TH %s %s \"\" \"tarnwick %s\"\n.SH NAME\n%s \\- %s\n", toupper(name), section, version, name,
           plain(tolower(substr(description, 1, 1)) substr(description, 2))
    print ".SH SYNOPSIS"
    started = 1
}
/^Subcommand: / { command = $2; expect = 1; next }
expect && NF { printf ".SH \"%s %s\"\n%s.\n.PP\n", name, command, plain($0); expect = 0; next }
!started && !/^[Uu]sage:/ { if (NF) description = $0; next }
/^[Uu]sage:/ {
    if (!started) head()
    sub(/^[Uu]sage: [^ ]* ?/, "")
    if (command) sub("^" command " ?", "")
    printf ".B %s%s\n%s\n", name, command ? " " command : "", plain($0)
    next
}
/^[A-Z][a-z]*:$/ { sub(/:$/, ""); printf ".%s %s\n", command ? "SS" : "SH", toupper($0); titled = 1; next }
/^  [^ ]/ {
    if (!titled) { print ".SH OPTIONS"; titled = 1 }
    line = substr($0, 3)
    gap = match(line, /  +[^ ]/)
    term = gap ? substr(line, 1, gap - 1) : line
    sub(/\]=[^ ]*$/, "]", term)  # some defaults are those of the machine
    printf ".TP\n.B %s\n", plain(term)
    if (gap) { text = substr(line, gap); sub(/^ +/, "", text); print plain(text) }
    next
}
NF { sub(/^ +/, ""); print plain($0) }
' >"$output.part"
[ -z "$more" ] || cat "$more" >>"$output.part"
gzip -9n <"$output.part" >"$output"
rm "$output.part"

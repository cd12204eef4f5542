#!/usr/bin/env bash
# packages.sh WHAT: looks for everything that a command needs. Installs what is missing on Debian and its relatives, names it
# elsewhere. Status 1: something is still missing. packages.sh --list WHAT prints the Debian packages. WHAT is one of
#   play        ./play
#   check       ./check, which needs those of ./play, too
#   fresh       scripts/fresh_machine.sh
#   package     scripts/package.sh
#   processors  scripts/other_processors.sh
#   web         ./play --web
#   browser     the part of ./check that tries the page
set -u

# Each line: how to find a thing, its name, and the Debian package that has it. Of several names with bars between them one
# is enough. How to find it: program, on the path; module, known to pkg-config; header, found by the compiler; font, a font
# file; runtime, a library of clang's own; library, known to the loader; driver, an OpenGL driver that draws without a
# graphics card.
PLAY="
program c++          g++
program cmake        cmake
program ninja        ninja-build
program pkg-config   pkg-config
module  sdl2         libsdl2-dev
module  gl           libgl-dev
module  libpng       libpng-dev
module  sndfile      libsndfile1-dev
module  fmt          libfmt-dev
module  CLI11        libcli11-dev
module  imagequant   libimagequant-dev
module  freetype2    libfreetype-dev
module  tomlplusplus libtomlplusplus-dev
header  tiny_gltf.h  libtinygltf-dev
header  nlohmann/json.hpp nlohmann-json3-dev
header  meshoptimizer.h libmeshoptimizer-dev
header  embree4/rtcore.h|embree3/rtcore.h libembree-dev
font    DejaVuSans   fonts-dejavu-core
"
CHECK="
program clang++      clang
runtime fuzzer       libclang-rt-VERSION-dev
module  gtest        libgtest-dev
module  x11          libx11-dev
program Xvfb         xvfb
program xdotool      xdotool
program openbox      openbox
program weston       weston
library libEGL.so.1  libegl1
driver  swrast       libgl1-mesa-dri
"
FRESH="
program debootstrap  debootstrap
program git          git
"
PACKAGE="
program git          git
program dpkg-shlibdeps dpkg-dev
program file         file
program xz           xz-utils
"
WEB="
program em++         emscripten
program node         nodejs
program oggenc       vorbis-tools
"
BROWSER="
program chromium     chromium
"
PROCESSORS="
program aarch64-linux-gnu-g++ g++-aarch64-linux-gnu
program qemu-aarch64|qemu-aarch64-static qemu-user
"

present() {  # kind name
    case $1 in
    program)
        local program
        for program in ${2//|/ }; do command -v "$program" >/dev/null && return; done
        return 1
        ;;
    module) command -v pkg-config >/dev/null && pkg-config --exists "$2" ;;
    header)
        local header
        for header in ${2//|/ }; do
            echo "#include <$header>" | c++ -E -x c++ - >/dev/null 2>&1 && return
        done
        return 1
        ;;
    font) find /usr/share/fonts -name "$2.ttf" 2>/dev/null | grep -q . ;;
    library) /sbin/ldconfig -p | grep -q "$2" ;;
    driver) ls /usr/lib/*/dri/"$2"_dri.so >/dev/null 2>&1 ;;
    runtime) ! command -v clang++ >/dev/null || ls "$(clang++ -print-runtime-dir)/libclang_rt.$2"* >/dev/null 2>&1 ;;
    esac
}

find_missing() {  # sets names and packages
    names=() packages=()
    while read -r kind name package; do
        [ -z "$kind" ] && continue
        present "$kind" "$name" && continue
        [ "$kind" = runtime ] && package=${package/VERSION/$(clang++ -dumpversion | cut -d. -f1)}
        names+=("$name") packages+=("$package")
    done <<<"$needed"
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

install_missing() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y "${packages[@]}" && return
    as_root apt-get update && as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y "${packages[@]}"
}

# Names the packages that the system's lists do not have: the system is too old, or not like Debian.
unknown_packages() {
    local package
    apt-cache show g++ >/dev/null 2>&1 || return  # no lists at all
    for package in "${packages[@]}"; do
        apt-cache show "$package" >/dev/null 2>&1 || echo -n " $package"
    done
}

list=
[ "${1:-}" = --list ] && list=1 && shift
case ${1:-} in
play) needed=$PLAY ;;
check) needed=$PLAY$CHECK ;;
fresh) needed=$FRESH ;;
package) needed=$PLAY$PACKAGE ;;
processors) needed=$PLAY$PROCESSORS ;;
web) needed=$PLAY$WEB ;;
browser) needed=$PLAY$CHECK$WEB$BROWSER ;;
*)
    echo "usage: packages.sh [--list] play|check|fresh|package|processors|web|browser" >&2
    exit 2
    ;;
esac
if [ -n "$list" ]; then
    awk 'NF { print $3 }' <<<"$needed"
    exit
fi
find_missing
if [ ${#names[@]} = 0 ]; then exit 0; fi

# Turns what apt or sudo said into a line that tells what to do.
remedy() {
    local unknown by_hand="sudo apt-get install ${packages[*]}"
    if grep -qE 'Temporary failure|Could not (resolve|connect)|Unable to connect|Failed to fetch|Connection (failed|timed out)' "$log"; then
        echo "they could not be fetched; run this again when the network and the mirror of apt's sources answer"
    elif grep -qE 'No space left|enough free space' "$log"; then
        echo "the disk has no room for them; free some and run this again"
    elif grep -qE 'Could not get lock' "$log"; then
        echo "another program is installing packages; run this again when it has ended"
    elif grep -qE '^sudo: |sudoers' "$log"; then
        echo "you may not use sudo here; ask somebody who may for: $by_hand"
    else
        unknown=$(unknown_packages)
        if [ -n "$unknown" ]; then
            echo "this system has no package$unknown; Debian 12 and Ubuntu 24.04 have them all, Ubuntu 22.04 has not"
        else
            grep -m 1 -E '^E: ' "$log"
            echo "please install them; on Debian and Ubuntu: $by_hand"
        fi
    fi
}

log=$(mktemp) || exit 1
trap 'rm -f "$log"' EXIT
if command -v apt-get >/dev/null && { [ "$(id -u)" = 0 ] || command -v sudo >/dev/null; }; then
    # Two passes: which runtime package is missing is known only once clang is installed.
    for _ in 1 2; do
        [ ${#names[@]} = 0 ] && break
        echo "Installing ${packages[*]}"
        [ "$(id -u)" = 0 ] || echo "  with sudo, which may ask for your password"
        install_missing >"$log" 2>&1 || break
        find_missing
    done
fi
[ ${#names[@]} = 0 ] && exit
echo "Missing here: ${names[*]}: $(remedy)" >&2
exit 1

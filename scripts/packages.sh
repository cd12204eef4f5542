#!/usr/bin/env bash
# packages.sh play|check: is everything here that the build (play) or the build and its tests (check) need? On Debian
# and its relatives what is missing is installed, elsewhere it is named. Status 1: something is still missing.
set -u

# What is needed, how to find it, and the Debian package that has it. program: on the path. module: known to
# pkg-config. header: found by the compiler. font: a font file. runtime: a library of clang's own. library: known to the
# loader. driver: OpenGL's, that draws without a graphics card.
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
header  meshoptimizer.h libmeshoptimizer-dev
header  embree3/rtcore.h libembree-dev
font    DejaVuSans   fonts-dejavu-core
"
CHECK="
program clang++      clang
runtime fuzzer       libclang-rt-14-dev
module  gtest        libgtest-dev
module  x11          libx11-dev
program Xvfb         xvfb
program xdotool      xdotool
library libEGL.so.1  libegl1
driver  swrast       libgl1-mesa-dri
"

present() {  # kind name
    case $1 in
    program) command -v "$2" >/dev/null ;;
    module) command -v pkg-config >/dev/null && pkg-config --exists "$2" ;;
    header) echo "#include <$2>" | c++ -E -x c++ - >/dev/null 2>&1 ;;
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
        names+=("$name") packages+=("$package")
    done <<<"$needed"
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

install_missing() {
    export DEBIAN_FRONTEND=noninteractive
    as_root apt-get install -y "${packages[@]}" && return
    as_root apt-get update && as_root apt-get install -y "${packages[@]}"
}

needed=$PLAY
[ "${1:-}" = check ] && needed=$PLAY$CHECK
find_missing
if [ ${#names[@]} = 0 ]; then exit 0; fi

log=$(mktemp)
if command -v apt-get >/dev/null && { [ "$(id -u)" = 0 ] || command -v sudo >/dev/null; }; then
    # Twice: what clang brings along shows only once it is here.
    for _ in 1 2; do
        [ ${#names[@]} = 0 ] && break
        echo "Installing ${packages[*]}"
        [ "$(id -u)" = 0 ] || echo "  with sudo, which may ask for your password"
        install_missing >"$log" 2>&1 || break
        find_missing
    done
fi
if [ ${#names[@]} != 0 ]; then
    tail -n 5 "$log"
    echo "Missing here: ${names[*]}"
    echo "Please install them; on Debian and Ubuntu: sudo apt-get install ${packages[*]}"
fi
rm -f "$log"
[ ${#names[@]} = 0 ]

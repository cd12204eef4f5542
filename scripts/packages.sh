#!/usr/bin/env bash
# packages.sh play|check: is everything here that the build (play) or the build and its tests (check) need? On Debian
# and its relatives what is missing is installed, elsewhere it is named. Status 1: something is still missing.
set -u

# What is needed, how to find it, and the Debian package that has it. program: on the path. module: known to
# pkg-config. header: found by the compiler, one of those between the bars. font: a font file. runtime: a library of
# clang's own. library: known to the loader. driver: OpenGL's, that draws without a graphics card.
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
library libEGL.so.1  libegl1
driver  swrast       libgl1-mesa-dri
"

present() {  # kind name
    case $1 in
    program) command -v "$2" >/dev/null ;;
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

# Those that the system's lists do not have: it is too old, or nothing like Debian.
unknown_packages() {
    local package
    apt-cache show g++ >/dev/null 2>&1 || return  # no lists at all
    for package in "${packages[@]}"; do
        apt-cache show "$package" >/dev/null 2>&1 || echo -n " $package"
    done
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
    unknown=$(unknown_packages)
    if [ -n "$unknown" ]; then
        echo "This system has no package$unknown; Debian 12 and Ubuntu 24.04 have them all, Ubuntu 22.04 has not"
    else
        echo "Please install them; on Debian and Ubuntu: sudo apt-get install ${packages[*]}"
    fi
fi
rm -f "$log"
[ ${#names[@]} = 0 ]

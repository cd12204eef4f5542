#!/usr/bin/env bash
# Does the game play the same on 64-bit ARM? Builds it for that with Debian's cross compiler, in build-arm64, runs it
# under qemu's emulation of the processor on the tests' levels, in both renderers, and compares its traces, pictures'
# digests included, with those of this machine's own build, byte for byte. Needs Debian; its apt fetches the libraries
# for ARM (100 MB), which are unpacked in the build folder and not installed. Ends with "N passed, N failed".
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build-arm64
ARM64_LIBRARIES=$build/libraries
export ARM64_LIBRARIES
frames=200

give_up() {
    echo "other_processors.sh: $*" >&2
    exit 1
}

# apt with lists, packages and a system of its own, where nothing is installed.
arm64_apt() {
    APT_CONFIG=$build/apt/apt.conf apt-get -qq "$@"
}

fetch_libraries() {
    local package link
    [ -f "$ARM64_LIBRARIES/complete" ] && return
    rm -rf "$build/apt" "$ARM64_LIBRARIES"
    mkdir -p "$build"/apt/{lists,archives}/partial "$ARM64_LIBRARIES"/usr/{bin,sbin,lib}
    : >"$build/apt/status"
    cat >"$build/apt/apt.conf" <<END
Dir::State::Lists "$build/apt/lists";
Dir::State::Status "$build/apt/status";
Dir::Cache::Archives "$build/apt/archives";
APT::Architecture "arm64";
APT::Architectures { "arm64"; };
APT::Install-Recommends "false";
END
    arm64_apt update && arm64_apt install --download-only -y libsdl2-dev libgl-dev libpng-dev libsndfile1-dev || return
    ln -s usr/lib usr/bin usr/sbin "$ARM64_LIBRARIES/"
    for package in "$build"/apt/archives/*.deb; do
        dpkg-deb --fsys-tarfile "$package" | tar -C "$ARM64_LIBRARIES" -x --keep-directory-symlink || return
    done
    # Absolute links to /lib/... would lead to this machine's own libraries.
    find "$ARM64_LIBRARIES/usr/lib/aarch64-linux-gnu" -type l -lname '/*' | while read -r link; do
        ln -sf "$ARM64_LIBRARIES$(readlink "$link")" "$link"
    done
    touch "$ARM64_LIBRARIES/complete"
}

build_both() {
    cd "$root" && { [ -f build/build.ninja ] || cmake --preset play; } && ninja -C build tarnwick &&
        cmake -S . -B "$build" -G Ninja --toolchain cmake/arm64.cmake -DCMAKE_BUILD_TYPE=Release -DTARNWICK_TESTS=OFF &&
        ninja -C "$build" tarnwick
}

passed=0 failed=0
# same_trace NAME OPTION...: compares the traces of both builds
same_trace() {
    local name=$1 started=$SECONDS
    shift
    printf '%-44s ' "$name"
    local options=(--headless --data "$root/tests/levels/data" --log "$build/game.log" "$@")
    if "$root/build/tarnwick" "${options[@]}" --trace "$build/x86.jsonl" &&
        "$qemu" -L "$ARM64_LIBRARIES" "$build/tarnwick" "${options[@]}" --trace "$build/arm64.jsonl" &&
        [ -s "$build/x86.jsonl" ] && cmp "$build/x86.jsonl" "$build/arm64.jsonl"; then
        passed=$((passed + 1))
        echo "the same $(wc -l <"$build/x86.jsonl") frames, $((SECONDS - started)) s"
    else
        failed=$((failed + 1))
        echo "FAILED"
    fi
}

"$root/scripts/packages.sh" processors || exit 1
qemu=$(command -v qemu-aarch64 || command -v qemu-aarch64-static)
mkdir -p "$build"
echo "Fetching the libraries and building; the log is $build/build.log"
{ fetch_libraries && build_both; } >"$build/build.log" 2>&1 || {
    tail -n 20 "$build/build.log"
    give_up "the game could not be built for ARM, see above"
}
file=$(od -An -tx1 -j18 -N2 "$build/tarnwick")
[ "$file" = " b7 00" ] || give_up "$build/tarnwick is no program for 64-bit ARM"

cd "$build" || exit 1  # scripts leave their pictures here
for renderer in software accelerator; do
    same_trace "alpha, $renderer" --level 1 --renderer $renderer --script "$root"/tests/golden/alpha.txt --frames $frames
    same_trace "beta, $renderer" --level 2 --renderer $renderer --script "$root"/tests/golden/beta.txt --frames $frames
    same_trace "alpha, free camera, $renderer" --level 1 --renderer $renderer --script "$root"/scripts/tour.txt --frames $frames
done
for recording in "$root"/tests/replay/*.rec; do
    [ -f "$recording" ] && same_trace "$(basename "$recording")" --replay "$recording"
done

echo
echo "$passed passed, $failed failed"
[ $failed = 0 ]

#!/usr/bin/env bash
# Makes packages of the last commit in build-package/packages: tarnwick_VERSION_ARCHITECTURE.deb with the game,
# tarnwick-tools_... with the tools for authors, and tarnwick-VERSION-ARCHITECTURE.tar.xz, a folder with the game that
# plays wherever it is unpacked. With --web it makes build-package/packages/web instead: the page that plays in a browser, as
# a folder for any server of files. The same commit gives the same bytes in any folder. Status 1: something failed.
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=$PWD/build-package
packages=$build/packages

scripts/packages.sh package
# All files in packages get the time of the commit.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH
[ -z "$(git status --porcelain)" ] || echo "package.sh: changes that are not committed are packed, too"
umask 022

# No packed file may hold a path of this machine, since it would differ on the next one.
refuse_own_path() {  # file...
    if grep -lF "$PWD" -- "$@"; then
        echo "package.sh: these hold the path of this folder; packages of another folder would differ" >&2
        exit 1
    fi
}
export -f refuse_own_path

mkdir -p "$build"
exec 9>"$build/.lock"
flock 9
cmake --preset package
ninja -C "$build"
if [ "${1:-}" = --web ]; then
    mkdir -p "$packages"
    scripts/web.sh --data "$build/data" --output "$packages/web"
    refuse_own_path build-web/tarnwick.wasm build-web/tarnwick.mjs
    exit
fi
rm -rf "$packages" "$build/stage"

(cd "$build" && cpack -G DEB)

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
name=tarnwick-$version-$(dpkg --print-architecture)
DESTDIR='' cmake --install "$build" --component game --strip --prefix "$build/stage/$name" >/dev/null
tar -C "$build/stage" --sort=name --format=posix --pax-option=delete=atime,delete=ctime --owner=0 --group=0 \
    --numeric-owner --mtime="@$SOURCE_DATE_EPOCH" --mode=u=rwX,go=rX -cJf "$packages/$name.tar.xz" "$name"
rm -rf "$build/stage" "$packages/_CPack_Packages" "$build/_CPack_Packages"

find "$build/tarnwick" "$build/tools" "$build/data" "$build/man" -type f -not -name '*.a' -not -name '*.cmake' \
    -not -path '*/CMakeFiles/*' -print0 | xargs -0 bash -c 'refuse_own_path "$@"' package.sh
cd "$packages"
sha256sum -- *

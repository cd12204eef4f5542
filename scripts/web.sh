#!/usr/bin/env bash
# web.sh [--serve] [--port PORT] [--data FOLDER] [--output FOLDER]: builds the page that plays in a browser, from the content
# that ./play has built (--data), into build-web/page (--output). With --serve it serves the page on this machine only, at
# PORT (8080).
set -u
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build-web
data=$root/build/data
output=$build/page
serve='' port=8080
while [ $# != 0 ]; do
    case $1 in
    --serve) serve=1 ;;
    --port) port=${2:?} && shift ;;
    --data) data=${2:?} && shift ;;
    --output) output=${2:?} && shift ;;
    *)
        echo "usage: web.sh [--serve] [--port PORT] [--data FOLDER] [--output FOLDER]"
        [ "$1" = --help ]
        exit
        ;;
    esac
    shift
done

"$root/scripts/packages.sh" web || exit 1
export NODE_PATH=/usr/share/nodejs  # where Debian keeps the modules that emscripten needs
mkdir -p "$build"
exec 9>"$build/.lock"
flock 9
{ env -C "$root" cmake --preset web && ninja -C "$build" tarnwick; } >"$build/build.log" 2>&1 || {
    tail -n 30 "$build/build.log"
    echo "web.sh: the page's program could not be built, see above" >&2
    exit 1
}
node "$root/host/backends/web/pack_page.mjs" "$build" "$data" "$root/src/records/levels.h" "$output" || exit 1
exec 9>&-
echo "The page is in $output"
if [ -n "$serve" ]; then exec node "$root/host/backends/web/serve_page.mjs" "$output" "$port"; fi

#!/usr/bin/env bash
# editor.sh FOLDER: sets up FOLDER, which already holds all/materials, as the folder that a map editor takes for the game's.
# Makes a folder with the materials of each level, of which a map chooses one as its mod, and games/tarnwick with the
# editor's configuration of the game, in which @ROOT@ becomes the path of this repository.
set -eu
folder=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

for list in "$root"/content/levels/*/textures.toml; do
    level=$folder/$(basename "$(dirname "$list")")
    rm -rf "$level"
    mkdir -p "$level/materials"
    # All quoted names are materials, but for those of the skin.
    grep -v '^skin' "$list" | grep -oE '"[a-z0-9_]+"' | tr -d '"' | sort -u |
        sed 's,.*,../../all/materials/&.png,' | xargs ln -s -t "$level/materials"
done
mkdir -p "$folder/games/tarnwick"
cp "$root/content/editor"/{GameConfig.cfg,tarnwick.fgd} "$folder/games/tarnwick"
for profiles in "$root/content/editor"/*Profiles.cfg; do
    text=$(<"$profiles")
    echo "${text//@ROOT@/$root}" >"$folder/games/tarnwick/${profiles##*/}"
done

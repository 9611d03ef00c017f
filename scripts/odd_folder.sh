#!/usr/bin/env bash
# Shows that the scripts work in a checkout whose folder has an umlaut, blanks, brackets, an ampersand and a quote in its
# name: builds the workbench there and plays a scene of the tour.
#
#   scripts/odd_folder.sh [COMMIT]     default: HEAD
set -euo pipefail
. "$(dirname "$0")/common.sh"
scripts/setup.sh run

scratch=$(mktemp -d)
folder="$scratch/Prüf & st'and (1)"
trap '"$folder/scripts/wine.sh" --stop || true; git worktree remove --force "$folder" || true; rm -rf "$scratch"' EXIT
git worktree add --quiet --detach "$folder" "${1:-HEAD}"
cd "$folder"
step "Build in $folder"
cmake --preset windows-x86 -DORBIKON_TESTS=OFF >"$scratch/log" &&
    cmake --build --preset windows-x86 --target workbench >>"$scratch/log" || { tail -n 40 "$scratch/log"; exit 1; }
step 'A scene of the tour there'
scripts/wine.sh build/windows-x86/workbench/tour.exe --out "$folder/out/tour" --only view

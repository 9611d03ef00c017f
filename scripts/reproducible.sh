#!/usr/bin/env bash
# Builds a commit in two folders of different names, and compares what is shipped, to the byte: plug-in and tools of both
# bit widths.
#
#   scripts/reproducible.sh [COMMIT]     default: HEAD
set -euo pipefail
. "$(dirname "$0")/common.sh"
scripts/setup.sh packaging
unset CMAKE_CXX_COMPILER_LAUNCHER  # a compiler cache would compare the first build with itself

scratch=$(mktemp -d)
folders=("$scratch/one" "$scratch/another, longer")
trap 'for folder in "${folders[@]}"; do git worktree remove --force "$folder" 2>/dev/null || true; done; rm -rf "$scratch"' EXIT
artefacts=(windows-x86/orbikon_creo.dll windows-x86/mnu_make.exe windows-x86/orbikon_doctor.exe
           windows-x64/orbikon_creo.dll windows-x64/orbikon_doctor.exe)
for folder in "${folders[@]}"; do
    git worktree add --quiet --detach "$folder" "${1:-HEAD}"
    for preset in windows-x86 windows-x64; do
        step "$preset in $folder"
        targets=()
        for artefact in "${artefacts[@]}"; do
            [[ $artefact != "$preset"/* ]] || targets+=("$(basename "${artefact%.*}")")
        done
        (cd "$folder" && cmake --preset "$preset" -DORBIKON_TESTS=OFF >/dev/null &&
            cmake --build --preset "$preset" --target "${targets[@]}" >"$scratch/log") ||
            { tail -n 40 "$scratch/log"; exit 1; }
    done
done

step 'Comparison'
status=0
for artefact in "${artefacts[@]}"; do
    if cmp -s "${folders[0]}/build/$artefact" "${folders[1]}/build/$artefact"; then
        printf 'same       %s\n' "$artefact"
    else
        printf 'DIFFERENT  %s\n' "$artefact"
        status=1
    fi
done
exit $status

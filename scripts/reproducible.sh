#!/usr/bin/env bash
# Makes the package of a commit in two folders of different names, and compares what comes out, to the byte: each file of
# it, zip and installer.
#
#   scripts/reproducible.sh [COMMIT]     default: HEAD
set -euo pipefail
. "$(dirname "$0")/common.sh"
scripts/setup.sh packaging
unset CMAKE_CXX_COMPILER_LAUNCHER  # a compiler cache would compare the first build with itself

commit=$(git rev-parse --verify "${1:-HEAD}^{commit}")  # once: a branch may go on while the first package is made
scratch=$(mktemp -d)
folders=("$scratch/one" "$scratch/another, longer")
trap 'for folder in "${folders[@]}"; do git worktree remove --force "$folder" 2>/dev/null || true; done; rm -rf "$scratch"' EXIT
for folder in "${folders[@]}"; do
    step "Package in $folder"
    git worktree add --quiet --detach "$folder" "$commit"
    "$folder/packaging/package.sh" >"$scratch/log" 2>&1 || { tail -n 40 "$scratch/log"; exit 1; }
done

step 'Comparison'
status=0
compare() {  # compare FILE, as it is called below both folders
    if cmp -s "${folders[0]}/$1" "${folders[1]}/$1"; then
        printf 'same       %s\n' "$1"
    else
        printf 'DIFFERENT  %s\n' "$1"
        status=1
    fi
}
while read -r file; do compare "$file"; done < <(cd "${folders[0]}" && find build/package/*/ out/package -type f | LC_ALL=C sort)
exit $status

#!/usr/bin/env bash
# Checks every #include "..." of the tree against the table in include_rules.txt, and that no files include each other
# in a circle. Ends with status 1 when something is not as it should be.
set -uo pipefail
cd "$(dirname "$0")/.." || exit 1
table=scripts/include_rules.txt
failed=0

breach() { printf '%s\n' "$1" >&2; failed=1; }

# fits FILE PATTERN
# shellcheck disable=SC2053  # a pattern it is
fits() { [[ $1 == $2 || $1 == $2/* ]]; }

fits_one_of() {  # fits_one_of FILE PATTERN...
    local file=$1 pattern; shift
    for pattern in "$@"; do if fits "$file" "$pattern"; then return 0; fi; done
    return 1
}

whats=()   # of each row: what it is about,
mays=()    # what that may include,
places=()  # and where the row stands
read_table() {
    local number=0 line words pattern
    while IFS= read -r line; do
        number=$((number + 1))
        read -ra words <<<"${line%%#*}"
        [ ${#words[@]} -gt 0 ] || continue
        [ "${words[1]:-}" = '->' ] || { breach "$table:$number: a row is \"what -> what it may include\""; continue; }
        for pattern in "${words[0]}" "${words[@]:2}"; do
            compgen -G "$pattern" >/dev/null || breach "$table:$number: there is no $pattern"
        done
        whats+=("${words[0]}"); mays+=("${words[*]:2}"); places+=("$table:$number")
    done <"$table"
}

# check_include FILE LINE TARGET
# shellcheck disable=SC2086  # a row's words are as many patterns
check_include() {
    local i row=
    for i in "${!whats[@]}"; do if fits "$1" "${whats[i]}"; then row=$i; fi; done
    if [ -z "$row" ]; then
        breach "$1:$2: no row of $table names this file"
    elif ! fits_one_of "$3" "${whats[row]}" ${mays[row]}; then
        breach "$1:$2: includes $3; ${whats[row]} may include itself${mays[row]:+, ${mays[row]// /, }} (${places[row]})"
    fi
}

set -f  # the table's patterns are for [[ ]], not for the shell to expand
read_table
edges=
while IFS=: read -r file number text; do
    file=${file#./}
    target=${text#*\"}
    target=${target%%\"*}
    check_include "$file" "$number" "$target"
    edges+="${file%.*} ${target%.*}"$'\n'
done < <(grep -rnE --include='*.h' --include='*.cpp' --exclude-dir=build --exclude-dir=out '^ *# *include *"' .)

# tsort tells the members of each circle, one a line under a heading.
while IFS= read -r circle; do
    breach "files include each other in a circle: $circle"
done < <(LC_ALL=C tsort <<<"$edges" 2>&1 >/dev/null | awk '
    function tell() { if (first != "") print chain first; first = chain = "" }
    /contains a loop:$/ { tell(); next }
    { sub(/^tsort: /, ""); if (first == "") first = $0; chain = chain $0 " -> " }
    END { tell() }')
exit $failed

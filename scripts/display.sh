# shellcheck shell=bash
# Sourced: sets DISPLAY to a virtual X server of the project's own, started when none is running. The server keeps
# its number and process id in $WINEPREFIX.display.
display_file=$WINEPREFIX.display
display_is_up() {
    local number pid
    [ -r "$display_file" ] && read -r number pid <"$display_file" && [ -n "${pid:-}" ] &&
        kill -0 "$pid" 2>/dev/null && [ -S "/tmp/.X11-unix/X$number" ] && export DISPLAY=:$number
}
if ! display_is_up; then
    exec 8>"$WINEPREFIX.display.lock"
    flock 8
    if ! display_is_up; then
        number_file=$(mktemp)
        # Xvfb picks a free number itself and writes it to the descriptor once it is ready.
        setsid Xvfb -displayfd 7 -screen 0 1280x960x24 -nolisten tcp -noreset 7>"$number_file" 8>&- 9>&- \
            </dev/null >/dev/null 2>&1 &
        server=$!
        for _ in $(seq 100); do [ -s "$number_file" ] && break; sleep 0.1; done
        [ -s "$number_file" ] || { echo "wine.sh: the virtual X server (Xvfb) does not start" >&2; exit 1; }
        printf '%s %s\n' "$(cat "$number_file")" "$server" >"$display_file"
        rm -f "$number_file"
        display_is_up || { echo "wine.sh: the virtual X server (Xvfb) is not reachable" >&2; exit 1; }
    fi
    exec 8>&-
fi

# shellcheck shell=bash
# A private display with a window manager, and a private session bus. To be sourced. What is started here ends with the
# calling script, by process id and in the reverse order.

started=()
private_folder=

end_private_desktop() {
    local i
    # All of them before any is waited for: openbox may overlook the signal, and then ends with the X server.
    for ((i = ${#started[@]} - 1; i >= 0; i--)); do
        kill "${started[i]}" 2>/dev/null || true
    done
    for ((i = 0; i < ${#started[@]}; i++)); do
        wait "${started[i]}" 2>/dev/null || true
    done
    started=()
    [[ -z $private_folder ]] || rm -rf "$private_folder"
}

# start COMMAND…: in the background, to be ended with the rest. Its number is in $! afterwards.
start() {
    : >"$private_folder/announced" # now, not when the shell in the background gets there
    "$@" </dev/null >>"$private_folder/log" 2>&1 3>"$private_folder/announced" &
    started+=($!)
}

# The line that the program started last has written to descriptor 3.
announced_line() {
    local tries line
    for ((tries = 0; tries < 200; tries++)); do
        if read -r line <"$private_folder/announced"; then # the whole of it: Xvfb writes the line's end by itself
            echo "$line"
            return 0
        fi
        kill -0 "${started[-1]}" 2>/dev/null || break
        sleep 0.05
    done
    cat "$private_folder/log" >&2
    return 1
}

await() {
    local tries
    for ((tries = 0; tries < 200; tries++)); do
        if "$@" >/dev/null 2>&1; then
            return 0
        fi
        sleep 0.05
    done
    echo "Waited in vain for: $*" >&2
    return 1
}

is_managed() {
    xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'
}

# While it starts, openbox leaves a request that it has already read until something else happens: it may lie there for
# ever. Once it has answered one, it misses none.
openbox_answers() {
    xdotool set_num_desktops 3 && [[ $(xdotool get_num_desktops) -eq 3 ]]
}

# The one that NUBBLE_WINDOW_MANAGER names: openbox, i3 or xfwm4.
start_window_manager() {
    case ${NUBBLE_WINDOW_MANAGER:-openbox} in
    openbox) start openbox --sm-disable ;;
    xfwm4) start xfwm4 --compositor=off ;;
    i3)
        echo '# i3 config file (v4)' >"$private_folder/i3"
        start i3 -c "$private_folder/i3"
        ;;
    *)
        echo "No such window manager is known: $NUBBLE_WINDOW_MANAGER" >&2
        return 1
        ;;
    esac
    await is_managed
    [[ ${NUBBLE_WINDOW_MANAGER:-openbox} != openbox ]] || await openbox_answers
}

# Sets DISPLAY, DBUS_SESSION_BUS_ADDRESS and XDG_RUNTIME_DIR, and keeps the surrounding desktop's settings out.
start_private_desktop() {
    local number name
    private_folder=$(mktemp -d)
    trap end_private_desktop EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    for name in ${!QT_*} WAYLAND_DISPLAY XDG_CURRENT_DESKTOP DESKTOP_SESSION SESSION_MANAGER XAUTHORITY; do
        unset "$name"
    done
    export LC_ALL=C.UTF-8
    export XDG_RUNTIME_DIR=$private_folder/runtime
    mkdir -m 700 "$XDG_RUNTIME_DIR"

    start Xvfb -displayfd 3 -screen 0 1280x800x24 -dpi 96 -nolisten tcp -noreset
    number=$(announced_line)
    export DISPLAY=:$number
    start dbus-daemon --session --nofork --print-address=3
    DBUS_SESSION_BUS_ADDRESS=$(announced_line)
    export DBUS_SESSION_BUS_ADDRESS
    start_window_manager
}

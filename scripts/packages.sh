# shellcheck shell=bash
# The packages that the commands need, by their Debian and Ubuntu names, and their installation. To be sourced.
# shellcheck disable=SC2034

build_packages=(
    g++ cmake ninja-build pkgconf
    qt6-base-dev qt6-svg-dev libgl-dev
    libxcb1-dev libxcb-shape0-dev libxcb-xinput-dev libxcb-xfixes0-dev libxcb-randr0-dev libxcb-xkb-dev
    libxcb-screensaver0-dev
    libdbus-1-dev libpulse-dev libsqlite3-dev
)
run_packages=(zstd procps fonts-inter)
display_packages=(xvfb openbox picom xdotool x11-utils imagemagick dbus-daemon)
test_packages=(
    i3-wm wmctrl xterm xfce4-terminal tmux trayer x11-xserver-utils strace at-spi2-core libglib2.0-bin
    nodejs pulseaudio pulseaudio-utils fonts-dejavu-core
    python3 python3-gi python3-pyatspi python3-xlib
    dpkg-dev file lintian desktop-file-utils appstream librsvg2-bin hicolor-icon-theme mandoc zsh fish
    libbenchmark-dev
)
lint_packages=(clang-format clang-tidy shellcheck pyflakes3 git)
fuzz_packages=(clang libclang-rt-dev)
bench_packages=(libbenchmark-dev strace python3 python3-xlib)

missing_packages() {
    local installed package
    installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null || true)
    for package in "$@"; do
        grep -qxF "$package installed" <<<"$installed" || echo "$package"
    done
}

as_root() {
    if [[ $EUID -eq 0 ]]; then
        "$@"
    elif ! command -v sudo >/dev/null; then
        echo "This needs root, and there is no sudo: $*" >&2
        return 1
    elif [[ -t 0 ]]; then
        sudo "$@"
    else
        sudo -n "$@"
    fi
}

# Installs those of the packages that are missing. Asks first when a person sits at the terminal.
require_packages() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "This is neither Debian nor Ubuntu. Please install what these packages hold there:" >&2
        echo "  $*" >&2
        echo "and build with: cmake --preset release && cmake --build --preset release" >&2
        return 1
    fi
    local missing answer
    mapfile -t missing < <(missing_packages "$@")
    [[ ${#missing[@]} -gt 0 ]] || return 0
    echo "Missing packages: ${missing[*]}" >&2
    if [[ -t 0 ]]; then
        read -r -p "Install them now? [Y/n] " answer
        if [[ $answer != "" && $answer != [Yy]* ]]; then
            echo "Nothing has been installed." >&2
            return 1
        fi
    fi
    local apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300)
    as_root "${apt[@]}" update >&2
    as_root "${apt[@]}" install -y --no-install-recommends "${missing[@]}" >&2
}

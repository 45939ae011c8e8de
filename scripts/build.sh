# shellcheck shell=bash
# Building a preset. To be sourced from the top folder.

# build PRESET [target…]: configures only the first time and after the presets have changed; Ninja sees to the rest.
build() {
    local preset=$1
    shift
    if [[ ! build/$preset/build.ninja -nt CMakePresets.json ]]; then
        cmake --preset "$preset" >&2
        touch "build/$preset/build.ninja"
    fi
    cmake --build --preset "$preset" ${1:+--target "$@"} >&2
}

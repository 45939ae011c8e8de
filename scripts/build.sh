# shellcheck shell=bash
# Building a preset. To be sourced from the top folder.

# A fresh clone finds in the compiler's cache what another one has compiled.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

# configure PRESET: the first time, and after the presets have changed.
configure() {
    if [[ ! build/$1/build.ninja -nt CMakePresets.json ]]; then
        cmake --preset "$1" >&2
        touch "build/$1/build.ninja"
    fi
}

# build PRESET [target…]: Ninja sees to what has to be done.
build() {
    configure "$1"
    cmake --build --preset "$1" ${2:+--target "${@:2}"} >&2
}

# shellcheck shell=bash
# What holds the style. To be sourced from the top folder, after the presets `debug` and `fuzz` have been configured and
# `debug` has been built: sources include what its build writes.

sources() {
    find Nubble tests benchmarks '(' "$@" ')' -print0
}

# lint [COUNT]: clang-tidy looks at no more than the COUNT sources that changed last. Everything is looked at before it fails.
lint() {
    local failed=0
    sources -name '*.cpp' -o -name '*.h' | xargs -0 clang-format --dry-run --Werror || failed=1
    shellcheck --external-sources --source-path=SCRIPTDIR:. \
        run test bench .ci/run scripts/*.sh scripts/on-private-desktop packaging/completions/nubble.bash || failed=1
    sources -name '*.py' | xargs -0 pyflakes3 scripts/tidy scripts/contact-sheets scripts/contact_sheets/* || failed=1
    scripts/tidy "$@" || failed=1
    return $failed
}

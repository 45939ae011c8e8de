# bash completion for nubble
# shellcheck shell=bash

_nubble() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} given='' words i

    if [[ $before == --home ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
    fi
    # The command with its arguments, without the options.
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        --home) ((i++)) ;;
        -*) ;;
        *) given+="${given:+ }${COMP_WORDS[i]}" ;;
        esac
    done
    case $given in
    '') words='show hide toggle sessions next ask search notes status notifications autostart start restart quit --home --help --version' ;;
    notes) words='start stop' ;;
    status) words='--json --follow' ;;
    autostart | notifications) words='on off' ;;
    *) words='' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _nubble nubble

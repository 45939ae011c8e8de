# Whether the command with its arguments, without the options, is what is given here so far.
function __nubble_given
    set -l words (commandline -opc)[2..]
    set -l given
    while set -q words[1]
        switch $words[1]
            case --home
                set words $words[2..]
            case '-*'
            case '*'
                set -a given $words[1]
        end
        set words $words[2..]
    end
    test "$given" = "$argv"
end

complete -c nubble -f
complete -c nubble -n __nubble_given -l home -xa '(__fish_complete_directories)' -d 'Use another home folder'
complete -c nubble -n __nubble_given -s h -l help -d 'Print a summary of the commands and options'
complete -c nubble -n __nubble_given -l version -d 'Print the version'
complete -c nubble -n __nubble_given -a show -d 'Show the panel'
complete -c nubble -n __nubble_given -a hide -d 'Hide the panel'
complete -c nubble -n __nubble_given -a toggle -d 'Show or hide the panel'
complete -c nubble -n __nubble_given -a sessions -d 'Open the list of sessions'
complete -c nubble -n __nubble_given -a next -d 'Bring forward the session that needs you most'
complete -c nubble -n __nubble_given -a ask -d 'Ask Claude about the screen'
complete -c nubble -n __nubble_given -a search -d 'Open the chat search'
complete -c nubble -n __nubble_given -a notes -d 'Start or stop meeting notes'
complete -c nubble -n __nubble_given -a status -d 'Print what is shown'
complete -c nubble -n __nubble_given -a notifications -d 'Tell you of sessions, or no longer'
complete -c nubble -n __nubble_given -a autostart -d 'Start at login, or no longer'
complete -c nubble -n __nubble_given -a start -d 'Start, or leave the running instance as it is'
complete -c nubble -n __nubble_given -a restart -d 'Restart the running instance'
complete -c nubble -n __nubble_given -a quit -d 'End the running instance'
complete -c nubble -n '__nubble_given notes' -a start -d 'Start meeting notes'
complete -c nubble -n '__nubble_given notes' -a stop -d 'Stop meeting notes'
complete -c nubble -n '__nubble_given status' -l json -d 'Print a JSON object'
complete -c nubble -n '__nubble_given status' -l follow -d 'Print a line at each change'
complete -c nubble -n '__nubble_given notifications' -a on -d 'Tell you when a session waits or has finished'
complete -c nubble -n '__nubble_given notifications' -a off -d 'No longer tell you'
complete -c nubble -n '__nubble_given autostart' -a on -d 'Start at login'
complete -c nubble -n '__nubble_given autostart' -a off -d 'No longer start at login'

# bash completion of quorlin(1). The options come from each command's own help, so that they are never out of date.

_quorlin()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands="show types find get diff dump raw check hw" command=show words=
    COMPREPLY=()
    if [[ $COMP_CWORD -gt 1 && " $commands " == *" ${COMP_WORDS[1]} "* ]]; then
        command=${COMP_WORDS[1]}
    fi
    if [[ $current == -* ]]; then
        words=$("${COMP_WORDS[0]}" "$command" --help 2>/dev/null |
            sed -n 's/^  \(-[ht], \)\{0,1\}\(--[a-z-]*\).*/\2/p')
    else
        case $previous in
            --format) words="text json ndjson csv lines" ;;
            --as) words="any dump table windows sysfs" ;;
            --color) words="auto always never" ;;
            -t | --type) words="bios system baseboard chassis processor memory cache connector slot" ;;
            --road) words="firmware scan" ;;
            hw) words="cpuid pci mem msr port acpi segments versions" ;;
            msr | port) [[ $command != hw ]] || words="read write" ;;
            *) [[ $COMP_CWORD -ne 1 ]] || words=$commands ;;
        esac
    fi
    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null || :
    fi
}

complete -F _quorlin quorlin

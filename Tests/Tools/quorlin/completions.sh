#!/bin/bash
# What bash offers behind some beginnings of a command line. Arguments: the program, and the completion file.
set -eu
program=$1
source "$2"

# offers "words so far, the last one begun" word: fails unless bash would offer the word.
offers() {
    read -ra COMP_WORDS <<<"$program $1"
    [[ $1 != *" " ]] || COMP_WORDS+=("")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _quorlin
    if [[ " ${COMPREPLY[*]-} " != *" $2 "* ]]; then
        echo "after 'quorlin $1' no $2, but: ${COMPREPLY[*]-}"
        exit 1
    fi
}
offers "ty" types
offers "--sam" --sample
offers "types --he" --help
offers "find x --form" --format
offers "find x --format nd" ndjson
offers "diff --ig" --ignore
offers "hw c" cpuid
offers "hw msr r" read
offers "hw --yes" --yes-write-hardware
offers "--image $2" "$2"

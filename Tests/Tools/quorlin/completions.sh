#!/bin/bash
# What the shells offer after some beginnings of a command line, and whether the manual page has the program's options.
#
#     completions.sh PROGRAM WRITE_PROGRAM_DOCS COMPLETIONS MANUAL
set -u
program=$1 writer=$2 completions=$3 manual=$4
failures=0
fail() {
    echo "$*"
    failures=$((failures + 1))
}

# shellcheck source=/dev/null
source "$completions/quorlin.bash"
# Sets `offered` to what bash offers after "quorlin ARGUMENTS", split into words as bash does it.
offer_bash() {
    read -ra COMP_WORDS <<<"quorlin ${1//=/ = }"
    [[ $1 != *[\ =] || $1 == *= ]] || COMP_WORDS+=("")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _quorlin
    offered=" ${COMPREPLY[*]-} "
}
offer_fish() {
    offered=" $(fish --no-config -c "source $completions/quorlin.fish; complete -C 'quorlin $1'" |
        cut -f1 | tr '\n' ' ')"
    # Fish repeats the option of --option=value.
    offered=${offered// --*=/ }
}

# "arguments so far|word": the word is offered; "!word": it isn't.
cases=(
    "ty|types" "--sam|--sample" "types --he|--help" "types --ver|!--version"
    "find x --form|--format" "find x --format nd|ndjson" "find x --format |!lines" "show --format=li|lines"
    "--format=js|json" "diff --ig|--ignore" "diff --form|--format" "diff a b --format |ndjson"
    "--method s|scan" "--ro|!--road" "--color=al|always" "raw -t mem|memory" "get mem|memory"
    "get system-u|system-uuid" "-s chassis-t|chassis-type" "sum|summary" "summary --form|--format"
    "summary --format |!csv"
    "hw c|cpuid" "hw msr r|read" "hw acpi |!read" "hw --yes|--yes-write-hardware" "types --as sy|sysfs"
    "--image |a-file" "dump |a-file" "diff |a-file" "find |!a-file" "--signature |!a-file" "hw acpi X --out |a-file"
)
cd "$(mktemp -d)" || exit 1
touch a-file
shells=(bash)
command -v fish >/dev/null && shells+=(fish)
for shell in "${shells[@]}"; do
    for each in "${cases[@]}"; do
        arguments=${each%|*} word=${each#*|}
        "offer_$shell" "$arguments"
        if [[ $word == !* ]]; then
            [[ $offered != *" ${word#!} "* ]] || fail "$shell: 'quorlin $arguments' offers ${word#!}"
        else
            [[ $offered == *" $word "* ]] || fail "$shell: 'quorlin $arguments' doesn't offer $word, but:$offered"
        fi
    done
done
for shell in bash zsh fish; do
    if command -v $shell >/dev/null; then
        $shell -n "$completions/quorlin.$shell" || fail "$shell refuses its completions"
    else
        echo "$shell isn't installed, so its completions aren't run"
    fi
done
"$writer" man "$manual" | cmp - "$manual" ||
    fail "the manual page is out of date: write it with write_program_docs man Docs/quorlin.1"
"$program" --help | grep -q -- '--road' && fail "help shows an old name"
exit $((failures != 0))

# bash completion for quill. Needs nothing but bash.

# Subcommands, and the options of each; a test compares both with what quill --help says.
_quill_subcommands='cues'
declare -A _quill_options=(
    [quill]='--help --version'
    [cues]='--help --format --chunk --pts --module --quiet'
)

# The words that an option's value may be; files where it takes one, nothing where it is a number.
_quill_value() {
    local word=$3
    case $1:$2 in
        cues:--format) mapfile -t COMPREPLY < <(compgen -W 'text json srt' -- "$word") ;;
        *:--module) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
        *:--chunk | *:--pts) COMPREPLY=() ;;
        *) return 1 ;;
    esac
}

_quill() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} subcommand=quill
    COMPREPLY=()
    if [ "$COMP_CWORD" -gt 1 ]; then
        subcommand=${COMP_WORDS[1]}
    fi
    if _quill_value "$subcommand" "$before" "$word"; then
        return
    fi
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "${_quill_options[$subcommand]-}" -- "$word")
    elif [ "$subcommand" = quill ]; then
        mapfile -t COMPREPLY < <(compgen -W "$_quill_subcommands" -- "$word")
    elif [ -n "${_quill_options[$subcommand]-}" ]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -o filenames -F _quill quill

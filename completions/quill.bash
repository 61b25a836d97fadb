# bash completion for quill. Needs bash 4.2 and nothing else.

# Subcommands, and the options of each; a test compares both with what quill --help says.
_quill_subcommands='check conform cues fix inspect replay report'
# Global by name: bash-completion reads this file inside of a function, at the first TAB.
declare -gA _quill_options=(
    [quill]='--help --version'
    [check]='--help --files-from --format --color --chunk --pts --fail-on --select --ignore --explain --codes --jobs --all --sums --blocks --timeout --module --quiet'
    [conform]='--help --list --only --failed-only --cases --time --timeout --format'
    [cues]='--help --format --chunk --pts --record --timeout --module --quiet'
    [fix]='--help --files-from --output --in-place --diff --dry-run --only --skip --from --all --quiet --timeout --module'
    [inspect]='--help --sysroot --format'
    [replay]='--help --show --track --case --check --parser --pace --timeout --format --module'
    [report]='--help --files-from --output --log --against --against-module --video --background --chunk --pts --timeout --module'
)

# _quill_value SUBCOMMAND OPTION WORD: offers what may be the option's value, nothing where that is
# a number or a pattern. Fails when the option takes no value.
_quill_value() {
    local word=$3 values=
    case $1:$2 in
        cues:--format) values='text json srt' ;;
        check:--format) values='text json github sarif' ;;
        *:--format) values='text json' ;;
        check:--color) values='auto always never' ;;
        check:--fail-on) values='lost changed remark never' ;;
        inspect:--sysroot | *:--module | *:--files-from | *:--output | *:-o | report:--log | report:--against | report:--against-module | report:--video | report:--background | conform:--cases | replay:--track | cues:--record) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
        *:--chunk | *:--pts | *:--jobs | check:--select | check:--ignore | check:--explain | *:--timeout | *:--parser | *:--only | fix:--skip | fix:--from) ;;
        *) return 1 ;;
    esac
    if [ -n "$values" ]; then
        mapfile -t COMPREPLY < <(compgen -W "$values" -- "$word")
    fi
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

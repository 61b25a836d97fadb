# fish completion for quill: offers what that for bash does, which a test holds against quill --help. It
# lies beside this one as both are installed. What may lead to more, a folder, ends in a slash.
set -g __quill_bash (path resolve (status dirname)/../../bash-completion/completions/quill)

function __quill_offers
    bash -c '
        source "$1" && shift || exit
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
        _quill
        for offer in "${COMPREPLY[@]}"; do
            [ ! -d "$offer" ] || offer+=/
            printf "%s\n" "$offer"
        done' bash $__quill_bash (commandline -opc) (commandline -ct | string unescape) 2>/dev/null
end

complete -c quill -f -a '(__quill_offers)'

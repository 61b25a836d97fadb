# shellcheck shell=bash disable=SC2034
# Shared by the scripts in this folder; sourced, never run.
# Sets root, the top folder of the tree, and goes there, so that scripts run from anywhere.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$root" || exit
jobs=$(nproc)

# For the first configuration of a preset by a script: who builds once has no use for single files.
# Later ones leave everything as it is, so that what is compiled is not compiled again.
first_options=(-DQUILL_UNITY=ON)

say() { printf '%s\n' "${0##*/}: $*" >&2; }

fail() {
    say "$*"
    exit 1
}

# Runs a command without a word; when it fails, shows the last lines that it wrote.
quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 </dev/null || status=$?
    if [ "$status" -ne 0 ]; then
        tail -n 100 "$log" >&2
        say "this failed: $*"
    fi
    rm -f "$log"
    return "$status"
}

# become_root WHY: sets as_root to the words before a command that needs root's rights.
become_root() {
    as_root=()
    [ "$(id -u)" -ne 0 ] || return 0
    command -v sudo >/dev/null || fail "run this as root, or install sudo: $1"
    # Asks for a password here, where there may be a terminal, and not later.
    sudo -n true 2>/dev/null || sudo true || fail "sudo was refused"
    as_root=(sudo -n)
}

# Seconds, for people.
duration() { echo "$(($1 / 60)) min $(($1 % 60)) s"; }

# Prints the header comment of the calling script: from its second line to the first empty one.
usage() { sed -n '2,/^$/{ s/^# \{0,1\}//; /^$/d; p; }' "$0"; }

# Other versions of the clang tools format differently and know other checks.
# clang_tool NAME VERSION... sets clang_tool to one of these versions of the tool, or ends the script
# as skipped when there is none here.
skipped=77
clang_tool() {
    local name=$1 version
    for version in "${@:2}"; do
        for clang_tool in "$name-$version" "$name"; do
            if "$clang_tool" --version 2>/dev/null | grep -q "version $version\."; then
                return
            fi
        done
    done
    say "skipped: needs $name ${*:2}, which scripts/setup test installs if this Debian has it"
    exit "$skipped"
}

# The C and C++ sources of the given folders, those that do not exist left out.
sources_in() {
    local folder
    for folder in "$@"; do
        [ -d "$folder" ] || continue
        find "$folder" -name build -prune -o -type f \
            \( -name '*.cpp' -o -name '*.h' -o -name '*.c' \) -print
    done | sort
}

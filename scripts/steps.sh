# Sourced by the scripts: how a step is announced and how a failure is told.

step() { printf '== %s\n' "$*"; }

# fail MESSAGE [WHAT TO DO...]
fail() {
    printf 'error: %s\n' "$1" >&2
    shift
    [ $# -eq 0 ] || printf '       %s\n' "$@" >&2
    exit 1
}

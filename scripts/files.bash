# For scripts that check or change sources.
# shellcheck shell=bash

# source_files [FIND-EXPRESSION...]: the paths of the files of this tree, one a line; fails where there is none, so that no check passes
# for want of files.
source_files() {
    local files
    files=$(find . \( -name .git -o -path ./build -o -path ./.cache \) -prune -o -type f "$@" -print)
    [ -n "$files" ] || { echo "no such files here: $*" >&2; return 1; }
    printf '%s\n' "$files"
}

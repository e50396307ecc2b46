# For scripts that check or change sources.
# shellcheck shell=bash

# tracked_files [PATTERN...]: the paths of the repository's files, one a line; fails where git lists none, so that no check passes for
# want of files.
tracked_files() {
    local files
    files=$(git ls-files "$@") || { echo "git cannot list this repository's files" >&2; return 1; }
    [ -n "$files" ] || { echo "git lists no files: $*" >&2; return 1; }
    printf '%s\n' "$files"
}

# For scripts that do several things: runs each as a stage, counts those that pass and fail, and tells how long each took.
# shellcheck shell=bash

passed=0
failed=0
stage_times=()

# stage NAME COMMAND...: runs the command, which counts as one check.
stage() {
    local name=$1 begin=$SECONDS
    shift
    echo "== $name"
    if "$@"; then
        passed=$((passed + 1))
        note_time "$name" "$begin"
    else
        failed=$((failed + 1))
        note_time "$name" "$begin" "failed"
        return 1
    fi
}

# note_time NAME BEGIN [REMARK]: a line of the table that print_times prints.
note_time() {
    stage_times+=("$(printf '%5d s  %s %s' $((SECONDS - $2)) "$1" "${3:-}")")
}

print_times() {
    echo
    printf '%s\n' "${stage_times[@]}"
}

# Starts an installed set and asks it over HTTP. To be sourced; `work` names a folder to write into, which goes
# with the script.
work=$(mktemp -d)
set_process=
trap 'stop_set; rm -rf "$work"' EXIT

# start_set EPGHOST [OPTION...]: returns when it is ready to answer.
start_set() {
    "$@" --port 0 --state "$work/state" --recordings "$work/recordings" >"$work/output" 2>"$work/errors" &
    set_process=$!
    for _ in $(seq 600); do
        grep -q '^listening on ' "$work/output" && break
        kill -0 "$set_process" 2>/dev/null || break
        sleep 0.1
    done
    port=$(sed -n 's|^listening on http://127.0.0.1:\([0-9]*\)/$|\1|p' "$work/output")
    [ -n "$port" ] || fail "the set does not start: $(cat "$work/errors")"
}

stop_set() {
    [ -n "$set_process" ] || return 0
    kill "$set_process" 2>/dev/null || true
    wait "$set_process" 2>/dev/null || true
    set_process=
}

# get PATH: prints the answer with its head.
get() {
    exec 3<>"/dev/tcp/127.0.0.1/$port"
    printf 'GET %s HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n' "$1" >&3
    cat <&3
    exec 3<&-
}

# expect PATH TEXT: fails unless the answer is a 200 that holds the text.
expect() {
    local answer
    answer=$(get "$1" | tr -d '\0')
    [[ $answer == HTTP/1.?\ 200\ * ]] || fail "$1 answers: ${answer%%$'\r'*}"
    [[ $answer == *"$2"* ]] || fail "$1 does not hold \"$2\": $answer"
}

fail() {
    printf '%s\n' "$1" >&2
    exit 1
}

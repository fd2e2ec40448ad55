# shellcheck shell=bash
# SPDX-License-Identifier: MIT
#
# What run.sh, test.sh and the scripts beside this file share: where the tree is, how a long step is shown, how a
# failure is told. Sourced, never run.

umask 022  # what is built is read by the ordinary user of the sandbox, whoever builds it
TREE=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
BUILD=$TREE/build
LOGS=$BUILD/log

say() { printf '%s\n' "$*"; }

# fail MESSAGE...: each argument is a line; the first says what is wrong, the others what to do.
fail() {
    printf '%s\n' "$@" >&2
    exit 1
}

# check_port TEXT: fails when it is no number of a port.
check_port() {
    if ! [[ $1 =~ ^[0-9]{1,5}$ ]] || ((10#$1 > 65535)); then
        fail "\"$1\" is no port." 'Give --port a number from 0 to 65535; 0 stands for a port that is free.'
    fi
}

# end_jobs: ends what was started in the background under job control, with everything that it has started.
end_jobs() {
    local pid
    for pid in $(jobs -p); do kill -- "-$pid" 2>/dev/null || true; done
}

# quiet_progress LOG: the newest "[done/all]" of the builder in LOG, or nothing.
quiet_progress() {
    tail -c 4096 "$1" 2>/dev/null | tr '\r' '\n' | grep -oE '^\[[0-9]+/[0-9]+\]' | tail -n 1 || true
}

# step NAME ADVICE COMMAND...: runs a long step with its output in a log of its own. A terminal sees how far it is;
# a failure shows the end of the log and ADVICE.
step() {
    local name=$1 advice=$2 log status=0 start=$SECONDS
    shift 2
    mkdir -p "$LOGS" 2>/dev/null ||
        fail "Cannot write to $BUILD." "Give it to yourself (chown -R) or remove it, then start again."
    log=$LOGS/$(printf '%s' "$name" | tr -cs '[:alnum:]' '-' | tr '[:upper:]' '[:lower:]')
    log=${log%-}.log
    printf '%s ...' "$name"
    set -m  # a process group of its own, which ends as one
    "$@" >"$log" 2>&1 </dev/null &
    local pid=$!
    set +m
    trap 'end_jobs; printf "\n"; exit 130' INT TERM
    if [ -t 1 ]; then
        while kill -0 "$pid" 2>/dev/null; do
            printf '\r%s ... %s %d s \033[K' "$name" "$(quiet_progress "$log")" "$((SECONDS - start))"
            sleep 0.5
        done
        printf '\r%s ...\033[K' "$name"
    fi
    wait "$pid" || status=$?
    trap - INT TERM
    if [ "$status" -ne 0 ]; then
        printf ' failed\n'
        grep -aE 'error:|^E: |FAILED' "$log" | awk '!seen[$0]++' | head -n 10 | sed 's/^/    /' >&2 || true
        printf '  ...\n' >&2
        tail -n 15 "$log" | sed 's/^/    /' >&2
        fail "$name failed; all of it is in ${log#"$TREE"/}." "$advice"
    fi
    printf ' done (%d s)\n' "$((SECONDS - start))"
}

# build PRESET [TARGET...]: configures when needed, and builds all or the targets.
build() {
    step "Building ($1)" \
        "Correct the error above and start again; if the build directory is to blame, remove build/$1." \
        build_quietly "$@"
}

build_quietly() {
    local preset=$1
    shift
    cd "$TREE" || return 1
    configure "$preset" || return 1
    cmake --build --preset "$preset" ${1+--target "$@"}
}

# configure PRESET: configures a build directory that is new, or older than the last change of the presets. The old
# cache is removed then, because CMake would keep, for example, the old compiler.
configure() {
    is_configured "$1" && return
    rm -rf "$BUILD/$1/CMakeCache.txt" "$BUILD/$1/CMakeFiles"
    cmake --preset "$1" && sha256sum <"$TREE/CMakePresets.json" >"$BUILD/$1/presets.stamp"
}

is_configured() {
    [ -e "$BUILD/$1/build.ninja" ] &&
        [ "$(sha256sum <"$TREE/CMakePresets.json")" = "$(cat "$BUILD/$1/presets.stamp" 2>/dev/null)" ]
}

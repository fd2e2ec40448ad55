#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Sets the machine up, builds, and runs every test in sandboxes: each test executable once per build (release, sanitized) and per
# user (when the superuser starts it: superuser and ordinary user), one run more at a time than there are processors. Shows one line
# per run, the output of what failed, and closes with the counts.
set -euo pipefail
# shellcheck source=scripts/common.sh
. "$(dirname "$0")/scripts/common.sh"
cd "$TREE"

usage() {
    cat <<'END'
Usage: ./test.sh [OPTION]... [NAME]...

Builds and runs the tests; missing packages are installed first. The last line is "N passed, N failed", with
", N skipped" if tests were skipped; the exit status is 0 when nothing failed.

  NAME               only the test programs whose name contains NAME, or else the tests whose full name
                     ("Suite.Test") contains it; in the release build if --config does not say otherwise
  --config CONFIG    only this build: release or asan (may be repeated)
  --user USER        only as root or only as user (may be repeated); unless root starts it, user is the default, and root
                     has no power over the files of others, so that some tests of root fail; tests of the Debian package
                     are root's, in the release build, and are skipped unless root starts this
  --jobs N           so many at a time (default: one more than there are processors)
  --list             what there is to run
  --help             this

"check" is the test of the tree itself (scripts/check). "web_page", run.sh --web in a browser, runs in
the release build and for one user only. Logs are in build/log/tests, and what tests leave, such as screenshots, in
build/out.
END
}

configs=()
users=()
jobs=$(($(nproc) + 1))  # most tests wait for windows most of the time
list=
names=()
while [ $# -gt 0 ]; do
    case $1 in
        --config) configs+=("${2:?--config wants a build}"); shift ;;
        --user) users+=("${2:?--user wants root or user}"); shift ;;
        --jobs) jobs=${2:?--jobs wants a number}; shift ;;
        --list) list=1 ;;
        --help) usage; exit 0 ;;
        -*) usage >&2; exit 2 ;;
        *) names+=("$1") ;;
    esac
    shift
done
if [ ${#configs[@]} -eq 0 ]; then
    configs=(release)
    [ ${#names[@]} -gt 0 ] || configs+=(asan)
fi
if [ ${#users[@]} -eq 0 ]; then
    users=(user)
    # Only the superuser can show what the superuser may do: files of two owners, for one.
    [ "$(id -u)" -ne 0 ] || users=(root user)
fi
for config in "${configs[@]}"; do
    [[ $config == release || $config == asan ]] || fail "There is no test build $config: it is release or asan."
done
for user in "${users[@]}"; do
    [[ $user == root || $user == user ]] || fail "There is no test user $user: it is root or user."
done
[[ $jobs =~ ^[1-9][0-9]*$ ]] || fail '--jobs wants a number.'

# Seconds that one run of a test program may take.
declare -A limit=([check]=120 [unit]=180 [widget]=300 [end_to_end]=600 [package]=300 [web]=180)
# What a test program finds in its sandbox.
declare -A furniture=([unit]='--stage --x --small-disk' [widget]='--stage --x' [end_to_end]='--stage --x --wm --small-disk'
    [web]='')
test_logs=$LOGS/tests

scripts/setup web browser asan check
for config in "${configs[@]}"; do
    build "$config"
    step "Staging ($config)" 'See scripts/packages for the font packages.' scripts/stage --preset "$config"
done

# Tests that were left out because of who started this.
left_out=0

# Runs to do, one per line: config, user, kind, name, path, and which of its tests.
runs=()
add_run() {
    local user count
    if [ "$2" = package ] && [ "$(id -u)" -ne 0 ]; then
        count=$("$4" --gtest_list_tests "--gtest_filter=$5" | grep -c '^ ' || true)
        say "Skipped: the $count tests of $3, which install packages on a throw-away machine; only the superuser can make one."
        left_out=$((left_out + count))
        return
    fi
    for user in "${users[@]}"; do
        [ "$2" != package ] || [ "$user" = root ] || continue  # an ordinary user installs no packages
        # The superuser's run would be the same once more: in there the program is the ordinary user's.
        [ "$2 $user" != 'web root' ] || [[ " ${users[*]} " != *' user '* ]] || continue
        runs+=("$1 $user $2 $3 $4 $5")
    done
}

# tests_named PATH NAME: whether the test program has tests whose full name contains NAME.
tests_named() {
    "$1" --gtest_list_tests 2>/dev/null | awk -v name="$2" '
        /^[^ ]/ { suite = $1 }
        /^ /    { if (index(suite $1, name)) found = 1 }
        END     { exit !found }'
}

# filter_of KIND NAME PATH: prints the tests to run of it as a filter, or fails when nothing of it was asked for.
filter_of() {
    local wanted filter=
    [ ${#names[@]} -gt 0 ] || { echo '*'; return; }
    for wanted in "${names[@]}"; do
        if [[ $2 == *"$wanted"* ]]; then
            echo '*'
            return
        fi
        [ "$1" = check ] || ! tests_named "$3" "$wanted" || filter="$filter${filter:+:}*$wanted*"
    done
    [ -n "$filter" ] && echo "$filter"
}

for config in "${configs[@]}"; do
    # The slow ones first: the last runs should be short.
    while read -r kind name path; do
        [ "$kind $config" != 'web asan' ] || continue  # it tests scripts, and other people's programs
        if filter=$(filter_of "$kind" "$name" "$path"); then
            add_run "$config" "$kind" "$name" "$path" "$filter"
        fi
    done < <(for kind in end_to_end web package widget unit; do grep "^$kind " "build/$config/tests/suites.txt" || true; done)
done
if filter_of check check - >/dev/null; then
    runs+=("tree any check check - *")
fi
[ ${#runs[@]} -gt 0 ] || [ "$left_out" -gt 0 ] || fail "No test is called so: ${names[*]}" 'See ./test.sh --list.'
if [ ${#runs[@]} -eq 0 ]; then
    say "0 passed, 0 failed, $left_out skipped"
    exit 0
fi
if [ -n "$list" ]; then
    printf '%s\n' "${runs[@]}" | awk '{ print $4 " (" $1 ", " $2 ")" }'
    exit 0
fi

if printf '%s\n' "${runs[@]}" | grep -q '^[^ ]* [^ ]* package '; then
    rm -f build/release/*.deb
    step 'Packaging' 'The log says what is missing.' cmake --build --preset release --target package
fi

# sanitizer_options OUT: a report goes to a file there, also that of a program which a test has started.
sanitizer_options() {
    export ASAN_OPTIONS=log_path=$1/sanitizer:detect_leaks=1:detect_stack_use_after_return=1
    export LSAN_OPTIONS=suppressions=$TREE/tests/support/lsan.supp:print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1  # it knows no log_path beside the other sanitizers
}

# start CONFIG USER KIND NAME PATH FILTER OUT: the test program, within its time.
start() {
    local config=$1 user=$2 kind=$3 path=$5 filter=$6 out=$7
    # The sandbox that these tests make within theirs takes the superuser's right to mount, where the superuser has made theirs.
    [ "$kind" != web ] || [ "$(id -u)" -ne 0 ] || user=root
    if [ "$kind" = check ]; then
        timeout --foreground -k 10 "${limit[check]}" scripts/check
        return
    fi
    if [ "$kind" = package ]; then
        timeout --foreground -k 10 "${limit[$kind]}" scripts/fresh-root --out "$out" -- \
            "$path" --gtest_color=no "--gtest_filter=$filter"
        return
    fi
    sanitizer_options "$out"
    # shellcheck disable=SC2086  # options
    timeout --foreground -k 10 "${limit[$kind]}" scripts/sandbox "--$user" --preset "$config" ${furniture[$kind]} --out "$out" -- \
        "$path" --gtest_color=no "--gtest_filter=$filter"
}

count() { grep -caE "$1" "$2" || true; }

# show_failures LOG: the output of the tests that failed.
show_failures() {
    awk '
        /\[ RUN      \] /                     { text = ""; running = 1 }
        running                               { text = text $0 "\n" }
        /\[  FAILED  \] .*\([0-9]+ ms\)$/     { printf "%s", text }
        /\[ .* \] .*\([0-9]+ ms\)$/           { running = 0 }' "$1" | head -n 200
}

# run CONFIG USER KIND NAME PATH FILTER: one run; leaves "passed failed skipped" in its counts file and shows its line.
run() {
    local config=$1 user=$2 kind=$3 name=$4 out=$BUILD/out/$1-$2-$4 log=$test_logs/$1-$2-$4.log
    local status=0 passed failed skipped started note='' reports begin=${EPOCHREALTIME/./}
    rm -rf "$out"
    mkdir -p "$out"
    start "$@" "$out" >"$log" 2>&1 </dev/null || status=$?
    local took=$((${EPOCHREALTIME/./} - begin))
    if [ "$kind" = check ]; then
        passed=$((status == 0)) failed=$((status != 0)) skipped=0
    else
        passed=$(count '\[       OK \] .*\([0-9]+ ms\)$' "$log")
        failed=$(count '\[  FAILED  \] .*\([0-9]+ ms\)$' "$log")
        skipped=$(count '\[  SKIPPED \] .*\([0-9]+ ms\)$' "$log")
        started=$(count '\[ RUN      \] ' "$log")
        reports=$(find "$out" -name 'sanitizer.*' -size +0)
        # What the counts do not show is a failure too.
        if [ "$status" -eq 124 ] || [ "$status" -eq 137 ]; then
            note="took more than ${limit[$kind]} s"
        elif [ "$started" -ne $((passed + failed + skipped)) ]; then
            note="ended in the middle of $(sed -n 's/.*\[ RUN      \] //p' "$log" | tail -n 1), status $status"
        elif [ "$status" -ne 0 ] && [ "$failed" -eq 0 ]; then
            note="exit status $status"
        elif [ "$((passed + failed + skipped))" -eq 0 ]; then
            note='ran no test'
        fi
        if [ -n "$reports" ] || grep -qa ' runtime error: ' "$log"; then
            note="$note${note:+; }a sanitizer's report"
        fi
        [ -z "$note" ] || failed=$((failed + 1))
    fi
    echo "$passed $failed $skipped" >"${log%.log}.counts"
    {
        flock 9
        printf '%-6s %-28s %-14s %4d passed' "$([ "$failed" -eq 0 ] && echo ok || echo FAILED)" "$name" \
            "$config, $user" "$passed"
        [ "$failed" -eq 0 ] || printf ', %d failed' "$failed"
        [ "$skipped" -eq 0 ] || printf ', %d skipped' "$skipped"
        printf '  %d.%d s\n' $((took / 1000000)) $((took / 100000 % 10))
        if [ "$failed" -gt 0 ]; then
            [ -z "$note" ] || printf '    %s: %s\n' "$name" "$note"
            {
                show_failures "$log"
                [[ -z $note && $kind != check ]] || tail -n 30 "$log"
                [ -z "${reports-}" ] || find "$out" -name 'sanitizer.*' -exec head -n 60 {} +
            } | sed 's/^/    /'
            printf '    All of it is in %s.\n' "${log#"$TREE"/}"
        fi
    } 9>>"$test_logs/.lock"
}

rm -rf "$test_logs"
mkdir -p "$test_logs" "$BUILD/out"
trap 'end_jobs; exit 130' INT TERM
begin=$SECONDS
set -m
for line in "${runs[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do wait -n || true; done
    read -r -a fields <<<"$line"
    run "${fields[@]}" &
done
wait

read -r files passed failed skipped < <(cat "$test_logs"/*.counts |
    awk '{ passed += $1; failed += $2; skipped += $3 } END { print NR, passed + 0, failed + 0, skipped + 0 }')
if [ "$files" -ne "${#runs[@]}" ]; then
    say "$((${#runs[@]} - files)) runs left no counts."
    failed=$((failed + ${#runs[@]} - files))
fi
skipped=$((skipped + left_out))
say "${#runs[@]} runs in $((SECONDS - begin)) s"
if [ "$skipped" -gt 0 ]; then
    say "$passed passed, $failed failed, $skipped skipped"
else
    say "$passed passed, $failed failed"
fi
[ "$failed" -eq 0 ]

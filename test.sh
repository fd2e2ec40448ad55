#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Installs missing packages, builds, and lets CTest run the suites: each in a sandbox (scripts/suite), once for each
# build (release and sanitized) and each user (superuser and ordinary user, when the superuser starts it). The fuzz
# targets have a build of their own, and the soak suites are only in the sanitized one. Ends with the counts of all
# tests.
set -euo pipefail
# shellcheck source=scripts/common.sh
. "$(dirname "$0")/scripts/common.sh"
cd "$TREE"

usage() {
    cat <<'END'
Usage: ./test.sh [OPTION]... [LANE | NAME]...

Builds and runs the tests; missing packages are installed first. The last line is "N passed, N failed", with
", N skipped" if tests were skipped; the exit status is 0 when nothing failed.

  LANE               unit, widget, end_to_end, package, web, fuzz, soak or check: the suites of that kind; only what
                     these need is installed and built; "check" are the checks of the tree itself
  NAME               the suites whose name contains NAME, or else the tests whose full name ("Suite.Test") contains it
  --config CONFIG    only this build: release, asan or fuzz (may be repeated; default: all, and where lanes or names
                     are given those that "fuzz" and "soak" are in, and release for the others)
  --user USER        only as root or only as user (may be repeated); unless root starts this, the default is user, some
                     tests of --user root fail, because it has no power over the files of others, and the tests of the
                     Debian package are skipped: they run as root, in the release build
  --seed N           shuffles the tests of unit and widget suites by N, 1 to 99999, and chooses what soak suites do
                     (default: a number that is drawn and printed)
  --seconds N        how long each fuzz target and each soak suite goes on (default: 5 and 60)
  --every-call       the tests that kill the running program do it at every call that changes the disk (default: at
                     every seventh); some suites then take longer than they may, so name a single test
  --no-shuffle       runs them in the order of the source files
  --all              clang-tidy looks at all sources (default: at those that have changed; see scripts/tidy --help)
  --jobs N           runs N suites at the same time (default: one more than there are processors)
  --list             lists what would run
  --help             shows this

Logs are in build/log/tests, and what tests leave, such as screenshots, in build/out.
END
}

lanes=(unit widget end_to_end package web fuzz soak check)
asked_lanes=()
names=()
configs=()
users=()
jobs=$(($(nproc) + 1))  # most tests wait for windows most of the time
seed=$(shuf -i 1-99999 -n 1)
list=
while [ $# -gt 0 ]; do
    case $1 in
        --config) configs+=("${2:?--config wants a build}"); shift ;;
        --user) users+=("${2:?--user wants root or user}"); shift ;;
        --seed) seed=${2:?--seed wants a number}; shift ;;
        --seconds) GLYPHWARD_SECONDS=${2:?--seconds wants a number}; export GLYPHWARD_SECONDS; shift ;;
        --every-call) export GLYPHWARD_EVERY_CALL=1 ;;
        --no-shuffle) seed= ;;
        --all) export GLYPHWARD_TIDY=--all ;;
        --jobs) jobs=${2:?--jobs wants a number}; shift ;;
        --list) list=1 ;;
        --help) usage; exit 0 ;;
        -*) usage >&2; exit 2 ;;
        unit | widget | end_to_end | package | web | fuzz | soak | check) asked_lanes+=("$1") ;;
        *) names+=("$1") ;;
    esac
    shift
done
everything=
[ $((${#asked_lanes[@]} + ${#names[@]})) -gt 0 ] || { everything=1; asked_lanes=("${lanes[@]}"); }
# build_of WORD: the build that the suites of a lane or with such a name are in.
build_of() {
    case $1 in
        fuzz*) echo fuzz ;;
        soak*) echo asan ;;
        *) echo release ;;
    esac
}
if [ ${#configs[@]} -eq 0 ] && [ -n "$everything" ]; then
    configs=(release asan fuzz)
elif [ ${#configs[@]} -eq 0 ]; then
    mapfile -t configs < <(for asked in "${asked_lanes[@]}" "${names[@]}"; do build_of "$asked"; done | sort -ru)
fi
if [ ${#users[@]} -eq 0 ]; then
    users=(user)
    # Only the superuser can show what the superuser may do: files of two owners, for one.
    [ "$(id -u)" -ne 0 ] || users=(root user)
fi
for config in "${configs[@]}"; do
    [[ $config == @(release|asan|fuzz) ]] || fail "There is no test build $config: it is release, asan or fuzz."
done
for user in "${users[@]}"; do
    [[ $user == @(root|user) ]] || fail "There is no test user $user: it is root or user."
done
[[ $jobs =~ ^[1-9][0-9]*$ ]] || fail '--jobs wants a number.'
[[ ${GLYPHWARD_SECONDS-5} =~ ^[1-9][0-9]{0,4}$ ]] || fail '--seconds wants a number from 1 to 99999.'
[[ $seed =~ ^([1-9][0-9]{0,4})?$ ]] || fail '--seed wants a number from 1 to 99999.'

# has WORD LIST...: whether the list has the word.
has() { [[ " ${*:2} " == *" $1 "* ]]; }

# tests_named PATH NAME: whether the test program has tests whose full name contains NAME.
tests_named() {
    "$1" --gtest_list_tests 2>/dev/null | awk -v name="$2" '
        /^[^ ]/ { suite = $1 }
        /^ /    { if (index(suite $1, name)) found = 1 }
        END     { exit !found }'
}

# selected_by CONFIG NAME: the lines of suites.txt with suites whose names contain NAME. If there are none, the suites
# with such tests, and the file of filters gets a line for each.
selected_by() {
    local config=$1 wanted=$2 suites=build/$1/tests/suites.txt kind name path
    ! awk -v wanted="$wanted" 'index($2, wanted) { print; found = 1 } END { exit !found }' "$suites" || return 0
    build "$config" >&2
    while read -r kind name path; do
        if [[ $kind != @(check|fuzz) ]] && tests_named "$path" "$wanted"; then
            echo "$kind $name $path"
            printf '%s *%s*\n' "$name" "$wanted" >>"$test_logs/filters"
        fi
    done <"$suites"
}

# selected CONFIG: the lines of suites.txt that the arguments ask for.
selected() {
    local asked
    for asked in ${asked_lanes[@]+"${asked_lanes[@]}"}; do
        awk -v lane="$asked" '$1 == lane' "build/$1/tests/suites.txt"
    done
    for asked in ${names[@]+"${names[@]}"}; do selected_by "$1" "$asked"; done
}

# sections KIND...: the sections of scripts/packages that suites of these kinds need.
sections() {
    ! { has asan "${configs[@]}" || has fuzz "${configs[@]}"; } || echo asan
    ! has package "$@" || echo package
    ! has web "$@" || printf '%s\n' web browser
    ! has check "$@" || printf '%s\n' check asan
}

# targets KIND NAME: the targets to build for that suite.
targets() {
    case $1 in
        check) [ "$2" != engine ] || echo glyphward_engine ;;
        package) printf '%s\n' "$2" package_sessions ;;
        fuzz) echo "$2" ;;
        *) printf '%s\n' "$2" installation ;;
    esac
}

# build_for LINE...: builds and stages what these lines of suites.txt need in the build $config.
build_for() {
    local kind name path wanted=()
    while read -r kind name path; do
        mapfile -t -O ${#wanted[@]} wanted < <(targets "$kind" "$name")
    done < <(printf '%s\n' "$@")
    [ -z "$everything" ] || [ "$config" = fuzz ] || wanted=(all)
    [ ${#wanted[@]} -gt 0 ] || return 0
    build "$config" "${wanted[@]}"
    if has installation "${wanted[@]}" || has all "${wanted[@]}"; then
        step "Staging ($config)" 'See scripts/packages for the font packages.' scripts/stage --preset "$config"
    fi
}

test_logs=$LOGS/tests
rm -rf "$test_logs"
mkdir -p "$test_logs" "$BUILD/out"

mapfile -t wanted_sections < <(sections ${asked_lanes[@]+"${asked_lanes[@]}"})
scripts/setup ${wanted_sections[@]+"${wanted_sections[@]}"}
kinds=()
suites=()
for config in "${configs[@]}"; do
    is_configured "$config" || step "Configuring ($config)" "Remove build/$config and start again." configure "$config"
    mapfile -t lines < <(selected "$config")
    [ ${#lines[@]} -gt 0 ] || continue
    mapfile -t -O ${#kinds[@]} kinds < <(printf '%s\n' "${lines[@]}" | cut -d ' ' -f 1)
    mapfile -t -O ${#suites[@]} suites < <(printf '%s\n' "${lines[@]}" | cut -d ' ' -f 2)
    mapfile -t wanted_sections < <(sections "${kinds[@]}")
    scripts/setup ${wanted_sections[@]+"${wanted_sections[@]}"}
    [ -n "$list" ] || build_for "${lines[@]}"
done
[ ${#suites[@]} -gt 0 ] || fail "No test is called so: ${names[*]}" 'See ./test.sh --list.'

# A directory for CTest that contains those of the builds, so that one run covers all of them.
printf 'subdirs(%s)\n' "${configs[@]}" >build/CTestTestfile.cmake
# among WORD...: a regular expression that matches each of the words.
among() { (IFS='|'; echo "($*)"); }
mapfile -t suites < <(printf '%s\n' "${suites[@]}" | sort -u)
pattern="^($(among "${configs[@]}")\\.$(among any "${users[@]}")|check)\\.$(among "${suites[@]}")\$"
if [ -n "$list" ]; then
    ctest --test-dir build -N -R "$pattern"
    exit 0
fi

# Tests that were left out because of who started this.
left_out=0
if has package "${kinds[@]}" && [ "$(id -u)" -ne 0 ]; then
    left_out=$(for suite in install everyone; do
        "build/release/tests/package_$suite" --gtest_list_tests
    done | grep -c '^ ')
    say "Skipped: $left_out tests of the package. They need a throw-away machine, which only the superuser can make."
elif has package "${kinds[@]}"; then
    rm -f build/release/*.deb build/release/*.rpm
    step 'Packaging' 'The log says what is missing.' cmake --build --preset release --target package package_rpm
fi

runs=$(ctest --test-dir build -N -R "$pattern" | sed -n 's/^Total Tests: //p')
export GLYPHWARD_SEED=$seed
if [ -n "$seed" ] && { has unit "${kinds[@]}" || has widget "${kinds[@]}" || has soak "${kinds[@]}"; }; then
    say "The seed of shuffled and random tests is $seed; --seed $seed does the same again."
fi
status=0
[ "$runs" -eq 0 ] ||
    ctest --test-dir build --output-on-failure --no-label-summary --no-tests=error -j "$jobs" -R "$pattern" || status=$?

read -r counted passed failed skipped < <(cat "$test_logs"/*.counts 2>/dev/null |
    awk '{ passed += $1; failed += $2; skipped += $3 } END { print NR, passed + 0, failed + 0, skipped + 0 }')
if [ "$counted" -ne "$runs" ]; then
    say "$((runs - counted)) runs left no counts."
    failed=$((failed + runs - counted))
fi
[ "$status" -eq 0 ] || [ "$failed" -gt 0 ] || failed=1
skipped=$((skipped + left_out))
say "$passed passed, $failed failed$([ "$skipped" -eq 0 ] || echo ", $skipped skipped")"
[ "$failed" -eq 0 ]

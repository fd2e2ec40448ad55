#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# From a clone to the running program: installs missing packages, builds, stages, and runs the program in the sandbox,
# where it cannot change the machine's own fonts and settings. Without a display it uses an invisible one.
set -euo pipefail
# shellcheck source=scripts/common.sh
. "$(dirname "$0")/scripts/common.sh"

usage() {
    cat <<'END'
Usage: ./run.sh [OPTION]... [-- TOOLKIT OPTION...]

Runs Glyph Warden in a sandbox with an installation, a home directory and an X server of its own: in a window when
there is a display; with --web, in a browser; otherwise invisibly, where it selects a font and leaves a picture in
build/glyphward.png.
Whatever is done in there is gone when the program ends; the machine is not touched.

  --root         as the superuser (default: as an ordinary user)
  --fonts DIR    shows DIR, read-only, as "fonts" in the program's home directory (/home/glyph/fonts, with --root
                 /root/fonts): choose it as the directory to install from
  --web          in a browser on this machine: prints the page's address, which includes the password of this run.
                 Other machines cannot reach it. To see it from another machine, forward the port
                 (ssh -L 6080:127.0.0.1:6080 HOST) and open the same address there
  --port N       the page is on port N (default: 6080; 0: one that is free)
  --no-window    a picture also when there is a display
  --help         this

What follows "--" goes to the program, for example: ./run.sh -- -xrm 'Glyphward*gw_fontset_support: True'
END
}

user=--user
fonts=
window=1
web=
port=
while [ $# -gt 0 ]; do
    case $1 in
        --root) user=--root ;;
        --fonts)
            [ $# -gt 1 ] || fail '--fonts wants a directory.'
            fonts=$2
            shift
            ;;
        --web) web=1 ;;
        --port)
            [ $# -gt 1 ] || fail '--port wants a number.'
            port=$2
            check_port "$port"
            shift
            ;;
        --no-window) window= ;;
        --help) usage; exit 0 ;;
        --) shift; break ;;
        *) usage >&2; exit 2 ;;
    esac
    shift
done
[ -z "$port" ] || [ -n "$web" ] || fail '--port is the port of the page: it goes with --web.'
[ -z "$web" ] || [ -n "$window" ] || fail '--web and --no-window exclude each other.'
[ -z "$fonts" ] || [ -d "$fonts" ] ||
    fail "There is no directory $fonts." 'Give --fonts a directory that holds font files.'
if [ -n "$fonts" ]; then
    fonts=$(cd "$fonts" && pwd -P)
    # Root starts the program as an ordinary user, who must be able to read the directory.
    [ "$(id -u)" -ne 0 ] || [ "$user" = --root ] || [ $((8#$(stat -c %a "$fonts") & 5)) -eq 5 ] ||
        fail "An ordinary user cannot read $fonts." "Open it (chmod go+rx), or use --root."
fi

"$TREE/scripts/setup" ${web:+web}
build release installation
step 'Staging' 'See scripts/packages for the font packages.' "$TREE/scripts/stage" --preset release

options=("$user" --preset release --stage --wm --out "$BUILD/out/run")
[ -z "$fonts" ] || options+=(--bind "$fonts:~/fonts")
for name in LANG LC_ALL LC_CTYPE LC_MESSAGES; do
    [ -z "${!name-}" ] || options+=(--env "$name=${!name}")
done
[ -z "$fonts" ] || say "Your fonts are in $([ "$user" = --root ] && echo /root || echo /home/glyph)/fonts."

if [ -n "$web" ]; then
    exec "$TREE/scripts/web" --port "${port:-6080}" "${options[@]}" -- /usr/vantor/bin/glyphward "$@"
fi
if [ -n "$window" ] && [ -n "${DISPLAY-}" ] && timeout 10 xset q >/dev/null 2>&1; then
    say 'Running in a window; Fonts > Exit or closing the window ends it.'
    exec "$TREE/scripts/sandbox" "${options[@]}" --xephyr -- /usr/vantor/bin/glyphward "$@"
fi
[ -z "$window" ] || say 'There is no display: running on an invisible one.'
step 'Running' 'Start again; if it fails again, the log says what the program was waiting for.' \
    "$TREE/scripts/sandbox" "${options[@]}" --x -- "$TREE/scripts/show" "$@"
mv -f "$BUILD/out/run/glyphward.png" "$BUILD/glyphward.png"
say "It selected a font; see build/glyphward.png."

#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# From a clone to the running program: installs what is missing, builds, stages, and runs the program in the sandbox, where the
# machine's own fonts and settings cannot be touched. Without a display it shows what it can do on an invisible one.
set -euo pipefail
# shellcheck source=scripts/common.sh
. "$(dirname "$0")/scripts/common.sh"

usage() {
    cat <<'END'
Usage: ./run.sh [OPTION]... [-- TOOLKIT OPTION...]

Runs Glyph Warden in a sandbox with an installation, a home directory and an X server of its own: in a window when
there is a display; otherwise invisibly, where it selects a font and leaves a picture in build/glyphward.png.
Whatever is done in there is gone when the program ends; the machine is not touched.

  --root         as the superuser (default: as an ordinary user)
  --fonts DIR    shows DIR, read-only, as "fonts" in the program's home directory (/home/glyph/fonts, with --root
                 /root/fonts): choose it as the directory to install from
  --no-window    a picture also when there is a display
  --help         this

What follows "--" goes to the program, for example: ./run.sh -- -xrm 'Glyphward*gw_fontset_support: True'
END
}

user=--user
fonts=
window=1
while [ $# -gt 0 ]; do
    case $1 in
        --root) user=--root ;;
        --fonts)
            [ $# -gt 1 ] || fail '--fonts wants a directory.'
            fonts=$2
            shift
            ;;
        --no-window) window= ;;
        --help) usage; exit 0 ;;
        --) shift; break ;;
        *) usage >&2; exit 2 ;;
    esac
    shift
done
[ -z "$fonts" ] || [ -d "$fonts" ] || fail "There is no directory $fonts." 'Give --fonts a directory that holds font files.'
if [ -n "$fonts" ]; then
    fonts=$(cd "$fonts" && pwd -P)
    # The superuser's ordinary user is somebody else than who gave the directory.
    [ "$(id -u)" -ne 0 ] || [ "$user" = --root ] || [ $((8#$(stat -c %a "$fonts") & 5)) -eq 5 ] ||
        fail "An ordinary user cannot read $fonts." "Open it (chmod go+rx), or use --root."
fi

"$TREE/scripts/setup"
build release glyphward makepsres catalogues
step 'Staging' 'See scripts/packages for the font packages.' "$TREE/scripts/stage" --preset release

options=("$user" --preset release --stage --wm --out "$BUILD/out/run")
[ -z "$fonts" ] || options+=(--bind "$fonts:~/fonts")
for name in LANG LC_ALL LC_CTYPE LC_MESSAGES; do
    [ -z "${!name-}" ] || options+=(--env "$name=${!name}")
done
[ -z "$fonts" ] || say "Your fonts are in $([ "$user" = --root ] && echo /root || echo /home/glyph)/fonts."

if [ -n "$window" ] && [ -n "${DISPLAY-}" ] && timeout 10 xset q >/dev/null 2>&1; then
    say 'Running in a window; Fonts > Exit or closing the window ends it.'
    exec "$TREE/scripts/sandbox" "${options[@]}" --xephyr -- /usr/vantor/bin/glyphward "$@"
fi
[ -z "$window" ] || say 'There is no display: running on an invisible one.'
step 'Running' 'Start again; if it fails again, the log says what the program was waiting for.' \
    "$TREE/scripts/sandbox" "${options[@]}" --x -- "$TREE/scripts/show" "$@"
mv -f "$BUILD/out/run/glyphward.png" "$BUILD/glyphward.png"
say "It selected a font; see build/glyphward.png."

# shellcheck shell=sh
# SPDX-License-Identifier: MIT
#
# Another window system may have its own files below /usr/vantor. This is part of the package's preinst, and cmake
# --install runs it.

# foreign_files DIR: the first files below DIR that were there before Glyph Warden and could be overwritten by it. Fonts
# and the font path are not among them, because an installation does not touch those.
foreign_files() {
    [ -e "$1" ] || [ -L "$1" ] || return 0
    [ ! -e "$1/share/glyphward/installed-by" ] || return 0
    if [ ! -d "$1" ]; then
        printf '%s\n' "$1"
        return 0
    fi
    (cd "$1" && find . ! -type d ! -path './lib/X11/fonts/*' ! -path './server/etc/VTconfig*' |
        sort | sed -n '1,5s/^\.\//    /p')
}

// SPDX-License-Identifier: MIT
//
// Every fixed path of the system. No other file contains one.
#pragma once

namespace gw {

// The installation.
inline constexpr const char* INSTALLATION_ROOT = "/usr/vantor";
inline constexpr const char* SYSTEM_FONT_DIR = "/usr/vantor/lib/X11/fonts";
inline constexpr const char* INSTALLATION_BIN = "/usr/vantor/bin";  ///< its commands
inline constexpr const char* MANUAL_DIR = "/usr/vantor/share/man";  ///< the program's own manual page
inline constexpr const char* XSET = "/usr/vantor/bin/xset";
inline constexpr const char* INSTALLATION_CONFIG = "/server/etc/VTconfig";  ///< below the installation root
inline constexpr const char* SETUP_RECORD =
    "/var/lib/glyphward/VTconfig";                                   ///< what glyphward-setup wrote there
inline constexpr const char* LOCALE_FONT_PATH_DIR = "/lib/locale/";  ///< below the installation root
inline constexpr const char* LOCALE_FONT_PATH_FILE = "/VTfontpath";  ///< below a locale's directory

// The host's own configuration.
inline constexpr const char* HOST_CONFIG_DIR = "/etc/vantor/server/etc";
inline constexpr const char* HOST_CONFIG = "/etc/vantor/server/etc/VTconfig";
inline constexpr const char* DESKTOP_FONT_DIR_FORMAT = "/usr/dt/config/xfonts/%s/";
inline constexpr const char* DESKTOP_FONT_DIR_NO_LOCALE = "/usr/dt/config/xfonts/C";

/// Where the distribution and the administrator put fonts, in directories of their own.
inline constexpr const char* HOST_FONTS = "/usr/share/fonts";
inline constexpr const char* HOST_LOCAL_FONTS = "/usr/local/share/fonts";

// Below the user's home directory.
inline constexpr const char* USER_FONT_PATH_FILE = "/.VTfontpath";
inline constexpr const char* USER_FONTS = "/.local/share/fonts";
inline constexpr const char* USER_HIDDEN_FONTS = "/.fonts";
inline constexpr const char* USER_SETTINGS_FILE = "/.glyphwdrc";
inline constexpr const char* USER_TRASH_LIST = "/.glyphwdtrash";
inline constexpr const char* USER_RECENT_SOURCES = "/.glyphwdrecent";

// Kept: scratch files have fixed names. Each is used as `scratch_path` has it.
inline constexpr const char* SCRATCH_ERRORS = "/tmp/errors";
inline constexpr const char* SCRATCH_PCF_DIR = "/tmp/pcf/";
inline constexpr const char* SCRATCH_TYPE0_DIR = "/tmp/type0/";
inline constexpr const char* SCRATCH_TYPE3_DIR = "/tmp/type3/";
inline constexpr const char* SCRATCH_MANUAL = "/tmp/glyphward.man";
inline constexpr const char* SCRATCH_MANUAL_ERRORS = "/tmp/glyphward_err.man";
inline constexpr const char* SCRATCH_FONTSETS =
    "/tmp/Vantor.fs";  ///< has the name of the file that it is a copy of
inline constexpr const char* SCRATCH_ROOT = "/tmp";
inline constexpr const char* SCRATCH_PRIVATE = "/tmp/glyphward-XXXXXX";        ///< for `mkdtemp`
inline constexpr const char* SCRATCH_MEMORY_ROOT = "/dev/shm";                 ///< a file system in memory
inline constexpr const char* SCRATCH_IN_MEMORY = "/dev/shm/glyphward-XXXXXX";  ///< for `mkdtemp`

// Staging directories for the preview of fonts that are not installed yet.
inline constexpr const char* STAGING_DIR = "/tmp/gw_dir/";
inline constexpr const char* STAGING_FLOPPY = "/tmp/gw_floppy/";
inline constexpr const char* STAGING_CDROM = "/tmp/gw_cdrom/";

// Removable media.
inline constexpr const char* FLOPPY_ROOT = "/floppy";
inline constexpr const char* FLOPPY_MOUNT = "/floppy/floppy0/";
inline constexpr const char* CDROM_ROOT = "/cdrom";
inline constexpr const char* CDROM_MOUNT = "/cdrom/cdrom0/";
inline constexpr const char* CDROM_MEDIUM_DIR = "/cdrom/cdrom0";

// The directory above the superuser's font directory, and the name of the default font directory, which is
// below it or below a user's home directory.
inline constexpr const char* HOST_DIR = "/etc/vantor";
inline constexpr const char* DEFAULT_INSTALL_DIR = "/glyphwd_fonts";
/// The superuser's, as a font path has it. The first installation there makes it.
inline constexpr const char* SUPERUSER_FONT_DIR = "/etc/vantor/glyphwd_fonts/";

/// The superuser's list of directories with deleted fonts.
inline constexpr const char* SUPERUSER_TRASH_LIST = "/etc/vantor/glyphwdtrash";

/// The directories from which the superuser has lately taken fonts.
inline constexpr const char* SUPERUSER_RECENT_SOURCES = "/etc/vantor/glyphwdrecent";

/// The print spooler's directory; it has a subdirectory for each printer.
inline constexpr const char* PRINTERS_DIR = "/etc/lp/printers";

// Search paths that start-up sets when the environment has none.
inline constexpr const char* DEFAULT_NLSPATH =
    "/usr/dt/lib/nls/msg/%L/%N.cat:/usr/dt/lib/nls/msg/%L/%N:/usr/vantor/lib/locale/%L/LC_MESSAGES/%N.cat:"
    "/usr/vantor/lib/locale/%L/LC_MESSAGES/%N";
inline constexpr const char* DEFAULT_XFILESEARCHPATH =
    "/usr/dt/app-defaults/%L/%N:/usr/dt/lib/app-defaults/%N:/usr/vantor/lib/locale/%L/%T/%N%S:/usr/vantor/"
    "lib/%T/%N%S";

/// The font path of an installation whose database names none. Kept: the default font path names directories
/// that may be missing.
inline constexpr const char* DEFAULT_FONT_PATH =
    "/usr/vantor/lib/X11/fonts/Q7/,/usr/vantor/lib/X11/fonts/Q7bitmaps/,/usr/vantor/lib/X11/fonts/Type1/,"
    "/usr/vantor/lib/X11/fonts/Speedo/,/usr/vantor/lib/X11/fonts/misc/,/usr/vantor/lib/X11/fonts/75dpi/,"
    "/usr/vantor/lib/X11/fonts/100dpi/,/usr/vantor/lib/X11/fonts/Kx+/";

/// What installs packages of the distribution. Not there on those of another family.
inline constexpr const char* APT = "/usr/bin/apt";

// Installations for everyone: what asks for an administrator's password, our program that it starts, and its
// leave to do so.
inline constexpr const char* PKEXEC = "/usr/bin/pkexec";
inline constexpr const char* EVERYONES_INSTALLER = "/usr/vantor/libexec/glyphward-everyone";
inline constexpr const char* EVERYONES_POLICY = "/usr/share/polkit-1/actions/local.glyphward.policy";

// Names of the files in a font directory.
inline constexpr const char* FONT_INDEX_NAME = "fonts.dir";
inline constexpr const char* SCALABLE_INDEX_NAME = "fonts.scale";
inline constexpr const char* ALIAS_FILE_NAME = "fonts.alias";
inline constexpr const char* UPR_FILE_NAME = "glyphwd.upr";

// The fontsets of a locale, below the installation root and the locale's directory.
inline constexpr const char* FONTSET_DIR = "/VT_FONT_SETS/";
inline constexpr const char* FONTSET_FILE_NAME = "Vantor.fs";

}  // namespace gw

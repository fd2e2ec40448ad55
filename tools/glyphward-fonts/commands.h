// SPDX-License-Identifier: MIT
//
// The commands. Each writes what it has to say through the report, and answers with what came of it.
#pragma once

#include <string>
#include <vector>

#include "glyphward-fonts/report.h"

namespace gw::fonts {

struct ListFilter {
    std::vector<std::string> patterns;  ///< see rows.h; all rows where there is none
    std::string format;                 ///< "type1", "truetype", "opentype", "bitmap", "alias"; "" for all
    std::string scope;                  ///< "mine", "everyone"; "" for both
    std::string charset;                ///< "iso8859-1"; "" for all
    std::string owner;                  ///< a user's name; "" for all
    bool is_unusable = false;           ///< only rows from which programs get nothing
    bool is_long = false;               ///< with format, kilobytes, XLFD names and files
};
Status list(const ListFilter& filter, Report& report);

/// The verdicts on font files, and on all font files in and below directories.
Status verify(const std::vector<std::string>& files, Report& report);

struct WhyOptions {
    std::string text;     ///< what was pasted
    std::string display;  ///< "" for that of the environment
    int cure = 0;         ///< the number of the cure to be carried out; 0 for none
};
/// `DONE` when the server has all that was asked for.
Status why(const WhyOptions& options, Report& report);
/// The whole font path of the server, and every row of the list.
Status doctor(const std::string& display, Report& report);

struct FontsetOptions {
    std::string locale;      ///< "ja_JP.UTF-8"
    std::string base_names;  ///< "" for the fontsets of the installation
    std::string display;
};
/// Which charsets of a locale the fontsets cover, and what would cover the others. `DONE` when the server
/// makes all of them.
Status fontset(const FontsetOptions& options, Report& report);

enum class Destination { ME, EVERYONE, DIRECTORY };
/// What becomes of a font whose name another one has. `REPLACE_HERE`: that is replaced if it is in the
/// destination.
enum class IfThere { REFUSE, REPLACE, REPLACE_HERE, KEEP };
struct InstallOptions {
    std::vector<std::string> sources;  ///< files and directories
    Destination destination = Destination::ME;
    std::string directory;  ///< of `Destination::DIRECTORY`
    IfThere if_there = IfThere::REFUSE;
};
Status install(const InstallOptions& options, Report& report);

struct DeleteOptions {
    std::vector<std::string> patterns;
    bool is_agreed = false;  ///< nobody is asked
    bool is_forced = false;  ///< fonts of the system and of packages are deleted too
};
Status delete_fonts(const DeleteOptions& options, Report& report);

/// Brings back what one action has deleted or replaced; "" is the last one.
Status undo(const std::string& action, Report& report);
/// Lists what can come back, or removes it for good.
Status trash(bool empties, Report& report);

enum class WhosePath { ME, HOST, INSTALLATION, SESSION };
struct PathOptions {
    WhosePath whose = WhosePath::ME;
    bool in_front = false;  ///< of the user's path: of its front part; of others: at the beginning
    std::string display;    ///< of the session; "" for that of the environment
};
Status show_path(const PathOptions& options, bool all, Report& report);
Status add_to_path(const PathOptions& options, const std::vector<std::string>& elements, Report& report);
Status remove_from_path(const PathOptions& options, const std::vector<std::string>& elements, Report& report);
/// `place` is 1-based among the elements of the same path.
Status move_on_path(const PathOptions& options, const std::string& element, int place, Report& report);
/// Puts the configured path on the running server.
Status apply_path(const std::string& display, Report& report);
/// Makes the running server's path the user's own.
Status save_path(const std::string& display, Report& report);

/// Makes the machine what the profile says. `checks`: changes nothing, and `FAILED` when something would be
/// changed. `ALREADY` when it is so already.
Status apply(const std::string& profile, bool checks, Report& report);

struct ExportOptions {
    std::string directory;  ///< made for the profile and its fonts; must be empty or missing
    Destination fonts = Destination::EVERYONE;
    std::string fonts_of;  ///< of `Destination::DIRECTORY`
};
Status export_profile(const ExportOptions& options, Report& report);

}  // namespace gw::fonts

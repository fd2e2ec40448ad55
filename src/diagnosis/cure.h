// SPDX-License-Identifier: MIT
//
// What can be done about a font that programs do not find. A cure is planned by the diagnosis, which changes
// nothing, and carried out when the user says so. Each is kept for the next login and can be undone.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/failure.h"
#include "diagnosis/sentence.h"
#include "diagnosis/surroundings.h"
#include "fontfiles/alias_text.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

enum class Remedy {
    SERVE_DIRECTORY,  ///< `element` comes to the user's font path, and to the server's
    READ_AGAIN,       ///< the server reads the index and the aliases of `element` again; nothing is undone
    TAKE_OFF,       ///< the dead `element` leaves the font paths that this user may change, and the server's
    MAKE_INDEX,     ///< the index of the directory `element` is made anew
    MAKE_READABLE,  ///< the server may read `element`, a directory or file of the user's own
    ADD_ALIAS,      ///< `wanted` becomes another name of the font `font`, in the user's own directory
    COMMENT_OUT,    ///< lines of "fonts.alias" in the directory `element` become comments
    INSTALL_DIRECTORY,  ///< the install window, or command, is opened with the fonts of the directory
                        ///< `element`
    BRING_BACK,         ///< the deleted font of the file `font` comes back: into `element`, from the entry
                        ///< `wanted` of its trash
};

/// Files and directories, each with the permission bits that it lacks, or gets.
using Rights = std::vector<std::pair<std::string, mode_t>>;

struct Cure {
    Remedy remedy = Remedy::SERVE_DIRECTORY;
    Sentence what = {};  ///< what it will do, in one line
    std::string element = {};
    std::string wanted = {};
    std::string font = {};
    bool in_front = false;  ///< `SERVE_DIRECTORY`, `ADD_ALIAS`: before everything else on the paths
    Rights rights = {};     ///< `MAKE_READABLE`: what gets more permissions, and nothing else does
    /// `COMMENT_OUT`: aliases that lead to no font, besides the lines that the server refuses.
    std::vector<AliasOfFont> aliases = {};
    /// For the administrator, to copy, where this user may not do it; "" otherwise. A command line for the
    /// shell.
    std::string command = {};
};

/// Something that was done, and how it is undone.
struct Deed {
    Sentence what;
    std::vector<Sentence> remarks;  ///< what else has come of it
    /// Puts back what was there, unless somebody else has changed it since; used once.
    std::function<Outcome()> undo;
};

/// Called from time to time with how many files of how many have been read. Answers false when the user has
/// had enough.
using Progress = std::function<bool(std::size_t done, std::size_t all)>;

/// Carries out a cure that has no `command`. The deed refers to the server, which must live as long. Nothing
/// is changed after a failure, nor where `progress` (may be empty) has stopped it (ECANCELED).
/// `INSTALL_DIRECTORY` is for the caller.
Result<Deed> carry_out(const Cure& cure, ServerView& server, const Surroundings& surroundings,
                       const Progress& progress = {});

}  // namespace gw::diagnosis

// SPDX-License-Identifier: MIT
//
// The answer to a question: what the server says, what state its font path is in, what is nearest to what was
// asked for, and what can be done. All of it are plain values.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "diagnosis/cure.h"
#include "diagnosis/question.h"
#include "diagnosis/sentence.h"
#include "diagnosis/surroundings.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

// --- the font path -----------------------------------------------------------

enum class ElementState {
    WORKS,
    WORKS_IN_PART,  ///< the server takes it, but some of its fonts cannot be had, or its index is old
    NOT_SERVED,     ///< configured and in order, but not on the server's path
    DEAD,           ///< the server cannot take it, or gets nothing from it
    NOT_KNOWN,      ///< it cannot be looked at from here
};

/// What is wrong with an element, for those who can mend it. Of several troubles the first in this order.
enum class Trouble {
    NONE,          ///< or one that nobody can mend from here
    BAD_NAME,      ///< no font path can have it: a comma, too long
    NO_DIRECTORY,  ///< there is none
    UNREADABLE,    ///< the server may not read it, or not get there: see `unreadable`
    NO_INDEX,      ///< no "fonts.dir" in it
    BAD_INDEX,     ///< the server refuses "fonts.dir"
    BAD_ALIASES,   ///< the server refuses "fonts.alias"
    OLD_INDEX,     ///< "fonts.dir" names files that are missing, or not all that are there
    REFUSED,       ///< the server does not take it, or gets nothing from it; nothing tells why
};

/// One element of the server's path, or one that is only configured.
struct ElementReport {
    std::string element;  ///< as it is written on the path
    int place = 0;        ///< 1-based on the server's path; 0 when it is not there
    bool is_configured = false;
    ElementState state = ElementState::WORKS;
    Trouble trouble = Trouble::NONE;
    /// Absolute paths of the directories and files that the server may not pass or read: on the way to the
    /// element, and in it the index, the aliases and the listed fonts.
    std::vector<std::string> unreadable = {};
    std::vector<Sentence> remarks;  ///< the one that decides the state first; one at least
};

// --- the font ----------------------------------------------------------------

enum class Found {
    EXACT,       ///< the name is in an index, or the pattern matches one that is
    SCALED,      ///< the server makes this size of another one, or of an outline
    NOT_OPENED,  ///< the server knows the name, and cannot open the font
    NOTHING,
};

/// An alias that leads to no font, because it is part of a circle or what it leads to is not there.
struct UselessAlias {
    std::string alias;
    std::string font;
    std::string element;         ///< of the path, whose file has it
    std::string directory = {};  ///< where that file is
};

struct ServedFont {
    Found found = Found::NOTHING;
    std::vector<std::string> aliases;        ///< that led there, in order: what was asked for first
    std::string name;                        ///< as the server has opened it
    std::string element;                     ///< of the path, as written; "" when it is not known
    std::string file;                        ///< absolute path; "" when it is not known
    bool is_checked = false;                 ///< what the server has opened agrees with what the index says
    std::vector<UselessAlias> useless = {};  ///< of the aliases, why there is no font
};

/// A font that is not what was asked for, but near to it.
struct NearFont {
    std::string name;     ///< a full name that programs can ask for
    std::string file;     ///< absolute path; "" when it is not known
    std::string element;  ///< of the server's path, or the directory that is not on it
    bool is_served = false;
    std::vector<Sentence> differences;  ///< each field that keeps it from matching; none for the font itself
    std::size_t other_charsets = 0;     ///< in which its file has the same font, besides that of `name`
};

/// A package of the distribution that would bring a font.
struct PackageHint {
    std::string package;
    std::string command;  ///< that installs it; "" where nothing here knows packages by Debian's names
    std::string name;     ///< of a font in it
};

struct CharsetCoverage {
    std::string charset;            ///< that the locale wants
    std::string font;               ///< that covers it; "" for none
    std::vector<NearFont> nearest;  ///< what would, if none does
    std::vector<PackageHint> packages;
};

struct Answer {
    Question question;
    ServerPlace place = ServerPlace::HERE;  ///< cures of files are for a server that is here
    std::optional<uid_t> server_user;       ///< as `ServerView` has it, and the groups
    std::vector<gid_t> server_groups;
    std::vector<Sentence> verdict;  ///< the answer in sentences, the most important first
    bool works = false;             ///< programs get what was asked for
    ServedFont font;
    std::vector<ElementReport> path;  ///< the server's, then the configured elements that it lacks
    std::vector<NearFont> nearest;    ///< at most `MOST_NEAR`, the nearest first
    std::vector<PackageHint> packages;
    std::vector<CharsetCoverage> charsets;  ///< for a fontset
    std::string base_names;                 ///< for a fontset: names that cover all charsets, to copy
    std::vector<Cure> cures;                ///< the one that helps first
};

inline constexpr std::size_t MOST_NEAR = 5;

/// Finds it all out. Changes nothing; asks the server at most once for each pattern.
[[nodiscard]] Answer answer(const Question& question, ServerView& server, const Surroundings& surroundings);

/// The whole answer as a text for a colleague, each sentence put into words by `words`.
using Words = std::string (*)(const Sentence& sentence);
[[nodiscard]] std::string report(const Answer& answer, Words words = in_english);

}  // namespace gw::diagnosis

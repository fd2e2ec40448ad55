// SPDX-License-Identifier: MIT
//
// The journal of a change of a font directory: its records, and what taking them back does. The first line of
// an input is an entry of the directory's index, the rest is the journal.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "fuzz.h"
#include "store/directory_change.h"
#include "store/journal.h"
#include "store/take_back.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* OUTSIDE = "a file beside the font directory";

void try_records(std::string_view text) {
    const auto records = gw::journal::parse(text, "journal");
    if (!records) return;
    const bool is_old = text.starts_with(gw::journal::FIRST_HEADING);
    std::string written(is_old ? gw::journal::FIRST_HEADING : gw::journal::HEADING);
    for (const gw::journal::Record& record : *records) written += gw::journal::line_of(record);
    const auto again = gw::journal::parse(written, "journal");
    GW_MUST_HOLD(static_cast<bool>(again), written);
    // Files of the first version have fewer marks.
    GW_MUST_HOLD(!text.starts_with(gw::journal::HEADING) || *again == *records, written);
    // What a kill leaves of it is its beginning.
    const auto cut = gw::journal::parse(text.substr(0, text.size() / 2), "journal");
    GW_MUST_HOLD(static_cast<bool>(cut) && cut->size() <= records->size(), text);
    GW_MUST_HOLD(std::equal(cut->begin(), cut->end(), records->begin()), text);
}

/// A font directory with three fonts, one of them set aside, and this journal.
void make_directory(std::string_view entry, std::string_view journal) {
    const gw::test::TempDir& dir = gw::fuzz::directory();
    fs::remove_all(dir.file("fonts"));
    dir.write("outside", OUTSIDE);
    dir.write("fonts/a.pfa", "a");
    dir.write("fonts/afm/a.afm", "metrics");
    dir.write("fonts/kept.pfa", "kept");
    dir.write("fonts/fonts.dir", "1\n" + std::string(entry) + '\n');
    dir.write("fonts/.glyphward/old/0", "old");
    dir.write("fonts/.glyphward/journal", journal);
    fs::permissions(dir.file("fonts/.glyphward"), fs::perms::owner_all);
}

/// Whatever a journal says, it reaches only what it names in its directory, and comes to an end.
void try_taking_back(std::string_view entry, std::string_view journal) {
    const gw::test::TempDir& dir = gw::fuzz::directory();
    make_directory(entry, journal);
    const auto fonts = gw::Directory::open(dir.file("fonts"));
    GW_MUST_HOLD(static_cast<bool>(fonts), journal);
    const auto own = gw::OwnDirectory::enter(*fonts, false);
    GW_MUST_HOLD(static_cast<bool>(own), journal);
    const gw::Outcome recovered = gw::recover(*fonts, **own);
    GW_MUST_HOLD(dir.read("outside") == OUTSIDE, journal);
    GW_MUST_HOLD(gw::test::entries_in(dir.path()) <= 3, journal);
    GW_MUST_HOLD(dir.read("fonts/.glyphward/journal").empty() == static_cast<bool>(recovered), journal);
    if (journal.find("kept.pfa") == std::string_view::npos)
        GW_MUST_HOLD(dir.read("fonts/kept.pfa") == "kept", journal);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view journal = input;
    const std::string_view entry = before_nul(take_line(journal));
    try_records(journal);
    try_taking_back(entry, journal);
}

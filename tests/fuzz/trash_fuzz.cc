// SPDX-License-Identifier: MIT
//
// The manifest of an entry of the trash, and what bringing the entry back does. The first line of an input is
// an entry of the directory's index, the rest is the manifest.
#include <algorithm>
#include <filesystem>

#include "fuzz.h"
#include "store/directory_change.h"
#include "store/trash.h"
#include "store/trash_manifest.h"
#include "store/trash_policy.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* OUTSIDE = "a file beside the font directory";

void try_text(std::string_view text) {
    const auto manifest = gw::trash::parse(text);
    if (!manifest) return;
    const std::string written = gw::trash::text_of(*manifest);
    const auto again = gw::trash::parse(written);
    GW_MUST_HOLD(static_cast<bool>(again), written);
    GW_MUST_HOLD(again->fonts == manifest->fonts && again->entry == manifest->entry, written);
    // What was cut off has the first fonts.
    const auto cut = gw::trash::parse(text.substr(0, text.size() * 3 / 4));
    if (!cut) return;
    GW_MUST_HOLD(cut->fonts.size() <= manifest->fonts.size(), text);
    GW_MUST_HOLD(std::equal(cut->fonts.begin(), cut->fonts.end(), manifest->fonts.begin()), text);
}

/// A font directory with two fonts, and three files that the manifest can mean, in `place`.
void make_directory(std::string_view entry, std::string_view manifest, const std::string& place) {
    const gw::test::TempDir& dir = gw::fuzz::directory();
    fs::remove_all(dir.file("fonts"));
    dir.write("outside", OUTSIDE);
    dir.write("fonts/here.pcf", "here");
    dir.write("fonts/kept.pcf", "kept");
    dir.write("fonts/fonts.dir", "1\n" + std::string(entry) + '\n');
    for (const char* number : {"0", "1", "2"}) dir.write("fonts/.glyphward/" + place + number, number);
    dir.write("fonts/.glyphward/" + place + "manifest", manifest);
    dir.make_dir("fonts/.glyphward/new");
    dir.make_dir("fonts/.glyphward/old");
    for (const auto& file : fs::recursive_directory_iterator(dir.file("fonts/.glyphward"))) {
        if (file.is_directory()) fs::permissions(file, fs::perms::owner_all);
    }
    fs::permissions(dir.file("fonts/.glyphward"), fs::perms::owner_all);
}

void check_surroundings(std::string_view manifest) {
    const gw::test::TempDir& dir = gw::fuzz::directory();
    GW_MUST_HOLD(dir.read("outside") == OUTSIDE, manifest);
    GW_MUST_HOLD(gw::test::entries_in(dir.path()) <= 3, manifest);
    if (manifest.find("kept.pcf") == std::string_view::npos)
        GW_MUST_HOLD(dir.read("fonts/kept.pcf") == "kept", manifest);
    GW_MUST_HOLD(fs::is_empty(dir.file("fonts/.glyphward/old")), manifest);
}

/// What is offered comes back whole, or is refused and stays; nothing of the other fonts is lost.
void try_bringing_back(std::string_view entry, std::string_view manifest, const std::string& place) {
    const gw::test::TempDir& dir = gw::fuzz::directory();
    make_directory(entry, manifest, place);
    const auto offered = gw::trash_entries(dir.file("fonts"));
    GW_MUST_HOLD(static_cast<bool>(offered) && offered->size() <= 1, manifest);
    for (const gw::TrashEntry& trashed : *offered) {
        const gw::Outcome back = gw::bring_back(trashed.dir, trashed.id);
        const auto left = gw::trash_entries(dir.file("fonts"));
        GW_MUST_HOLD(static_cast<bool>(left), manifest);
        GW_MUST_HOLD(back || left->size() == 1, manifest);
        for (const gw::TrashedFont& font : trashed.fonts) {
            for (const std::string& file : font.files)
                GW_MUST_HOLD(!back || dir.exists("fonts/" + file), manifest);
        }
    }
    check_surroundings(manifest);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    gw::set_trash_clock([] { return std::time_t{1790000000}; });
    std::string_view manifest = input;
    const std::string_view entry = before_nul(take_line(manifest));
    try_text(manifest);
    const auto parsed = gw::trash::parse(manifest);
    const std::string name = parsed ? parsed->entry : "1790000000-a";
    try_bringing_back(entry, manifest, "trash/" + name + '/');
    try_bringing_back(entry, manifest, "old/");
}

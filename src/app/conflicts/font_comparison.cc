// SPDX-License-Identifier: MIT
#include "app/conflicts/font_comparison.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>

#include "app/conflicts/decisions.h"
#include "app/kit/attach.h"
#include "app/kit/copyable.h"
#include "app/kit/widgets.h"
#include "app/kit/wrapped_text.h"
#include "app/program/failures.h"
#include "app/samples/sample_text.h"
#include "app/samples/shown_font.h"
#include "core/text.h"
#include "model/deleted_fonts.h"
#include "model/file_facts.h"
#include "platform/user_name.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/TextF.h>

namespace gw {

namespace {

constexpr int GAP = 2;
constexpr int LOW_MARGIN = 2;     // above and below the text of a field, in pixels
constexpr int SAMPLE_MARGIN = 9;  // the same of a sample
constexpr short DETAIL_ROWS = 2;
constexpr std::size_t MOST_FILES = 3;  // that the detail names
// Columns, in hundredths of the form's width.
constexpr int OLD_BEGIN = 17;
constexpr int OLD_END = 58;
constexpr int NEW_BEGIN = 59;
constexpr int ALL = 100;

Widget low_field(Widget form, const std::string& name) {
    Widget field = copyable_field(form, name.c_str());
    XtVaSetValues(field, XmNmarginHeight, LOW_MARGIN, nullptr);
    return field;
}

/// Puts a label and what stands beside it below `above`, or on top of the form if that is null. Returns what
/// the next row is below.
Widget attach_row(Widget label, std::initializer_list<Widget> parts, Widget above) {
    Widget first = *parts.begin();
    const int centring = centring_offset(label, first);
    for (Widget part : parts) {
        if (above != nullptr) {
            Attach(part).below(above, GAP);
        } else {
            Attach(part).top_form(0);
        }
    }
    Attach(label).left_form(0);
    if (above != nullptr) {
        Attach(label).below(above, GAP + centring);
    } else {
        Attach(label).top_form(centring);
    }
    return first;
}

/// Bitmaps are drawn in the size that their name has, if it fits.
int sample_pixels(GWFont& font, Widget field) {
    Dimension height = 0;
    XtVaGetValues(field, XmNheight, &height, nullptr);
    const int inside = std::max(8, height - LOW_MARGIN);
    const int pixels = font.is_bitmap() ? std::atoi(font.get_field(GWFont::PIXEL_SIZE)) : 0;
    return pixels > 0 && pixels < inside ? pixels : inside * 2 / 3;
}

std::string file_in_words(const ShownFont& font, std::size_t files) {
    if (files < 2) return font.file;
    return font.file + ", " + text_of(Message::AND_MORE, static_cast<unsigned>(files - 1));
}

std::string owner_in_words(const FileFacts& facts, const std::string& packages) {
    const std::string owner = user_name(facts.owner);
    return packages.empty() ? owner : text_of(Message::OWNER_AND_PACKAGE, {owner, packages});
}

/// "" for no font, and for one without a file.
std::string first_path(GWFont* font) {
    if (font == nullptr) return "";
    const ShownFont shown = shown_font(*font, nullptr);
    return shown.paths.empty() ? "" : shown.paths.front();
}

/// Whether both files are the same, in words; "" if there is one file only.
std::string bytes_in_words(const GWConflict::Compared& fonts) {
    const std::string installed = first_path(fonts.installed);
    const std::string offered = first_path(fonts.offered);
    if (installed.empty() || offered.empty()) return "";
    const Result<bool> equal = have_equal_bytes(installed, offered);
    if (!equal) return text_of(Message::BYTES_NOT_COMPARED, {failure_line(equal.failure())});
    return text_of(*equal ? Message::SAME_BYTES : Message::OTHER_BYTES);
}

/// The files that are in the way, if there are several: the first few, those of the directory that is shown
/// without it.
std::string files_in_the_way(const GWConflict& conflict) {
    const std::vector<std::string> files = conflict.get_conflict_files();
    if (files.size() < 2) return "";
    const std::string dir = with_trailing_slash(conflict.get_conflict_dir_name());
    std::string text = text_of(Message::FILES_IN_THE_WAY);
    for (std::size_t i = 0; i < files.size() && i < MOST_FILES; ++i) {
        if (i > 0) text += ", ";
        text += files[i].starts_with(dir) ? files[i].substr(dir.size()) : files[i];
    }
    if (files.size() > MOST_FILES)
        text += ", " + text_of(Message::AND_MORE, static_cast<unsigned>(files.size() - MOST_FILES));
    return text;
}

std::size_t font_count(const GWHRNElement* element) {
    std::size_t count = 0;
    if (element == nullptr) return count;
    for (const GWHRNElement::PointSize& size : element->get_slots()) count += size.fonts.size();
    return count;
}

}  // namespace

std::vector<Widget> FontComparison::parts_of(const Side& side) {
    return {side.title, side.sample, side.file, side.directory, side.size, side.owner};
}

void FontComparison::create_side(Widget form, Side& side, const std::string& name) {
    side.title =
        label(form, (name + "_label").c_str(), name == "old" ? Message::OLD_FONT : Message::NEW_FONT);
    side.sample = copyable_field(form, (name + "_sample").c_str());
    XtVaSetValues(side.sample, XmNmarginHeight, SAMPLE_MARGIN, nullptr);
    side.file = low_field(form, name + "_file");
    side.directory = low_field(form, name + "_directory");
    side.size = low_field(form, name + "_size");
    side.owner = low_field(form, name + "_owner");
}

void FontComparison::create(Widget form) {
    create_side(form, old_, "old");
    create_side(form, new_, "new");
    for (Widget w : parts_of(old_)) Attach(w).columns(OLD_BEGIN, OLD_END);
    for (Widget w : parts_of(new_)) Attach(w).columns(NEW_BEGIN, ALL);
    for (Widget title : {old_.title, new_.title}) Attach(title).top_form(0);
    const struct {
        const char* name;
        Message text;
        Widget Side::*part;
    } rows[] = {{"compared_sample_label", Message::COMPARED_SAMPLE, &Side::sample},
                {"compared_file_label", Message::DETAILS_FILE, &Side::file},
                {"compared_directory_label", Message::DETAILS_DIRECTORY, &Side::directory},
                {"compared_size_label", Message::COMPARED_SIZE, &Side::size},
                {"compared_owner_label", Message::COMPARED_OWNER, &Side::owner}};
    Widget above = old_.title;
    for (const auto& row : rows)
        above = attach_row(label(form, row.name, row.text), {old_.*row.part, new_.*row.part}, above);
    old_.picture.create(form, old_.sample, "old_picture");
    new_.picture.create(form, new_.sample, "new_picture");
    detail_ = wrapped_text(form, "conflict_detail", DETAIL_ROWS);
    Attach(XtParent(detail_)).below(above, 2 * GAP).sides(0).bottom_form(0);
}

// All at once, so that the form is laid out once.
void FontComparison::show_both_sides(bool both) {
    std::vector<Widget> parts = parts_of(new_);
    parts.push_back(new_.picture.picture());
    const auto count = static_cast<Cardinal>(parts.size());
    if (both) {
        XtManageChildren(parts.data(), count);
    } else {
        XtUnmanageChildren(parts.data(), count);
    }
}

void FontComparison::show_sample(Side& side, GWFont& font) {
    const ShownFont shown = shown_font(font, nullptr);
    if (shown.paths.empty()) return;
    const Outcome drawn =
        side.picture.show(shown.paths.front(), sample_text, sample_pixels(font, side.sample), shown.face);
    if (!drawn) show_in_field(side.sample, reason_in_words(drawn.failure()));
}

void FontComparison::show_font(Side& side, GWFont* font, std::size_t files, const std::string& packages) {
    side.picture.hide();
    for (Widget field : {side.sample, side.file, side.directory, side.size, side.owner})
        show_in_field(field, "");
    if (font == nullptr) return;
    const ShownFont shown = shown_font(*font, nullptr);
    show_in_field(side.file, file_in_words(shown, files));
    show_in_field(side.directory, shown.directory);
    if (shown.paths.empty()) return;
    const Result<FileFacts> facts = facts_of_file(shown.paths.front());
    if (!facts) return show_in_field(side.size, reason_in_words(facts.failure()));
    show_in_field(side.size, size_in_words(shown.paths) + ", " + local_time_text(facts->changed));
    show_in_field(side.owner, owner_in_words(*facts, packages));
    show_sample(side, *font);
}

void FontComparison::show(const GWConflict& conflict) {
    const GWConflict::Compared fonts = conflict.get_compared_fonts();
    const bool installs = conflict.get_type() == GWConflict::INSTALL;
    const std::size_t in_entry = font_count(conflict.get_element());
    show_font(old_, fonts.installed, installs ? conflict.get_conflict_files().size() : in_entry,
              conflict.get_packages());
    show_font(new_, fonts.offered, in_entry, "");
    const std::string text = bytes_in_words(fonts) + files_in_the_way(conflict) + other_reasons(conflict);
    show_wrapped(detail_, text.starts_with('\n') ? text.substr(1) : text);
}

void FontComparison::clear() {
    for (Side* side : {&old_, &new_}) show_font(*side, nullptr, 0, "");
    show_wrapped(detail_, "");
}

}  // namespace gw

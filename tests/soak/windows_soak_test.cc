// SPDX-License-Identifier: MIT
//
// Random actions of a user in the program's windows, with a model of what they must leave: on the disk, in
// the list, on the server, in the font path. $GLYPHWARD_SEED chooses the actions and the two gw_modern
// resources, $GLYPHWARD_SECONDS is how long they go on; the same seed gives the same actions. Where something
// differs from the model, the seed and all actions up to there are printed.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <set>
#include <sstream>

#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/main_window/aboutdlg.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/propsdlg.h"
#include "app/program/conflict_lists.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "core/text.h"
#include "platform/host_paths.h"
#include "soak/font_model.h"

#include "widget/work_test_support.h"

#include <Xm/List.h>
#include <Xm/TextF.h>

#ifdef GLYPHWARD_SANITIZE
#include <sanitizer/allocator_interface.h>
#endif

// XCreateFontSet keeps a copy of the name when the server cannot open the font, as with our outlines.
extern "C" const char*
__lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier): it is called so
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
    return "leak:libX11.so.6\n";
}

namespace {

using namespace gw::test;
using gw::soak::Font;
using gw::soak::FontModel;
using gw::soak::Source;
using Texts = std::vector<std::string>;

constexpr const char* CONFIG = "/usr/vantor/server/etc/VTconfig";
constexpr const char* FONTSETS = "lib/locale/C/VT_FONT_SETS/Vantor.fs";  // below the installation
constexpr const char* OURS = "Soak ";  // the names of our fonts begin so in lists
constexpr const char* FAMILIES[] = {"alpha", "beta", "gamma", "delta", "epsilon", "zeta", "eta", "theta"};
constexpr const char* OUTLINES[] = {"One", "Two", "Three"};
constexpr int SOURCES = 4;

int number_from(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text != nullptr && std::atoi(text) > 0 ? std::atoi(text) : otherwise;
}

Texts sorted(Texts texts) {
    std::sort(texts.begin(), texts.end());
    return texts;
}

std::string joined(const Texts& texts, const char* between) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : between) + text;
    return all;
}

/// Bytes that the program has allocated.
std::size_t heap_bytes() {
#ifdef GLYPHWARD_SANITIZE
    return __sanitizer_get_current_allocated_bytes();
#else
    return 0;
#endif
}

std::size_t resident_bytes() {
    std::istringstream in(gw::soak::bytes_of("/proc/self/statm"));
    std::size_t pages = 0;
    in >> pages >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

class Random {
  public:
    explicit Random(int seed) : numbers_(static_cast<unsigned>(seed)) {}
    /// From 0 to `count` - 1.
    int below(int count) { return static_cast<int>(numbers_() % static_cast<unsigned>(count)); }
    bool one_in(int count) { return below(count) == 0; }
    template <class Container>
    auto& any_of(Container& all) {
        return *std::next(std::begin(all), below(static_cast<int>(std::size(all))));
    }
    /// Each of the numbers from 1 to `count` with the same chance; at least one.
    std::vector<int> some_of(int count) {
        std::vector<int> chosen;
        for (int i = 1; i <= count; ++i) {
            if (one_in(3)) chosen.push_back(i);
        }
        if (chosen.empty()) chosen.push_back(1 + below(count));
        return chosen;
    }

  private:
    std::mt19937 numbers_;
};

/// Selects these positions and calls the list's callbacks.
void select_all_of(Widget list, const std::vector<int>& positions) {
    XmListDeselectAllItems(list);
    XtVaSetValues(list, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
    for (const int position : positions) XmListSelectPos(list, position, False);
    XtVaSetValues(list, XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);
    XmListCallbackStruct call = {};
    call.reason = XmCR_EXTENDED_SELECT;
    call.item_position = positions.back();
    call.selected_item_count = static_cast<int>(positions.size());
    XtCallCallbacks(list, XmNextendedSelectionCallback, &call);
    pump();
}

/// The server's names of our bitmap fonts. A pattern does not find sizes that it would scale.
std::set<std::string> names_on_server() {
    int count = 0;
    char** names = XListFonts(display, "-test-soak *-75-75-c-60-iso8859-1", 1000, &count);
    const std::set<std::string> found(names, names + count);
    XFreeFontNames(names);
    return found;
}

// --- the fonts ---------------------------------------------------------------

Font bitmap_font(const std::string& family, int source, Random& random) {
    static const std::string base = gw::soak::bytes_of(std::string(gw::SYSTEM_FONT_DIR) + "/misc/6x13.pcf");
    std::string shown = OURS + family + " Medium [Bitmap]";
    const std::string size = random.one_in(2) ? "120" : "140";
    const std::string xlfd =
        "-test-" + (OURS + family) + "-medium-r-normal--12-" + size + "-75-75-c-60-iso8859-1";
    return {family + ".pcf", xlfd, shown, base + "source " + std::to_string(source)};
}

Font outline_font(const std::string& name, int source) {
    const std::string family = std::string(OURS) + name;
    const std::string bytes =
        "%!PS-AdobeFont-1.0: Soak" + name + " 001.000\n%%Title: of source " + std::to_string(source) +
        "\n/FontInfo 6 dict dup begin\n/Notice (Adobe) readonly def\n/FamilyName (" + family +
        ") readonly def\n/Weight (Medium) readonly def\n/ItalicAngle 0 def\n"
        "/isFixedPitch false def\nend readonly def\n/FontName /Soak" +
        name + " def\n/Encoding StandardEncoding def\ncurrentdict end\ncurrentfile eexec\n";
    const std::string xlfd = "-adobe-" + family + "-Medium-r-normal--0-0-0-0-p-0-iso8859-1";
    return {"soak" + name + ".pfa", xlfd, family + " Medium [Type-1]", bytes};
}

/// A directory of fonts to install, some of them with the names or the file names of others.
struct SourceDirectory {
    TempDir dir;
    Source fonts;

    void fill(int number, Random& random) {
        std::string lines;
        int count = 0;
        bool has_shared = false;
        for (const char* family : FAMILIES) {
            if (random.one_in(2)) continue;
            Font font = bitmap_font(family, number, random);
            if (!has_shared && random.one_in(4)) {
                font.file = "shared.pcf";
                has_shared = true;
            }
            lines += font.file + ' ' + font.xlfd + '\n';
            ++count;
            fonts[font.shown] = font;
        }
        dir.write("fonts.dir", std::to_string(count) + '\n' + lines);
        for (const char* name : OUTLINES) {
            const Font font = outline_font(name, number);
            if (random.one_in(2)) fonts[font.shown] = font;
        }
        for (const auto& [shown, font] : fonts) dir.write(font.file, font.bytes);
    }
};

// --- the user ----------------------------------------------------------------

class User {
  public:
    explicit User(int seed);

    /// Does something that the random numbers choose.
    void act();
    /// How the program or the disk differs from what must be; empty when it does not.
    [[nodiscard]] Texts differences() const;
    [[nodiscard]] const Texts& actions() const { return actions_; }
    /// The bytes that this test itself needs for its notes.
    [[nodiscard]] std::size_t bytes_of_notes() const;
    /// Deletes the fonts and fontsets and chooses the first source, so that memory can be compared.
    void come_to_rest();

  private:
    void note(const std::string& action) { actions_.push_back(action); }
    void expect(bool fine, const std::string& what) {
        if (!fine) wrong_.push_back(what);
    }

    void prepare_font_path();
    void choose_source();
    void choose_source(int number);
    void choose_destination();
    void install();
    void remove();
    void remove_at(const std::vector<int>& positions);
    void look_around();
    void pick_anything();
    void show_attributes();
    void open_and_close();
    void edit_font_path();
    void edit_once(Texts& shown);
    void change_sample_text();
    void edit_fontsets();
    void change_aliases();
    void list_again();

    struct Pending {
        Font font;
        std::string directory;
    };
    void decide(int done, const std::vector<Pending>& conflicts);
    void resolve(int done, const std::vector<Pending>& conflicts);
    void expect_status(int count, const char* what);

    [[nodiscard]] Texts listed() const;
    [[nodiscard]] static std::vector<int> our_positions();
    [[nodiscard]] std::string stored_path() const;
    void add_differences_on_server(Texts& found) const;
    void add_differences_in_files(Texts& found) const;

    Random random_;
    bool modern_fonts_;
    bool modern_windows_;
    Texts destinations_;
    std::vector<SourceDirectory> sources_{SOURCES};
    std::vector<TempDir> more_elements_{3};
    TempDir installation_;
    FontModel model_;
    Texts path_;     // of the superuser
    Texts aliases_;  // as the program has listed them
    int source_ = -1;
    std::string destination_;
    std::string kept_text_;  // of .glyphwdrc
    Texts actions_;
    Texts wrong_;  // seen in the middle of an action
};

Texts make_destinations() {
    Texts all;
    for (const char* name : {"glyphwd_fonts", "more_fonts"}) {
        all.push_back(home().make_dir(name));
        home().write(std::string(name) + "/fonts.dir", "0\n");
    }
    return all;
}

// The superuser and the user run with different resources where both run with the same seed.
User::User(int seed)
    : random_(seed),
      modern_fonts_(((seed + (is_root() ? 1 : 0)) & 1) != 0),
      modern_windows_(((seed + (is_root() ? 1 : 0)) & 2) != 0),
      destinations_(make_destinations()),
      model_(destinations_, modern_fonts_) {
    for (int i = 0; i < SOURCES; ++i) sources_[static_cast<std::size_t>(i)].fill(i, random_);
    for (TempDir& element : more_elements_) element.write("fonts.dir", "0\n");
    prepare_font_path();
    ::setenv("VANTORHOME", installation_.path().substr(0, installation_.path().size() - 1).c_str(), 1);
    ::setenv("LANG", "C", 1);
    installation_.write(FONTSETS, "! none\n");
    const auto resource = [](const char* name, bool on) {
        return std::string("Glyphward*") + name + (on ? ": True" : ": False");
    };
    start_program({"-xrm", resource("gw_modern_fonts", modern_fonts_), "-xrm",
                   resource("gw_modern_windows", modern_windows_), "-xrm",
                   resource("gw_fontset_support", true)});
    note(resource("gw_modern_fonts", modern_fonts_) + ", " + resource("gw_modern_windows", modern_windows_));
    for (const std::string& directory : destinations_) {
        const GW_STRING element(directory.c_str());
        if (!is_on_server_path(directory))
            the_font_path->insert_after_pos(GWFontPath::SESSION_FP, &element, -1);
    }
    choose_destination();
}

/// Both destinations are on the font path from the beginning.
void User::prepare_font_path() {
    if (!is_root()) {
        home().write(".VTfontpath", joined(destinations_, "\n") + '\n');
        return;
    }
    path_ = gw::soak::lines_of(stored_path());
    path_.insert(path_.end(), destinations_.begin(), destinations_.end());
    std::ofstream(CONFIG) << "XDISPLAY.0.fontpath:\t" << joined(path_, ",") << '\n';
}

/// The superuser's font path as it is in the database, an element a line.
std::string User::stored_path() const {
    std::string line = gw::soak::bytes_of(CONFIG);
    line.erase(0, line.find('\t') + 1);
    line.erase(std::min(line.find('\n'), line.size()));
    std::replace(line.begin(), line.end(), ',', '\n');
    return line;
}

void User::act() {
    struct Choice {
        int weight;
        void (User::*action)();
    };
    static constexpr Choice CHOICES[] = {{4, &User::choose_source},  {2, &User::choose_destination},
                                         {8, &User::install},        {4, &User::remove},
                                         {4, &User::look_around},    {2, &User::edit_font_path},
                                         {2, &User::edit_fontsets},  {2, &User::change_sample_text},
                                         {1, &User::change_aliases}, {1, &User::list_again}};
    int all = 0;
    for (const Choice& choice : CHOICES) all += choice.weight;
    int number = random_.below(all);
    for (const Choice& choice : CHOICES) {
        if (number < choice.weight) {
            (this->*choice.action)();
            return;
        }
        number -= choice.weight;
    }
}

// --- installing --------------------------------------------------------------

void User::choose_source() {
    choose_source(random_.below(SOURCES));
}

void User::choose_source(int number) {
    note("list the fonts of source " + std::to_string(number));
    if (!is_managed(wi_install_dlg)) press(find(wi_mainwindow, "_install_dlg_button"));
    source_ = number;
    const SourceDirectory& source = sources_[static_cast<std::size_t>(number)];
    installdlg::from_dir_specified_cb(source.dir.c_str());
    expect(pump_until([] { return label(wi_install_dlg, "_message_label").empty(); }),
           "the source is not listed");
    Texts expected;
    for (const auto& [shown, font] : source.fonts) expected.push_back(shown);
    const Texts found = sorted(items(find(wi_install_dlg, "_hrn_list")));
    expect(found == expected, "the source is listed as " + joined(found, ", "));
    const std::set<std::string> previewed = names_on_server();
    for (const auto& [shown, font] : source.fonts) {
        expect(is_outline(font) || previewed.contains(gw::lower_case(font.xlfd)),
               "no preview of " + font.xlfd);
    }
}

void User::choose_destination() {
    destination_ = random_.any_of(destinations_);
    note("install into " + destination_);
    installdlg::install_dir_specified_cb(destination_.c_str());
}

void User::install() {
    if (source_ < 0) choose_source();
    Widget list = find(wi_install_dlg, "_hrn_list");
    const Texts offered = items(list);
    if (offered.empty()) return;
    if (!is_managed(wi_install_dlg)) press(find(wi_mainwindow, "_install_dlg_button"));
    const std::vector<int> positions = random_.some_of(static_cast<int>(offered.size()));
    select_all_of(list, positions);

    std::string action = "install";
    int done = 0;
    std::size_t refused = 0;
    std::vector<Pending> conflicts;
    for (const int position : positions) {
        const Font& font = sources_[static_cast<std::size_t>(source_)].fonts.at(
            offered[static_cast<std::size_t>(position) - 1]);
        const FontModel::Answer answer = model_.install(font, destination_);
        action += ' ' + font.file;
        done += answer == FontModel::Answer::INSTALLED ? 1 : 0;
        refused += answer == FontModel::Answer::REFUSED ? 1 : 0;
        if (answer == FontModel::Answer::CONFLICT) conflicts.push_back({font, destination_});
    }
    note(action + ": " + std::to_string(done) + " done, " + std::to_string(conflicts.size()) +
         " conflicts, " + std::to_string(refused) + " refused");
    expect(press(find(wi_install_dlg, "_install_button")), "the fonts cannot be installed");
    expect(pump_until([] { return !the_wp_cl_data.is_in_progress() && !XtIsManaged(wi_install_dlg); }, 60000),
           "the installation does not end");
    pump();
    expect_status(done, "installed");
    const bool has_summary = !conflicts.empty() || (refused > 0 && modern_windows_);
    expect(is_managed(wi_preconflict_dlg) == has_summary, "the summary is wrongly shown or not shown");
    if (!conflicts.empty()) {
        decide(done, conflicts);
    } else if (has_summary) {
        press(find(wi_preconflict_dlg, "ok_button"));
    }
    stop_fp_info_dlg();
}

void User::expect_status(int count, const char* what) {
    const std::string status = main_status();
    expect(status == std::to_string(count) + " fonts successfully " + what + '.',
           "the status line is " + status);
}

void User::decide(int done, const std::vector<Pending>& conflicts) {
    if (random_.one_in(3)) look_around();
    if (random_.one_in(3)) {
        note("leave the originals");
        press(find(wi_preconflict_dlg, "ok_button"));
        expect_status(done, "installed");
        return;
    }
    expect(press(find(wi_preconflict_dlg, "resolve_button")), "there is nothing to decide");
    resolve(done, conflicts);
}

void User::resolve(int done, const std::vector<Pending>& conflicts) {
    Widget list = find(wi_conflict_dlg, "_conflicts_list");
    expect(items(list).size() == conflicts.size(), "other conflicts: " + joined(items(list), ", "));
    std::vector<bool> forced;
    std::string action = "decide:";
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
        forced.push_back(random_.one_in(2));
        pick(list, static_cast<int>(i) + 1);
        press(find(wi_conflict_dlg, forced.back() ? "not_keep_button" : "keep_button"));
        action += forced.back() ? " new" : " old";
    }
    if (random_.one_in(4)) {
        note(action + ", and leave the originals after all");
        press(find(wi_conflict_dlg, "cancel_button"));
        press(find(wi_preconflict_dlg, "ok_button"));
        return;
    }
    for (std::size_t i = 0; i < conflicts.size(); ++i) {
        if (!forced[i]) continue;
        const bool replaced = model_.replace(conflicts[i].font, conflicts[i].directory);
        if (!replaced) action += " (" + conflicts[i].font.file + " refused)";
        done += replaced || !modern_windows_ ? 1 : 0;
    }
    note(action);
    expect(press(find(wi_conflict_dlg, "ok_button")), "the decisions cannot be carried out");
    expect_status(done, "installed");
    if (is_managed(wi_preconflict_dlg)) press(find(wi_preconflict_dlg, "ok_button"));
}

// --- deleting ----------------------------------------------------------------

std::vector<int> User::our_positions() {
    std::vector<int> positions;
    const Texts names = items(wi_hrn_list);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].starts_with(OURS)) positions.push_back(static_cast<int>(i) + 1);
    }
    return positions;
}

void User::remove() {
    const std::vector<int> ours = our_positions();
    if (ours.empty()) return;
    std::vector<int> chosen;
    for (const int number : random_.some_of(static_cast<int>(ours.size())))
        chosen.push_back(ours[static_cast<std::size_t>(number) - 1]);
    select_all_of(wi_hrn_list, chosen);
    if (random_.one_in(4)) {
        note("ask to delete, and do not");
        press(find(wi_mainwindow, "_command_form._delete_button"));
        press(find(wi_del_warning_dlg, "Cancel"));
        return;
    }
    remove_at(chosen);
}

void User::remove_at(const std::vector<int>& positions) {
    const Texts names = items(wi_hrn_list);
    std::string action = "delete";
    for (const int position : positions) {
        const std::string& name = names[static_cast<std::size_t>(position) - 1];
        action += ' ' + name + ',';
        model_.remove(name);
    }
    note(action);
    select_all_of(wi_hrn_list, positions);
    expect(press(find(wi_mainwindow, "_command_form._delete_button")), "the fonts cannot be deleted");
    expect(press(find(wi_del_warning_dlg, "OK")), "the question does not come");
    expect(pump_until([] { return !the_wp_cl_data.is_in_progress(); }, 60000), "the deletion does not end");
    pump();
    expect_status(static_cast<int>(positions.size()), "deleted");
    expect(!is_managed(wi_preconflict_dlg), "there is a summary of a deletion without conflicts");
    stop_fp_info_dlg();
}

// --- looking -----------------------------------------------------------------

void User::look_around() {
    for (int i = random_.below(3); i >= 0; --i) {
        switch (random_.below(3)) {
            case 0:
                pick_anything();
                break;
            case 1:
                show_attributes();
                break;
            default:
                open_and_close();
        }
    }
}

void User::pick_anything() {
    const int count = static_cast<int>(items(wi_hrn_list).size());
    if (count == 0) return;
    std::vector<int> positions = {1 + random_.below(count)};
    if (random_.one_in(3)) positions.push_back(1 + random_.below(count));
    note("select " + std::to_string(positions.front()) + " to " + std::to_string(positions.back()));
    select_all_of(wi_hrn_list, positions);
    if (positions.size() > 1 || !random_.one_in(2)) return;
    Widget menu = find(wi_mainwindow, random_.one_in(2) ? "_size_option_menu" : "_res_option_menu");
    Widget pulldown = nullptr;
    XtVaGetValues(menu, XmNsubMenuId, &pulldown, nullptr);
    const Texts entries = choices(pulldown);
    if (!entries.empty())
        choose(menu, entries[static_cast<std::size_t>(random_.below(static_cast<int>(entries.size())))]);
}

void User::show_attributes() {
    const int count = static_cast<int>(items(wi_hrn_list).size());
    if (count == 0) return;
    const int position = 1 + random_.below(count);
    note("attributes of " + std::to_string(position));
    select_all_of(wi_hrn_list, {position});
    press(find(wi_mainwindow, "_attributes_button1"));
    if (!random_.one_in(3)) press(find(wi_attr_dlg, "close_button"));
}

void User::open_and_close() {
    note("open and close windows");
    press(find(wi_mainwindow, "_about_dlg_button"));
    press(find(wi_mainwindow, "_install_dlg_button"));
    pump_until([] { return is_viewable(wi_install_dlg); });
    press(find(wi_install_dlg, "_select_all_button"));
    if (is_managed(wi_about_dlg)) close_box(wi_about_dlg);
    if (random_.one_in(2)) press(find(wi_install_dlg, "_cancel_button"));
    type_into(wi_installed_sample_textfield, "typed " + std::to_string(random_.below(100)));
}

// --- the font path -----------------------------------------------------------

void User::edit_font_path() {
    if (!is_root()) return;
    press(find(wi_mainwindow, "_modify_fp_dlg_button"));
    Widget list = find(wi_modify_fp_dlg, "_fpe_list");
    expect(items(list) == path_, "the dialog shows another path: " + joined(items(list), ","));
    Texts shown = path_;
    for (int edits = 1 + random_.below(4); edits > 0; --edits) edit_once(shown);
    expect(items(list) == shown, "after editing, the dialog shows " + joined(items(list), ","));
    static constexpr const char* BUTTONS[] = {"_ok_button", "_apply_button", "_reset_button",
                                              "_cancel_button"};
    const char* const button = random_.any_of(BUTTONS);
    note(std::string("font path: ") + button);
    const bool pressed = press(find(wi_modify_fp_dlg, button));
    const bool stores = std::string(button) == "_ok_button" || std::string(button) == "_apply_button";
    if (pressed && stores) path_ = shown;
    press(find(wi_modify_fp_dlg, "_cancel_button"));
}

void User::edit_once(Texts& shown) {
    Widget list = find(wi_modify_fp_dlg, "_fpe_list");
    if (random_.one_in(3)) {
        const std::string element = random_.any_of(more_elements_).path();
        note("font path: add " + element);
        XmTextFieldSetString(find(wi_modify_fp_dlg, "_new_fp_textfield"), gw::name_arg(element.c_str()));
        press(find(wi_modify_fp_dlg, "_add_new_button"));
        // What the stored path has already is not added again.
        if (std::find(path_.begin(), path_.end(), element) == path_.end()) shown.push_back(element);
        return;
    }
    const int position = 1 + random_.below(static_cast<int>(shown.size()));
    const auto at = shown.begin() + (position - 1);
    pick(list, position);
    const bool is_extra = std::any_of(more_elements_.begin(), more_elements_.end(),
                                      [&](const TempDir& dir) { return dir.path() == *at; });
    if (is_extra && random_.one_in(2)) {
        note("font path: remove " + *at);
        press(find(wi_modify_fp_dlg, "_delete_button"));
        shown.erase(at);
        return;
    }
    const bool up = random_.one_in(2);
    note("font path: move " + std::to_string(position) + (up ? " up" : " down"));
    const bool pressed = press(find(wi_modify_fp_dlg, up ? "_move_up_button" : "_move_down_button"));
    const bool possible = up ? position > 1 : position < static_cast<int>(shown.size());
    expect(pressed == possible, "an element can be moved beyond the end, or not at all");
    if (possible) std::iter_swap(at, up ? at - 1 : at + 1);
}

// --- texts, fontsets, aliases ------------------------------------------------

void User::change_sample_text() {
    if (!press(find(wi_mainwindow, "_properties_dlg_button"))) {
        expect(is_root(), "the sample text cannot be changed");
        return;
    }
    pump_until([] { return is_viewable(wi_props_dlg); });
    const std::string text = "sample " + std::to_string(random_.below(1000));
    type_into(find(wi_props_dlg, "sample_textField"), text);
    static constexpr const char* BUTTONS[] = {"ok_button", "apply_button", "reset_button", "cancel_button"};
    const char* const button = random_.any_of(BUTTONS);
    note("sample text \"" + text + "\": " + button);
    press(find(wi_props_dlg, button));
    if (button == std::string("ok_button") || button == std::string("apply_button"))
        kept_text_ = "SampleText:" + text;
    press(find(wi_props_dlg, "cancel_button"));
}

/// What is applied is on the disk; for this user, nothing is.
void User::edit_fontsets() {
    const std::string before = installation_.read(FONTSETS);
    press(find(wi_mainwindow, "_fontsets_dlg_button"));
    const std::string name = "-soak-set-" + std::to_string(random_.below(6));
    Widget list = find(wi_fontsets_dlg, "scrolledlist");
    const int count = static_cast<int>(items(list).size());
    if (count > 0) {
        XmListSelectPos(list, 1 + random_.below(count), True);
        pump();
    }
    Widget pulldown = nullptr;
    XtVaGetValues(find(wi_fontsets_dlg, "choose_menu"), XmNsubMenuId, &pulldown, nullptr);
    Widget sets = find(wi_delete_set_dlg, "scrolledlist");
    const bool deletes = random_.one_in(2) && !items(sets).empty();
    note(deletes ? "delete a fontset" : "new fontset " + name);
    if (deletes) {
        press(find(wi_fontsets_dlg, "delete_set_button"));
        select_all_of(sets, {1});
        press(find(wi_delete_set_dlg, "delete_button"));
        press(find(wi_delete_set_dlg, "cancel_button"));
    } else if (count > 0) {
        press(find(wi_fontsets_dlg, "new_set_button"));
        XmTextFieldSetString(find(wi_new_set_dlg, "name_text"), gw::name_arg(name.c_str()));
        press(find(wi_new_set_dlg, "ok_button"));
        press(find(wi_new_set_dlg, "cancel_button"));
    }
    const bool applies = random_.one_in(2);
    note(applies ? "apply the fontsets" : "reset the fontsets");
    press(find(wi_fontsets_dlg, applies ? "apply_button" : "reset_button"));
    const std::string after = installation_.read(FONTSETS);
    if (!applies || !is_root()) {
        expect(after == before, "the fontset file was written");
    } else {
        Texts stored;
        for (const std::string& line : gw::soak::lines_of(after)) {
            if (line.starts_with('-')) stored.push_back(line.substr(0, line.rfind(':')));
        }
        expect(sorted(stored) == sorted(items(sets)), "other fontsets are stored: " + joined(stored, ", "));
    }
    press(find(wi_fontsets_dlg, "cancel_button"));
}

void User::change_aliases() {
    const int number = random_.below(100);
    note("another program writes the alias soak-" + std::to_string(number));
    std::ofstream(destinations_.front() + "fonts.alias")
        << "soak-" << number << " -misc-fixed-medium-r-normal--13-120-75-75-c-80-iso8859-1\n";
    list_again();
    aliases_ = {"soak-" + std::to_string(number) + " [Alias]"};
}

/// As the next start of the program does.
void User::list_again() {
    note("list the fonts again");
    fill_program_lists();
    update_wi_installed_hrn_list();
    forget_selection();
}

// --- what must be ------------------------------------------------------------

Texts User::listed() const {
    Texts ours;
    for (const std::string& name : items(wi_hrn_list)) {
        if (name.starts_with(OURS)) ours.push_back(name);
    }
    return ours;
}

void User::add_differences_on_server(Texts& found) const {
    const std::set<std::string> present = names_on_server();
    std::set<std::string> allowed;
    for (const std::string& xlfd : model_.bitmaps()) {
        allowed.insert(gw::lower_case(xlfd));
        if (!present.contains(gw::lower_case(xlfd))) found.push_back("the server does not have " + xlfd);
    }
    // The fonts of the chosen source are there for their samples.
    for (const auto& [shown, font] : sources_[static_cast<std::size_t>(std::max(source_, 0))].fonts)
        allowed.insert(gw::lower_case(font.xlfd));
    for (const std::string& xlfd : present) {
        if (!allowed.contains(xlfd)) found.push_back("the server has " + xlfd);
    }
    for (const std::string& directory : destinations_) {
        const Texts path = server_font_path();
        if (std::count(path.begin(), path.end(), directory) != 1)
            found.push_back("the server's path is " + joined(path, ","));
    }
}

void User::add_differences_in_files(Texts& found) const {
    if (home().read(".glyphwdrc") != kept_text_)
        found.push_back(".glyphwdrc is " + home().read(".glyphwdrc"));
    if (is_root()) {
        if (gw::soak::lines_of(stored_path()) != path_) found.push_back("the font path is " + stored_path());
    } else if (gw::soak::lines_of(home().read(".VTfontpath")) != destinations_) {
        found.push_back(".VTfontpath is " + home().read(".VTfontpath"));
    }
}

Texts User::differences() const {
    Texts found = wrong_;
    const Texts on_disk = model_.differences();
    found.insert(found.end(), on_disk.begin(), on_disk.end());
    add_differences_in_files(found);
    add_differences_on_server(found);
    if (sorted(listed()) != model_.shown())
        found.push_back("listed are " + joined(listed(), ", ") + " instead of " +
                        joined(model_.shown(), ", "));
    const Texts all = items(wi_hrn_list);
    if (static_cast<int>(all.size()) != the_installed_hrn_count + the_alias_count)
        found.push_back("the counts are not the length of the list");
    for (const std::string& alias : aliases_) {
        const bool is_shown = std::any_of(all.begin(), all.end(),
                                          [&](const std::string& name) { return name.starts_with(alias); });
        if (!is_shown) found.push_back(alias + " is not listed");
    }
    if (is_managed(wi_preconflict_dlg) || is_managed(wi_conflict_dlg))
        found.push_back("a question is left open");
    return found;
}

std::size_t User::bytes_of_notes() const {
    std::size_t bytes = actions_.capacity() * sizeof(std::string);
    for (const std::string& action : actions_) bytes += action.capacity() + 1;
    return bytes + cursor_changes().capacity() * sizeof(CursorChange);
}

void User::come_to_rest() {
    if (!our_positions().empty()) remove_at(our_positions());
    press(find(wi_attr_dlg, "close_button"));
    // The sample of a fontset keeps its fonts.
    installation_.write(FONTSETS, "! none\n");
    press(find(wi_fontsets_dlg, "reset_button"));
    choose_source(0);
    // A sample keeps its font until there is another one.
    for (Widget list : {find(wi_install_dlg, "_hrn_list"), wi_hrn_list}) select_all_of(list, {1});
    press(find(wi_install_dlg, "_cancel_button"));
    forget_selection();
    gw::clear_conflict_list();
    pump();
}

// --- the run -----------------------------------------------------------------

struct Memory {
    explicit Memory(const User& user)
        : actions(user.actions().size()), heap(heap_bytes() - user.bytes_of_notes()) {}
    std::size_t actions;
    std::size_t heap;  ///< without what the test needs
    std::size_t resident = resident_bytes();
};

std::string kilobytes(std::size_t bytes) {
    return std::to_string(bytes / 1024) + " kB";
}

/// Acts until the time is over, and measures memory each time that the user has come to rest, but for the
/// first third of the time. False when something is not as it must be; then all is printed.
bool act(User& user, int seed, double seconds, std::vector<Memory>& measured) {
    constexpr int ACTIONS_UNTIL_REST = 20;
    const auto begin = std::chrono::steady_clock::now();
    double spent = 0;
    // On a busy machine it takes longer.
    for (int number = 1; spent < seconds || measured.size() < 2; ++number) {
        const bool rests = number % ACTIONS_UNTIL_REST == 0;
        if (rests) {
            user.come_to_rest();
        } else {
            user.act();
        }
        const Texts found = user.differences();
        if (!found.empty()) {
            ADD_FAILURE() << "With the seed " << seed << ", after these actions:\n    "
                          << joined(user.actions(), "\n    ") << "\nthis is not as it must be:\n    "
                          << joined(found, "\n    ");
            return false;
        }
        spent = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
        if (rests && spent > seconds / 3) measured.emplace_back(user);
    }
    return true;
}

// The first third of the time is for what Motif and Xlib keep for ever once it was needed. The limit is less
// than what one font record for each installation would take.
TEST(Soak, ActionsLeaveWhatTheyMustAndNoMemory) {
    constexpr std::size_t HEAP_MAY_GROW = 32UL * 1024;
    constexpr std::size_t HEAP_FOR_AN_ACTION = 64;
    constexpr std::size_t RESIDENT_MAY_GROW = 32UL * 1024 * 1024;
    const int seed = number_from("GLYPHWARD_SEED", 1);
    home();
    User user(seed);
    std::vector<Memory> measured;
    ASSERT_TRUE(act(user, seed, number_from("GLYPHWARD_SECONDS", 60), measured));
    const Memory& warm = measured.front();
    const Memory& last = measured.back();
    std::printf("seed %d, %zu actions; heap %s after the warm-up and %s at the end, resident %s and %s\n",
                seed, user.actions().size(), kilobytes(warm.heap).c_str(), kilobytes(last.heap).c_str(),
                kilobytes(warm.resident).c_str(), kilobytes(last.resident).c_str());
    EXPECT_LE(last.heap, warm.heap + HEAP_MAY_GROW + HEAP_FOR_AN_ACTION * (last.actions - warm.actions))
        << "seed " << seed;
    EXPECT_LE(last.resident, warm.resident + RESIDENT_MAY_GROW) << "seed " << seed;
}

}  // namespace

// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <deque>
#include <filesystem>

#include "app/common/dirdlg.h"
#include "app/common/problemdlg.h"
#include "app/common/progressdlg.h"
#include "app/common/status_line.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/font_source.h"
#include "app/installing/install_destination.h"
#include "app/installing/installdlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/conflict_lists.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "platform/host_paths.h"

#include "widget/work_test_support.h"

#include <Xm/List.h>

namespace {

using gw::test::all_acted;

struct WaitingAction {
    std::function<bool()> condition;
    std::function<void()> action;
};

std::deque<WaitingAction>& waiting_actions() {
    static std::deque<WaitingAction> actions;
    return actions;
}

void act(Widget w, XtPointer, XEvent* event, Boolean*) {
    if (event->type != ClientMessage || waiting_actions().empty()) return;
    XtRemoveEventHandler(w, NoEventMask, True, act, nullptr);
    const WaitingAction next = waiting_actions().front();
    waiting_actions().pop_front();
    next.action();
}

/// Puts an event into the program's queue; its handler runs the action.
void send_click() {
    XtAddEventHandler(wi_toplevel, NoEventMask, True, act, nullptr);
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = XtWindow(wi_toplevel);
    event.xclient.message_type = XInternAtom(display, "GLYPHWARD_TEST_CLICK", False);
    event.xclient.format = 32;
    XSendEvent(display, XtWindow(wi_toplevel), False, NoEventMask, &event);
}

/// No directory that is gone stays on the server's font path: the server would refuse every rehash of the
/// tests behind.
class GoneDirectories : public testing::EmptyTestEventListener {
  public:
    GoneDirectories() { testing::UnitTest::GetInstance()->listeners().Append(this); }

  private:
    void OnTestEnd(const testing::TestInfo&) override {
        if (display == nullptr) return;
        std::vector<std::string> path = gw::test::server_font_path();
        const auto gone = std::erase_if(path, [](const std::string& element) {
            return element.starts_with('/') && !std::filesystem::exists(element + "/fonts.dir");
        });
        if (gone > 0) gw::test::set_server_font_path(path);
    }
};

/// GoogleTest owns it.
[[maybe_unused]] const auto* const GONE_DIRECTORIES = new GoneDirectories;

}  // namespace

// The program calls XSync before it handles pending events, so an event that is sent now is among them.
extern "C" int XSync(Display* connection, Bool discard) {
    using Function = int (*)(Display*, Bool);
    static const auto real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "XSync"));
    static bool is_sending = false;
    if (!is_sending && !all_acted() && waiting_actions().front().condition()) {
        is_sending = true;
        waiting_actions().front().condition = [] { return false; };
        send_click();
        is_sending = false;
    }
    return real(connection, discard);
}

namespace gw::test {

void FontDirectory::add(const std::string& file, const std::string& xlfd, std::size_t kilobytes) {
    std::string bytes = TempDir::read_bytes(std::string(SYSTEM_FONT_DIR) + "/misc/6x13.pcf");
    ASSERT_FALSE(bytes.empty());
    bytes.resize(std::max(bytes.size(), kilobytes * 1024));
    dir_.write(file, bytes);
    lines_.push_back(file + ' ' + xlfd + '\n');
    std::string index = std::to_string(lines_.size()) + '\n';
    for (const std::string& line : lines_) index += line;
    dir_.write("fonts.dir", index);
}

std::string face(const std::string& family, const std::string& decipoints) {
    return "-test-" + family + "-medium-r-normal--12-" + decipoints + "-75-75-c-60-iso8859-1";
}

std::string listed(const std::string& family, bool read_only) {
    constexpr std::size_t COLUMN = 46;
    std::string name = family + " Medium [Bitmap]";
    if (!read_only) return name;
    name.resize(COLUMN, ' ');
    return name + "[Read Only]";
}

std::string index_of(std::initializer_list<std::string> lines) {
    std::string index = std::to_string(lines.size()) + '\n';
    for (const std::string& line : lines) index += line + '\n';
    return index;
}

bool server_has(const std::string& xlfd) {
    int count = 0;
    char** names = XListFonts(display, xlfd.c_str(), 1, &count);
    XFreeFontNames(names);
    return count > 0;
}

std::vector<std::string> server_font_path() {
    int count = 0;
    char** path = XGetFontPath(display, &count);
    std::vector<std::string> elements(path, path + count);
    XFreeFontPath(path);
    return elements;
}

void set_server_font_path(std::vector<std::string> elements) {
    std::vector<char*> path(elements.size());
    std::transform(elements.begin(), elements.end(), path.begin(),
                   [](std::string& element) { return element.data(); });
    XSetFontPath(display, path.data(), static_cast<int>(path.size()));
}

bool is_on_server_path(const std::string& directory) {
    const std::vector<std::string> path = server_font_path();
    return std::find(path.begin(), path.end(), directory) != path.end();
}

void act_when(std::function<bool()> condition, std::function<void()> action) {
    waiting_actions().push_back({std::move(condition), std::move(action)});
}

bool all_acted() {
    return waiting_actions().empty();
}

bool is_asked() {
    return wi_problem_dlg != nullptr && is_managed(wi_problem_dlg) && is_viewable(wi_problem_dlg);
}

void press_skip_all() {
    press(find(wi_problem_dlg, "skip_all_button"));
}

void pick(Widget list, int position) {
    XmListDeselectAllItems(list);
    XmListSelectPos(list, position, True);
    pump();
}

bool is_root() {
    return ::geteuid() == 0;
}

bool is_sensitive(Widget root, const std::string& name) {
    return XtIsSensitive(find(root, name)) != False;
}

std::string label(Widget root, const std::string& name) {
    return label_of(find(root, name));
}

std::string main_status() {
    return label_of(wi_main_window_status_label);
}

bool is_managed(Widget dialog) {
    return XtIsManaged(dialog) != False;
}

void WorkTest::SetUp() {
    start_at_home();
    if (wi_problem_dlg != nullptr) skipping_ = std::make_unique<SkippingAll>();
    forget_source();
    show_installed();
    choose_destination(home().path() + "glyphwd_fonts");
}

void WorkTest::TearDown() {
    waiting_actions().clear();
    EXPECT_TRUE(wait_for_work());
    for (Widget dialog : {wi_conflict_dlg, wi_preconflict_dlg}) {
        if (is_managed(dialog)) close_box(dialog);
    }
    if (is_managed(wi_preconflict_dlg)) close_box(wi_preconflict_dlg);
    if (is_managed(wi_del_warning_dlg)) close_box(wi_del_warning_dlg);
    if (is_managed(wi_install_dlg)) close_box(wi_install_dlg);
    popdown_rmedia_dlg();
    popdown_dir_dlg();
    stop_fp_info_dlg();
    gw::stop_source_preview();
    clear_conflict_list();
    take_off_font_paths();
    std::filesystem::remove_all(home().file("glyphwd_fonts"));
    update_label(wi_main_window_status_label, " ", nullptr);
    pump();
}

void WorkTest::take_off_font_paths() {
    unsigned count = 0;
    for (int position = 1;;) {
        const GW_STRING* element =
            the_font_path->get_fpe_list(GWFontPath::SESSION_FP, count)->get_elem_at_pos(position);
        if (element == nullptr) break;
        const std::string directory = element->get_str();
        if (!directory.starts_with(SCRATCH_ROOT) ||
            the_font_path->delete_pos(GWFontPath::SESSION_FP, position) == 0)
            ++position;
    }
    GW_LIST<GW_STRING> none;
    the_font_path->set_font_path(GWFontPath::USER_APPEND_FP, &none);
}

void WorkTest::forget_source() {
    EXPECT_TRUE(pump_until([] { return !is_lookup_pending(); }));
    stop_source_preview();
    current_hrn_list.clear();
    current_hrn_count = 0;
    current_driver = nullptr;
    current_dir_driver.reset();
    current_dir.clear();
    install_from = FROM_DIRECTORY;
    source_changes().emit();
}

void WorkTest::show_installed(std::initializer_list<std::string> aliases) {
    the_installed_hrn_list.clear();
    delete_elements(the_alias_list);
    if (installed_.exists("fonts.dir")) {
        GW_FPE element(installed_.c_str());
        GW_LIST<GWFont> fonts;
        the_pcf_fsm.make_installed_font_list(fonts, &element);
        for (GWFont* font : fonts) the_installed_hrn_list.add_font(font);
        const GW_STRING directory(installed_.c_str());
        if (!is_on_server_path(installed_.path()))
            the_font_path->insert_after_pos(GWFontPath::SESSION_FP, &directory, -1);
    }
    for (const std::string& alias : aliases)
        the_alias_list.insert(new GWAlias(alias.c_str(), face(alias).c_str(), installed_.c_str()));
    the_installed_hrn_count = the_installed_hrn_list.get_count();
    the_alias_count = the_alias_list.get_count();
    update_wi_installed_hrn_list();
    forget_selection();
}

void WorkTest::open_install_dialog() {
    if (is_managed(wi_install_dlg)) return;
    EXPECT_TRUE(press(find(wi_mainwindow, "_install_dlg_button")));
}

void WorkTest::choose_source(const FontDirectory& source) {
    open_install_dialog();
    installdlg::from_dir_specified_cb(source.c_str());
    EXPECT_TRUE(pump_until([] { return label(wi_install_dlg, "_message_label").empty(); }));
}

void WorkTest::choose_destination(const std::string& directory) {
    installdlg::install_dir_specified_cb(directory.c_str());
}

void WorkTest::destination_goes_when_work_begins() {
    static bool is_awaited = false;
    is_awaited = true;
    gw::work_permissions().connect([](bool) {
        if (std::exchange(is_awaited, false)) std::filesystem::remove_all(installdlg::current_install_dir());
    });
}

void WorkTest::install(std::initializer_list<int> positions) {
    select(source_list(), positions);
    EXPECT_TRUE(press(find(wi_install_dlg, "_install_button")));
    EXPECT_TRUE(wait_for_work());
}

void WorkTest::remove(std::initializer_list<int> positions) {
    select(wi_hrn_list, positions);
    EXPECT_TRUE(press(find(wi_mainwindow, "_command_form._delete_button")));
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "OK")));
    EXPECT_TRUE(wait_for_work());
}

bool WorkTest::wait_for_work() {
    return pump_until([] { return !the_wp_cl_data.is_in_progress() && !is_managed(wi_progress_dlg); });
}

Widget WorkTest::source_list() {
    return find(wi_install_dlg, "_hrn_list");
}

Widget WorkTest::conflicts_list() {
    return find(wi_conflict_dlg, "_conflicts_list");
}

}  // namespace gw::test

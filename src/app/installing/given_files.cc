// SPDX-License-Identifier: MIT
#include "app/installing/given_files.h"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "app/installing/installdlg.h"
#include "app/installing/nottakendlg.h"
#include "app/kit/dialogs.h"
#include "app/kit/drop_target.h"
#include "app/kit/toolkit.h"
#include "app/program/failures.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "core/failure.h"
#include "core/text.h"
#include "core/uri_list.h"
#include "drivers/font_tree.h"
#include "texts/messages.h"

namespace gw {

namespace {

constexpr const char* LIST_TYPE = "text/uri-list";

/// Sorts what is given into what can be used and what cannot.
class Sorter {
  public:
    void add(const std::string& path) {
        if (!known_.insert(path).second) return;
        struct stat info = {};
        if (::stat(path.c_str(), &info) != 0) {
            add_problem(failure_line(Failure::of_system(path, errno)));
        } else if (S_ISDIR(info.st_mode)) {
            add_tree(path);
        } else if (S_ISREG(info.st_mode)) {
            given_.paths.push_back(path);
        } else {
            add_problem(failure_line({.subject = path, .reason = Reason::NOT_A_FILE}));
        }
    }
    void add_problem(const std::string& line) { given_.problems.push_back(line); }
    GivenFiles take() { return std::move(given_); }

  private:
    void add_tree(const std::string& path) {
        FontTree tree = find_font_tree(path);
        given_.paths.push_back(path);
        for (std::size_t i = 1; i < tree.dirs.size(); ++i) {
            if (known_.insert(tree.dirs[i]).second) given_.paths.push_back(std::move(tree.dirs[i]));
        }
        if (!tree.is_whole) add_problem(text_of(Message::TREE_TOO_LARGE, {escaped(path)}));
    }
    GivenFiles given_;
    std::unordered_set<std::string> known_;
};

std::string not_ours(std::string_view address) {
    constexpr std::size_t LONGEST = 200;
    return text_of(Message::NOT_A_FILE_OF_OURS, {truncated(address, LONGEST)});
}

bool is_there(const std::string& path) {
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0;
}

void add_argument(Sorter& sorter, const std::string& argument) {
    if (lower_case(argument).starts_with("file:") && !is_there(argument)) {
        const std::optional<std::string> path = path_of_uri(argument, host_name());
        return path ? sorter.add(*path) : sorter.add_problem(not_ours(argument));
    }
    std::error_code failed;
    const std::filesystem::path path = std::filesystem::absolute(argument, failed);
    // "a/../b" stays as it is: "a" may be a link.
    sorter.add(failed || argument.empty() ? argument : path.string());
}

// --- drops -------------------------------------------------------------------

/// While fonts are installed or deleted, and while a question waits, there is no other source.
bool is_welcome() {
    return !the_wp_cl_data.is_in_progress() && !is_modal_dialog_open();
}

void take_drop(std::optional<std::string> list) {
    GivenFiles given;
    if (list) {
        given = read_dropped_list(*list);
    } else {
        given.problems = {text_of(Message::DROP_DID_NOT_ARRIVE)};
    }
    start_install_dlg_with(given);
}

// --- arguments ---------------------------------------------------------------

std::vector<std::string>& waiting_arguments() {
    static std::vector<std::string> arguments;
    return arguments;
}

/// The dialogs stand beside the main window, so that one comes first.
Boolean use_arguments(XtPointer) {
    start_install_dlg_with(read_arguments(std::exchange(waiting_arguments(), {})));
    return True;
}

}  // namespace

GivenFiles read_arguments(const std::vector<std::string>& arguments) {
    Sorter sorter;
    bool is_first = true;
    for (const std::string& argument : arguments) {
        if (!std::exchange(is_first, false) || argument != "--") add_argument(sorter, argument);
    }
    return sorter.take();
}

GivenFiles read_dropped_list(const std::string& list) {
    Sorter sorter;
    const UriList addresses = read_uri_list(list, host_name());
    for (const std::string& path : addresses.paths) sorter.add(path);
    for (const std::string& address : addresses.refused) sorter.add_problem(not_ours(address));
    return sorter.take();
}

void start_install_dlg_with(const GivenFiles& given) {
    if (the_wp_cl_data.is_in_progress()) return;
    if (!given.paths.empty()) start_install_dlg_from(given.paths);
    if (!given.problems.empty()) start_not_taken_dlg(given.problems);
}

void take_arguments(int argc, char** argv) {
    if (argc < 2 || !window_policy().takes_given_files()) return;
    waiting_arguments().assign(argv + 1, argv + argc);
    XtAppAddWorkProc(app, use_arguments, nullptr);
}

void take_dropped_files(Widget shell) {
    if (window_policy().takes_given_files()) accept_drops(shell, {LIST_TYPE, is_welcome, take_drop});
}

}  // namespace gw

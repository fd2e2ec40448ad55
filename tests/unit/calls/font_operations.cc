// SPDX-License-Identifier: MIT
//
// Does one thing with all fonts of a directory, so that it can be counted and measured from outside. Prints
// the number of fonts and the seconds of processor time that it took: those of the program's start and end
// are not among them.
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/font_policy.h"
#include "drivers/first_names.h"
#include "fontpath/gw_fpe.h"
#include "model/gw_hrn_list.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "modules/source_fonts.h"
#include "store/font_action.h"

namespace {

constexpr const char* USAGE =
    "Usage: font_operations [--modern] OPERATION DIR [TARGET | STEP]\n"
    "\n"
    "  list     the fonts that the index of DIR lists, under their names\n"
    "  source   the fonts of DIR, whether an index lists them or not, under their names\n"
    "  first    the first of these, as a list shows them until all are known\n"
    "  judge    the same, and whether each is sound\n"
    "  install  those of the source DIR into TARGET, as one action\n"
    "  delete   every second font that the index of DIR lists, or every STEP-th, as one action\n";

double processor_seconds() {
    struct rusage used = {};
    ::getrusage(RUSAGE_SELF, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

class Operations {
  public:
    Operations() { gw::append_font_modules(modules_); }
    ~Operations() {
        for (GWFont* font : fonts_) const gw::Ref<GWFont> last(font);
    }
    Operations(const Operations&) = delete;
    Operations& operator=(const Operations&) = delete;

    void list(const std::string& dir) {
        GW_FPE element(dir.c_str());
        modules_.make_installed_font_list(fonts_, &element);
        group();
    }
    void source(const std::string& dir) {
        GW_DIR from(dir.c_str());
        modules_.make_font_list(fonts_, &from, 0);
        group();
    }
    void first(const std::string& dir) {
        std::deque<GW_DIR> sources;
        sources.emplace_back(dir.c_str());
        done_ = static_cast<int>(gw::first_names(modules_, sources).size());
    }
    void install(const std::string& dir) {
        done_ = 0;
        as_one_action([&](GWFont& font, int) { return font.install(dir, modules_); });
    }
    void delete_every(int step) {
        done_ = 0;
        as_one_action([&](GWFont& font, int position) {
            return position % step == 0 ? font.remove(modules_) : gw::Outcome(gw::Failure{});
        });
    }
    [[nodiscard]] int done() const { return done_; }

  private:
    void group() {
        done_ = fonts_.get_count();
        names_.add_fonts(fonts_);  // as the window does
        names_.tell_apart();
    }
    void as_one_action(const std::function<gw::Outcome(GWFont&, int)>& step) {
        gw::FontAction action;
        int position = 0;
        for (GWFont* font : fonts_) done_ += step(*font, position++) ? 1 : 0;
        if (!action.commit().empty()) done_ = 0;
    }

    GW_FSM_LIST modules_;
    GW_LIST<GWFont> fonts_;
    GWHRNList names_{0};
    int done_ = 0;
};

bool carry_out(Operations& operations, const std::vector<std::string>& words) {
    if (words.size() < 2) return false;
    const std::string& operation = words[0];
    if (operation == "source") {
        operations.source(words[1]);
    } else if (operation == "first") {
        operations.first(words[1]);
    } else if (operation == "install" || operation == "judge") {
        const gw::JudgedWhenNamed at_once;  // as the command does
        operations.source(words[1]);
    } else if (operation == "list" || operation == "delete") {
        operations.list(words[1]);
    } else {
        return false;
    }
    if (operation == "install" && words.size() > 2) operations.install(words[2]);
    const int step = operation == "delete" && words.size() > 2 ? std::atoi(words[2].c_str()) : 2;
    if (operation == "delete") operations.delete_every(std::max(1, step));
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    const bool is_modern = !words.empty() && words.front() == "--modern";
    if (is_modern) words.erase(words.begin());
    gw::set_font_policy(gw::FontPolicy(is_modern, false));
    Operations operations;
    const double begin = processor_seconds();
    if (!carry_out(operations, words)) {
        std::fputs(USAGE, stderr);
        return 2;
    }
    std::printf("%d %.4f\n", operations.done(), processor_seconds() - begin);
    return operations.done() > 0 ? 0 : 1;
}

// SPDX-License-Identifier: MIT
#include "drivers/first_names.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "core/failure.h"
#include "core/font_policy.h"
#include "model/gw_hrn_list.h"
#include "modules/source_fonts.h"

namespace gw {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t FEW_FILES = 16;
constexpr std::size_t MOST_FILES = 2000;
constexpr std::size_t FIRST_BLOCK = 50;  // packed bitmap fonts take 3 ms each
constexpr std::size_t GROWTH = 4;
constexpr std::chrono::milliseconds AT_SIGHT{100};

/// The names in the directory that are listed, sorted.
std::vector<std::string> files_of(const GW_DIR& source) {
    std::vector<std::string> names;
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(source.get_path(), failed), end; !failed && entry != end;
         entry.increment(failed)) {
        std::string name = entry->path().filename();
        if (source.has_chosen(name)) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Reads a source block by block, each longer than the one before: a directory is read anew for each.
class FirstLook {
  public:
    FirstLook(GW_FSM_LIST& modules, const GW_DIR& source) : modules_(modules), path_(source.get_path()) {
        files_ = files_of(source);
    }
    [[nodiscard]] std::size_t files() const { return files_.size(); }

    /// Adds the fonts of at most so many files to `out`, until there is no more time. Returns of how many.
    std::size_t read(GW_LIST<GWFont>& out, std::size_t most, Clock::time_point end) {
        most = std::min(most, files_.size());
        std::size_t read = 0;
        for (std::size_t block = FIRST_BLOCK; read < most && (read == 0 || Clock::now() < end);
             block *= GROWTH) {
            const auto first = files_.begin() + static_cast<std::ptrdiff_t>(read);
            const std::size_t count = std::min(block, most - read);
            GW_DIR part(path_.c_str());
            part.choose({first, first + static_cast<std::ptrdiff_t>(count)});
            modules_.make_font_list(out, &part, 0);
            read += count;
        }
        return read;
    }

  private:
    GW_FSM_LIST& modules_;
    std::string path_;
    std::vector<std::string> files_;
};

/// What is wrong is told once, when all fonts are looked for.
class Unheard {
  public:
    Unheard() : before_(listen_to_failures([](const Failure&) {})) {}
    ~Unheard() { listen_to_failures(before_); }
    Unheard(const Unheard&) = delete;
    Unheard& operator=(const Unheard&) = delete;

  private:
    FailureListener before_;
};

/// Those that have a name; the others are deleted.
void keep_named(GW_LIST<GWFont>& kept, const GW_LIST<GWFont>& fonts) {
    for (GWFont* font : fonts) {
        if (!font->get_obstacle()) {
            kept.append(font);
        } else {
            const Ref<GWFont> dropped(font);
        }
    }
}

}  // namespace

std::vector<std::string> first_names(GW_FSM_LIST& modules, const std::deque<GW_DIR>& sources) {
    const Clock::time_point end = Clock::now() + AT_SIGHT;
    const NamedAtSight at_sight;
    const Unheard quiet;
    std::vector<FirstLook> looks;
    std::size_t files = 0;
    for (const GW_DIR& source : sources) files += looks.emplace_back(modules, source).files();
    if (files <= FEW_FILES) return {};
    GW_LIST<GWFont> fonts;
    std::size_t most = MOST_FILES;
    for (FirstLook& look : looks) most -= look.read(fonts, most, end);
    GW_LIST<GWFont> named;
    keep_named(named, fonts);
    GWHRNList list(0);
    list.add_fonts(named);
    list.tell_apart();
    std::vector<std::string> names;
    for (const GWHRNElement* elem : list) names.emplace_back(elem->get_name());
    return names;
}

FirstNamesShown::FirstNamesShown(Show show) : show_(std::move(show)), before_(std::exchange(newest, this)) {}

FirstNamesShown::~FirstNamesShown() {
    newest = before_;
}

void FirstNamesShown::show_those_of(GW_FSM_LIST& modules, const std::deque<GW_DIR>& sources) {
    if (newest == nullptr || !font_policy().enters_all_names()) return;
    const std::vector<std::string> names = first_names(modules, sources);
    if (!names.empty()) newest->show_(names);
}

}  // namespace gw

// SPDX-License-Identifier: MIT
//
// Measures listing TrueType fonts: installed ones from their index, for which no font is opened (there are no
// files behind the index here, so an opened font would be an error), and those of a source, beside the tool
// that names them: "times_the_tool", in processor time, should be at most 1.3.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/font_policy.h"
#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "model/gw_hrn_list.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "support/sfnt_maker.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

using gw::test::SfntMaker;
using gw::test::TempDir;
using gw::test::UnderPolicy;

constexpr int ENCODINGS = 5;

std::string outline_name(std::int64_t font, int encoding, const char* family = "family") {
    return std::string("-bench-") + family + std::to_string(font) + "-medium-r-normal--0-0-0-0-p-0-iso8859-" +
           std::to_string(encoding + 1);
}

/// An index of that many fonts with a line for each encoding.
void write_index(const TempDir& dir, std::int64_t fonts) {
    std::string index = std::to_string(fonts * ENCODINGS) + '\n';
    for (std::int64_t font = 0; font < fonts; ++font) {
        for (int encoding = 0; encoding < ENCODINGS; ++encoding)
            index += 'f' + std::to_string(font) + ".ttf " + outline_name(font, encoding) + '\n';
    }
    dir.write("fonts.dir", index);
}

/// That many TrueType files with the characters of ISO 8859-1, each of another family.
void write_fonts(const TempDir& dir, std::int64_t fonts) {
    SfntMaker maker;
    maker.charmap = 1;
    maker.characters.clear();
    for (char32_t code = 0x20; code < 0x100; ++code) maker.characters += code;
    for (std::int64_t font = 0; font < fonts; ++font) {
        maker.names = gw::test::windows_names("Family" + std::to_string(font));
        dir.write('f' + std::to_string(font) + ".ttf", maker.make());
    }
}

void list_installed(benchmark::State& state) {
    const UnderPolicy policy(true);
    const TempDir dir;
    write_index(dir, state.range(0));
    GW_FSM_LIST modules;
    gw::append_font_modules(modules);
    for (auto _ : state) {
        GW_FPE element(dir.c_str());
        GW_LIST<GWFont> fonts;
        modules.make_installed_font_list(fonts, &element);
        GWHRNList list(0);
        for (GWFont* font : fonts) list.add_font(font);
        list.tell_apart();
        if (list.get_count() != state.range(0)) state.SkipWithError("fonts are missing");
    }
}

/// Lists the source; false if names are missing.
bool list_fonts(const TempDir& dir, std::int64_t count) {
    GW_FSM_LIST modules;
    gw::append_font_modules(modules);
    GW_DIR source(dir.c_str());
    GW_LIST<GWFont> fonts;
    modules.make_font_list(fonts, &source, 0);
    GWHRNList list(0);
    for (GWFont* font : fonts) list.add_font(font);
    list.tell_apart();
    const GWHRNElement* last = list.get_elem_at_pos(static_cast<int>(count));
    return last != nullptr && !last->get_representative()->get_index_names().empty();
}

double processor_time() {
    double seconds = 0;
    for (const int whose : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage = {};
        ::getrusage(whose, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime})
            seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    }
    return seconds;
}

/// Both in the same iteration, so that their quotient holds on a busy machine too.
void list_source(benchmark::State& state) {
    const UnderPolicy policy(true);
    const TempDir dir;
    write_fonts(dir, state.range(0));
    const std::string command = "mkfontscale -o /dev/null " + dir.path();
    double ours = 0;
    double tools = 0;
    for (auto _ : state) {
        const double begin = processor_time();
        if (!list_fonts(dir, state.range(0))) state.SkipWithError("names are missing");
        const double between = processor_time();
        state.PauseTiming();
        if (std::system(command.c_str()) != 0) state.SkipWithError("mkfontscale fails");
        ours += between - begin;
        tools += processor_time() - between;
        state.ResumeTiming();
    }
    state.counters["times_the_tool"] = ours / tools;
}

/// Compares `range(0)` new fonts with `range(1)` installed ones that have other names; without a module
/// nothing is copied.
void look_for_conflicts_by_name(benchmark::State& state) {
    const UnderPolicy policy(true);
    const auto make = [](std::int64_t number, const char* family) {
        auto* font = new GWFont(GWFont::TRUETYPE_FONT);
        std::vector<gw::IndexName> names;
        names.reserve(ENCODINGS);
        for (int i = 0; i < ENCODINGS; ++i) names.push_back({0, outline_name(number, i, family)});
        font->set_index_names(std::move(names));
        return font;
    };
    GWHRNList installed(0);
    for (std::int64_t i = 0; i < state.range(1); ++i) installed.add_font(make(i, "old"));
    GWHRNList fresh(0);
    for (std::int64_t i = 0; i < state.range(0); ++i) fresh.add_font(make(i, "new"));
    GW_FSM_LIST no_modules;
    GW_SORTED_LIST<GWAlias> aliases(0);
    GW_LIST<GWConflict> conflicts;
    const TempDir dir;
    for (auto _ : state) {
        state.PauseTiming();
        GWHRNList list(0);
        list.merge(installed);
        state.ResumeTiming();
        for (int pos = 1; pos <= fresh.get_count(); ++pos)
            fresh.install_at_pos(static_cast<unsigned>(pos), dir.c_str(), list, aliases, no_modules,
                                 conflicts);
        if (!conflicts.is_empty()) state.SkipWithError("there is no conflict");
        state.PauseTiming();
        list.clear();
        state.ResumeTiming();
    }
}

BENCHMARK(list_installed)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(list_source)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(look_for_conflicts_by_name)->Args({100, 10000})->Args({1000, 10000})->Unit(benchmark::kMillisecond);

}  // namespace

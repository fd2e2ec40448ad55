// SPDX-License-Identifier: MIT
//
// Measures staging fonts for preview, installing them one by one into one directory, and finding out whether
// they are installed already. The counter "per_font" should hardly grow with the number of fonts. The first
// two depend on the disk; $TMPDIR chooses it.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "drivers/staging.h"
#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "model/gw_hrn_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t1_fsm.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

/// The name of bitmap font i; eight fonts, of different sizes, make one face.
std::string bitmap_name(std::int64_t i, const char* charset = "iso8859-1") {
    return "-bench-face" + std::to_string(i / 8) + "-medium-r-normal--12-" +
           std::to_string(80 + 10 * (i % 8)) + "-75-75-m-70-" + charset;
}

/// Fills the directory with that many bitmap fonts and their index.
void fill(const TempDir& dir, std::int64_t count) {
    std::string index = std::to_string(count) + '\n';
    for (std::int64_t i = 0; i < count; ++i) {
        const std::string file = 'f' + std::to_string(i) + ".pcf";
        dir.write(file, std::string(8000, 'x'));
        index += file + ' ' + bitmap_name(i) + '\n';
    }
    dir.write("fonts.dir", index);
}

void report_per_font(benchmark::State& state, std::int64_t fonts) {
    state.counters["per_font"] =
        benchmark::Counter(static_cast<double>(fonts),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void stage(benchmark::State& state) {
    const TempDir source;
    fill(source, state.range(0));
    const TempDir staging;
    GW_PCF_FSM bitmap;
    GW_FSM_LIST modules;
    modules.append(&bitmap);
    for (auto _ : state) {
        GWHRNList list(0);
        if (!gw::prepare_staging(staging.c_str(), "link", source.c_str())) state.SkipWithError("no staging");
        gw::stage_fonts(list, modules, staging.file("link").c_str(), 0, staging.c_str());
        if (GW_FONTDIR_FILE(staging.c_str(), 0).get_font_count() != state.range(0))
            state.SkipWithError("fonts are missing");
    }
    report_per_font(state, state.range(0));
}

/// Installs into a directory that already has `range(1)` fonts.
void install_one_by_one(benchmark::State& state) {
    const TempDir source;
    fill(source, state.range(0));
    GW_PCF_FSM bitmap;
    GW_FSM_LIST modules;
    modules.append(&bitmap);
    GW_FPE from(source.c_str());
    GW_LIST<GWFont> fonts;
    bitmap.make_installed_font_list(fonts, &from);
    std::vector<gw::Ref<GWFont>> owners(fonts.begin(), fonts.end());
    for (auto _ : state) {
        state.PauseTiming();
        const TempDir target;
        std::string index = std::to_string(state.range(1)) + '\n';
        for (std::int64_t i = 0; i < state.range(1); ++i)
            index += "old" + std::to_string(i) + ".pcf " + bitmap_name(i, "iso8859-2") + '\n';
        target.write("fonts.dir", index);
        state.ResumeTiming();
        for (const gw::Ref<GWFont>& font : owners) font->install_font(target.c_str(), 0, modules);
        state.PauseTiming();
        if (GW_FONTDIR_FILE(target.c_str(), 0).get_font_count() != state.range(0) + state.range(1))
            state.SkipWithError("fonts are missing");
        state.ResumeTiming();
    }
    report_per_font(state, state.range(0));
}

/// Compares `range(0)` new fonts with `range(1)` installed fonts of other names. Without a module nothing is
/// copied.
void look_for_conflicts(benchmark::State& state) {
    GWHRNList installed(0);
    for (std::int64_t i = 0; i < state.range(1); ++i) {
        auto* font = new GWFont(GWFont::BITMAP_FONT);
        font->set_xlfd_name(bitmap_name(i, "iso8859-2").c_str());
        installed.add_font(font);
    }
    std::vector<gw::Ref<GWHRNElement>> elements;
    GWHRNList fresh(0);
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        auto* font = new GWFont(GWFont::BITMAP_FONT);
        font->set_xlfd_name(bitmap_name(i).c_str());
        fresh.add_font(font);
    }
    GW_FSM_LIST no_modules;
    GW_SORTED_LIST<GWAlias> aliases(0);
    GW_LIST<GWConflict> conflicts;
    const TempDir dir;
    for (auto _ : state) {
        GWHRNList list(0);
        state.PauseTiming();
        list.merge(installed);
        state.ResumeTiming();
        for (int pos = 1; pos <= fresh.get_count(); ++pos) {
            fresh.install_at_pos(static_cast<unsigned>(pos), dir.c_str(), list, aliases, no_modules,
                                 conflicts);
        }
        if (!conflicts.is_empty()) state.SkipWithError("there is no conflict");
        state.PauseTiming();
        list.clear();
        state.ResumeTiming();
    }
    report_per_font(state, state.range(0));
}

BENCHMARK(stage)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(install_one_by_one)
    ->Args({200, 0})
    ->Args({2000, 0})
    ->Args({200, 10000})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(look_for_conflicts)->Args({2000, 1000})->Args({2000, 10000})->Unit(benchmark::kMillisecond);

}  // namespace

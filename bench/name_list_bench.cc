// SPDX-License-Identifier: MIT
//
// Measures how font lists are filled: grouping fonts under their names, sorted insertion, and listing a
// directory from its index, for 1,000 to 50,000 fonts. The counter "per_font" should hardly grow with the
// number of fonts.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "model/gw_hrn_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t1_fsm.h"
#include "support/temp_dir.h"

namespace {

constexpr unsigned SIZES_PER_FACE = 8;
constexpr const char* DECIPOINTS[SIZES_PER_FACE] = {"240", "80", "120", "100", "180", "140", "90", "60"};

/// A multiplicative permutation, so that fonts are neither sorted nor grouped by face.
std::uint64_t scattered(std::uint64_t i, std::uint64_t count) {
    return i * 2654435761U % count;
}

/// The name of bitmap font i; eight sizes, each at 75 and 100 dpi, make one face.
std::string bitmap_name(std::uint64_t i) {
    const std::string face = std::to_string(i / SIZES_PER_FACE / 2);
    const char* dpi = i % 2 != 0 ? "100" : "75";
    return "-bench-face" + face + "-medium-r-normal--12-" + DECIPOINTS[i / 2 % SIZES_PER_FACE] + '-' + dpi +
           '-' + dpi + "-m-70-iso8859-1";
}

/// The name of bitmap font i when all fonts belong to one face.
std::string crowded_name(std::uint64_t i) {
    return "-bench-crowded-medium-r-normal--12-" + std::to_string(i % 300) + "-75-75-m-" +
           std::to_string(i / 300) + "-iso8859-1";
}

std::string outline_name(std::uint64_t i) {
    return "-bench-outline" + std::to_string(i) + "-medium-r-normal--0-0-0-0-p-0-iso8859-1";
}

using Fonts = std::vector<gw::Ref<GWFont>>;
using Name = std::string (*)(std::uint64_t);

Fonts make_fonts(std::int64_t count, GWFont::GW_FONT_TYPE type, Name name) {
    Fonts fonts;
    const auto total = static_cast<std::uint64_t>(count);
    for (std::uint64_t i = 0; i < total; ++i) {
        gw::Ref<GWFont> font(new GWFont(type));
        font->set_xlfd_name(name(scattered(i, total)).c_str());
        fonts.push_back(font);
    }
    return fonts;
}

void report_per_font(benchmark::State& state) {
    state.counters["per_font"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void add_fonts(benchmark::State& state, GWFont::GW_FONT_TYPE type, Name name) {
    const Fonts fonts = make_fonts(state.range(0), type, name);
    int names = 0;
    for (auto _ : state) {
        GWHRNList list(0);
        for (const gw::Ref<GWFont>& font : fonts) list.add_font(font.get());
        names = list.get_count();
    }
    state.counters["names"] = names;
    report_per_font(state);
}

void insert_sorted(benchmark::State& state) {
    const Fonts fonts = make_fonts(state.range(0), GWFont::TYPE1_FONT, outline_name);
    std::vector<gw::Ref<GWHRNElement>> elements;
    for (const gw::Ref<GWFont>& font : fonts) elements.emplace_back(new GWHRNElement(font.get()));
    for (auto _ : state) {
        GW_SORTED_LIST<GWHRNElement> list(0);
        for (const gw::Ref<GWHRNElement>& elem : elements) list.insert(elem.get());
        benchmark::DoNotOptimize(list.get_elem_at_pos(1));
    }
    report_per_font(state);
}

/// Lists a directory of `range(0)` font files from its index, and fills the name list.
template <class Module>
void list_directory(benchmark::State& state, Name name, const char* extension) {
    const gw::test::TempDir dir;
    const auto total = static_cast<std::uint64_t>(state.range(0));
    std::string index = std::to_string(total) + '\n';
    for (std::uint64_t i = 0; i < total; ++i) {
        const std::string file = 'f' + std::to_string(i) + extension;
        dir.write(file, "");
        index += file + ' ' + name(i) + '\n';
    }
    dir.write("fonts.dir", index);
    Module module;
    for (auto _ : state) {
        GW_FPE element(dir.c_str());
        GW_LIST<GWFont> fonts;
        module.make_installed_font_list(fonts, &element);
        GWHRNList list(0);
        for (GWFont* font : fonts) list.add_font(font);
        if (fonts.get_count() != state.range(0)) state.SkipWithError("fonts are missing");
    }
    report_per_font(state);
}

void list_bitmaps(benchmark::State& state) {
    list_directory<GW_PCF_FSM>(state, bitmap_name, ".pcf");
}

void list_outlines(benchmark::State& state) {
    list_directory<GW_T1_FSM>(state, outline_name, ".pfa");
}

#define GLYPHWARD_SIZES RangeMultiplier(10)->Range(1000, 10000)->Arg(50000)->Unit(benchmark::kMillisecond)

BENCHMARK_CAPTURE(add_fonts, bitmap, GWFont::BITMAP_FONT, bitmap_name)->GLYPHWARD_SIZES;
BENCHMARK_CAPTURE(add_fonts, one_face, GWFont::BITMAP_FONT, crowded_name)->GLYPHWARD_SIZES;
BENCHMARK_CAPTURE(add_fonts, outline, GWFont::TYPE1_FONT, outline_name)->GLYPHWARD_SIZES;
BENCHMARK(insert_sorted)->GLYPHWARD_SIZES;
BENCHMARK(list_bitmaps)->GLYPHWARD_SIZES;
BENCHMARK(list_outlines)->GLYPHWARD_SIZES;

}  // namespace

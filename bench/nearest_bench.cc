// SPDX-License-Identifier: MIT
//
// Measures how long the search for the nearest fonts takes: among 1,000 to 50,000 names of 400 families, in
// the sizes and character sets that bitmap fonts have; and the search of the table of packages.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "diagnosis/nearest.h"
#include "diagnosis/packages.h"

namespace {

using gw::diagnosis::Candidate;

constexpr std::array<const char*, 4> FACES = {"medium-r", "medium-o", "bold-r", "bold-o"};
constexpr std::array<const char*, 6> SIZES = {"8-80-75-75-p-46",     "10-100-75-75-p-56",
                                              "12-120-75-75-p-67",   "14-140-75-75-p-77",
                                              "17-120-100-100-p-88", "24-240-75-75-p-130"};
constexpr std::array<const char*, 5> CHARSETS = {"iso8859-1", "iso8859-2", "iso8859-15", "koi8-r",
                                                 "iso10646-1"};

std::string name_of(std::size_t i) {
    const std::size_t family = i / (FACES.size() * SIZES.size() * CHARSETS.size());
    return "-adobe-family" + std::to_string(family) + '-' + FACES[i % FACES.size()] + "-normal--" +
           SIZES[i / FACES.size() % SIZES.size()] + '-' +
           CHARSETS[i / FACES.size() / SIZES.size() % CHARSETS.size()];
}

std::vector<Candidate> candidates(std::int64_t count) {
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        candidates.push_back(
            {i % 100 == 99 ? "alias-" + std::to_string(i) : name_of(i), "", "/fonts/", i % 2 == 0});
    return candidates;
}

void find(benchmark::State& state, const char* wanted) {
    const std::vector<Candidate> fonts = candidates(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(gw::diagnosis::find_nearest(wanted, fonts));
    state.counters["per_font"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void find_packages(benchmark::State& state, const char* wanted) {
    const auto none = [](const std::string&) { return false; };
    for (auto _ : state) benchmark::DoNotOptimize(gw::diagnosis::packages_for(wanted, 5, none));
}

#define NEAREST_SIZES RangeMultiplier(10)->Range(1000, 10000)->Arg(50000)->Unit(benchmark::kMillisecond)

BENCHMARK_CAPTURE(find, full_name, "-adobe-famly12-bold-r-normal--12-120-100-100-p-67-iso8859-7")
    ->NEAREST_SIZES;
BENCHMARK_CAPTURE(find, pattern, "-*-family7-bold-i-*--*-130-*")->NEAREST_SIZES;
BENCHMARK_CAPTURE(find, alias, "alias-1x99")->NEAREST_SIZES;
BENCHMARK_CAPTURE(find_packages, nowhere, "-nobody-nothing-bold-r-normal--12-*")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(find_packages, stars, "-*-*-*-*-*-*-*-*-*-*-*-*-nothing-9")->Unit(benchmark::kMillisecond);

}  // namespace

// SPDX-License-Identifier: MIT
//
// Measures asking for the names of font files, and the bare tool over the same files in one directory. The
// times are of the same iteration, so that "times_the_tool" holds on a busy machine too: what it takes
// altogether, and, without waiting, the processor time of both. The fonts are the system's, and copies of
// them with other families.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "modules/tool_names.h"
#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using gw::test::TempDir;

double seconds_of(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double processor_time(int whose) {
    rusage usage = {};
    ::getrusage(whose, &usage);
    return seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime);
}

struct Cost {
    double real = 0;
    double own = 0;    // processor time of this process
    double tools = 0;  // and of those that it has started
};

template <class Work>
void add_cost(Cost& cost, Work work) {
    const auto start = std::chrono::steady_clock::now();
    const double own = processor_time(RUSAGE_SELF);
    const double tools = processor_time(RUSAGE_CHILDREN);
    work();
    cost.real += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    cost.own += processor_time(RUSAGE_SELF) - own;
    cost.tools += processor_time(RUSAGE_CHILDREN) - tools;
}

void replace_all(std::string& bytes, const std::string& old, const std::string& by) {
    for (std::size_t at = 0; (at = bytes.find(old, at)) != std::string::npos; at += by.size())
        bytes.replace(at, old.size(), by);
}

std::string utf16(const std::string& ascii) {
    std::string text;
    for (const char letter : ascii) text += {'\0', letter};
    return text;
}

/// That many Noto fonts; from the second round on their families begin with another word.
std::vector<std::string> write_fonts(const TempDir& dir, std::size_t count) {
    std::vector<fs::path> fonts;
    std::error_code none;
    for (const fs::directory_entry& entry : fs::directory_iterator("/usr/share/fonts/truetype/noto", none))
        fonts.push_back(entry.path());
    std::sort(fonts.begin(), fonts.end());
    std::vector<std::string> paths;
    while (!fonts.empty() && paths.size() < count) {
        const std::size_t round = paths.size() / fonts.size();
        std::string bytes = TempDir::read_bytes(fonts[paths.size() % fonts.size()]);
        const std::string word = "Not" + std::string(1, static_cast<char>('a' + round));
        if (round > 0) replace_all(bytes, "Noto", word);
        if (round > 0) replace_all(bytes, utf16("Noto"), utf16(word));
        paths.push_back(dir.write(std::to_string(paths.size()) + ".ttf", bytes));
    }
    return paths;
}

void tool_names(benchmark::State& state) {
    const TempDir dir;
    const std::vector<std::string> paths = write_fonts(dir, static_cast<std::size_t>(state.range(0)));
    if (paths.empty()) return state.SkipWithError("fonts-noto-core is not installed");
    Cost ours;
    Cost bare;
    for (auto _ : state) {
        state.PauseTiming();
        add_cost(bare, [&] { gw::run_shell("mkfontscale %s", {dir.path()}, gw::LONG_WORK); });
        state.ResumeTiming();
        add_cost(ours, [&] {
            const auto names = gw::tool_names(paths);
            if (!names || names->front().empty()) state.SkipWithError("no names");
        });
    }
    state.counters["times_the_tool"] = ours.real / bare.real;
    state.counters["processor"] = (ours.own + ours.tools) / (bare.own + bare.tools);
    state.counters["own_part"] = ours.own / (bare.own + bare.tools);
}

BENCHMARK(tool_names)
    ->Arg(64)
    ->Arg(268)
    ->Arg(1000)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace

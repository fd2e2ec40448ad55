// SPDX-License-Identifier: MIT
//
// Measures an answer about a font that is not there, which is the most expensive one: a font path of 10
// directories with 10,000 names, whose files are all looked for, and a search for the nearest names. With
// DISPLAY it asks that X server, whose font path is put back afterwards, else one that is played.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "diagnosis/answer.h"
#include "fontpath/xlib_server_view.h"
#include "support/played_server.h"
#include "support/temp_dir.h"

namespace {

constexpr int DIRECTORIES = 10;
constexpr int FONTS_EACH = 1000;

std::string name_of(int font) {
    return "-bench-family " + std::to_string(font / 20) + "-medium-r-normal--" +
           std::to_string(6 + font % 20) + "-80-75-75-p-80-iso8859-1";
}

/// The directories, with an empty font for every name.
std::vector<std::string> make_path(const gw::test::TempDir& root, gw::test::PlayedServer& played) {
    std::vector<std::string> path;
    for (int directory = 0; directory < DIRECTORIES; ++directory) {
        const std::string at = std::to_string(directory) + '/';
        std::string index = std::to_string(FONTS_EACH) + '\n';
        for (int i = 0; i < FONTS_EACH; ++i) {
            const int font = directory * FONTS_EACH + i;
            const std::string file = std::to_string(font) + ".pcf";
            root.write(at + file, "font");
            index.append(file).append(" ").append(name_of(font)).append("\n");
            played.add(name_of(font));
        }
        root.write(at + "fonts.dir", index);
        path.push_back(root.file(at));
    }
    return path;
}

void answer_about_a_missing_font(benchmark::State& state) {
    const gw::test::TempDir root;
    gw::test::PlayedServer played;
    const std::vector<std::string> path = make_path(root, played);
    std::unique_ptr<gw::ServerView> real;
    if (std::getenv("DISPLAY") != nullptr) real = gw::connect_to_server();
    gw::ServerView& server = real ? *real : played;
    const std::vector<std::string> before = server.font_path();
    if (!server.set_font_path(path)) state.SkipWithError("the server does not take the path");
    gw::diagnosis::Question question;
    question.name = "-bench-family 77-bold-i-normal--12-*-*-*-*-*-iso10646-1";
    for (auto unused : state) {
        (void)unused;
        const gw::diagnosis::Answer answer = gw::diagnosis::answer(question, server, {});
        if (answer.nearest.empty()) state.SkipWithError("no font is near");
    }
    (void)server.set_font_path(before);
}
BENCHMARK(answer_about_a_missing_font)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

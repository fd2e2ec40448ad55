// SPDX-License-Identifier: MIT
//
// Measures the search above a list of fonts, for 20,000 and 50,000 rows: how long a keystroke takes until the
// window shows what it finds; how much of that is finding the rows, and how long the toolkit's list takes for
// all rows. It needs a display: scripts/sandbox --x -- build/release/bench/list_search_bench
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/looks.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/samples/list_search.h"
#include "model/font_search.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/TextF.h>

namespace {

constexpr int VISIBLE_ROWS = 12;

std::string xlfd(std::int64_t i) {
    constexpr const char* FAMILIES[] = {"helvetica", "times",  "courier", "charter",
                                        "lucida",    "utopia", "symbol"};
    constexpr const char* WEIGHTS[] = {"medium", "bold", "black", "light"};
    return std::string("-foundry") + std::to_string(i % 97) + '-' + FAMILIES[i % 7] + '-' + WEIGHTS[i % 4] +
           "-r-normal--" + std::to_string(8 + i % 20) + "-120-75-75-p-70-iso8859-" +
           std::to_string(1 + i % 15);
}

std::vector<gw::SearchedRow> make_rows(std::int64_t count) {
    std::vector<gw::SearchedRow> rows(static_cast<std::size_t>(count));
    std::int64_t i = 0;
    for (gw::SearchedRow& row : rows) {
        // A face of eight sizes.
        for (int size = 0; size < 8; ++size) row.text += xlfd(i) + '\n';
        row.text += "font" + std::to_string(i) + ".pcf.gz\n/usr/share/fonts/x11/75dpi/\n";
        row.directories = {"/usr/share/fonts/X11/75dpi/"};
        ++i;
    }
    return rows;
}

std::vector<std::string> make_lines(std::int64_t count) {
    std::vector<std::string> lines;
    for (std::int64_t i = 0; i < count; ++i)
        lines.push_back("Font Number " + std::to_string(i) + " [Bitmap]     ");
    return lines;
}

void handle_events() {
    while ((XtAppPending(app) & XtIMXEvent) != 0) XtAppProcessEvent(app, XtIMXEvent);
    XmUpdateDisplay(wi_toplevel);
    XSync(display, False);
}

/// Until the list has all rows.
void be_idle() {
    while (XtAppPending(app) != 0) XtAppProcessEvent(app, XtIMAll);
    bool is_late = false;
    const auto late = [](XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; };
    XtAppAddTimeOut(app, 200, late, &is_late);
    while (!is_late) XtAppProcessEvent(app, XtIMAll);
    handle_events();
}

/// A window with such a list.
class SearchedList {
  public:
    explicit SearchedList(std::int64_t count) : rows_(make_rows(count)) {
        form_ = XmCreateForm(wi_toplevel, const_cast<char*>("form"), nullptr, 0);
        Widget title = gw::label(form_, "title", "Fonts");
        Widget above = search_->create(form_, title, 0, {});
        list_ = gw::scrolled_list(form_, "list");
        search_->attach(list_, {[this] { return rows_; }});
        XtVaSetValues(list_, XmNvisibleItemCount, VISIBLE_ROWS, nullptr);
        XtVaSetValues(XtParent(list_), XmNtopAttachment, XmATTACH_WIDGET, XmNtopWidget, above, nullptr);
        gw::fill_list(list_, make_lines(count));
        XtManageChild(form_);
        XtRealizeWidget(wi_toplevel);
        be_idle();
    }
    ~SearchedList() {
        search_.reset();
        XtDestroyWidget(form_);
        handle_events();
    }
    SearchedList(const SearchedList&) = delete;
    SearchedList& operator=(const SearchedList&) = delete;

    /// With the events that it causes, but not what the list gets later in idle time.
    void type(const char* text) {
        Widget field = XtNameToWidget(form_, "_search_textfield");
        XmTextFieldInsert(field, XmTextFieldGetLastPosition(field), const_cast<char*>(text));
        handle_events();
    }
    void clear() {
        search_->clear();
        handle_events();
    }
    [[nodiscard]] Widget list() const { return list_; }

  private:
    std::vector<gw::SearchedRow> rows_;
    std::unique_ptr<gw::ListSearch> search_ = std::make_unique<gw::ListSearch>();
    Widget form_ = nullptr;
    Widget list_ = nullptr;
};

void start_toolkit() {
    if (app != nullptr) return;
    int argc = 1;
    char name[] = "glyphward";
    char* argv[] = {name, nullptr};
    wi_toplevel = XtAppInitialize(&app, "Glyphward", nullptr, 0, &argc, argv, nullptr, nullptr, 0);
    display = XtDisplay(wi_toplevel);
    // Its lists are in the program's font, which is slower than those of the server.
    Arg args[3];
    XtSetArg(args[0], XmNfontType, XmFONT_IS_XFT);
    XtSetArg(args[1], XmNfontName, "Monospace");
    XtSetArg(args[2], XmNfontSize, 10);
    XmRendition rendition = XmRenditionCreate(wi_toplevel, gw::name_arg("gw_names"), args, 3);
    gw::Looks looks;
    looks.name_fonts = XmRenderTableAddRenditions(nullptr, &rendition, 1, XmMERGE_REPLACE);
    gw::set_looks(looks);
}

/// Types the last character of `text`; what comes before it was typed earlier.
void type_last(benchmark::State& state, const std::string& text) {
    start_toolkit();
    SearchedList searched(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        searched.clear();
        be_idle();
        for (std::size_t i = 0; i + 1 < text.size(); ++i) searched.type(std::string(1, text[i]).c_str());
        be_idle();
        state.ResumeTiming();
        searched.type(std::string(1, text.back()).c_str());
    }
}

void first_letter(benchmark::State& state) {
    type_last(state, "h");
}
void later_letter(benchmark::State& state) {
    type_last(state, "helv");
}
void third_word(benchmark::State& state) {
    type_last(state, "helv bold 12");
}
void nothing_found(benchmark::State& state) {
    type_last(state, "qx");
}

void escape(benchmark::State& state) {
    start_toolkit();
    SearchedList searched(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        searched.type("helv bold");
        be_idle();
        state.ResumeTiming();
        searched.clear();
    }
}

void finding_alone(benchmark::State& state) {
    const std::vector<gw::SearchedRow> rows = make_rows(state.range(0));
    const gw::FontSearch search("helv bold 12");
    for (auto _ : state) {
        int found = 0;
        for (const gw::SearchedRow& row : rows) found += search.finds(row) ? 1 : 0;
        benchmark::DoNotOptimize(found);
    }
}

/// What a keystroke would cost if the list got all its rows at once.
void toolkits_list_alone(benchmark::State& state) {
    start_toolkit();
    Widget form = XmCreateForm(wi_toplevel, const_cast<char*>("form"), nullptr, 0);
    Widget list = gw::scrolled_list(form, "list");
    XtManageChild(form);
    XtRealizeWidget(wi_toplevel);
    handle_events();
    const std::vector<std::string> lines = make_lines(state.range(0));
    for (auto _ : state) {
        XmListDeleteAllItems(list);
        gw::append_to_list(list, lines);
        handle_events();
    }
    XtDestroyWidget(form);
    handle_events();
}

void sizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(20000)->Arg(50000)->Unit(benchmark::kMillisecond)->Iterations(10);
}

BENCHMARK(first_letter)->Apply(sizes);
BENCHMARK(later_letter)->Apply(sizes);
BENCHMARK(third_word)->Apply(sizes);
BENCHMARK(nothing_found)->Apply(sizes);
BENCHMARK(escape)->Apply(sizes);
BENCHMARK(finding_alone)->Apply(sizes);
BENCHMARK(toolkits_list_alone)->Apply(sizes);

}  // namespace

// SPDX-License-Identifier: MIT
//
// Measures how fast the main window answers, with all fonts of the user's font path in its list: how long a
// key, a click or a letter takes until the window shows what it does. Of a selection of many rows, what the
// program does in the callbacks is measured, and not what the toolkit's list does. It is a program with
// windows, in a sandbox: bench/compare starts it.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/main_window/glyphwardapp.h"
#include "app/samples/installed_list.h"
#include "app/start/main_start.h"

#include <Xm/List.h>
#include <Xm/TextF.h>

namespace {

constexpr int MANY = 2000;

void handle_events() {
    while ((XtAppPending(app) & XtIMXEvent) != 0) XtAppProcessEvent(app, XtIMXEvent);
    XmUpdateDisplay(wi_toplevel);
    XSync(display, False);
}

/// Until nothing is left to be done in idle time.
void be_idle() {
    constexpr unsigned long MILLISECONDS = 200;
    bool is_late = false;
    const auto late = [](XtPointer flag, XtIntervalId*) { *static_cast<bool*>(flag) = true; };
    XtAppAddTimeOut(app, MILLISECONDS, late, &is_late);
    while (!is_late) XtAppProcessEvent(app, XtIMAll);
    handle_events();
}

int count_rows() {
    int count = 0;
    XtVaGetValues(wi_hrn_list, XmNitemCount, &count, nullptr);
    return count;
}

void note_rows(benchmark::State& state) {
    state.counters["rows"] = count_rows();
}

void call_selection(std::vector<int> positions) {
    XmListCallbackStruct selected = {};
    selected.reason = XmCR_EXTENDED_SELECT;
    selected.selected_item_positions = positions.data();
    selected.selected_item_count = static_cast<int>(positions.size());
    XtCallCallbacks(wi_hrn_list, XmNextendedSelectionCallback, &selected);
}

/// A page further, each time.
void scroll(benchmark::State& state) {
    constexpr int PAGE = 11;
    int top = 1;
    for (auto _ : state) {
        top = (top + PAGE) % (count_rows() - PAGE) + 1;
        XmListSetPos(wi_hrn_list, top);
        handle_events();
    }
    note_rows(state);
}

/// One row, with its sample and its sizes.
void select_one(benchmark::State& state) {
    int position = 1;
    for (auto _ : state) {
        position = (position + 97) % count_rows() + 1;
        XmListDeselectAllItems(wi_hrn_list);
        XmListSelectPos(wi_hrn_list, position, False);
        call_selection({position});
        handle_events();
    }
    note_rows(state);
}

void callbacks_of_many(benchmark::State& state) {
    std::vector<int> positions;
    for (int position = 1; position <= MANY; ++position) positions.push_back(position);
    gw::deselect_all(wi_hrn_list);
    gw::select_too(wi_hrn_list, positions);
    handle_events();
    for (auto _ : state) call_selection(positions);
    gw::deselect_all(wi_hrn_list);
    call_selection({});
    be_idle();
    note_rows(state);
}

/// The last letter of what is searched for.
void type_letter(benchmark::State& state) {
    Widget field = XtNameToWidget(wi_toplevel, "*_search_textfield");
    const std::string text = "outline 12";
    for (auto _ : state) {
        state.PauseTiming();
        XmTextFieldSetString(field, gw::name_arg(text.substr(0, text.size() - 1).c_str()));
        be_idle();
        state.ResumeTiming();
        XmTextFieldSetString(field, gw::name_arg(text.c_str()));
        handle_events();
        state.PauseTiming();
        XmTextFieldSetString(field, gw::name_arg(""));
        be_idle();
        state.ResumeTiming();
    }
    note_rows(state);
}

void times(benchmark::internal::Benchmark* bench) {
    bench->Unit(benchmark::kMillisecond)->Iterations(20);
}

BENCHMARK(scroll)->Apply(times);
BENCHMARK(select_one)->Apply(times);
BENCHMARK(callbacks_of_many)->Apply(times);
BENCHMARK(type_letter)->Apply(times);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    begin_program();
    init_gui(&argc, argv);
    build_program(false);
    be_idle();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

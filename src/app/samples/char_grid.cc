// SPDX-License-Identifier: MIT
#include "app/samples/char_grid.h"

#include <strings.h>

#include <algorithm>
#include <string>
#include <utility>

#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/samples/typed_character.h"

#include <Xm/DrawingA.h>
#include <Xm/ScrollBar.h>

namespace gw {

namespace {

constexpr int MARGIN = 4;           // around the parts of a cell, in pixels
constexpr int DEFAULT_COLUMNS = 8;  // where no resource says how large the grid is
constexpr int DEFAULT_ROWS = 3;
constexpr int ROWS_OF_A_WHEEL = 2;  // for each turn of a mouse wheel
constexpr int TALLEST_GLYPH = 64;   // of a bitmap font, in pixels; what is taller is cut off
constexpr std::size_t MOST_IMAGES = 2000;
constexpr const char* WIDEST_CODE = "10FFFF";

/// The keys, as the toolkit calls them whatever the keyboard has.
constexpr const char* TRANSLATIONS =
    "<Btn1Down>: GridPress()\n"
    "<Btn4Down>: GridScroll(up)\n"
    "<Btn5Down>: GridScroll(down)\n"
    "<Key>osfLeft: GridMove(left)\n"
    "<Key>osfRight: GridMove(right)\n"
    "<Key>osfUp: GridMove(up)\n"
    "<Key>osfDown: GridMove(down)\n"
    "<Key>osfPageUp: GridMove(page-up)\n"
    "<Key>osfPageDown: GridMove(page-down)\n"
    "<Key>osfBeginLine: GridMove(first)\n"
    "<Key>osfEndLine: GridMove(last)";

std::string first_word(String* words, const Cardinal* count) {
    return *count > 0 ? words[0] : "";
}

}  // namespace

CharacterGrid::CharacterGrid(Widget form, Widget label, std::function<void()> changed)
    : label_(label), changed_(std::move(changed)) {
    make_area(form);
    make_bar(form);
    measure_cells();
    Dimension width = 0;
    XtVaGetValues(area_, XmNwidth, &width, nullptr);
    if (width >= cell_width_) return;
    XtVaSetValues(area_, XmNwidth, DEFAULT_COLUMNS * cell_width_, XmNheight,
                  DEFAULT_ROWS * geometry().cell_height, nullptr);
}

CharacterGrid::~CharacterGrid() {
    if (work_ != 0) XtRemoveWorkProc(work_);
}

void CharacterGrid::make_area(Widget form) {
    static XtActionsRec actions[] = {{name_arg("GridPress"), press_action},
                                     {name_arg("GridMove"), move_action},
                                     {name_arg("GridScroll"), scroll_action}};
    static const XtTranslations translations = [] {
        XtAppAddActions(app, actions, XtNumber(actions));
        return XtParseTranslationTable(TRANSLATIONS);
    }();
    area_ = XmCreateDrawingArea(form, name_arg("chars_area"), nullptr, 0);
    XtVaSetValues(area_, XmNuserData, this, XmNresizePolicy, XmRESIZE_NONE, XmNnavigationType, XmTAB_GROUP,
                  nullptr);
    XtOverrideTranslations(area_, translations);
    const auto redraw = [](Widget, XtPointer self, XtPointer) { static_cast<CharacterGrid*>(self)->draw(); };
    XtAddCallback(area_, XmNexposeCallback, redraw, this);
    const auto resize = [](Widget area, XtPointer self, XtPointer) {
        auto& grid = *static_cast<CharacterGrid*>(self);
        grid.scroll_to(grid.top_);
        if (XtIsRealized(area)) XClearArea(XtDisplay(area), XtWindow(area), 0, 0, 0, 0, True);
    };
    XtAddCallback(area_, XmNresizeCallback, resize, this);
    const auto focus = [](Widget, XtPointer self, XEvent* event, Boolean*) {
        static_cast<CharacterGrid*>(self)->has_focus_ = event->type == FocusIn;
        static_cast<CharacterGrid*>(self)->draw();
    };
    XtAddEventHandler(area_, FocusChangeMask, False, focus, this);
    XtManageChild(area_);
}

void CharacterGrid::make_bar(Widget form) {
    bar_ = XmCreateScrollBar(form, name_arg("chars_bar"), nullptr, 0);
    XtVaSetValues(bar_, XmNorientation, XmVERTICAL, XmNtraversalOn, False, nullptr);
    const auto moved = [](Widget, XtPointer self, XtPointer call) {
        static_cast<CharacterGrid*>(self)->scroll_to(static_cast<XmScrollBarCallbackStruct*>(call)->value);
    };
    XtAddCallback(bar_, XmNvalueChangedCallback, moved, this);
    XtAddCallback(bar_, XmNdragCallback, moved, this);
    XtManageChild(bar_);
}

void CharacterGrid::measure_cells() {
    XmRenderTable fonts = nullptr;
    XtVaGetValues(label_, XmNrenderTable, &fonts, nullptr);
    const XmText code = xm_text(WIDEST_CODE);
    Dimension width = 0;
    Dimension height = 0;
    XmStringExtent(fonts, code.get(), &width, &height);
    line_height_ = height;
    pixels_ = height * 3 / 2;
    glyph_height_ = pixels_ * 5 / 4;
    if (face_ && !face_->facts().scalable && !face_->facts().pixel_sizes.empty()) {
        pixels_ = face_->facts().pixel_sizes.front();
        glyph_height_ = std::clamp(pixels_, glyph_height_, TALLEST_GLYPH);
    }
    cell_width_ = std::max<int>(width, glyph_height_) + 2 * MARGIN;
}

GridGeometry CharacterGrid::geometry() const {
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(area_, XmNwidth, &width, XmNheight, &height, nullptr);
    return {.cells = static_cast<int>(characters_.size()),
            .cell_width = cell_width_,
            .cell_height = glyph_height_ + line_height_ + 2 * MARGIN,
            .width = width,
            .height = height};
}

void CharacterGrid::show(FontFace face) {
    clear();
    face_ = std::move(face);
    characters_ = face_->characters();
    measure_cells();
    set_bar();
    draw();
}

void CharacterGrid::clear() {
    if (work_ != 0) XtRemoveWorkProc(std::exchange(work_, 0));
    face_.reset();
    characters_.clear();
    images_.clear();
    drawn_ = 0;
    selected_.reset();
    top_ = 0;
    set_bar();
    draw();
}

bool CharacterGrid::go_to(char32_t code) {
    const auto at =
        std::lower_bound(characters_.begin(), characters_.end(), code,
                         [](const FontFace::Character& c, char32_t value) { return c.code < value; });
    const int cell = static_cast<int>(at - characters_.begin());
    const bool is_there = at != characters_.end() && at->code == code;
    if (is_there) {
        select(cell);
    } else {
        select(std::nullopt);
        const GridGeometry place = geometry();
        scroll_to(place.top_showing(std::min(cell, std::max(0, place.cells - 1)), top_));
    }
    return is_there;
}

std::optional<char32_t> CharacterGrid::code_of_name(const std::string& name) const {
    for (const FontFace::Character& each : characters_) {
        if (::strcasecmp(face_->glyph_name(each.glyph).c_str(), name.c_str()) == 0) return each.code;
    }
    return std::nullopt;
}

std::optional<FontFace::Character> CharacterGrid::selected() const {
    if (!selected_) return std::nullopt;
    return characters_[static_cast<std::size_t>(*selected_)];
}

void CharacterGrid::set_bar() {
    const GridGeometry place = geometry();
    const int seen = place.whole_rows();
    const int rows = std::max(place.rows(), seen);
    XtVaSetValues(bar_, XmNminimum, 0, XmNmaximum, rows, XmNsliderSize, seen, XmNpageIncrement,
                  std::max(1, seen - 1), XmNvalue, std::min(top_, rows - seen), nullptr);
}

void CharacterGrid::scroll_to(int row) {
    const int before = std::exchange(top_, geometry().clamped_top(row));
    set_bar();
    if (top_ != before) draw();
}

void CharacterGrid::select(std::optional<int> cell) {
    selected_ = cell;
    if (cell) {
        top_ = geometry().top_showing(*cell, top_);
        set_bar();
    }
    draw();
    changed_();
}

void CharacterGrid::move(const std::string& where) {
    const GridGeometry place = geometry();
    if (place.cells == 0) return;
    const int page = place.whole_rows() * place.columns();
    const std::pair<const char*, int> steps[] = {
        {"left", -1},       {"right", 1},        {"up", -place.columns()}, {"down", place.columns()},
        {"page-up", -page}, {"page-down", page}, {"first", -place.cells},  {"last", place.cells}};
    for (const auto& [name, step] : steps) {
        if (where != name) continue;
        const int from = selected_.value_or(top_ * place.columns());
        select(selected_ || step == place.cells ? std::clamp(from + step, 0, place.cells - 1) : from);
        return;
    }
}

void CharacterGrid::draw() {
    if (!XtIsRealized(area_)) return;
    const Painter painter(area_);
    const GridGeometry place = geometry();
    painter.clear();
    // Without a character there is no cell to show the focus.
    if (place.cells == 0 && has_focus_) painter.frame({0, 0, place.width - 1, place.height - 1}, false, true);
    const auto [first, last] = place.shown(top_);
    for (int cell = first; cell < last; ++cell) draw_cell(painter, cell);
    ask_for_glyphs();
}

void CharacterGrid::draw_cell(const Painter& painter, int cell) const {
    const GridGeometry place = geometry();
    const auto [x, y] = place.corner_of(cell, top_);
    const bool is_selected = cell == selected_;
    const bool has_cursor = has_focus_ && cell == selected_.value_or(top_ * place.columns());
    painter.frame({x, y, place.cell_width, place.cell_height}, is_selected, has_cursor);
    const FontFace::Character& character = characters_[static_cast<std::size_t>(cell)];
    XmRenderTable fonts = nullptr;
    XtVaGetValues(label_, XmNrenderTable, &fonts, nullptr);
    const std::string code = code_text(character.code, face_->has_unicode()).substr(2);
    painter.text(fonts, code, {x, y + MARGIN + glyph_height_, place.cell_width, line_height_}, is_selected);
    const auto image = images_.find(cell);
    if (image == images_.end()) return;
    const Painter::Box box = {x + 1, y + 1, place.cell_width - 2, glyph_height_ + MARGIN - 1};
    if (image->second) {
        painter.glyph(*image->second, box, face_->facts().scalable ? pixels_ : 0, is_selected);
    } else {
        painter.cross(box, is_selected);
    }
}

std::optional<int> CharacterGrid::first_missing_glyph() const {
    const auto [first, last] = geometry().shown(top_);
    for (int cell = first; cell < last; ++cell) {
        if (!images_.contains(cell)) return cell;
    }
    return std::nullopt;
}

void CharacterGrid::ask_for_glyphs() {
    if (work_ != 0 || !first_missing_glyph()) return;
    if (images_.size() > MOST_IMAGES) images_.clear();
    const auto work = [](XtPointer self) -> Boolean {
        return static_cast<CharacterGrid*>(self)->draw_next_glyph() ? False : True;
    };
    work_ = XtAppAddWorkProc(app, work, this);
}

/// Returns whether there is more to do.
bool CharacterGrid::draw_next_glyph() {
    const std::optional<int> cell = first_missing_glyph();
    if (cell) {
        const Result<GlyphImage> image =
            face_->draw(characters_[static_cast<std::size_t>(*cell)].glyph, pixels_);
        images_[*cell] = image ? std::optional(*image) : std::nullopt;
        ++drawn_;
        draw_cell(Painter(area_), *cell);
        if (first_missing_glyph()) return true;
    }
    work_ = 0;
    return false;
}

CharacterGrid& CharacterGrid::of(Widget area) {
    XtPointer grid = nullptr;
    XtVaGetValues(area, XmNuserData, &grid, nullptr);
    return *static_cast<CharacterGrid*>(grid);
}

void CharacterGrid::press_action(Widget area, XEvent* event, String*, Cardinal*) {
    CharacterGrid& grid = of(area);
    XmProcessTraversal(area, XmTRAVERSE_CURRENT);
    const std::optional<int> cell = grid.geometry().cell_at(event->xbutton.x, event->xbutton.y, grid.top_);
    if (cell) grid.select(cell);
}

void CharacterGrid::move_action(Widget area, XEvent*, String* words, Cardinal* count) {
    of(area).move(first_word(words, count));
}

void CharacterGrid::scroll_action(Widget area, XEvent*, String* words, Cardinal* count) {
    CharacterGrid& grid = of(area);
    grid.scroll_to(grid.top_ + (first_word(words, count) == "up" ? -ROWS_OF_A_WHEEL : ROWS_OF_A_WHEEL));
}

}  // namespace gw

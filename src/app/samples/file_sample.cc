// SPDX-License-Identifier: MIT
#include "app/samples/file_sample.h"

#include <algorithm>

#include "app/kit/toolkit.h"
#include "app/samples/glyph_painter.h"
#include "fontfiles/script_sample.h"
#include "fontfiles/unicode_text.h"

#include <Xm/DrawingA.h>
#include <Xm/Form.h>

namespace gw {

namespace {

constexpr std::size_t MOST_GLYPHS = 200;
constexpr int MARGIN = 6;

/// The characters to draw: those of `text` that the font has, if it has its letters, or letters of its own.
std::u32string characters_to_draw(const FontFace& face, const std::string& text) {
    std::u32string all = characters_of(text);
    const bool has_any =
        std::any_of(all.begin(), all.end(), [&](char32_t c) { return c > U' ' && face.has(c); });
    if (!has_any) all = characters_of(sample_letters(face, text));
    if (all.size() > MOST_GLYPHS) all.resize(MOST_GLYPHS);
    return all;
}

/// A glyph that cannot be drawn leaves a gap, as wide as half of the size.
GlyphImage glyph_or_gap(const FontFace& face, char32_t character, int pixels) {
    if (const unsigned long glyph = face.glyph_of(character); glyph != 0) {
        if (Result<GlyphImage> image = face.draw(glyph, pixels); image) return std::move(*image);
    }
    GlyphImage gap;
    gap.advance = pixels / 2;
    return gap;
}

}  // namespace

void FileSample::create(Widget form, Widget field, const char* name) {
    // The frame of the field stays.
    Dimension shadow = 0;
    Dimension highlight = 0;
    XtVaGetValues(field, XmNshadowThickness, &shadow, XmNhighlightThickness, &highlight, nullptr);
    const int inside = shadow + highlight;
    picture_ = XtVaCreateManagedWidget(name, xmDrawingAreaWidgetClass, form, XmNtraversalOn, False,
                                       XmNmappedWhenManaged, False, nullptr);
    const struct {
        const char* attachment;
        const char* widget;
        const char* offset;
    } edges[] = {{XmNtopAttachment, XmNtopWidget, XmNtopOffset},
                 {XmNbottomAttachment, XmNbottomWidget, XmNbottomOffset},
                 {XmNleftAttachment, XmNleftWidget, XmNleftOffset},
                 {XmNrightAttachment, XmNrightWidget, XmNrightOffset}};
    for (const auto& edge : edges) {
        XtVaSetValues(picture_, edge.attachment, XmATTACH_OPPOSITE_WIDGET, edge.widget, field, edge.offset,
                      inside, nullptr);
    }
    Pixel foreground = 0;
    Pixel background = 0;
    XtVaGetValues(field, XmNforeground, &foreground, XmNbackground, &background, nullptr);
    XtVaSetValues(picture_, XmNforeground, foreground, XmNbackground, background, nullptr);
    XtAddCallback(
        picture_, XmNexposeCallback,
        [](Widget, XtPointer sample, XtPointer) { static_cast<FileSample*>(sample)->paint(); }, this);
}

Outcome FileSample::show(const std::string& file, const std::string& text, int pixels, long number) {
    hide();
    const Result<FontFace> face = FontFace::open(file, number);
    if (!face) return face.failure();
    pixels_ = std::clamp(pixels, 1, FontFace::MOST_PIXELS);
    for (const char32_t character : characters_to_draw(*face, text))
        glyphs_.push_back(glyph_or_gap(*face, character, pixels_));
    if (glyphs_.empty()) return Failure{file, Reason::NO_GLYPHS};
    if (!XtIsRealized(picture_)) return done();
    XtMapWidget(picture_);
    XRaiseWindow(display, XtWindow(picture_));
    XClearWindow(display, XtWindow(picture_));
    paint();
    return done();
}

void FileSample::hide() {
    glyphs_.clear();
    if (XtIsRealized(picture_)) XtUnmapWidget(picture_);
}

void FileSample::paint() const {
    if (glyphs_.empty()) return;
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(picture_, XmNwidth, &width, XmNheight, &height, nullptr);
    const GlyphPainter painter(picture_);
    int pen = MARGIN;
    for (const GlyphImage& glyph : glyphs_) {
        if (pen >= width) break;
        painter.glyph(glyph, {pen + glyph.left, 0, glyph.width, height}, pixels_, false);
        pen += std::clamp(glyph.advance, 0, FontFace::MOST_PIXELS);
    }
}

}  // namespace gw

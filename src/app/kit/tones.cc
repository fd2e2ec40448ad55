// SPDX-License-Identifier: MIT
#include "app/kit/tones.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "app/kit/handles.h"

namespace gw {

namespace {

struct ToneColour {
    const char* tag;
    const char* colour;  ///< null for the list's own
};

/// By tone. All of them can be read on white, and on the colour of a selected line.
constexpr std::array<ToneColour, 5> COLOURS = {{{"gw_plain", nullptr},
                                                {"gw_good", "#14662a"},
                                                {"gw_doubtful", "#7a4e00"},
                                                {"gw_bad", "#b0001e"},
                                                {"gw_faint", "#565c64"}}};

/// The colour's pixel, which belongs to the toolkit.
bool find_pixel(Widget w, const char* colour, Pixel& pixel) {
    XrmValue from = {static_cast<unsigned>(std::string_view(colour).size() + 1), name_arg(colour)};
    XrmValue to = {sizeof pixel, reinterpret_cast<XPointer>(&pixel)};
    return XtConvertAndStore(w, name_arg(XmRString), &from, name_arg(XmRPixel), &to) != False;
}

XmRendition make_rendition(Widget list, const ToneColour& tone, XmTabList columns) {
    std::vector<Arg> args;
    if (Pixel pixel = 0; tone.colour != nullptr && find_pixel(list, tone.colour, pixel))
        args.push_back({name_arg(XmNrenditionForeground), static_cast<XtArgVal>(pixel)});
    if (columns != nullptr) args.push_back({name_arg(XmNtabList), reinterpret_cast<XtArgVal>(columns)});
    return XmRenditionCreate(list, name_arg(tone.tag), args.data(), static_cast<Cardinal>(args.size()));
}

}  // namespace

const char* tag_of(Tone tone) {
    return COLOURS.at(static_cast<std::size_t>(tone)).tag;
}

XmRenderTable with_tones(Widget list, XmRenderTable fonts, XmTabList columns) {
    XmRenderTable table = XmRenderTableCopy(fonts, nullptr, 0);
    for (const ToneColour& tone : COLOURS) {
        XmRendition rendition = make_rendition(list, tone, columns);
        table = XmRenderTableAddRenditions(table, &rendition, 1, XmMERGE_REPLACE);
        XmRenditionFree(rendition);
    }
    return table;
}

}  // namespace gw

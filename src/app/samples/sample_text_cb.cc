// SPDX-License-Identifier: MIT
#include "app/samples/sample_text_cb.h"

#include <algorithm>
#include <cwchar>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

#include "app/kit/busy_windows.h"
#include "app/kit/gw_gui_util.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/samples/rc_sample_text.h"
#include "core/font_policy.h"
#include "core/text.h"

#include <X11/Xproto.h>
#include <Xm/List.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>

const std::array<const char*, outline_point_size_list_count> outline_point_size_list = {"10", "12", "14",
                                                                                        "18", "24", "36"};
std::string sample_text = "Aa Bb Cc Xx Yy Zz 0123456789";

namespace {

constexpr std::size_t LABEL_LIMIT = 10000;
constexpr unsigned XLFD_BUFFER = 2000;
constexpr std::size_t LONGEST_FONT_NAME = 255;
constexpr int IDLE_ROUNDS = 10;
// What mbrlen answers of bytes that are no whole character.
constexpr auto INVALID_CHARACTER = static_cast<std::size_t>(-1);
constexpr auto INCOMPLETE_CHARACTER = static_cast<std::size_t>(-2);
constexpr const char* OUTLINE_RESOLUTION = "75 X 75";
constexpr const char* OUTLINE_SIZE_WITHOUT_MENU = "240";

XErrorHandler default_error_handler = nullptr;

// --- font sets ---------------------------------------------------------------

struct FontSetCloser {
    void operator()(XFontSet set) const { XFreeFontSet(display, set); }
};
using FontSet = std::unique_ptr<std::remove_pointer_t<XFontSet>, FontSetCloser>;

struct FontCloser {
    void operator()(XFontStruct* font) const { XFreeFont(display, font); }
};
using LoadedFont = std::unique_ptr<XFontStruct, FontCloser>;

/// What a sample is drawn with: a font set or one font.
using SampleFont = std::variant<FontSet, LoadedFont>;

/// The font that each sample field shows: a font list does not own it, so it must outlive the list.
std::map<Widget, SampleFont>& shown_fonts() {
    static std::map<Widget, SampleFont> fonts;
    return fonts;
}

void forget_field_cb(Widget field, XtPointer, XtPointer) {
    shown_fonts().erase(field);
}

/// Xlib releases what is not its own when all of a list of names is blank, and the server knows no names that
/// are longer.
bool can_name_a_font(const std::string& name) {
    return name.size() <= LONGEST_FONT_NAME && name.find_first_not_of(" \t\n\v\f\r") != std::string::npos;
}

bool all_can_name_fonts(std::string_view names) {
    for (;;) {
        const std::size_t comma = names.find(',');
        if (!can_name_a_font(std::string(names.substr(0, comma)))) return false;
        if (comma == std::string_view::npos) return true;
        names.remove_prefix(comma + 1);
    }
}

int width_of(XFontSet set, const std::string& text) {
    return XmbTextEscapement(set, text.data(), static_cast<int>(text.size()));
}

/// The font set of the names in that list; empty when the locale or the server cannot make one. Charsets that
/// are missing from it are normal: a set of one font has but one.
FontSet open_font_set(const std::string& names) {
    char** missing = nullptr;
    int missing_count = 0;
    char* substitute = nullptr;
    FontSet set(XCreateFontSet(display, names.c_str(), &missing, &missing_count, &substitute));
    if (missing != nullptr) XFreeStringList(missing);
    return set;
}

/// The server refuses a font whose file it cannot read in more than one way, and none ends the program.
int ignore_font_errors(Display* d, XErrorEvent* event) {
    const bool about_fonts = event->request_code == X_OpenFont || event->request_code == X_QueryFont;
    return about_fonts ? 0 : x_error_handler(d, event);
}

/// The font of that name; empty when the server cannot open it.
LoadedFont load_font(const std::string& name) {
    const XErrorHandler before = XSetErrorHandler(ignore_font_errors);
    LoadedFont font(XLoadQueryFont(display, name.c_str()));
    XSync(display, False);
    XSetErrorHandler(before);
    return font;
}

bool has_letters(FontSet& set) {
    return set && width_of(set.get(), "A") > 0;
}

/// A font of two-byte characters has none; asked for one byte it would draw the stand-in for what it lacks.
bool has_letters(LoadedFont& font) {
    return font && font->min_byte1 == 0 && font->min_char_or_byte2 <= 'A' && font->max_char_or_byte2 >= 'A' &&
           XTextWidth(font.get(), "A", 1) > 0;
}

/// What `text` is drawn with in the font of that one name: a font set, which knows the locale's characters,
/// or else, where the font policy has it, the font itself. Nothing when neither has a width for letters, nor
/// the font set for `text`.
std::optional<SampleFont> make_sample_font(std::string name, const std::string& text) {
    if (!can_name_a_font(name)) return std::nullopt;
    // A comma would end the name; this stands for any one character.
    std::replace(name.begin(), name.end(), ',', '?');
    FontSet set = open_font_set(name);
    if (has_letters(set)) return set;
    if (gw::font_policy().draws_with_the_font_itself()) {
        if (LoadedFont font = load_font(name); has_letters(font)) return font;
    }
    if (set && width_of(set.get(), text) > 0) return set;
    return std::nullopt;
}

void put_text(Widget field, const std::string& text) {
    XmTextFieldSetString(field, gw::name_arg(text.c_str()));
}

XmFontListEntry font_list_entry(const SampleFont& font) {
    const bool is_set = std::holds_alternative<FontSet>(font);
    const XtPointer drawn_with =
        is_set ? static_cast<XtPointer>(std::get<FontSet>(font).get()) : std::get<LoadedFont>(font).get();
    return XmFontListEntryCreate(gw::name_arg(XmFONTLIST_DEFAULT_TAG),
                                 is_set ? XmFONT_IS_FONTSET : XmFONT_IS_FONT, drawn_with);
}

/// Shows `text` in `font`, at the field's present height: the window must not jump from font to font.
void show_in_font(Widget field, SampleFont font, const std::string& text) {
    Dimension height = 0;
    XtVaGetValues(field, XmNheight, &height, nullptr);
    XmFontListEntry entry = font_list_entry(font);
    const gw::FontList fonts(XmFontListAppendEntry(nullptr, entry));
    gw::free_entry(entry);
    XtVaSetValues(field, XmNfontList, fonts.get(), nullptr);
    XtVaSetValues(field, XmNheight, height, nullptr);
    auto& shown = shown_fonts();
    if (!shown.contains(field)) XtAddCallback(field, XmNdestroyCallback, forget_field_cb, nullptr);
    shown[field] = std::move(font);
    put_text(field, text);
}

/// Showing the busy cursor dispatches events, so that a newer selection may be served while an older one is
/// being shown. The older one must not overwrite it then.
class Request {
  public:
    Request() : number_(++newest()) {}
    [[nodiscard]] bool is_newest() const { return number_ == newest(); }
    /// How many requests there have been.
    static unsigned& newest() {
        static unsigned count = 0;
        return count;
    }

  private:
    unsigned number_;
};

/// Name and text are copies: the events that are served may change their originals.
void display_text_in_xlfd(Widget field, const std::string xlfd, const std::string text) {
    const Request request;
    const gw::BusyWindows busy;
    if (!request.is_newest()) return;
    if (std::optional<SampleFont> font = make_sample_font(xlfd, text); font) {
        show_in_font(field, std::move(*font), text);
    } else {
        clear_sample_textfield(field);
    }
}

// --- the selected entry ------------------------------------------------------

bool is_outline(const GWHRNElement& elem) {
    const GWFont* font = elem.get_representative();
    return font != nullptr && font->get_type() != GWFont::BITMAP_FONT;
}

/// The element at the one selected position; null unless exactly one entry is selected and it is a font.
GWHRNElement* only_selected_element(const sample_text_cb_struct& record) {
    const std::vector<int> positions = gw::selected_positions(record.list);
    return positions.size() == 1 ? record.hrn_list->get_elem_at_pos(positions.front()) : nullptr;
}

/// Shows the font, and its attributes too where they are displayed, unless a newer request has overtaken it
/// meanwhile.
void show_font(const sample_text_cb_struct& record, GWFont* font, const char* decipoints) {
    const unsigned before = Request::newest();
    display_text_in_font(record.sample_field, font, decipoints, sample_text.c_str());
    if (Request::newest() == before + 1 && is_attr_dlg_displayed() != 0)
        show_font_attributes(font, record.location);
}

void show_nothing(const sample_text_cb_struct& record) {
    clear_sample_textfield(record.sample_field);
    if (is_attr_dlg_displayed() != 0) clear_attributes();
}

void make_menus_insensitive(const sample_text_cb_struct& record) {
    for (Widget menu : {record.size_menu, record.res_menu}) {
        if (menu != nullptr) activate(menu, 0);
    }
}

// --- the option menus --------------------------------------------------------

using ButtonCallback = void (*)(Widget, XtPointer, XtPointer);

/// Gives the menu one button per text and makes the last one current; the old buttons go. Returns the current
/// button. Without texts the menu keeps its buttons, and the answer is null.
Widget replace_buttons(Widget menu, Widget pulldown, std::vector<Widget>& buttons,
                       const std::vector<std::string>& texts, ButtonCallback callback,
                       sample_text_cb_struct* record) {
    if (texts.empty()) return nullptr;
    Cardinal old_count = 0;
    WidgetList old_children = nullptr;
    XtVaGetValues(pulldown, XmNnumChildren, &old_count, XmNchildren, &old_children, nullptr);
    const std::vector<Widget> old(old_children, old_children + old_count);

    buttons.clear();
    for (const std::string& text : texts) {
        Widget button = gw::menu_button(pulldown, "_choice", text);
        XtAddCallback(button, XmNactivateCallback, callback, record);
        buttons.push_back(button);
    }
    // The menu must not point at a button that goes.
    XtVaSetValues(menu, XmNmenuHistory, buttons.back(), nullptr);
    for (Widget button : old) {
        if (!XtIsManaged(button)) continue;  // retired already
        XtUnmanageChild(button);
        gw::BusyWindows::destroy(button);
    }
    return buttons.back();
}

void offer_sizes(sample_text_cb_struct* record, int position) {
    const GWHRNElement* elem = record->hrn_list->get_elem_at_pos(position);
    std::vector<std::string> points;
    if (is_outline(*elem)) {
        points.assign(outline_point_size_list.begin(), outline_point_size_list.end());
    } else {
        unsigned count = 0;
        for (const std::string& decipoints : elem->get_point_sizes(count)) {
            points.push_back(convert_to_point(decipoints.c_str()));
        }
    }
    Widget current = replace_buttons(record->size_menu, record->size_pulldown, record->size_buttons, points,
                                     gw::thunk<sample_text_cb_struct, size_button_cb>, record);
    activate(record->size_menu, current != nullptr ? 1 : 0);
    if (current != nullptr) {
        size_button_cb(current, record, nullptr);
    } else {
        activate(record->res_menu, 0);
        show_nothing(*record);
    }
}

void show_largest(sample_text_cb_struct* record, int position) {
    GWHRNElement* elem = record->hrn_list->get_elem_at_pos(position);
    std::string size = OUTLINE_SIZE_WITHOUT_MENU;
    gw::Ref<GWFont> font;
    if (is_outline(*elem)) {
        font = elem->get_font("0", "");
    } else {
        unsigned count = 0;
        const std::vector<std::string> sizes = elem->get_point_sizes(count);
        if (sizes.empty()) return show_nothing(*record);
        size = sizes.back();
        const std::vector<std::string> resolutions = elem->get_res(size.c_str(), count);
        font = elem->get_font(size.c_str(), resolutions.empty() ? "" : resolutions.front().c_str());
    }
    if (!font) return show_nothing(*record);
    show_font(*record, font.get(), size.c_str());
}

void show_alias(const sample_text_cb_struct& record, int alias_position) {
    make_menus_insensitive(record);
    const GWAlias* alias = the_alias_list.get_elem_at_pos(alias_position);
    if (alias == nullptr) return show_nothing(record);
    const unsigned before = Request::newest();
    display_text_in_alias(record.sample_field, alias, sample_text.c_str());
    if (Request::newest() == before + 1 && is_attr_dlg_displayed() != 0) show_alias_attributes(alias);
}

/// The position that a selection callback is about; 0 when there is none.
int selected_position(Widget list, XtPointer call_data) {
    const auto* event = static_cast<XmListCallbackStruct*>(call_data);
    if (event != nullptr && (event->reason == XmCR_SINGLE_SELECT || event->reason == XmCR_BROWSE_SELECT)) {
        return event->item_position;
    }
    const std::vector<int> positions = gw::selected_positions(list);
    return positions.empty() ? 0 : positions.front();
}

/// At most the sample text's bytes of `text`, ending with a whole character.
std::string bounded_sample(const std::string& text) {
    if (text.size() <= SAMPLE_TEXT_LIMIT) return text;
    std::mbstate_t state{};
    std::size_t end = 0;
    while (end < SAMPLE_TEXT_LIMIT) {
        const std::size_t length = std::mbrlen(text.data() + end, SAMPLE_TEXT_LIMIT - end, &state);
        if (length == INCOMPLETE_CHARACTER) break;
        if (length == INVALID_CHARACTER) state = {};
        // Bytes that are no character of this locale count as one each.
        end += length == 0 || length == INVALID_CHARACTER ? 1 : length;
    }
    return gw::truncated(text, end);
}

bool is_one_selected_in_main_list() {
    return wi_hrn_list != nullptr && gw::selected_count(wi_hrn_list) == 1;
}

}  // namespace

std::string chosen_decipoints(const GWHRNElement& elem, const std::string& points) {
    const std::string decipoints = convert_to_decipoint(points.c_str());
    if (is_outline(elem)) return decipoints;
    unsigned count = 0;
    const std::vector<std::string> sizes = elem.get_point_sizes(count);
    if (std::find(sizes.begin(), sizes.end(), decipoints) != sizes.end()) return decipoints;
    const auto size = std::find_if(sizes.begin(), sizes.end(), [&](const std::string& candidate) {
        return convert_to_point(candidate.c_str()) == points;
    });
    return size != sizes.end() ? *size : decipoints;
}

void init_sample_text_cb_module() {
    const XErrorHandler before = XSetErrorHandler(x_error_handler);
    if (before != x_error_handler) default_error_handler = before;
    sample_text = bounded_sample(get_rc_sample_text());
}

int set_rc_sample_text(const char* text) {
    if (write_rc_sample_text(text) == 0) return 0;
    sample_text = bounded_sample(text);
    if (is_one_selected_in_main_list()) put_text(wi_installed_sample_textfield, sample_text);
    return 1;
}

void hrn_list_sample_cb(Widget list, sample_text_cb_struct* record, XtPointer call_data) {
    const Request request;
    activate(record->sample_field, 1);
    if (gw::selected_count(list) != 1) {
        show_nothing(*record);
        activate(record->sample_field, 0);
        make_menus_insensitive(*record);
        return;
    }
    const int position = selected_position(list, call_data);
    const int count = record->hrn_list->get_count();
    if (position > count) {
        show_alias(*record, position - count);
    } else if (position < 1) {
        make_menus_insensitive(*record);
        show_nothing(*record);
    } else if (record->size_menu != nullptr) {
        offer_sizes(record, position);
    } else {
        show_largest(record, position);
    }
}

void size_button_cb(Widget button, sample_text_cb_struct* record, XtPointer /*call_data*/) {
    record->size_button = button;
    const GWHRNElement* elem = only_selected_element(*record);
    if (elem == nullptr) return;
    const bool outline = is_outline(*elem);
    std::vector<std::string> resolutions = {OUTLINE_RESOLUTION};
    if (!outline) {
        unsigned count = 0;
        resolutions = elem->get_res(chosen_decipoints(*elem, gw::label_of(button)).c_str(), count);
    }
    Widget current = replace_buttons(record->res_menu, record->res_pulldown, record->res_buttons, resolutions,
                                     gw::thunk<sample_text_cb_struct, res_button_cb>, record);
    activate(record->res_menu, outline || current == nullptr ? 0 : 1);
    if (current != nullptr) {
        res_button_cb(current, record, nullptr);
    } else {
        show_nothing(*record);
    }
}

void res_button_cb(Widget button, sample_text_cb_struct* record, XtPointer /*call_data*/) {
    record->res_button = button;
    const GWHRNElement* elem = only_selected_element(*record);
    if (elem == nullptr || record->size_button == nullptr) return;
    const std::string decipoints = chosen_decipoints(*elem, gw::label_of(record->size_button));
    const gw::Ref<GWFont> font(elem->get_font(decipoints.c_str(), gw::label_of(button).c_str()));
    if (!font) return show_nothing(*record);
    show_font(*record, font.get(), decipoints.c_str());
}

void set_sample_text_cb(Widget field, XtPointer /*client_data*/, XtPointer call_data) {
    const auto* change = static_cast<XmAnyCallbackStruct*>(call_data);
    // A change without an event is the program's own.
    if (change == nullptr || change->event == nullptr) return;
    sample_text = bounded_sample(gw::field_text(field));
    if (field != wi_installed_sample_textfield && is_one_selected_in_main_list()) {
        put_text(wi_installed_sample_textfield, sample_text);
    }
}

// An outline font is asked for in the size wanted; its record has none.
void display_text_in_font(Widget field, GWFont* font, const char* decipoints, const char* text) {
    const std::string own_size = font->get_field(GWFont::POINT_SIZE);
    if (font->get_type() != GWFont::BITMAP_FONT) font->set_field(GWFont::POINT_SIZE, decipoints);
    char xlfd[XLFD_BUFFER] = "";
    font->construct_xlfd_name(nullptr, xlfd, XLFD_BUFFER - 1);
    font->set_field(GWFont::POINT_SIZE, own_size.c_str());
    display_text_in_xlfd(field, xlfd, text);
}

void display_text_in_alias(Widget field, const GWAlias* alias, const char* text) {
    display_text_in_xlfd(field, alias->get_alias_name(), text);
}

int display_text_in_fontset(Widget field, const char* base_names, const char* text) {
    FontSet set;
    // A list with an entry that names no font is left to nobody to misread.
    if (all_can_name_fonts(base_names)) set = open_font_set(base_names);
    if (!set) return 0;
    show_in_font(field, std::move(set), text);
    return 1;
}

void clear_sample_textfield(Widget field) {
    put_text(field, "");
}

void update_wi_hrn_list(Widget list, const GWHRNList& hrn_list) {
    XmListDeleteAllItems(list);
    std::vector<gw::XmText> names;
    std::vector<XmString> items;
    for (const GWHRNElement* elem : hrn_list) {
        names.push_back(gw::xm_text(elem->get_name()));
        items.push_back(names.back().get());
    }
    if (!items.empty()) XmListAddItemsUnselected(list, items.data(), static_cast<int>(items.size()), 1);
}

void display_alias_list(Widget list, const GW_SORTED_LIST<GWAlias>& aliases) {
    std::vector<gw::XmText> names;
    std::vector<XmString> items;
    for (const GWAlias* alias : aliases) {
        names.push_back(gw::xm_text(alias->get_hrn_name()));
        items.push_back(names.back().get());
    }
    if (!items.empty()) XmListAddItemsUnselected(list, items.data(), static_cast<int>(items.size()), 0);
}

void update_wi_installed_hrn_list() {
    update_wi_hrn_list(wi_hrn_list, the_installed_hrn_list);
    display_alias_list(wi_hrn_list, the_alias_list);
}

void update_label(Widget w, const char* a, const char* b) {
    std::string text = a != nullptr ? a : "";
    if (b != nullptr) text += b;
    const gw::XmText string = gw::xm_text(gw::truncated(text, LABEL_LIMIT - 1));
    XtVaSetValues(w, XmNlabelString, string.get(), nullptr);
}

int x_error_handler(Display* d, XErrorEvent* event) {
    if (event->request_code == X_OpenFont) return 0;
    return default_error_handler != nullptr ? default_error_handler(d, event) : 0;
}

void process_xt_events() {
    XSync(display, False);
    for (int idle = 0; idle < IDLE_ROUNDS;) {
        // When only a timer is due, there is no event to take: that would wait for the user's next one.
        if ((XtAppPending(app) & XtIMXEvent) != 0) {
            XEvent event;
            XtAppNextEvent(app, &event);
            XtDispatchEvent(&event);
        } else {
            XSync(display, False);
            ++idle;
        }
    }
}

// SPDX-License-Identifier: MIT
#include "app/samples/font_details.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/copyable.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/mnemonics.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/samples/typed_character.h"
#include "fontfiles/font_bytes.h"
#include "model/packaged_fonts.h"
#include "platform/package_owner.h"
#include "texts/messages.h"

#include <Xm/List.h>
#include <Xm/TextF.h>

namespace gw {

namespace {

constexpr int GAP = 2;
// Columns, in hundredths of the form's width.
constexpr int FIRST_VALUE = 14;
constexpr int FIRST_END = 51;
constexpr int SECOND_LABEL = 53;
constexpr int SECOND_VALUE = 64;
constexpr int NAMES_END = 56;
constexpr int GRID_BEGIN = 58;

constexpr int LOW_MARGIN = 2;  // above and below the text of a field, in pixels
constexpr int VISIBLE_NAMES = 5;
constexpr std::size_t NAME_COLUMNS = 56;

struct Columns {
    int label, value, end;
};
constexpr Columns FIRST = {0, FIRST_VALUE, FIRST_END};
constexpr Columns SECOND = {SECOND_LABEL, SECOND_VALUE, 100};

/// Attaches the parts of a row below `above`, or on top of their form when that is null, with their middles
/// at one height. Returns the tallest of them, which the next row is below.
Widget attach_row(std::initializer_list<Widget> parts, Widget above, int gap) {
    Widget tallest = *std::max_element(
        parts.begin(), parts.end(), [](Widget a, Widget b) { return natural_height(a) < natural_height(b); });
    for (Widget part : parts) {
        const int centring = centring_offset(part, tallest);
        if (above != nullptr) {
            Attach(part).below(above, gap + centring);
        } else {
            Attach(part).top_form(centring);
        }
    }
    return tallest;
}

/// A field with its label, below `above`, which becomes the one that the next row is below.
Widget fact(Widget form, const std::string& name, Message text, const Columns& columns, Widget& above) {
    Widget label = gw::label(form, (name + "_label").c_str(), text);
    Widget field = copyable_field(form, (name + "_value").c_str());
    XtVaSetValues(field, XmNmarginHeight, LOW_MARGIN, nullptr);
    Attach(label).columns(columns.label, columns.value);
    Attach(field).columns(columns.value, columns.end);
    above = attach_row({label, field}, above, GAP);
    return field;
}

}  // namespace

FontDetails::FontDetails(Widget form) {
    XtVaSetValues(form, XmNuserData, this, nullptr);
    create_facts(form);
    create_names(form);
    create_characters(form);
    attach_lists();
}

FontDetails::~FontDetails() {
    if (work_ != 0) XtRemoveWorkProc(work_);
}

void FontDetails::create_facts(Widget form) {
    Widget above = nullptr;
    file_ = fact(form, "file", Message::DETAILS_FILE, FIRST, above);
    directory_ = fact(form, "directory", Message::DETAILS_DIRECTORY, FIRST, above);
    package_ = fact(form, "package", Message::ATTR_PACKAGE, FIRST, above);
    above = nullptr;
    format_ = fact(form, "format", Message::DETAILS_FORMAT, SECOND, above);
    size_ = fact(form, "size", Message::DETAILS_SIZE, SECOND, above);
    glyphs_ = fact(form, "glyphs", Message::DETAILS_GLYPHS, SECOND, above);
    facts_end_ = above;
}

void FontDetails::create_names(Widget form) {
    names_label_ = label(form, "names_label", Message::DETAILS_NAMES);
    names_ = copyable_list(form, "names_list");
    XtVaSetValues(names_, XmNvisibleItemCount, VISIBLE_NAMES, nullptr);
    set_list_columns(names_, NAME_COLUMNS);
    copy_ = push_button(form, "copy_button", Message::DETAILS_COPY);
    const auto copy = [](Widget, XtPointer self, XtPointer) { static_cast<FontDetails*>(self)->copy(); };
    XtAddCallback(copy_, XmNactivateCallback, copy, this);
}

void FontDetails::create_characters(Widget form) {
    find_label_ = label(form, "find_label", Message::DETAILS_CHARACTER);
    find_ = text_field(form, "find_text");
    label_for(find_label_, find_);
    // Return would press the dialog's default button too.
    static XtActionsRec actions[] = {
        {name_arg("FindCharacter"),
         [](Widget field, XEvent*, String*, Cardinal*) { of(field).find_character(); }}};
    static const XtTranslations on_return = [] {
        XtAppAddActions(app, actions, XtNumber(actions));
        return XtParseTranslationTable("<Key>osfActivate: FindCharacter()\n<Key>Return: FindCharacter()");
    }();
    XtOverrideTranslations(find_, on_return);
    const auto changed = [](Widget, XtPointer self, XtPointer) {
        static_cast<FontDetails*>(self)->find_character();
    };
    XtAddCallback(find_, XmNvalueChangedCallback, changed, this);
    grid_ = std::make_unique<CharacterGrid>(form, find_label_, [this] { show_character(); });
    character_ = copyable_field(form, "char_value");
    for (Widget field : {find_, character_}) XtVaSetValues(field, XmNmarginHeight, LOW_MARGIN, nullptr);
}

// The lists in the middle get the rest of the height.
void FontDetails::attach_lists() {
    Widget top = attach_row({names_label_, find_label_, find_}, facts_end_, 3 * GAP);
    Attach(names_label_).left_form(0);
    XtVaSetValues(find_label_, XmNleftAttachment, XmATTACH_POSITION, XmNleftPosition, GRID_BEGIN, nullptr);
    Attach(find_).right_of(find_label_, GAP).right_form(0);
    Attach(copy_).left_form(0).bottom_form(0);
    Attach(character_).columns(GRID_BEGIN, 100).bottom_form(0);
    Attach(XtParent(names_)).columns(0, NAMES_END).below(top, GAP).above(copy_, GAP);
    Attach(grid_->bar()).right_form(0).below(top, GAP).above(character_, GAP);
    Attach(grid_->area()).columns(GRID_BEGIN, 100).below(top, GAP).above(character_, GAP);
    Attach(grid_->area()).left_of(grid_->bar(), 0);
}

std::vector<Widget> FontDetails::fields() const {
    return {file_, directory_, package_, format_, size_, glyphs_, character_};
}

FontDetails& FontDetails::of(Widget field) {
    XtPointer details = nullptr;
    XtVaGetValues(XtParent(field), XmNuserData, &details, nullptr);
    return *static_cast<FontDetails*>(details);
}

void FontDetails::show(GWFont& font, const GWHRNElement* entry) {
    const Ref<GWFont> kept(&font);
    clear();
    shown_ = shown_font(font, entry);
    show_in_field(file_, shown_.file);
    show_in_field(directory_, shown_.directory);
    fill_list(names_, shown_.names);
    if (shown_.paths.empty()) return;
    next_ = Step::SIZE;
    const auto work = [](XtPointer self) -> Boolean {
        return static_cast<FontDetails*>(self)->take_step() ? False : True;
    };
    work_ = XtAppAddWorkProc(app, work, this);
}

void FontDetails::clear() {
    (void)requests_.begin();
    if (work_ != 0) XtRemoveWorkProc(std::exchange(work_, 0));
    next_ = Step::DONE;
    shown_ = {};
    opened_.reset();
    for (Widget field : fields()) show_in_field(field, "");
    fill_list(names_, {});
    grid_->clear();
}

/// Returns whether there is more to do. Showing the busy cursor handles events, in which the user may select
/// something else: that has begun anew with steps of its own.
bool FontDetails::take_step() {
    const Generation::Ticket request = requests_.newest();
    const BusyWindows busy;
    if (requests_.is_stale(request)) return false;
    do_step(next_);
    next_ = static_cast<Step>(static_cast<int>(next_) + 1);
    if (next_ < Step::DONE) return true;
    work_ = 0;
    return false;
}

void FontDetails::do_step(Step step) {
    switch (step) {
        case Step::SIZE:
            return show_in_field(size_, size_in_words(shown_.paths));
        case Step::OPENING:
            return open_font();
        case Step::CHARACTERS:
            if (opened_) grid_->show(std::move(*opened_));
            opened_.reset();
            return find_character();
        case Step::PACKAGE:
            return show_packages();
        case Step::DONE:
            return;
    }
}

void FontDetails::show_packages() {
    forget_package_owners();
    const Result<std::set<std::string>> names = packages_of(*shown_.font);
    show_in_field(package_, names ? enumeration(*names) : reason_in_words(names.failure()));
}

void FontDetails::open_font() {
    Result<FontBytes> bytes = FontBytes::open(shown_.paths.front());
    if (!bytes) return show_failure(bytes.failure());
    const bool is_compressed = bytes->was_compressed();
    Result<FontFace> face = FontFace::open(std::make_shared<const FontBytes>(std::move(*bytes)), shown_.face);
    if (!face) return show_failure(face.failure());
    show_in_field(format_, format_in_words(face->facts(), is_compressed, *shown_.font));
    show_in_field(glyphs_, std::to_string(face->facts().glyphs));
    opened_ = std::move(*face);
}

void FontDetails::show_failure(const Failure& failure) {
    for (Widget field : {format_, glyphs_, character_}) show_in_field(field, reason_in_words(failure));
}

void FontDetails::show_character() {
    const std::optional<FontFace::Character> character = grid_->selected();
    if (!character) return show_in_field(character_, "");
    const std::string name = grid_->face()->glyph_name(character->glyph);
    const std::string code = code_text(character->code, grid_->face()->has_unicode());
    show_in_field(character_, name.empty() ? code : code + "  " + name);
}

/// Goes to the character that is typed: itself, its code, or the name of its glyph.
void FontDetails::find_character() {
    const std::string typed = field_text(find_);
    if (typed.empty() || grid_->face() == nullptr) return;
    std::optional<char32_t> code = typed_character(typed);
    if (!code) code = grid_->code_of_name(typed);
    if (code && grid_->go_to(*code)) return;
    const std::string what = code ? code_text(*code, grid_->face()->has_unicode()) : typed;
    std::string words = text_of(Message::CHARACTER_MISSING);
    if (const std::size_t place = words.find("%s"); place != std::string::npos) words.replace(place, 2, what);
    show_in_field(character_, words);
}

/// What the user selected last has the primary selection; a field loses its selection to another, and to the
/// list.
void FontDetails::copy() {
    for (Widget field : fields()) {
        if (copy_field(field)) return;
    }
    (void)copy_list(names_);
}

}  // namespace gw

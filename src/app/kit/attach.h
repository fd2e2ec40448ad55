// SPDX-License-Identifier: MIT
//
// Places the children of a form.
#pragma once

#include <Xm/Xm.h>

namespace gw {

/// Attaches a child of a form, side by side: `Attach(w).top_form(5).right_of(label, 5)`. Offsets are in
/// pixels.
class Attach {
  public:
    explicit Attach(Widget w) : w_(w) {}
    const Attach& top_form(int offset) const { return to_form(XmNtopAttachment, XmNtopOffset, offset); }
    const Attach& bottom_form(int offset) const {
        return to_form(XmNbottomAttachment, XmNbottomOffset, offset);
    }
    const Attach& left_form(int offset) const { return to_form(XmNleftAttachment, XmNleftOffset, offset); }
    const Attach& right_form(int offset) const { return to_form(XmNrightAttachment, XmNrightOffset, offset); }
    const Attach& sides(int offset) const { return left_form(offset).right_form(offset); }
    const Attach& below(Widget w, int offset) const {
        return to_widget(XmNtopAttachment, XmNtopWidget, XmNtopOffset, w, offset);
    }
    const Attach& above(Widget w, int offset) const {
        return to_widget(XmNbottomAttachment, XmNbottomWidget, XmNbottomOffset, w, offset);
    }
    const Attach& right_of(Widget w, int offset) const {
        return to_widget(XmNleftAttachment, XmNleftWidget, XmNleftOffset, w, offset);
    }
    const Attach& left_of(Widget w, int offset) const {
        return to_widget(XmNrightAttachment, XmNrightWidget, XmNrightOffset, w, offset);
    }
    /// Between two positions of the form, in hundredths of its width.
    const Attach& columns(int left, int right) const;

  private:
    const Attach& to_form(const char* attachment, const char* offset_name, int offset) const;
    const Attach& to_widget(const char* attachment, const char* widget_name, const char* offset_name,
                            Widget w, int offset) const;
    Widget w_;
};

/// The height in pixels that the widget asks for.
int natural_height(Widget w);
/// By how many pixels `low` must be moved down so that its middle is at the height of the middle of `tall`
/// beside it; 0 when `low` is the taller one.
int centring_offset(Widget low, Widget tall);

}  // namespace gw

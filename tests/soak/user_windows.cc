// SPDX-License-Identifier: MIT
//
// How the user looks at fonts and opens and closes windows.
#include "soak/user.h"

#include "app/installing/installdlg.h"
#include "app/main_window/aboutdlg.h"
#include "app/main_window/glyphwardapp.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"

#include "widget/work_test_support.h"

namespace gw::soak {

using namespace gw::test;

void User::look_around() {
    for (int i = random_.below(3); i >= 0; --i) {
        switch (random_.below(3)) {
            case 0:
                pick_anything();
                break;
            case 1:
                show_attributes();
                break;
            default:
                open_and_close();
        }
    }
}

void User::pick_anything() {
    const int count = static_cast<int>(items(wi_hrn_list).size());
    if (count == 0) return;
    std::vector<int> positions = {1 + random_.below(count)};
    if (random_.one_in(3)) positions.push_back(1 + random_.below(count));
    note("select " + std::to_string(positions.front()) + " to " + std::to_string(positions.back()));
    select(wi_hrn_list, positions);
    if (positions.size() > 1 || !random_.one_in(2)) return;
    Widget menu = find(wi_mainwindow, random_.one_in(2) ? "_size_option_menu" : "_res_option_menu");
    Widget pulldown = nullptr;
    XtVaGetValues(menu, XmNsubMenuId, &pulldown, nullptr);
    const Texts entries = choices(pulldown);
    if (!entries.empty())
        choose(menu, entries[static_cast<std::size_t>(random_.below(static_cast<int>(entries.size())))]);
}

void User::show_attributes() {
    const int count = static_cast<int>(items(wi_hrn_list).size());
    if (count == 0) return;
    const int position = 1 + random_.below(count);
    note("attributes of " + std::to_string(position));
    select(wi_hrn_list, {position});
    press(find(wi_mainwindow, "_attributes_button1"));
    if (!random_.one_in(3)) press(find(wi_attr_dlg, "close_button"));
}

void User::open_and_close() {
    note("open and close windows");
    press(find(wi_mainwindow, "_about_dlg_button"));
    press(find(wi_mainwindow, "_install_dlg_button"));
    pump_until([] { return is_viewable(wi_install_dlg); });
    press(find(wi_install_dlg, "_select_all_button"));
    if (is_managed(wi_about_dlg)) close_box(wi_about_dlg);
    if (random_.one_in(2)) press(find(wi_install_dlg, "_cancel_button"));
    type_into(wi_installed_sample_textfield, "typed " + std::to_string(random_.below(100)));
}

}  // namespace gw::soak

// SPDX-License-Identifier: MIT
#include "app/program/directory_input.h"

#include "app/kit/toolkit.h"
#include "fontpath/path_element.h"

namespace gw {

DirectoryInput::DirectoryInput(Listener listener) : listener_(listener) {
    if (watch_.descriptor() < 0) return;
    // Xt has the mask for a pointer.
    auto* const mask = reinterpret_cast<XtPointer>(XtInputReadMask);  // NOLINT(performance-no-int-to-ptr)
    input_ = XtAppAddInput(app, watch_.descriptor(), mask, on_input, this);
}

DirectoryInput::~DirectoryInput() {
    if (input_ != 0) XtRemoveInput(input_);
}

void DirectoryInput::watch(const std::vector<std::string>& elements) {
    std::vector<std::string> directories;
    for (const std::string& element : elements) {
        directories.push_back(place_of_element(element));
        for (std::string& directory : font_directories(element)) directories.push_back(std::move(directory));
    }
    std::erase_if(directories,
                  [](const std::string& directory) { return directory.empty() || is_silent(directory); });
    watch_.watch(directories);
}

void DirectoryInput::on_input(XtPointer client_data, int*, XtInputId*) {
    auto* input = static_cast<DirectoryInput*>(client_data);
    const std::set<std::string> changed = input->watch_.take_changes();
    if (!changed.empty()) input->listener_(changed);
}

}  // namespace gw

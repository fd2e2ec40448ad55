// SPDX-License-Identifier: MIT
#include "model/sent_files.h"

#include <set>
#include <string>

#include "core/text.h"
#include "model/gw_hrn_list.h"

namespace gw {

namespace {

constexpr const char* METRICS = ".afm";

void add_files_of(const GWFont& font, std::set<std::string>& known, std::vector<SentFile>& files) {
    const GW_FSPEC_LIST* specs = font.get_font_file_list();
    if (specs == nullptr) return;
    bool is_first = true;
    for (const GW_FILE_SPEC* spec : *specs) {
        std::string name = spec->get_name();
        // Metrics in a directory of their own may have no extension.
        name = name.substr(name.rfind('/') + 1);
        if (!is_first && !is_metrics_name(name)) name += METRICS;
        is_first = false;
        if (known.insert(spec->get_path()).second) files.push_back({name, spec->get_path()});
    }
}

}  // namespace

std::vector<SentFile> files_of(const std::vector<const GWHRNElement*>& entries) {
    std::set<std::string> known;
    std::vector<SentFile> files;
    for (const GWHRNElement* entry : entries) {
        for (const GWHRNElement::PointSize& size : entry->get_slots()) {
            for (const Ref<GWFont>& font : size.fonts) add_files_of(*font, known, files);
        }
    }
    return files;
}

bool is_metrics_name(const std::string& name) {
    return lower_case(name).ends_with(METRICS);
}

}  // namespace gw

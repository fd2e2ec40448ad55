// SPDX-License-Identifier: MIT
#include "model/sent_files.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "core/text.h"
#include "model/gw_hrn_list.h"

namespace gw {

namespace {

constexpr const char* METRICS = ".afm";

/// Metrics in a directory of their own may have no extension.
bool is_metrics(const GW_FILE_SPEC& spec, bool is_first) {
    const std::string_view name = spec.get_name();
    return is_metrics_name(std::string(name)) || (!is_first && name.find('/') != std::string_view::npos);
}

void add_files_of(const GWFont& font, std::set<std::string>& known, std::vector<SentFile>& files) {
    const GW_FSPEC_LIST* specs = font.get_font_file_list();
    if (specs == nullptr) return;
    for (const GW_FILE_SPEC* spec : *specs) {
        std::string name = spec->get_name();
        name = name.substr(name.rfind('/') + 1);
        if (is_metrics(*spec, spec == *specs->begin()) && !is_metrics_name(name)) name += METRICS;
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

bool leave_out_files_but(const std::set<std::string>& sent, GWFont& font) {
    const GW_FSPEC_LIST* specs = font.get_font_file_list();
    if (specs == nullptr) return false;
    auto left = std::make_unique<GW_FSPEC_LIST>();
    bool has_glyphs = false;
    for (const GW_FILE_SPEC* spec : *specs) {
        if (!sent.contains(spec->get_path())) continue;
        left->append(
            new GW_FILE_SPEC(spec->get_name(), spec->get_dir(), spec->get_file_type(), spec->get_ext_type()));
        has_glyphs = has_glyphs || !is_metrics(*spec, spec == *specs->begin());
    }
    font.set_font_file_list(std::move(left));
    return has_glyphs;
}

bool is_metrics_name(const std::string& name) {
    return lower_case(name).ends_with(METRICS);
}

}  // namespace gw

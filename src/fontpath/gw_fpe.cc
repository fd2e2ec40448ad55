// SPDX-License-Identifier: MIT
#include "fontpath/gw_fpe.h"

#include <sys/stat.h>

#include <string_view>

#include "core/font_policy.h"
#include "core/replace_file.h"
#include "core/text.h"
#include "fontfiles/scalable_index.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"

namespace {

constexpr mode_t EVERYBODY_READS = 0644;

/// Whether the server finds a file of this name, which is relative to the index.
bool can_stand_in_an_index(std::string_view name) {
    const std::string extension = gw::font_extension(name);
    return name.find_first_of(" \t\n") == std::string_view::npos && !name.starts_with(':') &&
           (name.ends_with(extension) || gw::has_outlines(name));
}

}  // namespace

GW_FPE::GW_FPE(const char* dir) : GW_DIR(dir), element(dir), fontdir_file(dir, gw::FILE_TYPE_REGULAR) {
    const GW_FILE_SPEC probe(gw::ALIAS_FILE_NAME, dir, gw::FILE_TYPE_UNDETERMINED, gw::EXT_UNKNOWN);
    if (probe.exist() != 0) alias_file = std::make_unique<GW_ALIAS_FILE>(dir, gw::FILE_TYPE_REGULAR);
}

int GW_FPE::equal(const GW_FPE* other) const {
    return element.equal(&other->element);
}

int GW_FPE::make_afm_dir() {
    static constexpr mode_t ANYBODY_BEFORE_UMASK = 0777;
    return ::mkdir((std::string(get_element()) + "afm").c_str(), ANYBODY_BEFORE_UMASK);
}

std::unique_ptr<GW_FILE_SPEC> GW_FPE::get_alias_file_spec(std::string& font_name_out, const char* alias_name,
                                                          GW_LIST<GW_FPE>* fpe_list) {
    if (!alias_file) return nullptr;
    const std::unique_ptr<GW_STRING> font_name = alias_file->get_font_name(alias_name);
    if (!font_name) return nullptr;

    const GW_FPE* answering = this;
    std::unique_ptr<GW_STRING> file_name = fontdir_file.get_file_name(font_name->get_str());
    if (!file_name && fpe_list != nullptr) {
        for (GW_FPE* fpe = fpe_list->get_first(); fpe != nullptr && !file_name; fpe = fpe_list->get_next()) {
            file_name = fpe->fontdir_file.get_file_name(font_name->get_str());
            answering = fpe;
        }
    }
    if (!file_name) return nullptr;
    font_name_out = font_name->get_str();
    return std::make_unique<GW_FILE_SPEC>(file_name->get_str(), answering->get_element(),
                                          gw::FILE_TYPE_UNDETERMINED, gw::EXT_UNKNOWN);
}

std::string GW_FPE::index_name(const GW_FILE_SPEC& spec) const {
    return spec.get_name();
}

std::string GWStagingFpe::index_name(const GW_FILE_SPEC& spec) const {
    std::string_view file(spec.get_path());
    const std::string_view staging(get_path());
    if (file.starts_with(staging)) {
        file.remove_prefix(staging.size());
    } else if (file.starts_with('/')) {
        file.remove_prefix(1);
    }
    if (gw::font_policy().takes_any_file_name() && !can_stand_in_an_index(file)) {
        const std::string stand_in = make_stand_in(spec);
        if (!stand_in.empty()) return stand_in;
    }
    return std::string(file);
}

// The server follows a link to an outline, but not to a bitmap font.
std::string GWStagingFpe::make_stand_in(const GW_FILE_SPEC& spec) const {
    const std::string file(spec.get_path());
    std::string name = "stand-in-" + std::to_string(++stand_ins) + gw::font_extension(spec.get_name());
    if (gw::has_outlines(name)) return gw::link_in_scratch_dir(get_path(), name, file) ? name : std::string();
    const gw::Result<std::string> bytes = gw::read_file(file);
    if (!bytes) return "";
    return gw::replace_file(get_path() + name, *bytes, EVERYBODY_READS) ? name : std::string();
}

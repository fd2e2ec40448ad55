// SPDX-License-Identifier: MIT
#include "drivers/staging.h"

#include <sys/types.h>

#include <optional>

#include "core/font_policy.h"
#include "drivers/first_names.h"
#include "modules/source_fonts.h"
#include "platform/scratch.h"

namespace gw {

namespace {

// The X server goes through it. Nobody else can open it, and hold its lock.
constexpr mode_t STAGING_MODE = 0711;

}  // namespace

Outcome prepare_staging(const std::string& staging, const std::string& link_name,
                        const std::string& link_target) {
    Outcome step = hold_scratch_dir(staging, STAGING_MODE);
    if (step) step = link_in_scratch_dir(staging, link_name, link_target);
    if (!step) return step.with(Sequel::NOT_USED);
    GW_FONTDIR_FILE index(staging.c_str(), FILE_TYPE_REGULAR);
    if (index.exist() != 0) index.remove();
    index.create();
    return done();
}

void stage_fonts(GWHRNList& out, GW_FSM_LIST& modules, const char* source, int recursive,
                 const std::string& staging) {
    std::deque<GW_DIR> sources;
    sources.emplace_back(source);
    stage_fonts(out, modules, sources, recursive, staging);
}

void stage_fonts(GWHRNList& out, GW_FSM_LIST& modules, std::deque<GW_DIR>& sources, int recursive,
                 const std::string& staging) {
    FirstNamesShown::show_those_of(modules, sources);
    GW_LIST<GWFont> fonts;
    {
        std::optional<NamedTogether> all;
        if (sources.size() > 1) all.emplace();
        for (GW_DIR& source : sources) modules.make_font_list(fonts, &source, recursive);
    }
    GWStagingFpe fpe(staging.c_str());
    GW_FONTDIR_FILE::Batch lines(fpe.get_fontdir_file());
    GW_LIST<GWFont> kept;
    for (GWFont* font : fonts) {
        if (font->get_obstacle() && !font_policy().marks_what_is_unfit()) {
            const Ref<GWFont> dropped(font);
            continue;
        }
        modules.make_font_visible(font, &fpe);
        kept.append(font);
    }
    out.add_fonts(kept);
    out.tell_apart();
    tell_unless_done(lines.write().with(Sequel::NO_SAMPLES));
}

}  // namespace gw

// SPDX-License-Identifier: MIT
#include "drivers/staging.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/host_paths.h"
#include "platform/scratch.h"

namespace gw {

namespace {

constexpr mode_t ANYBODY_BEFORE_UMASK = 0777;

}  // namespace

Outcome prepare_staging(const char* staging, const std::string& link_name, const char* link_target) {
    // First make the directory, then check it: the other way round, somebody else could make it after the
    // check.
    ::mkdir(staging, ANYBODY_BEFORE_UMASK);
    if (Outcome usable = may_use_scratch_dir(staging); !usable) return usable;
    const std::string link = staging + link_name;
    ::unlink(link.c_str());
    if (::symlink(link_target, link.c_str()) != 0)
        return Failure::of_system(link, errno).with(Sequel::NOT_USED);
    GW_FONTDIR_FILE index(staging, FILE_TYPE_REGULAR);
    if (index.exist() != 0) index.remove();
    index.create();
    return done();
}

void stage_fonts(GWHRNList& out, GW_FSM_LIST& modules, const char* source, int recursive,
                 const char* staging) {
    GW_DIR dir(source);
    GW_LIST<GWFont> fonts;
    modules.make_font_list(fonts, &dir, recursive);
    GWStagingFpe fpe(staging);
    GW_FONTDIR_FILE::Batch lines(fpe.get_fontdir_file());
    for (GWFont* font : fonts) {
        modules.make_font_visible(font, &fpe);
        out.add_font(font);
    }
    tell_unless_done(lines.write().with(Sequel::NO_SAMPLES));
}

}  // namespace gw

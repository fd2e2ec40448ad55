// SPDX-License-Identifier: MIT
#include "diagnosis/cure.h"

#include "diagnosis/alias_cure.h"
#include "diagnosis/comment_cure.h"
#include "diagnosis/deleted_font.h"
#include "diagnosis/index_cure.h"
#include "diagnosis/path_cures.h"
#include "diagnosis/readable_cure.h"

namespace gw::diagnosis {

Result<Deed> carry_out(const Cure& cure, ServerView& server, const Surroundings& surroundings,
                       const Progress& progress) {
    if (!cure.command.empty()) return Failure{cure.element, Reason::NOT_ALLOWED};
    switch (cure.remedy) {
        case Remedy::SERVE_DIRECTORY:
            return serve_directory(cure, server, surroundings);
        case Remedy::READ_AGAIN:
            return read_again(cure, server);
        case Remedy::TAKE_OFF:
            return take_off_dead(cure, server);
        case Remedy::MAKE_READABLE:
            return make_readable(cure, server, surroundings);
        case Remedy::ADD_ALIAS:
            return add_alias(cure, server, surroundings);
        case Remedy::MAKE_INDEX:
            return make_index(cure, server, surroundings, progress);
        case Remedy::COMMENT_OUT:
            return comment_out(cure, server, surroundings);
        case Remedy::BRING_BACK:
            return bring_back(cure, server, surroundings);
        case Remedy::INSTALL_DIRECTORY:
            break;
    }
    return Failure{cure.element, Reason::NOT_ALLOWED};
}

}  // namespace gw::diagnosis

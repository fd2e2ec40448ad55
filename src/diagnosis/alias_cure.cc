// SPDX-License-Identifier: MIT
#include "diagnosis/alias_cure.h"

#include <optional>
#include <utility>
#include <vector>

#include "diagnosis/own_aliases.h"
#include "diagnosis/own_paths.h"
#include "diagnosis/path_cures.h"
#include "diagnosis/server_update.h"
#include "diagnosis/undo.h"

namespace gw::diagnosis {

namespace {

/// The directories whose aliases count: ours first, because it may come first.
std::vector<std::string> alias_path(const std::string& directory, ServerView& server,
                                    const Surroundings& surroundings) {
    std::vector<std::string> path = {directory};
    for (const std::string& element : server.font_path()) path.push_back(element);
    for (const std::string& element : surroundings.configured) path.push_back(element);
    return path;
}

Outcome undo_alias(const AddedAlias& added, const std::optional<Deed>& served, ServerView& server) {
    if (Outcome removed = remove_own_alias(added); !removed) return removed;
    // Later cures may have added aliases, for which the directory is still needed.
    if (has_newer_aliases(added) || !served) {
        look_again(server, std::nullopt);
        return done();
    }
    if (Outcome off = served->undo(); !off && off.failure().reason != Reason::CHANGED_SINCE) return off;
    remove_made_directories(added);
    return done();
}

}  // namespace

Result<Deed> add_alias(const Cure& cure, ServerView& server, const Surroundings& surroundings) {
    if (server.place() == ServerPlace::ELSEWHERE) return Failure{cure.wanted, Reason::SEES_OTHER_FILES};
    if (surroundings.own_fonts.empty()) return Failure{cure.wanted, Reason::NOT_ALLOWED};
    const std::string directory = alias_directory(surroundings);
    const Result<AddedAlias> added =
        add_own_alias(directory, cure.wanted, cure.font, alias_path(directory, server, surroundings));
    if (!added) return added.failure();

    Deed deed{{Said::DONE_ADDED_ALIAS, {cure.wanted, cure.font}}, {}, {}};
    const Cure serving{.remedy = Remedy::SERVE_DIRECTORY, .element = directory, .in_front = cure.in_front};
    std::optional<Deed> served;
    if (Result<Deed> result = serve_directory(serving, server, surroundings); result) {
        served = std::move(*result);
        deed.remarks = served->remarks;
    } else if (result.failure().reason == Reason::ALREADY_ON_PATH) {
        (void)update(server, directory, surroundings.configured, deed.remarks);
    } else {
        (void)remove_own_alias(*added);
        remove_made_directories(*added);
        return result.failure();
    }
    deed.undo =
        once(cure.wanted, [added = *added, served, &server] { return undo_alias(added, served, server); });
    return deed;
}

}  // namespace gw::diagnosis

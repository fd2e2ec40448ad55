// SPDX-License-Identifier: MIT
//
// The configured path is changed first, because it is what counts after the next login; if the server then
// does not take its part, the configuration is put back.
#include "diagnosis/path_cures.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <optional>

#include "core/text.h"
#include "diagnosis/own_paths.h"
#include "diagnosis/server_update.h"
#include "diagnosis/undo.h"
#include "fontpath/catalogue.h"
#include "fontpath/path_element.h"
#include "platform/host_paths.h"

namespace gw::diagnosis {

namespace {

using Elements = std::vector<std::string>;

/// Whether the element can be on a font path at all.
Outcome fits_on_path(const std::string& element) {
    if (element.find(',') != std::string::npos) return Failure{element, Reason::COMMA_IN_NAME};
    if (element.find_first_of("\n\r\t") != std::string::npos)
        return Failure{element, Reason::NAME_UNFIT_FOR_PATH};
    const std::string directory = place_of_element(element);
    if (directory.empty()) return Failure{element, Reason::NO_SUCH_ELEMENT};
    struct stat info = {};
    if (::stat(directory.c_str(), &info) != 0) return Failure::of_system(directory, errno);
    if (!S_ISDIR(info.st_mode)) return Failure::of_system(directory, ENOTDIR);
    if (is_catalogue(element)) return done();
    const std::string index = with_trailing_slash(directory) + FONT_INDEX_NAME;
    return ::stat(index.c_str(), &info) == 0 ? done() : Outcome(Failure::of_system(index, errno));
}

bool has(const Elements& path, const std::string& element) {
    return place_on(path, element, PathHost::THIS) < path.size();
}

/// What is done to the server's path, and how it is taken back.
Elements with_element(Elements path, const std::string& element, bool in_front) {
    const std::size_t place = place_on(path, element, PathHost::THIS);
    if (place < path.size()) path.erase(path.begin() + static_cast<std::ptrdiff_t>(place));
    path.insert(in_front ? path.begin() : path.end(), element);
    return path;
}

/// Takes the element off the server's path again, or back to where it was.
void move_back(ServerView& server, const std::string& element, std::size_t place, bool was_there) {
    Elements path = server.font_path();
    const std::size_t now = place_on(path, element, host_of(server.place()));
    if (now < path.size()) path.erase(path.begin() + static_cast<std::ptrdiff_t>(now));
    if (was_there)
        path.insert(path.begin() + static_cast<std::ptrdiff_t>(std::min(place, path.size())), element);
    std::vector<Sentence> remarks;
    (void)give_path(server, path, "", remarks);
}

}  // namespace

Result<Deed> serve_directory(const Cure& cure, ServerView& server, const Surroundings& surroundings) {
    const std::string& element = cure.element;
    if (Outcome fits = fits_on_path(element); !fits) return fits.failure();
    if (server.place() == ServerPlace::ELSEWHERE) return Failure{element, Reason::SEES_OTHER_FILES};
    const Elements before = server.font_path();
    const bool was_served = has(before, element);
    const bool was_configured = has(surroundings.configured, element);
    const bool leads = cure.in_front && !surroundings.configured.empty() &&
                       place_on(surroundings.configured, element, PathHost::THIS) == 0;
    if (was_served && was_configured && !cure.in_front) return Failure{element, Reason::ALREADY_ON_PATH};

    std::optional<PathChange> change;
    if (!was_configured || (cure.in_front && !leads)) {
        const Result<PathChange> configured = configure(element, cure.in_front);
        if (!configured) return configured.failure();
        change = *configured;
    }
    Deed deed{{Said::DONE_SERVED, {element}}, {}, {}};
    const bool changes_server = !was_served || cure.in_front;
    if (changes_server) {
        const Elements wanted = with_element(before, element, cure.in_front);
        if (const Outcome given = give_path(server, wanted, element, deed.remarks); !given) {
            if (change) (void)take_off(*change);
            return given.failure();
        }
    }
    const std::size_t old_place = place_on(before, element, PathHost::THIS);
    deed.undo = once(element, [=, &server]() -> Outcome {
        if (change) {
            if (Outcome off = take_off(*change); !off) return off;
        }
        if (changes_server) move_back(server, element, old_place, was_served);
        return done();
    });
    return deed;
}

// A server that is given the path that it has looks at the times of the indexes only, in whole seconds. One
// that it does not have for a moment it reads in any case.
Result<Deed> read_again(const Cure& cure, ServerView& server) {
    const std::string& element = cure.element;
    const Elements path = server.font_path();
    const std::size_t place = place_on(path, element, host_of(server.place()));
    if (place == path.size()) return Failure{element, Reason::NO_SUCH_ELEMENT};
    Elements without = path;
    without.erase(without.begin() + static_cast<std::ptrdiff_t>(place));
    if (!without.empty()) (void)server.set_font_path(without);
    Deed deed{{Said::DONE_READ_AGAIN, {element}}, {}, {}};
    if (const Outcome given = give_path(server, path, element, deed.remarks); !given) return given.failure();
    deed.undo = once(element, [] { return done(); });
    return deed;
}

Result<Deed> take_off_dead(const Cure& cure, ServerView& server) {
    const std::string& element = cure.element;
    const Elements before = server.font_path();
    const std::size_t old_place = place_on(before, element, host_of(server.place()));
    const bool was_served = old_place < before.size();
    const Result<PathChange> change = take_off_paths(element);
    if (!change) return change.failure();
    if (change->places.empty() && !was_served) return Failure{element, Reason::NO_SUCH_ELEMENT};
    Deed deed{{Said::DONE_TAKEN_OFF, {element}}, {}, {}};
    if (was_served) {
        Elements wanted = before;
        wanted.erase(wanted.begin() + static_cast<std::ptrdiff_t>(old_place));
        if (const Outcome given = give_path(server, wanted, "", deed.remarks); !given) {
            (void)put_back(*change);
            return given.failure();
        }
    }
    deed.undo = once(element, [=, &server, change = *change]() -> Outcome {
        if (Outcome back = put_back(change); !back) return back;
        // The server does not take what is still dead; the configured path has it all the same.
        if (was_served) move_back(server, element, old_place, true);
        return done();
    });
    return deed;
}

}  // namespace gw::diagnosis

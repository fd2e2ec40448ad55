// SPDX-License-Identifier: MIT
#include "diagnosis/directory_facts.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "core/directory.h"
#include "core/text.h"
#include "platform/host_paths.h"

namespace gw::diagnosis {

namespace {

constexpr std::size_t NAMED_AT_MOST = 3;
constexpr int MOST_LINKS = 40;  // on the way to a directory; the system gives up there, too

using FileNames = std::unordered_set<std::string>;

/// "a, b, c" of the first names.
std::string first_of(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), NAMED_AT_MOST); ++i)
        text.append(i == 0 ? "" : ", ").append(names[i]);
    return text;
}

std::string link_target(const std::string& link) {
    std::array<char, 4096> target = {};
    const ssize_t size = ::readlink(link.c_str(), target.data(), target.size());
    return size <= 0 ? std::string() : std::string(target.data(), static_cast<std::size_t>(size));
}

bool is_newer(const timespec& one, const timespec& other) {
    return std::pair(one.tv_sec, one.tv_nsec) > std::pair(other.tv_sec, other.tv_nsec);
}

// --- the way to it -----------------------------------------------------------

/// Goes down to a directory as the system does, through links, and looks at every level.
class Way {
  public:
    Way(const std::string& directory, const ServerUser& server) : server_(server), rest_(directory) {
        while (!is_over_) step();
    }

    [[nodiscard]] const std::string& missing() const { return missing_; }
    [[nodiscard]] const std::string& no_directory() const { return no_directory_; }
    [[nodiscard]] const std::string& hidden() const { return hidden_; }
    [[nodiscard]] const std::vector<std::string>& impassable() const { return impassable_; }

  private:
    void step() {
        struct stat info = {};
        if (::lstat(done_.empty() ? "/" : done_.c_str(), &info) != 0)
            return stop(errno == EACCES ? hidden_ : missing_);
        if (S_ISLNK(info.st_mode)) return follow();
        if (!S_ISDIR(info.st_mode)) return stop(no_directory_);
        const std::string level = done_.empty() ? "/" : done_;
        if (missing_rights(level, info, server_) != 0) impassable_.push_back(level);
        take_component();
    }

    /// The next component comes from the rest to what is done.
    void take_component() {
        const std::size_t start = rest_.find_first_not_of('/');
        if (start == std::string::npos) {
            is_over_ = true;
            return;
        }
        const std::size_t end = std::min(rest_.find('/', start), rest_.size());
        const std::string component = rest_.substr(start, end - start);
        rest_.erase(0, end);
        if (component == "..") {
            done_.resize(done_.find_last_of('/') == std::string::npos ? 0 : done_.find_last_of('/'));
        } else if (component != ".") {
            done_ += '/' + component;
        }
    }

    void follow() {
        const std::string target = link_target(done_);
        if (target.empty() || ++links_ > MOST_LINKS) return stop(missing_);
        rest_ = target + '/' + rest_;
        done_.resize(target.front() == '/' ? 0 : done_.find_last_of('/'));
    }

    void stop(std::string& where) {
        where = done_.empty() ? "/" : done_;
        is_over_ = true;
    }

    const ServerUser& server_;
    std::string done_;  // without links, without a slash at the end
    std::string rest_;
    int links_ = 0;
    bool is_over_ = false;
    std::string missing_;
    std::string no_directory_;
    std::string hidden_;
    std::vector<std::string> impassable_;
};

// --- the directory -----------------------------------------------------------

class Look {
  public:
    Look(const std::string& directory, const ServerUser& server) : server_(server) {
        facts_.directory = with_trailing_slash(directory);
    }

    DirectoryFacts facts() {
        if (passes_the_way()) {
            home_ = Descriptor(::open(facts_.directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            can_be_listed_ = home_.is_open();
            if (!can_be_listed_)
                home_ = Descriptor(::open(facts_.directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
            look_at_indexes();
        }
        return std::move(facts_);
    }

  private:
    enum class Existence { THERE, ABSENT, UNUSABLE };

    void refuse(Trouble trouble, Sentence why) {
        remark(trouble, std::move(why));
        facts_.is_refused = true;
    }
    void remark(Trouble trouble, Sentence what) {
        if (facts_.trouble == Trouble::NONE) facts_.trouble = trouble;
        facts_.remarks.push_back(std::move(what));
    }
    void not_known(Sentence why) {
        facts_.is_known = false;
        facts_.remarks.push_back(std::move(why));
    }

    /// The server may not pass or read the first of these.
    [[nodiscard]] Sentence unreadable(bool is_directory, const std::string& path) const {
        if (!server_.user) return {Said::NOT_FOR_EVERYBODY, {path}};
        return {is_directory ? Said::SERVER_MAY_NOT_ENTER : Said::SERVER_MAY_NOT_READ,
                {name_of_user(server_.user), path}};
    }

    void refuse_unreadable(bool is_directory, const std::string& path) {
        refuse(Trouble::UNREADABLE, unreadable(is_directory, path));
        if (is_kept_out_by_list(path, server_)) facts_.remarks.push_back({Said::KEPT_OUT_BY_LIST, {path}});
    }

    bool passes_the_way() {
        const Way way(facts_.directory, server_);
        facts_.unreadable = way.impassable();
        if (!way.impassable().empty()) {
            refuse_unreadable(true, way.impassable().front());
        } else if (!way.missing().empty()) {
            refuse(Trouble::NO_DIRECTORY, {Said::NO_SUCH_DIRECTORY, {way.missing()}});
        } else if (!way.no_directory().empty()) {
            refuse(Trouble::NO_DIRECTORY, {Said::NOT_A_DIRECTORY, {way.no_directory()}});
        } else if (!way.hidden().empty()) {
            not_known({Said::MAY_NOT_LOOK, {way.hidden()}});
        }
        const bool is_hidden = !way.hidden().empty();
        return way.missing().empty() && way.no_directory().empty() && !is_hidden;
    }

    void look_at_indexes() {
        std::string index;
        std::string aliases;
        const Existence has_index = read(FONT_INDEX_NAME, index);
        const Existence has_aliases = read(ALIAS_FILE_NAME, aliases);
        if (!facts_.is_known) return;
        if (has_index == Existence::THERE) facts_.index = read_server_index(index);
        if (has_aliases == Existence::THERE) facts_.aliases = read_server_aliases(aliases);
        if (has_index == Existence::ABSENT) {
            const bool has_fonts = has_unlisted_fonts();
            // With aliases alone the server is content.
            if (has_aliases == Existence::ABSENT) refuse(Trouble::NO_INDEX, {Said::NO_INDEX});
            if (has_aliases == Existence::THERE && has_fonts)
                remark(Trouble::NO_INDEX, {Said::ALIASES_BUT_NO_INDEX});
        }
        if (facts_.index.fault) refuse(Trouble::BAD_INDEX, sentence_for(*facts_.index.fault));
        if (facts_.aliases.fault) refuse(Trouble::BAD_ALIASES, sentence_for(*facts_.aliases.fault));
        if (has_index == Existence::THERE && !facts_.index.fault && home_.is_open()) look_at_files();
    }

    static Sentence sentence_for(const FaultInIndex& fault) {
        const std::string line = std::to_string(fault.line);
        switch (fault.fault) {
            case IndexFault::NO_COUNT:
                return {Said::BAD_FIRST_LINE};
            case IndexFault::NO_NAME:
                return {Said::BAD_INDEX_LINE, {line, fault.word}};
            case IndexFault::NO_TARGET:
                return {Said::BAD_ALIAS_LINE, {line, fault.word}};
            case IndexFault::NAME_TOO_LONG:
                return {Said::LONG_ALIAS_LINE, {line}};
            case IndexFault::OWN_ALIAS:
                return {Said::ALIAS_OF_ITSELF, {line, fault.word}};
        }
        return {Said::NO_INDEX};
    }

    /// Reads a regular file of the directory, whoever owns it: the server reads it, too. What is none makes
    /// the server refuse the directory, or wait for ever.
    Existence read(const char* name, std::string& bytes) {
        struct stat info = {};
        const std::string path = facts_.directory + name;
        if (::fstatat(home_.get(), name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
            if (errno == ENOENT) return Existence::ABSENT;
            not_known({Said::MAY_NOT_LOOK, {path}});
            return Existence::UNUSABLE;
        }
        const bool is_index = std::string_view(name) == FONT_INDEX_NAME;
        if (!S_ISREG(info.st_mode)) {
            // Of a directory with the name of the alias file the server reads nothing.
            if (!is_index && S_ISDIR(info.st_mode)) return Existence::UNUSABLE;
            refuse(is_index ? Trouble::BAD_INDEX : Trouble::BAD_ALIASES, {Said::INDEX_IS_NO_FILE, {path}});
            return Existence::UNUSABLE;
        }
        if (missing_rights(path, info, server_) != 0) {
            facts_.unreadable.push_back(path);
            refuse_unreadable(false, path);
        }
        if (is_index) index_time_ = info.st_mtim;
        const Descriptor file(
            ::openat(home_.get(), name, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
        Result<std::string> text = file.is_open() ? read_open_file(file.get(), path)
                                                  : Result<std::string>(Failure::of_system(path, errno));
        if (!text) {
            const bool is_too_large = text.failure().error == EFBIG;
            const auto most = Directory::FILE_LIMIT / (1024L * 1024);
            not_known(is_too_large ? Sentence{Said::FILE_TOO_LARGE, {path, std::to_string(most)}}
                                   : Sentence{Said::MAY_NOT_LOOK, {path}});
            return Existence::UNUSABLE;
        }
        bytes = std::move(*text);
        return Existence::THERE;
    }

    // --- the files -----------------------------------------------------------

    bool has_unlisted_fonts() const {
        if (!can_be_listed_) return false;
        const std::vector<std::string> names = names_in(home_.get());
        return std::any_of(names.begin(), names.end(),
                           [](const std::string& name) { return renderer_of(name) != FontRenderer::NONE; });
    }

    struct Listed {
        std::vector<std::string> missing;
        std::vector<std::string> unreadable;
        std::vector<std::string> useless;
        std::vector<std::string> links;
        std::vector<std::string> of_no_format;
    };

    void look_at_files() {
        FileNames named;
        Listed listed;
        for (const IndexEntry& entry : facts_.index.entries) {
            std::string name(indexed_file(entry.file_name).name);
            if (!named.insert(name).second) continue;
            look_at_file(name, listed);
        }
        if (can_be_listed_) find_unlisted(named);
        std::vector<std::string> newer;
        for (const UnlistedFont& font : facts_.unlisted)
            if (font.is_newer) newer.push_back(font.name);
        tell(Trouble::UNREADABLE, Said::FILES_UNREADABLE, listed.unreadable);
        tell(Trouble::OLD_INDEX, Said::FILES_MISSING, listed.missing);
        tell(Trouble::OLD_INDEX, Said::INDEX_OLDER, newer);
        tell(Trouble::OLD_INDEX, Said::FILES_USELESS, listed.useless);
        tell(Trouble::OLD_INDEX, Said::FILES_ARE_LINKS, listed.links);
        tell(Trouble::NONE, Said::FILES_OF_NO_FORMAT, listed.of_no_format);
        for (const std::string& name : listed.unreadable)
            facts_.unreadable.push_back(facts_.directory + name);
        const auto kept_out =
            std::find_if(listed.unreadable.begin(), listed.unreadable.end(), [this](const std::string& name) {
                return is_kept_out_by_list(facts_.directory + name, server_);
            });
        if (kept_out != listed.unreadable.end())
            facts_.remarks.push_back({Said::KEPT_OUT_BY_LIST, {facts_.directory + *kept_out}});
        if (facts_.index.entries.empty() && facts_.aliases.aliases.empty() && facts_.remarks.empty())
            remark(Trouble::NONE, {Said::INDEX_IS_EMPTY});
    }

    void look_at_file(const std::string& name, Listed& listed) const {
        const FontRenderer renderer = renderer_of(name);
        if (renderer == FontRenderer::NONE) {
            listed.of_no_format.push_back(name);
            return;
        }
        struct stat info = {};
        // The server appends the name to the directory's, whatever it begins with.
        const char* const below = name.c_str() + std::min(name.find_first_not_of('/'), name.size());
        bool is_there = ::fstatat(home_.get(), below, &info, AT_SYMLINK_NOFOLLOW) == 0;
        if (is_there && S_ISLNK(info.st_mode)) {
            if (renderer == FontRenderer::BITMAP) {
                listed.links.push_back(name);
                return;
            }
            is_there = ::fstatat(home_.get(), below, &info, 0) == 0;
        }
        if (!is_there) {
            // What this user may not see may be there.
            if (errno != EACCES) listed.missing.push_back(name);
        } else if (!S_ISREG(info.st_mode) || info.st_size == 0) {
            listed.useless.push_back(name);
        } else if (missing_rights(facts_.directory + name, info, server_) != 0) {
            listed.unreadable.push_back(name);
        }
    }

    void find_unlisted(const FileNames& named) {
        for (std::string& name : names_in(home_.get())) {
            struct stat info = {};
            if (renderer_of(name) == FontRenderer::NONE || named.contains(name)) continue;
            if (::fstatat(home_.get(), name.c_str(), &info, 0) != 0 || !S_ISREG(info.st_mode)) continue;
            const bool is_new = is_newer(info.st_mtim, index_time_) || is_newer(info.st_ctim, index_time_);
            facts_.unlisted.push_back({std::move(name), is_new});
        }
        std::sort(facts_.unlisted.begin(), facts_.unlisted.end(),
                  [](const UnlistedFont& one, const UnlistedFont& other) { return one.name < other.name; });
    }

    void tell(Trouble trouble, Said what, const std::vector<std::string>& names) {
        if (names.empty()) return;
        if (facts_.trouble == Trouble::NONE) facts_.trouble = trouble;
        facts_.remarks.push_back({what, {std::to_string(names.size()), first_of(names)}});
    }

    const ServerUser& server_;
    DirectoryFacts facts_;
    Descriptor home_;
    bool can_be_listed_ = false;
    timespec index_time_ = {};
};

}  // namespace

DirectoryFacts look_at_directory(const std::string& directory, const ServerUser& server) {
    return Look(directory, server).facts();
}

DirectoryFacts read_indexes(const std::string& directory) {
    DirectoryFacts facts;
    facts.directory = with_trailing_slash(directory);
    const auto text_of = [&facts](const char* name) {
        const std::string path = facts.directory + name;
        const Descriptor file(
            ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
        Result<std::string> text = file.is_open() ? read_open_file(file.get(), path)
                                                  : Result<std::string>(Failure::of_system(path, errno));
        return text ? std::move(*text) : std::string();
    };
    facts.index = read_server_index(text_of(FONT_INDEX_NAME));
    facts.aliases = read_server_aliases(text_of(ALIAS_FILE_NAME));
    return facts;
}

std::string name_of_user(const std::optional<uid_t>& user) {
    if (!user) return {};
    const passwd* entry = ::getpwuid(*user);
    return entry == nullptr ? std::to_string(*user) : entry->pw_name;
}

}  // namespace gw::diagnosis

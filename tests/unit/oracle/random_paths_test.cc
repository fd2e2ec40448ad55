// SPDX-License-Identifier: MIT
//
// Random font paths and random patterns: the file that the diagnosis names is the one that the X server
// opens, as inotify sees it. $GLYPHWARD_SEED is the first set-up.
#include <gtest/gtest.h>

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/directory.h"
#include "core/text.h"
#include "diagnosis/answer.h"
#include "fontpath/xlib_server_view.h"
#include "support/compressed.h"
#include "support/temp_dir.h"
#include "unit/oracle/lab_fonts.h"

#include "support/session.h"

namespace gw::diagnosis {
namespace {

namespace fs = std::filesystem;

class Chance {
  public:
    explicit Chance(unsigned seed) : numbers_(seed) {}
    int below(int end) { return static_cast<int>(numbers_() % static_cast<unsigned>(end)); }
    bool one_in(int number) { return below(number) == 0; }
    template <class Item>
    const Item& any(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(below(static_cast<int>(items.size())))];
    }

  private:
    std::mt19937 numbers_;
};

/// Sees which files of some directories are opened.
class OpenedFiles {
  public:
    OpenedFiles() : watch_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

    void look_at(const std::string& directory) {
        directories_[::inotify_add_watch(watch_.get(), directory.c_str(), IN_OPEN)] = directory;
    }
    /// The font file that was opened last since the last call; "" for none.
    std::string last() {
        alignas(inotify_event) std::array<char, 65536> events = {};
        std::string file;
        for (ssize_t size = 0; (size = ::read(watch_.get(), events.data(), events.size())) > 0;) {
            for (const char* at = events.data(); at < events.data() + size;) {
                inotify_event event = {};
                std::memcpy(&event, at, sizeof event);
                const std::string name = event.len > 0 ? at + sizeof event : "";
                if (!name.empty() && !name.starts_with("fonts.")) file = directories_[event.wd] + name;
                at += sizeof event + event.len;
            }
        }
        return file;
    }

  private:
    Descriptor watch_;
    std::map<int, std::string> directories_;
};

// --- names -------------------------------------------------------------------

using Fields = std::vector<std::string>;
constexpr std::size_t FIELDS = 14;
constexpr std::size_t PIXELS = 6;
constexpr std::size_t POINTS = 7;
constexpr std::size_t WIDTH = 11;

Fields fields_of(const std::string& name) {
    Fields fields;
    for (std::size_t start = 1; start <= name.size();) {
        const std::size_t end = std::min(name.find('-', start), name.size());
        fields.push_back(name.substr(start, end - start));
        start = end + 1;
    }
    return fields;
}

std::string joined(const Fields& fields) {
    std::string name;
    for (const std::string& field : fields) name += '-' + field;
    return name;
}

std::string any_font(Chance& chance) {
    static const std::vector<std::string> families = {"one", "two"};
    static const std::vector<std::string> rests = {"75-75-c-60", "75-75-c-80", "100-100-c-80",
                                                   "100-100-p-71"};
    static const std::vector<int> points = {80, 100, 120, 140, 180};
    const std::string& rest = chance.any(rests);
    const int size = chance.any(points);
    const double inch = rest.starts_with("100") ? 100 : 75;
    return test::lab_name(chance.any(families), static_cast<int>(std::lround(size * inch / 722.7)), size,
                          rest);
}

void make_scalable(Fields& fields, Chance& chance) {
    fields[PIXELS] = fields[POINTS] = fields[WIDTH] = "0";
    if (chance.one_in(2)) fields[PIXELS + 2] = fields[PIXELS + 3] = "0";
}

/// Another size than the one that is there, or some of it left open.
void change_size(Fields& fields, Chance& chance) {
    static const std::vector<std::string> pixels = {"0", "8", "10", "11", "12", "17", "25", "40", "*"};
    static const std::vector<std::string> points = {"0", "80", "100", "115", "120", "180", "*"};
    static const std::vector<std::string> resolutions = {"75", "100", "0", "*", "90"};
    if (chance.one_in(2)) fields[PIXELS] = chance.any(pixels);
    if (chance.one_in(2)) fields[POINTS] = chance.any(points);
    if (chance.one_in(2)) {
        fields[PIXELS + 2] = chance.any(resolutions);
        fields[PIXELS + 3] = chance.one_in(4) ? chance.any(resolutions) : fields[PIXELS + 2];
    }
    if (chance.one_in(2)) fields[WIDTH] = chance.one_in(2) ? "*" : "0";
    if (chance.one_in(3)) fields[0] = "*";
}

std::string any_pattern(const std::vector<std::string>& names, Chance& chance) {
    const std::string& name = chance.any(names);
    Fields fields = fields_of(name);
    if (!name.starts_with('-') || fields.size() != FIELDS) return name;
    switch (chance.below(8)) {
        case 0:
            return name;
        case 1:
            return "*" + fields[1] + "*" + fields[2] + "*" + std::to_string(8 + 2 * chance.below(9)) + "*";
        case 2:
            return "-*-" + fields[1] + "-*-*-*" + (chance.one_in(2) ? "-*-120-*" : "-*");
        case 3:
        case 4:
            for (std::string& field : fields)
                if (chance.one_in(3)) field = "*";
            break;
        default:
            change_size(fields, chance);
    }
    return joined(fields);
}

// --- a set-up ----------------------------------------------------------------

/// Directories of fonts, of which some are damaged, and aliases.
class RandomPath {
  public:
    RandomPath(unsigned seed, const std::string& outline) : chance_(seed), outline_(outline) {
        const int count = 1 + chance_.below(4);
        for (int i = 0; i < count; ++i) make_directory("d" + std::to_string(i));
        if (chance_.one_in(3)) make_catalogue();
        if (chance_.one_in(3)) path_.emplace_back("built-ins");
        if (names_.empty()) names_.emplace_back("fixed");
    }

    [[nodiscard]] const std::vector<std::string>& path() const { return path_; }
    [[nodiscard]] const std::vector<std::string>& directories() const { return directories_; }
    [[nodiscard]] const std::string& description() const { return description_; }
    std::string pattern() { return any_pattern(names_, chance_); }

  private:
    void make_directory(const std::string& name) {
        directories_.push_back(root_.make_dir(name));
        std::string index;
        const int fonts = chance_.below(8);
        for (int i = 0; i < fonts; ++i) index += line(directories_.back(), i);
        const std::string aliases = chance_.one_in(2) ? some_aliases() : "";
        root_.write(name + "/fonts.dir", std::to_string(fonts) + '\n' + index);
        if (!aliases.empty()) root_.write(name + "/fonts.alias", aliases);
        path_.push_back(directories_.back() + (chance_.one_in(3) ? ":unscaled" : ""));
        description_.append(path_.back()).append("\n").append(index).append(aliases);
    }

    /// Links to the directories, in the place of one of them or before all.
    void make_catalogue() {
        static const std::vector<std::string> priorities = {"", "", ":pri=1", ":pri=2", ":pri=30"};
        const std::string catalogue = root_.make_dir("catalogue");
        for (std::size_t i = 0; i < directories_.size(); ++i) {
            if (chance_.one_in(4)) continue;
            const std::string link = catalogue + "link" + std::to_string(i) +
                                     (chance_.one_in(3) ? ":unscaled" : "") + chance_.any(priorities);
            fs::create_directory_symlink(directories_[i], link);
            description_.append(link).append("\n");
        }
        path_[static_cast<std::size_t>(chance_.below(static_cast<int>(path_.size())))] =
            "catalogue:" + catalogue;
        description_ += "the path:";
        for (const std::string& element : path_) description_.append(" ").append(element);
    }

    /// A line of an index, and its file.
    std::string line(const std::string& directory, int number) {
        const bool is_outline = chance_.one_in(5);
        const bool is_packed = chance_.one_in(3);
        std::string name = any_font(chance_);
        std::string bytes =
            is_outline ? test::TempDir::read_bytes(outline_) : test::lab_bdf(name, 10 + number);
        std::string file =
            std::to_string(number) + (is_outline ? ".pfb" : ".bdf") + (is_packed && !is_outline ? ".gz" : "");
        if (file.ends_with(".gz")) bytes = test::gzipped(bytes);
        Fields fields = fields_of(name);
        if (chance_.one_in(is_outline ? 2 : 12)) make_scalable(fields, chance_);
        name = chance_.one_in(14) ? "plain" + std::to_string(chance_.below(3)) : joined(fields);
        description_ += put(directory + file, bytes);
        names_.push_back(name);
        return file + ' ' + name + '\n';
    }

    /// What was done to the file, for people.
    std::string put(const std::string& file, std::string bytes) {
        const int fate = chance_.below(16);
        if (fate == 0) return file + " is missing\n";
        if (fate == 1) bytes = "this is no font";
        if (fate == 2) bytes.resize(bytes.size() / 2);
        if (fate == 3) bytes.clear();
        std::ofstream(file, std::ios::binary) << bytes;
        if (fate == 4) fs::permissions(file, fs::perms::none);
        return fate > 4 ? "" : file + " has damage " + std::to_string(fate) + '\n';
    }

    std::string some_aliases() {
        std::string text;
        for (int count = chance_.below(4); count > 0; --count) {
            const std::string alias = any_alias();
            const std::string target = any_target();
            if (alias == target) continue;
            text.append(1, '"').append(alias).append("\" \"").append(target).append("\"\n");
            names_.push_back(alias);
        }
        return text;
    }

    std::string any_alias() {
        Fields fields = fields_of(any_font(chance_));
        if (chance_.one_in(2)) return "alias" + std::to_string(chance_.below(4));
        if (chance_.one_in(3)) return joined(fields);
        fields[0] = "alias";
        if (chance_.one_in(2)) make_scalable(fields, chance_);
        return joined(fields);
    }

    std::string any_target() {
        Fields fields = fields_of(any_font(chance_));
        if (chance_.one_in(4)) return "alias" + std::to_string(chance_.below(4));
        if (chance_.one_in(3)) change_size(fields, chance_);
        if (chance_.one_in(3)) make_scalable(fields, chance_);
        return joined(fields);
    }

    Chance chance_;
    std::string outline_;
    test::TempDir root_;
    std::vector<std::string> path_;
    std::vector<std::string> directories_;
    std::vector<std::string> names_;
    std::string description_;
};

// --- the comparison ----------------------------------------------------------

struct Tally {
    int asked = 0;
    int right = 0;
    int checked = 0;
    int wrong = 0;
};

class RandomPathsTest : public testing::Test {
  protected:
    void ask(const std::string& pattern, OpenedFiles& files, Tally& tally) {
        SCOPED_TRACE(pattern);
        (void)files.last();
        const std::optional<OpenedFont> opened = server->open(pattern);
        const std::string file = files.last();
        Question question;
        question.name = pattern;
        const Answer found = answer(question, *server, Surroundings());
        ++tally.asked;
        EXPECT_EQ(found.works, opened.has_value()) << report(found);
        if (!opened || file.empty() || found.font.file.empty()) return;
        const bool is_right = fs::canonical(found.font.file) == fs::canonical(file);
        ++(is_right ? tally.right : tally.wrong);
        if (!found.font.is_checked) return;
        ++tally.checked;
        EXPECT_TRUE(is_right) << file << " was opened\n" << report(found);
    }

    test::Session session;
    std::unique_ptr<ServerView> server = connect_to_server();
};

std::string an_outline() {
    for (const auto& entry : fs::directory_iterator("/usr/vantor/lib/X11/fonts/Type1"))
        if (entry.path().extension() == ".pfb") return entry.path();
    return {};
}

TEST_F(RandomPathsTest, TheFileThatIsNamedIsTheOneThatIsOpened) {
    constexpr unsigned SETUPS = 40;
    constexpr int QUESTIONS = 12;
    const char* const seed = std::getenv("GLYPHWARD_SEED");
    const unsigned first = seed == nullptr ? 1 : static_cast<unsigned>(std::atoi(seed));
    const std::string outline = an_outline();
    ASSERT_TRUE(server);
    ASSERT_FALSE(outline.empty());
    Tally tally;
    for (unsigned number = first; number < first + SETUPS; ++number) {
        RandomPath fonts(number, outline);
        SCOPED_TRACE("GLYPHWARD_SEED=" + std::to_string(number) + '\n' + fonts.description());
        OpenedFiles files;
        for (const std::string& directory : fonts.directories()) files.look_at(directory);
        ASSERT_TRUE(server->set_font_path(fonts.path()));
        for (int i = 0; i < QUESTIONS; ++i) ask(fonts.pattern(), files, tally);
        ASSERT_TRUE(server->set_font_path({"built-ins"}));
    }
    std::cout << "set-ups from " << first << " on: " << tally.asked << " questions, " << tally.right
              << " files are right, " << tally.wrong << " wrong, " << tally.checked << " checked\n";
    constexpr int MOST_WRONG_IN_1000 = 3;
    EXPECT_LE(tally.wrong * 1000, MOST_WRONG_IN_1000 * tally.asked);
    EXPECT_GT(tally.right * 4, tally.asked);
    EXPECT_GT(tally.checked * 2, tally.right);
}

}  // namespace
}  // namespace gw::diagnosis

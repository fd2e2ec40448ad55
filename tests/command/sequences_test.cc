// SPDX-License-Identifier: MIT
//
// Random sequences of commands against a model of what they do: files, index, trash, font path and exit
// status. A sequence that fails is made shorter, and printed. GLYPHWARD_EVERY_CALL runs 3,000 of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <sstream>

#include "command/in_process.h"
#include "store/trash.h"
#include "support/changed_directory.h"

namespace {

using gw::test::Ended;
using gw::test::OwnMachine;
using gw::test::run_in_child;
using gw::test::small_font;
using Words = std::vector<std::string>;

constexpr int ALL_SEQUENCES = 3000;
constexpr int SOME_SEQUENCES = 90 / gw::test::CALL_STEP;
constexpr int LENGTH = 10;
constexpr const char* FAMILIES[] = {"Alpha", "Beta", "Gamma"};
constexpr const char* ELEMENTS[] = {"/one/", "/two/"};

/// What a person asks for. The words and what shall come of them follow from it.
struct Command {
    enum Kind { INSTALL, DELETE, DELETE_ALL, UNDO, EMPTY, ADD, REMOVE, MOVE, LIST };
    Kind kind = LIST;
    std::set<int> families;
    int variant = 0;
    std::string if_there;  // "--replace", "--keep" or ""
    int element = 0;
    bool is_dry = false;
};

std::string file_of(int family) {
    return std::string(FAMILIES[family]) + ".ttf";
}

Words words_of(const Command& command, const OwnMachine& machine) {
    Words words;
    const auto add_files = [&](const std::string& dir) {
        for (const int family : command.families) words.push_back(dir + file_of(family));
    };
    switch (command.kind) {
        case Command::INSTALL:
            words = {"install", "--to", machine.to()};
            if (!command.if_there.empty()) words.push_back(command.if_there);
            add_files(machine.source().path() + std::to_string(command.variant) + '/');
            break;
        case Command::DELETE:
            words = {"delete", "--yes"};
            add_files("");
            break;
        case Command::DELETE_ALL:
            words = {"delete", "--yes", "*.ttf"};
            break;
        case Command::UNDO:
            return {"undo"};
        case Command::EMPTY:
            words = {"trash", "--empty"};
            break;
        case Command::ADD:
            words = {"path", "add", "--of", OwnMachine::whose(), ELEMENTS[command.element]};
            break;
        case Command::REMOVE:
            words = {"path", "remove", "--of", OwnMachine::whose(), ELEMENTS[command.element]};
            break;
        case Command::MOVE:
            words = {"path", "move", "--of", OwnMachine::whose(), ELEMENTS[command.element], "1"};
            break;
        default:
            words = {"list"};
            add_files("");
            return words;
    }
    if (command.is_dry) words.emplace_back("--dry-run");
    return words;
}

/// What the disk has and the commands answer, by rules of its own.
class Model {
  public:
    explicit Model(const OwnMachine& machine) : path{machine.to()} {}

    /// Carries the command out; returns the exit status.
    int run(const Command& command) {
        if (!command.is_dry) return carry_out(command);
        Model other = *this;
        return other.carry_out(command);
    }

    std::map<int, int> fonts;  // the variant of each family that is there
    std::vector<std::string> path;
    [[nodiscard]] std::size_t entries() const { return trash_.size(); }

  private:
    /// What one action has taken out.
    struct Entry {
        std::map<int, int> taken;  // families and variants
        std::map<int, int> came;   // in their places
    };

    int carry_out(const Command& command) {
        switch (command.kind) {
            case Command::INSTALL:
                return install(command);
            case Command::DELETE:
                return remove(command.families);
            case Command::DELETE_ALL:
                return fonts.empty() ? 1 : remove({0, 1, 2}) * 0;
            case Command::UNDO:
                return undo();
            case Command::EMPTY: {
                const bool had_some = !trash_.empty();
                trash_.clear();
                return had_some ? 0 : 3;
            }
            case Command::LIST:
                return std::all_of(command.families.begin(), command.families.end(),
                                   [&](int family) { return fonts.contains(family); })
                           ? 0
                           : 1;
            default:
                return edit_path(command);
        }
    }

    int install(const Command& command) {
        bool is_done = false;
        bool has_failed = false;
        Entry entry;
        for (const int family : command.families) {
            const auto there = fonts.find(family);
            if (there == fonts.end()) {
                fonts[family] = command.variant;
                is_done = true;
            } else if (there->second == command.variant || command.if_there == "--keep") {
                continue;
            } else if (command.if_there == "--replace") {
                entry.taken[family] = there->second;
                entry.came[family] = there->second = command.variant;
                is_done = true;
            } else {
                has_failed = true;
            }
        }
        if (!entry.taken.empty()) trash_.push_back(entry);
        if (has_failed) return 1;
        return is_done ? 0 : 3;
    }

    int remove(const std::set<int>& families) {
        Entry entry;
        bool is_missing = false;
        for (const int family : families) {
            const auto there = fonts.find(family);
            is_missing = is_missing || there == fonts.end();
            if (there == fonts.end()) continue;
            entry.taken.insert(*there);
            fonts.erase(there);
        }
        if (!entry.taken.empty()) trash_.push_back(entry);
        return is_missing ? 1 : 0;
    }

    /// What came in the place of a font goes, and is kept in its turn; anything else is in the way.
    int undo() {
        if (trash_.empty()) return 1;
        const Entry entry = trash_.back();
        Entry swapped;
        for (const auto& [family, variant] : entry.taken) {
            const auto there = fonts.find(family);
            if (there == fonts.end()) continue;
            const auto came = entry.came.find(family);
            if (came == entry.came.end() || came->second != there->second) return 1;
            swapped.taken.insert(*there);
            swapped.came[family] = variant;
        }
        trash_.pop_back();
        for (const auto& [family, variant] : entry.taken) fonts[family] = variant;
        if (!swapped.taken.empty()) trash_.push_back(swapped);
        return 0;
    }

    int edit_path(const Command& command) {
        const std::string element = ELEMENTS[command.element];
        const auto there = std::find(path.begin(), path.end(), element);
        const bool is_there = there != path.end();
        if (command.kind == Command::ADD) {
            if (!is_there) path.push_back(element);
            return is_there ? 3 : 0;
        }
        if (command.kind == Command::REMOVE) {
            if (is_there) path.erase(there);
            return is_there ? 0 : 3;
        }
        if (!is_there) return 1;
        if (there == path.begin()) return 3;
        std::rotate(path.begin(), there, there + 1);
        return 0;
    }

    std::vector<Entry> trash_;
};

/// The files that an index lists; none when its count is wrong.
std::optional<std::set<std::string>> files_in_index(const std::string& text) {
    std::istringstream stream(text);
    std::size_t count = 0;
    std::size_t lines = 0;
    std::set<std::string> files;
    std::string line;
    if (std::getline(stream, line)) count = std::stoul(line);
    for (; std::getline(stream, line); ++lines) files.insert(line.substr(0, line.find(' ')));
    return lines == count ? std::optional(files) : std::nullopt;
}

/// What is not as the model says; "" when all is.
std::string difference(const OwnMachine& machine, const Model& model) {
    std::map<std::string, std::string> wanted;
    std::set<std::string> names;
    for (const auto& [family, variant] : model.fonts) {
        wanted[file_of(family)] = small_font(FAMILIES[family], static_cast<unsigned>(variant));
        names.insert(file_of(family));
    }
    gw::test::Files there = gw::test::significant(gw::test::files_in(machine.to()));
    for (const char* index : {"fonts.dir", "fonts.scale"}) {
        const auto files = files_in_index(there[index]);
        if (!files) return std::string(index) + " has a wrong count";
        if (*files != names) return std::string(index) + " has " + testing::PrintToString(*files);
        there.erase(index);
    }
    std::erase_if(there, [](const auto& file) { return file.first == "fonts.alias"; });
    if (there != wanted) {
        std::string all;
        for (const auto& [name, bytes] : there) all += name + ' ' + std::to_string(bytes.size()) + ' ';
        return "the directory has " + all;
    }
    const auto entries = gw::look_into_trash(machine.to());
    const std::size_t count = entries ? entries->size() : 0;
    if (count != model.entries())
        return "the trash has " + std::to_string(count) + " and not " + std::to_string(model.entries());
    return "";
}

std::string difference_of_path(const Model& model) {
    const Ended path = run_in_child({"path", "show", "--of", OwnMachine::whose()});
    std::string all;
    for (const std::string& element : model.path) all += element + '\n';
    return path.out == all ? "" : "the path is\n" + path.out;
}

Command random_command(std::mt19937& random) {
    const auto up_to = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    Command command;
    // Most are about fonts, and many take back what was before.
    static const std::vector<Command::Kind> KINDS = {
        Command::INSTALL, Command::INSTALL, Command::INSTALL, Command::INSTALL, Command::DELETE,
        Command::DELETE,  Command::UNDO,    Command::UNDO,    Command::UNDO,    Command::DELETE_ALL,
        Command::EMPTY,   Command::ADD,     Command::REMOVE,  Command::MOVE,    Command::LIST};
    command.kind = KINDS[static_cast<std::size_t>(up_to(static_cast<int>(KINDS.size()) - 1))];
    command.families = {up_to(2)};
    if (up_to(2) == 0) command.families.insert(up_to(2));
    command.variant = up_to(1);
    command.if_there =
        std::vector<std::string>{"", "--replace", "--keep"}[static_cast<std::size_t>(up_to(2))];
    command.element = up_to(1);
    command.is_dry = up_to(5) == 0 && command.kind != Command::UNDO && command.kind != Command::LIST;
    return command;
}

std::string shown(const std::vector<Command>& commands, const OwnMachine& machine) {
    std::string all;
    for (const Command& command : commands) {
        for (const std::string& word : words_of(command, machine)) all += word + ' ';
        all += '\n';
    }
    return all;
}

/// What goes otherwise than the model says, after which of the commands; "" when nothing does.
std::string complaint_about(const std::vector<Command>& commands) {
    OwnMachine machine;
    for (int variant = 0; variant < 2; ++variant) {
        for (const char* family : FAMILIES)
            (void)machine.source().write(std::to_string(variant) + '/' + family + ".ttf",
                                         small_font(family, static_cast<unsigned>(variant)));
    }
    Model model(machine);
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const int wanted = model.run(commands[i]);
        const Ended ended = run_in_child(words_of(commands[i], machine));
        std::string what = difference(machine, model);
        if (ended.status != wanted) {
            what = "status " + std::to_string(ended.status) + " and not " + std::to_string(wanted) + '\n' +
                   ended.out + ended.err + what;
        }
        if (!what.empty()) return "command " + std::to_string(i + 1) + ": " + what;
    }
    return difference_of_path(model);
}

/// The commands without those that do not matter for the complaint.
std::vector<Command> shortened(std::vector<Command> commands) {
    for (std::size_t i = commands.size(); i-- > 0;) {
        std::vector<Command> fewer = commands;
        fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
        if (!complaint_about(fewer).empty()) commands = fewer;
    }
    return commands;
}

TEST(CommandSequences, DoWhatTheModelSays) {
    const int count = std::getenv("GLYPHWARD_EVERY_CALL") != nullptr ? ALL_SEQUENCES : SOME_SEQUENCES;
    for (int seed = 1; seed <= count; ++seed) {
        std::mt19937 random(static_cast<unsigned>(seed));
        std::vector<Command> commands;
        for (int i = 0; i < LENGTH; ++i) commands.push_back(random_command(random));
        if (complaint_about(commands).empty()) continue;
        const std::vector<Command> fewer = shortened(commands);
        const OwnMachine machine;
        FAIL() << "sequence " << seed << ":\n" << shown(fewer, machine) << complaint_about(fewer);
    }
}

}  // namespace

// SPDX-License-Identifier: MIT
//
// Records of the trash that a broken disk, or somebody, has changed: nothing else of the directory is
// touched, and no line without a file comes into the index.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "store/directory_change.h"
#include "store/trash.h"
#include "support/temp_dir.h"
#include "support/trash_on.h"
#include "support/under_policy.h"

namespace {

namespace fs = std::filesystem;
using gw::DirectoryChange;
using gw::test::TempDir;
using testing::HasSubstr;
using testing::Not;

class TrashRecords : public testing::Test {
  protected:
    TrashRecords() {
        for (const char* name : {"a.pcf", "b.pcf", "k.pcf"}) dir.write(name, name);
        dir.write("fonts.dir", INDEX);
        dir.write("outside.pcf", "outside");
        EXPECT_TRUE(gw::in_change(dir.path(), [](DirectoryChange& change) {
            for (const char* name : {"a.pcf", "b.pcf"}) {
                change.strike_out(name, 99);
                (void)change.take_out(name, false);
            }
            return gw::done();
        }));
        for (const auto& found : fs::directory_iterator(dir.file(".glyphward/trash"))) entry = found.path();
        fs::copy(entry, saved.file("entry"), fs::copy_options::recursive);
        record = read(entry / "manifest");
        EXPECT_THAT(record, HasSubstr("a.pcf -a\n"));
    }
    static std::string read(const fs::path& path) {
        std::ifstream in(path);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    /// Brings back what the trash offers when it has this record.
    void bring_back_with(const std::string& text) const {
        fs::remove_all(entry);
        fs::create_directories(entry.parent_path());
        fs::copy(saved.file("entry"), entry, fs::copy_options::recursive);
        std::ofstream(entry / "manifest") << text;
        const auto found = gw::trash_entries(dir.path());
        if (!found) return;
        for (const gw::TrashEntry& offered : *found) (void)gw::bring_back(offered.dir, offered.id);
    }
    void expect_no_harm(const std::string& text) const {
        EXPECT_EQ(dir.read("k.pcf"), "k.pcf") << text;
        EXPECT_EQ(dir.read("outside.pcf"), "outside") << text;
        std::istringstream index(dir.read("fonts.dir"));
        std::string line;
        std::getline(index, line);
        while (std::getline(index, line)) {
            const std::string file = line.substr(0, line.find(' '));
            EXPECT_TRUE(file.size() < 256 && dir.exists(file)) << line << '\n' << text;
        }
        EXPECT_THAT(dir.read("fonts.dir"), HasSubstr("k.pcf -k\n")) << text;
    }
    /// As it was before something came back.
    void start_again() const {
        for (const char* name : {"a.pcf", "b.pcf"}) fs::remove(dir.file(name));
        dir.write("fonts.dir", "1\nk.pcf -k\n");
    }
    [[nodiscard]] std::string with(const std::string& name) const {
        std::string text = record;
        for (std::size_t at = 0; (at = text.find("a.pcf", at)) != std::string::npos; at += name.size())
            text.replace(at, 5, name);
        return text;
    }

    static constexpr const char* INDEX = "3\na.pcf -a\nb.pcf -b\nk.pcf -k\n";
    const gw::test::UnderPolicy policy{true};
    const gw::test::TrashOn on;
    TempDir dir;
    TempDir saved;
    fs::path entry;
    std::string record;
};

TEST_F(TrashRecords, ThatAreWholeBringBothBack) {
    start_again();
    bring_back_with(record);
    expect_no_harm(record);
    EXPECT_TRUE(dir.exists("a.pcf"));
    EXPECT_TRUE(dir.exists("b.pcf"));
}

TEST_F(TrashRecords, ThatNameOtherFilesTouchNoneOfThem) {
    for (const char* name :
         {"../k.pcf", "k.pcf", "fonts.dir", ".glyphward", "afm/../k.pcf", "/etc/passwd", ".", ""}) {
        start_again();
        bring_back_with(with(name));
        expect_no_harm(name);
    }
}

TEST_F(TrashRecords, WithALineOfAnotherFileBringNoLineWithoutAFile) {
    start_again();
    std::string text = record;
    text.replace(text.find("line a.pcf"), 10, "line c.pcf");
    bring_back_with(text);
    expect_no_harm(text);
    EXPECT_THAT(dir.read("fonts.dir"), Not(HasSubstr("c.pcf")));
}

TEST_F(TrashRecords, ThatAreChangedAtRandomDoNoHarm) {
    std::minstd_rand random(7);
    const auto below = [&random](std::size_t end) { return random() % end; };
    for (int round = 0; round < 400; ++round) {
        std::string text = record;
        for (int change = round % 5; change >= 0 && !text.empty(); --change) {
            const std::size_t at = below(text.size());
            const char byte = static_cast<char>(below(256));
            if (change % 3 == 0) text[at] = byte;
            if (change % 3 == 1) text.erase(at, below(20));
            if (change % 3 == 2)
                text.insert(at, text.substr(below(text.size()), 40) + std::string(below(300), byte));
        }
        start_again();
        bring_back_with(text);
        expect_no_harm(text);
    }
}

}  // namespace

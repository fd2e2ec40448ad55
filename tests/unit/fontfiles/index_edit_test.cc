// SPDX-License-Identifier: MIT
#include "fontfiles/index_edit.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "fontfiles/index_text.h"

namespace {

using gw::IndexEdit;

const std::vector<std::string> TEXTS = {
    "",
    "0\n",
    "2\na.pcf -a\nb.pcf -b\n",
    "2\na.pcf -a\nb.pcf -b",
    "2",
    "\n",
    "a.pcf -a\nb.pcf -b\n",
    "a.pcf -a",
    "99999999999\na.pcf -a\n",
    "2147483647\na.pcf -a\nb.pcf -b\n",
    "nonsense\na.pcf -a\n",
    "3\na.pcf -a\n\n  a.pcf -a2\na.pcf -a\n",
    "1\na.pcf " + std::string(130, 'x') + " b.pcf -b\n",
    "1\na.pcf " + std::string(112, 'x') + "b.pcf -b\nc.pcf -c\n",
    "2\na.pcf -a\r\nb.pcf -b\r\n",
};

/// The same edits, each made to the whole text.
class PlainEdits {
  public:
    explicit PlainEdits(std::string text) : texts_({std::move(text)}) {}
    void enter(const std::string& line) { texts_.push_back(gw::with_entries(texts_.back(), line, 1)); }
    int strike_out(const std::string& file, int most) {
        std::string text = texts_.back();
        const auto struck = static_cast<int>(gw::strike_out(text, file, most).size());
        texts_.push_back(text);
        return struck;
    }
    void take_back() { texts_.pop_back(); }
    [[nodiscard]] const std::string& text() const { return texts_.back(); }
    [[nodiscard]] std::vector<std::string> font_names(const std::string& file) const {
        std::vector<std::string> names;
        for (const gw::IndexEntry& entry : gw::index_entries(text())) {
            if (entry.file_name == file) names.push_back(entry.font_name);
        }
        return names;
    }

  private:
    std::vector<std::string> texts_;
};

TEST(IndexEdit, IsTheSameAsEditingTheText) {
    std::mt19937 random(20261122);
    const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
    const std::vector<std::string> files = {"a.pcf", "b.pcf", "c.pcf", "none.pcf", ""};
    for (int round = 0; round < 2000; ++round) {
        const std::string& before = TEXTS[static_cast<std::size_t>(round) % TEXTS.size()];
        IndexEdit edit(before);
        PlainEdits plain(before);
        std::vector<std::size_t> marks;
        for (int step = 0; step < 12; ++step) {
            const std::string& file = files[static_cast<std::size_t>(below(4))];
            const int what = below(3);
            if (what == 2 && !marks.empty()) {
                edit.take_back_to(marks.back());
                marks.pop_back();
                plain.take_back();
            } else {
                marks.push_back(edit.edits());
                if (what == 0) {
                    const std::string line = file + " -new" + std::to_string(below(3)) + '\n';
                    edit.enter(line);
                    plain.enter(line);
                } else {
                    const int most = 1 + below(3);
                    EXPECT_EQ(edit.strike_out(file, most), plain.strike_out(file, most)) << before;
                }
            }
            ASSERT_EQ(edit.text(), plain.text()) << before;
            for (const std::string& name : files) {
                if (name.empty()) continue;
                ASSERT_EQ(edit.font_names(name), plain.font_names(name)) << plain.text();
            }
        }
        EXPECT_EQ(edit.before(), before);
    }
}

TEST(IndexEdit, KnowsWhatHasChanged) {
    IndexEdit edit("3\na.pcf -a\nb.pcf -b\nb.pcf -b\n");
    edit.enter("c.pcf -c\n");
    EXPECT_EQ(edit.strike_out("b.pcf", 2), 2);
    edit.strike_out("a.pcf", 1);
    edit.enter("a.pcf -a\n");
    EXPECT_EQ(edit.differences(),
              (gw::LineNumbers{{"a.pcf -a\n", 0}, {"b.pcf -b\n", -2}, {"c.pcf -c\n", 1}}));
}

// Thousands of lines took seconds.
TEST(IndexText, SetsManyLinesRightAtOnce) {
    EXPECT_EQ(gw::with_occurrences("3\na -1\nb -1\na -1\n", {{"a -1\n", 1}, {"b -1\n", 0}, {"c -1\n", 2}}),
              "3\na -1\nc -1\nc -1\n");
    EXPECT_EQ(gw::with_occurrences("a -1\nb -1", {{"a -1\n", 0}}), "1\nb -1");
    EXPECT_EQ(gw::with_occurrences("a -1\nb -1", {{"a -1\n", 1}, {"c -1\n", 0}}), "a -1\nb -1");
    EXPECT_EQ(gw::with_occurrences("", {{"a -1\n", 1}}), "1\na -1\n");
    EXPECT_EQ(gw::occurrences("a -1\nb -1\na -1", {{"a -1\n", 7}, {"c -1\n", 7}}),
              (gw::LineNumbers{{"a -1\n", 2}, {"c -1\n", 0}}));
}

}  // namespace

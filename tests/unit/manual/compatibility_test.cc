// SPDX-License-Identifier: MIT
//
// docs/COMPATIBILITY.md and the code agree: each comment "Kept: TITLE." in src has an entry of that title
// which names its file, and each entry has such comments, existing functions and existing tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path TREE = GLYPHWARD_TREE;

std::string text_of(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

/// The files below the directory with these extensions, as paths relative to the tree.
std::vector<std::string> files_below(const char* directory, const std::set<std::string>& extensions) {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(TREE / directory)) {
        if (entry.is_regular_file() && extensions.contains(entry.path().extension()))
            files.push_back(fs::relative(entry.path(), TREE));
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// The comments of a source, each with its lines joined by blanks.
std::vector<std::string> comments_of(const std::string& source) {
    static const std::regex MARK("(^|\\s)///?<?\\s?");
    std::vector<std::string> comments;
    bool goes_on = false;
    std::istringstream lines(source);
    for (std::string line; std::getline(lines, line);) {
        std::smatch mark;
        const bool is_comment = std::regex_search(line, mark, MARK);
        const bool is_whole_line = is_comment && line.find_first_not_of(' ') == line.find("//");
        if (is_comment && !(goes_on && is_whole_line)) comments.emplace_back();
        if (is_comment) comments.back() += ' ' + mark.suffix().str();
        goes_on = is_whole_line;
    }
    return comments;
}

/// The first letter of a title is upper case in the document and may be lower case in a comment.
std::string as_title(std::string text) {
    if (!text.empty()) text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

using Place = std::pair<std::string, std::string>;  // title and file

std::multiset<Place> kept_in_code() {
    static const std::regex TAG("Kept: ([^.]*)\\.");
    std::multiset<Place> places;
    for (const std::string& file : files_below("src", {".cc", ".h", ".def"})) {
        for (const std::string& comment : comments_of(text_of(TREE / file))) {
            for (std::sregex_iterator tag(comment.begin(), comment.end(), TAG), end; tag != end; ++tag)
                places.insert({as_title((*tag)[1]), file});
        }
    }
    return places;
}

struct Entry {
    std::string title;
    std::vector<std::pair<std::string, std::string>> code;  // file and function
    std::vector<std::string> tests;
    std::string changed_by;
};

/// The texts between backquotes.
std::vector<std::string> quoted(const std::string& line) {
    static const std::regex QUOTED("`([^`]*)`");
    std::vector<std::string> texts;
    for (std::sregex_iterator found(line.begin(), line.end(), QUOTED), end; found != end; ++found)
        texts.push_back((*found)[1]);
    return texts;
}

/// The document's list items with their lines joined.
std::vector<std::string> items_of(const std::string& document) {
    std::vector<std::string> items;
    std::istringstream lines(document);
    bool in_item = false;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start == std::string::npos || line[0] == '#') {
            in_item = false;
        } else if (line.compare(start, 2, "- ") == 0) {
            items.push_back(line.substr(start));
            in_item = true;
        } else if (in_item) {
            items.back() += ' ' + line.substr(start);
        }
    }
    return items;
}

std::vector<Entry> entries() {
    static const std::regex TITLE("^- \\*\\*(.*)\\.\\*\\* ");
    std::vector<Entry> all;
    for (const std::string& item : items_of(text_of(TREE / "docs/COMPATIBILITY.md"))) {
        std::smatch title;
        if (std::regex_search(item, title, TITLE)) {
            all.push_back({title[1], {}, {}, ""});
        } else if (all.empty()) {
            ADD_FAILURE() << "no title before: " << item;
        } else if (item.starts_with("- Code: ")) {
            const std::vector<std::string> names = quoted(item);
            for (std::size_t i = 0; i + 1 < names.size(); i += 2)
                all.back().code.emplace_back(names[i], names[i + 1]);
        } else if (item.starts_with("- Test: ")) {
            all.back().tests = quoted(item);
        } else if (item.starts_with("- Changed by: ")) {
            all.back().changed_by = item.substr(std::string("- Changed by: ").size());
        } else {
            ADD_FAILURE() << "neither code nor test: " << item;
        }
    }
    return all;
}

std::set<std::string> tests_of_the_tree() {
    static const std::regex TEST_LINE("TEST(?:_F|_P)?\\((\\w+),\\s*(\\w+)\\)");
    std::set<std::string> tests;
    for (const std::string& file : files_below("tests", {".cc"})) {
        const std::string text = text_of(TREE / file);
        for (std::sregex_iterator found(text.begin(), text.end(), TEST_LINE), end; found != end; ++found)
            tests.insert((*found)[1].str() + '.' + (*found)[2].str());
    }
    return tests;
}

TEST(Compatibility, TheDocumentNamesEveryPlaceInTheCodeAndNoOther) {
    const std::multiset<Place> in_code = kept_in_code();
    std::multiset<Place> in_document;
    for (const Entry& entry : entries()) {
        for (const auto& [file, function] : entry.code) in_document.insert({entry.title, file});
    }
    ASSERT_GT(in_code.size(), 50U);
    for (const Place& place : in_code)
        EXPECT_TRUE(in_document.contains(place)) << place.second << " has \"Kept: " << place.first
                                                 << ".\", which docs/COMPATIBILITY.md does not name there";
    for (const Place& place : in_document)
        EXPECT_TRUE(in_code.contains(place)) << "docs/COMPATIBILITY.md names " << place.second << " for \""
                                             << place.first << "\", but there is no such \"Kept:\"";
    EXPECT_EQ(in_code.size(), in_document.size()) << "a place stands twice";
}

TEST(Compatibility, EveryEntryIsComplete) {
    const std::vector<Entry> all = entries();
    std::set<std::string> titles;
    for (const Entry& entry : all) {
        EXPECT_TRUE(titles.insert(entry.title).second) << entry.title << " stands twice";
        EXPECT_FALSE(entry.code.empty()) << entry.title;
        EXPECT_FALSE(entry.tests.empty()) << entry.title;
        EXPECT_THAT((std::set<std::string>{"nothing", "`gw_modern_fonts`", "`gw_modern_windows`"}),
                    testing::Contains(entry.changed_by))
            << entry.title;
    }
}

TEST(Compatibility, EveryFunctionExists) {
    for (const Entry& entry : entries()) {
        for (const auto& [file, function] : entry.code) {
            const std::string name = function.substr(function.rfind(':') + 1);
            EXPECT_TRUE(std::regex_search(text_of(TREE / file), std::regex("\\b" + name + "\\b")))
                << entry.title << ": " << file << " has no " << name;
        }
    }
}

TEST(Compatibility, EveryTestExists) {
    const std::set<std::string> tests = tests_of_the_tree();
    ASSERT_GT(tests.size(), 500U);
    for (const Entry& entry : entries()) {
        for (const std::string& test : entry.tests)
            EXPECT_TRUE(tests.contains(test)) << entry.title << ": " << test;
    }
}

}  // namespace

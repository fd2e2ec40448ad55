// SPDX-License-Identifier: MIT
//
// How many system calls a font costs. What six operations cost for 40 fonts more, divided by these, is the
// same on every machine and in every run, so the bounds are exact: fewer calls are as much a reason to look
// here as more are. Calls for memory, for time and for waiting are not counted, and those that read a
// directory come in blocks. Child processes are not looked at. The directories are two steps below the root,
// because each step of a path may cost a call.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;
using Calls = std::map<std::string, int>;

constexpr int FEW = 30;
constexpr int MANY = 70;

const std::string HEADER =
    "%!PS-AdobeFont-1.0: Counted\n/FontInfo 9 dict dup begin\n/Notice (Copyright URW) readonly def\n"
    "/FamilyName (Counted) readonly def\n/Weight (Medium) readonly def\n/ItalicAngle 0 def\n"
    "/isFixedPitch false def\nend readonly def\n/Encoding StandardEncoding def\ncurrentfile eexec\n";

std::string name_of_outline(int i) {
    return "-urw-counted" + std::to_string(i) + "-medium-r-normal--0-0-0-0-p-0-iso8859-1";
}

std::string name_of_bitmap(int i) {
    return "-urw-counted-medium-r-normal--12-" + std::to_string(10 + i) + "-75-75-m-70-iso8859-1";
}

/// A directory of Type 1 fonts with their metrics.
void write_outlines(const TempDir& dir, int count, bool with_index) {
    std::string index = std::to_string(count) + '\n';
    for (int i = 0; i < count; ++i) {
        const std::string stem = "font" + std::to_string(i);
        std::string header = HEADER;
        header.replace(header.find("(Counted)"), 9, "(Counted" + std::to_string(i) + ")");
        dir.write(stem + ".pfa", header);
        dir.write(stem + ".afm", "StartFontMetrics\n");
        index += stem + ".pfa " + name_of_outline(i) + '\n';
    }
    if (with_index) dir.write("fonts.dir", index);
}

void write_bitmaps(const TempDir& dir, int count) {
    std::string index = std::to_string(count) + '\n';
    for (int i = 0; i < count; ++i) {
        const std::string file = "font" + std::to_string(i) + ".pcf";
        dir.write(file, "bitmaps");
        index += file + ' ' + name_of_bitmap(i) + '\n';
    }
    dir.write("fonts.dir", index);
}

/// The lines "CALL NUMBER" of strace's summary.
Calls summary(const std::string& text) {
    static const std::set<std::string> NOT_COUNTED = {
        "brk",       "mmap",   "munmap", "mremap", "madvise", "clock_gettime", "poll", "wait4", "getdents64",
        "utimensat",  // where two indexes are of the same second
        "total",     "syscall"};
    Calls calls;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        int number = 0;
        if (words >> name >> number && !NOT_COUNTED.contains(name)) calls[name] = number;
    }
    return calls;
}

Calls calls_of(const std::string& arguments) {
    const TempDir out;
    const std::string command = "strace -c -U name,calls -o " + out.file("summary") + ' ' +
                                FONT_OPERATIONS_PROGRAM + ' ' + arguments + " >" + out.file("said") + " 2>&1";
    const int status = std::system(command.c_str());  // NOLINT(cert-env33-c)
    EXPECT_EQ(status, 0) << command << '\n' << out.read("said") << out.read("summary");
    return summary(out.read("summary"));
}

/// What 40 fonts cost, for each call in hundredths of a call for each font.
Calls hundredths_for_a_font(const Calls& few, const Calls& many) {
    Calls all = many;
    for (const auto& [name, number] : few) all.try_emplace(name, 0);
    Calls each;
    for (const auto& [name, number] : all) {
        const auto before = few.find(name);
        const int more = number - (before != few.end() ? before->second : 0);
        if (more != 0) each[name] = more * 100 / (MANY - FEW);
    }
    return each;
}

class CallsForAFont : public testing::Test {
  protected:
    void SetUp() override {
#ifdef GLYPHWARD_SANITIZE
        GTEST_SKIP() << "a program with a sanitizer does not end well while it is traced";
#endif
    }
};

Calls for_list(void (*fill)(const TempDir&, int), const std::string& operation) {
    const TempDir few;
    const TempDir many;
    fill(few, FEW);
    fill(many, MANY);
    return hundredths_for_a_font(calls_of(operation + ' ' + few.path()),
                                 calls_of(operation + ' ' + many.path()));
}

Calls for_installation(void (*fill)(const TempDir&, int)) {
    const TempDir few;
    const TempDir many;
    const TempDir targets;
    fill(few, FEW);
    fill(many, MANY);
    return hundredths_for_a_font(calls_of("install " + few.path() + ' ' + targets.make_dir("few")),
                                 calls_of("install " + many.path() + ' ' + targets.make_dir("many")));
}

void indexed_outlines(const TempDir& dir, int count) {
    write_outlines(dir, count, true);
}

void outlines_without_index(const TempDir& dir, int count) {
    write_outlines(dir, count, false);
}

TEST_F(CallsForAFont, OfAnIndexOfBitmaps) {
    EXPECT_EQ(for_list(write_bitmaps, "list"), (Calls{{"statx", 100}}));
}

TEST_F(CallsForAFont, OfAnIndexOfOutlines) {
    EXPECT_EQ(for_list(indexed_outlines, "list"), (Calls{{"statx", 200}}));
}

TEST_F(CallsForAFont, OfASourceOfOutlines) {
    EXPECT_EQ(for_list(outlines_without_index, "source"),
              (Calls{{"close", 100}, {"openat", 100}, {"read", 100}, {"statx", 200}}));
}

TEST_F(CallsForAFont, OfASourceOfBitmaps) {
    EXPECT_EQ(for_list(write_bitmaps, "source"), (Calls{{"statx", 100}}));
}

// The files of 32 fonts are written to the disk together, and none by itself.
TEST_F(CallsForAFont, ThatIsInstalled) {
    EXPECT_EQ(for_installation(outlines_without_index), (Calls{{"close", 1600},
                                                               {"faccessat2", 100},
                                                               {"fchmod", 200},
                                                               {"fcntl", 200},
                                                               {"linkat", 200},
                                                               {"lseek", 400},
                                                               {"newfstatat", 3700},
                                                               {"openat", 1600},
                                                               {"read", 500},
                                                               {"statx", 200},
                                                               {"syncfs", 5},
                                                               {"unlinkat", 400},
                                                               {"write", 400}}));
}

TEST_F(CallsForAFont, OfWhichEverySecondIsDeleted) {
    EXPECT_EQ(for_list(indexed_outlines, "delete"), (Calls{{"close", 400},
                                                           {"faccessat2", 200},
                                                           {"geteuid", 100},
                                                           {"newfstatat", 650},
                                                           {"openat", 400},
                                                           {"renameat", 100},
                                                           {"statx", 200},
                                                           {"unlinkat", 100}}));
}

}  // namespace

// SPDX-License-Identifier: MIT
#include "fontfiles/gw_fontset_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/directory.h"
#include "model/gw_font.h"
#include "platform/host_paths.h"
#include "support/heard_failures.h"
#include "support/small_disk.h"
#include "support/temp_dir.h"

namespace {

using namespace std::string_literals;
using gw::test::SmallDisk;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;

constexpr const char* LATIN1 = "-sony-fixed-medium-r-normal--16-120-100-100-c-80-iso8859-1";
constexpr const char* KANJI = "-jis-fixed-medium-r-normal--16-150-75-75-c-160-jisx0208.1983-0";
constexpr const char* OTHER_KANJI = "-jis-fixed-medium-r-normal--24-230-75-75-c-240-jisx0208.1983-0";
constexpr mode_t PERMISSION_BITS = 07777;

struct Definition {
    std::string name;
    std::vector<std::string> fonts;
    bool operator==(const Definition&) const = default;
};

void PrintTo(const Definition& definition, std::ostream* out) {
    *out << definition.name << " of " << testing::PrintToString(definition.fonts);
}

std::string text_of(const Definition& definition) {
    std::string text = definition.name + ":definition";
    for (const std::string& font : definition.fonts) text += ",\\\n\t" + font;
    return text + "\n";
}

std::vector<Definition> read_from(const GW_FONTSET_FILE& file) {
    std::vector<Definition> found;
    for (const GWFontSet* fontset : file.get_fontsets()) {
        Definition& definition = found.emplace_back(Definition{fontset->get_name(), {}});
        for (GWFont* font : fontset->get_fonts()) definition.fonts.emplace_back(font->get_xlfd_name());
    }
    return found;
}

/// For `append_fontset`, which becomes its owner.
GWFontSet* made(const Definition& definition) {
    auto fontset = std::make_unique<GWFontSet>(definition.name.c_str());
    for (const std::string& font : definition.fonts) fontset->append_base_font(font.c_str());
    return fontset.release();
}

std::string working_copy() {
    return TempDir::read_bytes(gw::SCRATCH_FONTSETS);
}

bool has_working_copy() {
    return std::filesystem::exists(std::filesystem::symlink_status(gw::SCRATCH_FONTSETS));
}

class FontsetFile : public testing::Test {
  protected:
    FontsetFile() { std::filesystem::remove_all(gw::SCRATCH_FONTSETS); }
    ~FontsetFile() override { std::filesystem::remove_all(gw::SCRATCH_FONTSETS); }

    std::unique_ptr<GW_FONTSET_FILE> opened() const {
        return std::make_unique<GW_FONTSET_FILE>(dir.c_str(), "Vantor.fs", 0);
    }
    std::unique_ptr<GW_FONTSET_FILE> opened_on(const std::string& bytes) const {
        dir.write("Vantor.fs", bytes);
        return opened();
    }
    std::vector<Definition> reread() const { return read_from(*opened()); }

    TempDir dir;
};

// --- reading -----------------------------------------------------------------

TEST_F(FontsetFile, ReadsWhatLinesSay) {
    const std::string too_long(5000, 'x');
    const struct {
        const char* what;
        std::string bytes;
        std::vector<Definition> fontsets;
    } cases[] = {
        {"nothing", "", {}},
        {"one base font", "-a:definition,\\\n\t-f1\n", {{"-a", {"-f1"}}}},
        {"two fontsets",
         "-a:definition,\\\n\t-f1,\\\n\t-f2\n-b:definition,\\\n\t-f3\n",
         {{"-a", {"-f1", "-f2"}}, {"-b", {"-f3"}}}},
        {"no base font", "-a:definition\n", {{"-a", {}}}},
        {"a name with colons", "-a:b:c:definition,\\\n\t-f\n", {{"-a:b:c", {"-f"}}}},
        {"a name with a comma", "-a,b:definition,\\\n\t-f\n", {{"-a,b", {"-f"}}}},
        {"a name twice", "-a:x,\\\n\t-f1\n-a:x,\\\n\t-f2\n", {{"-a", {"-f1"}}, {"-a", {"-f2"}}}},
        {"a comment ends a definition", "-a:definition,\\\n! -c\n\t-f1\n", {{"-a", {}}}},
        {"the last font ends it", "-a:definition,\\\n\t-f1\n\t-f2\n", {{"-a", {"-f1"}}}},
        {"what no definition is current for", "\t-f0\n-a:definition,\\\n\t-f1\n", {{"-a", {"-f1"}}}},
        {"a dash without a colon", "-a:definition,\\\n-f1,\\\n\t-f2\n", {{"-a", {"-f2"}}}},
        {"any indentation", "-a:definition,\\\n \t x-f1,\\\n\t-f2\n", {{"-a", {"-f1", "-f2"}}}},
        {"cut at the last comma", "-a:definition,\\\n\t-f1,-f2 , x\n\t-f3\n", {{"-a", {"-f1,-f2 ", "-f3"}}}},
        {"definition lines inside", "-a:x,\\\n\t-definition,\\\n\t-f\n", {{"-a", {"-f"}}}},
        {"lines without a name", "-a:x,\\\n\n \t\n,\\\n\t-f\n", {{"-a", {"-f"}}}},
        {"no last newline", "-a:definition,\\\n\t-f1,\\\n\t-f2", {{"-a", {"-f1", "-f2"}}}},
        {"cut in the middle", "-a:definition,\\\n\t-f1,\\\n", {{"-a", {"-f1"}}}},
        {"cut in the name", "-a:defi", {{"-a", {}}}},
        {"cut in the name, early", "-a", {}},
        {"Windows line ends",
         "! c\r\n-a:definition,\\\r\n\t-f1,\\\r\n\t-f2\r\n\t-f3\r\n",
         {{"-a", {"-f1", "-f2"}}}},
        {"bytes above 127", "-\xe9:definition,\\\n\t-\xff\xfe\n", {{"-\xe9", {"-\xff\xfe"}}}},
        {"a NUL in a name", "-a\0:definition,\\\n\t-f1\n"s, {}},
        {"a NUL in a font", "-a:definition,\\\n\t-f\0x\n\t-g\n"s, {{"-a", {"-f", "-g"}}}},
        {"a long line", too_long + "\n-a:definition,\\\n\t-f1\n", {{"-a", {"-f1"}}}},
        {"a long line inside", "-a:definition,\\\n\t" + too_long + "\n\t-f1\n", {{"-a", {"-f1"}}}},
        {"a long line inside a comment", "!" + too_long + "\n-a:definition,\\\n\t-f1\n", {{"-a", {"-f1"}}}},
        {"a long font in pieces",
         "-a:definition,\\\n\t-" + too_long + "\n\t-f1\n",
         {{"-a", {"-" + std::string(1021, 'x'), "-f1"}}}},
        {"a name of all that fits",
         "-" + std::string(1021, 'n') + ":\n\t-f1\n",
         {{"-" + std::string(1021, 'n'), {"-f1"}}}},
        {"a name that does not fit", "-" + std::string(1022, 'n') + ":definition,\\\n\t-f1\n", {}},
    };
    for (const auto& c : cases) {
        const auto file = opened_on(c.bytes);
        EXPECT_EQ(read_from(*file), c.fontsets) << c.what;
        EXPECT_EQ(working_copy(), c.bytes) << c.what;
        EXPECT_EQ(file->sync(), 1) << c.what;
        EXPECT_EQ(dir.read("Vantor.fs"), c.bytes) << c.what;
    }
}

TEST_F(FontsetFile, AMissingFileHasNoFontsets) {
    const auto file = opened();
    EXPECT_EQ(file->get_fontsets().get_count(), 0);
    EXPECT_TRUE(has_working_copy());
    EXPECT_EQ(working_copy(), "");
    file->append_fontset(made({"-a", {LATIN1}}));
    EXPECT_EQ(file->sync(), 1);
    EXPECT_EQ(dir.read("Vantor.fs"), text_of({"-a", {LATIN1}}));
    struct stat info = {};
    ASSERT_EQ(::stat(dir.file("Vantor.fs").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & PERMISSION_BITS, 0644U);
}

TEST_F(FontsetFile, FindsTheFirstOfAName) {
    const auto file = opened_on("-a:x,\\\n\t-f1\n-b:x\n-a:x,\\\n\t-f2\n");
    ASSERT_NE(file->get_fontset("-a"), nullptr);
    EXPECT_STREQ(file->get_fontset("-a")->get_base_names(), "-f1");
    EXPECT_EQ(file->get_fontset("-A"), nullptr);
    EXPECT_EQ(file->get_fontset(""), nullptr);
}

// --- appending ---------------------------------------------------------------

TEST_F(FontsetFile, WritesADefinitionAsItReadsIt) {
    const auto file = opened();
    EXPECT_EQ(file->append_fontset(made({"-one", {LATIN1}})), 1);
    EXPECT_EQ(working_copy(), std::string("-one:definition,\\\n\t") + LATIN1 + "\n");
    EXPECT_EQ(file->sync(), 1);
    EXPECT_THAT(reread(), ElementsAre(Definition{"-one", {LATIN1}}));
}

TEST_F(FontsetFile, WhatIsAppendedReadsBackEqual) {
    const std::vector<std::string> pool = {
        LATIN1, KANJI, OTHER_KANJI, "-", "-caf\xe9-\x80", "-a b\tc\\", "-" + std::string(1000, 'n')};
    std::vector<Definition> expected;
    std::string bytes = "! first\r\n";
    const auto file = opened_on(bytes);
    for (std::size_t n = 0; n < 50; ++n) {
        Definition definition{"-set:" + std::to_string(n) + (n % 3 == 0 ? ", \xc3\xa9\\" : ""), {}};
        for (std::size_t font = 0; font < n % 6; ++font)
            definition.fonts.push_back(pool[(n + font) % pool.size()]);
        file->append_fontset(made(definition));
        bytes += text_of(definition);
        expected.push_back(definition);
    }
    EXPECT_EQ(read_from(*file), expected);
    EXPECT_EQ(working_copy(), bytes);
    ASSERT_EQ(file->sync(), 1);
    EXPECT_EQ(dir.read("Vantor.fs"), bytes);
    EXPECT_EQ(reread(), expected);
}

TEST_F(FontsetFile, WhatAnotherRunHasWrittenStays) {
    const auto one = opened_on("-a:definition,\\\n\t-f1\n-b:definition,\\\n\t-f2\n");
    const auto other = opened();
    EXPECT_EQ(one->delete_fontset(one->get_fontset("-a")), 1);
    EXPECT_EQ(other->append_fontset(made({"-c", {"-f3"}})), 1);
    EXPECT_EQ(one->sync(), 1);
    EXPECT_EQ(other->sync(), 1);
    EXPECT_EQ(reread(), (std::vector<Definition>{{"-b", {"-f2"}}, {"-c", {"-f3"}}}));
    EXPECT_EQ(one->append_fontset(made({"-d", {"-f4"}})), 1);
    EXPECT_EQ(one->sync(), 1) << "again, from what the other has left";
    EXPECT_EQ(reread(), (std::vector<Definition>{{"-b", {"-f2"}}, {"-c", {"-f3"}}, {"-d", {"-f4"}}}));
}

// The name of the new fontset must not be joined to a last line without a newline.
TEST_F(FontsetFile, EndsTheLastLineBeforeItAppends) {
    const auto file = opened_on("-a:definition,\\\n\t-f1");
    file->append_fontset(made({"-b", {"-f2"}}));
    EXPECT_EQ(working_copy(), "-a:definition,\\\n\t-f1\n-b:definition,\\\n\t-f2\n");
    EXPECT_EQ(file->sync(), 1);
    EXPECT_THAT(reread(), ElementsAre(Definition{"-a", {"-f1"}}, Definition{"-b", {"-f2"}}));
}

TEST_F(FontsetFile, ADefinitionCutInTheMiddleStaysApartFromANewOne) {
    const auto file = opened_on("-a:definition,\\\n\t-f1,\\\n");
    file->append_fontset(made({"-b", {"-f2"}}));
    EXPECT_EQ(file->sync(), 1);
    EXPECT_THAT(reread(), ElementsAre(Definition{"-a", {"-f1"}}, Definition{"-b", {"-f2"}}));
}

// --- deleting ----------------------------------------------------------------

TEST_F(FontsetFile, DeletesEachOfSeveralAndNothingElse) {
    const std::vector<Definition> all = {
        {"-a", {LATIN1, KANJI}}, {"-ab", {"-f"}}, {"-a:b", {}}, {"-last", {KANJI}}};
    for (std::size_t gone = 0; gone < all.size(); ++gone) {
        std::string bytes = "! head\n";
        std::string without = bytes;
        std::vector<Definition> left;
        for (std::size_t n = 0; n < all.size(); ++n) {
            const std::string comment = "! behind " + all[n].name + "\n\n";
            bytes += text_of(all[n]) + comment;
            without += (n == gone ? "" : text_of(all[n])) + comment;
            if (n != gone) left.push_back(all[n]);
        }
        const auto file = opened_on(bytes);
        const GWFontSet same_name(all[gone].name.c_str());
        EXPECT_EQ(file->delete_fontset(&same_name), 1);
        EXPECT_EQ(read_from(*file), left) << all[gone].name;
        EXPECT_EQ(working_copy(), without) << all[gone].name;
        EXPECT_EQ(dir.read("Vantor.fs"), bytes) << "the real file waits for sync";
        EXPECT_EQ(file->sync(), 1);
        EXPECT_EQ(dir.read("Vantor.fs"), without) << all[gone].name;
        EXPECT_EQ(reread(), left) << all[gone].name;
    }
}

TEST_F(FontsetFile, DeletesWhatAnyLineEndsAndBytesSurround) {
    const std::string before = "! \0 \xff\r\n-keep\0:x\r\n-b:definition,\\\r\n\t-f0\r\n"s;
    const std::string gone = "-a:definition,\\\r\n\t-f1,\\\r\n\t-f2\r\n\r\n" + std::string(5000, 'x') + "\n";
    const std::string after = "-no colon\r\n" + std::string(3000, 'y') + "\n-c:definition,\\\r\n\t-f\0,\\"s;
    const auto file = opened_on(before + gone + after);
    const GWFontSet same_name("-a");
    EXPECT_EQ(file->delete_fontset(&same_name), 1);
    EXPECT_EQ(file->sync(), 1);
    EXPECT_EQ(dir.read("Vantor.fs"), before + after);
}

TEST_F(FontsetFile, DeletingANameThatIsNotThereChangesNothing) {
    const std::string bytes = "! c\n-a:definition,\\\n\t-f1\n\n-b\n";
    const auto file = opened_on(bytes);
    for (const char* name : {"-z", "", "-b", "-A", "-a:definition"}) {
        const GWFontSet fontset(name);
        EXPECT_EQ(file->delete_fontset(&fontset), 0) << name;
        EXPECT_EQ(working_copy(), bytes) << name;
    }
    EXPECT_THAT(read_from(*file), ElementsAre(Definition{"-a", {"-f1"}}));
}

// The list loses one fontset. The file knows fontsets by name only, so it loses all of that name.
TEST_F(FontsetFile, DeletesAllDefinitionsOfANameThatStandsThereTwice) {
    const auto file = opened_on("-a:x,\\\n\t-f1\n-b:x,\\\n\t-f2\n-a:x,\\\n\t-f3\n");
    EXPECT_EQ(file->delete_fontset(file->get_fontset("-a")), 1);
    EXPECT_THAT(read_from(*file), ElementsAre(Definition{"-b", {"-f2"}}, Definition{"-a", {"-f3"}}));
    EXPECT_EQ(working_copy(), "-b:x,\\\n\t-f2\n");
}

// What the fontsets dialog does when a font is selected.
TEST_F(FontsetFile, AFontsetMayBeDeletedChangedAndAppendedAgain) {
    const auto file = opened_on(text_of({"-a", {LATIN1, KANJI}}) + text_of({"-b", {LATIN1}}));
    GWFontSet* current = file->get_fontset("-a");
    for (const char* kanji : {OTHER_KANJI, KANJI, OTHER_KANJI}) {
        EXPECT_EQ(file->delete_fontset(current), 1);
        current->update_base_font(kanji);
        EXPECT_EQ(file->append_fontset(current), 1);
        EXPECT_EQ(working_copy(), text_of({"-b", {LATIN1}}) + text_of({"-a", {LATIN1, kanji}}));
    }
    EXPECT_EQ(file->get_fontset("-a"), current);
    EXPECT_EQ(file->get_fontsets().get_count(), 2);
}

TEST_F(FontsetFile, AFontsetOutlivesTheFileForWhoHoldsIt) {
    auto file = opened_on(text_of({"-a", {LATIN1}}));
    const gw::Ref<GWFontSet> listed(file->get_fontset("-a"));
    const gw::Ref<GWFontSet> own(new GWFontSet("-own"));
    file->append_fontset(own.get());
    file->delete_fontset(own.get());
    file.reset();
    EXPECT_STREQ(listed->get_base_names(), LATIN1);
    EXPECT_STREQ(own->get_name(), "-own");
    EXPECT_EQ(own->owners(), 1);
}

// --- the working copy --------------------------------------------------------

TEST_F(FontsetFile, TheWorkingCopyIsReadableForAllAndGoesWithTheFile) {
    const mode_t before = ::umask(077);
    auto file = opened_on("! c\n");
    ::umask(before);
    struct stat info = {};
    ASSERT_EQ(::lstat(gw::SCRATCH_FONTSETS, &info), 0);
    EXPECT_EQ(info.st_mode & PERMISSION_BITS, 0644U);
    EXPECT_EQ(info.st_uid, ::geteuid());
    file.reset();
    EXPECT_FALSE(has_working_copy());
}

TEST_F(FontsetFile, TakesThePlaceOfAnOldWorkingCopyAndLeavesANewerOne) {
    TempDir other;
    auto first = opened_on("! first\n");
    other.write("Vantor.fs", "! second\n");
    const GW_FONTSET_FILE second(other.c_str(), "Vantor.fs", 0);
    EXPECT_EQ(working_copy(), "! second\n");
    first.reset();
    EXPECT_EQ(working_copy(), "! second\n");
}

/// Works with a file while something that is not ours has the name of the working copy.
void expect_work_in_memory(const TempDir& dir) {
    const std::string path = dir.write("Vantor.fs", "! c\n-a:definition,\\\n\t-f1\n");
    const gw::test::HeardFailures heard;
    GW_FONTSET_FILE file(dir.c_str(), "Vantor.fs", 0);
    const GWFontSet same_name("-a");
    EXPECT_EQ(file.delete_fontset(&same_name), 1);
    file.append_fontset(made({"-b", {"-f2"}}));
    EXPECT_EQ(file.sync(), 1);
    EXPECT_EQ(
        heard.text(),
        "/tmp/Vantor.fs: this is a link or belongs to someone else; changed fontsets stand in memory only\n");
    EXPECT_EQ(TempDir::read_bytes(path), "! c\n-b:definition,\\\n\t-f2\n");
}

TEST_F(FontsetFile, DoesNotUseALinkInThePlaceOfTheWorkingCopy) {
    const std::string target = dir.write("precious", "bytes");
    for (const std::string& pointed_at : {target, dir.file("nothing")}) {
        std::filesystem::remove(gw::SCRATCH_FONTSETS);
        std::filesystem::create_symlink(pointed_at, gw::SCRATCH_FONTSETS);
        expect_work_in_memory(dir);
        EXPECT_TRUE(std::filesystem::is_symlink(gw::SCRATCH_FONTSETS));
    }
    EXPECT_EQ(dir.read("precious"), "bytes");
    EXPECT_FALSE(dir.exists("nothing"));
}

TEST_F(FontsetFile, DoesNotUseADirectoryInThePlaceOfTheWorkingCopy) {
    std::filesystem::create_directory(gw::SCRATCH_FONTSETS);
    expect_work_in_memory(dir);
    EXPECT_TRUE(std::filesystem::is_directory(gw::SCRATCH_FONTSETS));
}

TEST_F(FontsetFile, DoesNotUseTheFileOfSomeoneElse) {
    if (::geteuid() != 0) GTEST_SKIP() << "takes the superuser: files of two owners";
    std::ofstream(gw::SCRATCH_FONTSETS) << "theirs";
    ASSERT_EQ(::chown(gw::SCRATCH_FONTSETS, 1, 1), 0);
    expect_work_in_memory(dir);
    EXPECT_EQ(working_copy(), "theirs");
}

TEST_F(FontsetFile, AFileInTheScratchDirectoryIsNoWorkingCopy) {
    const std::string bytes = text_of({"-a", {LATIN1}});
    std::ofstream(gw::SCRATCH_FONTSETS) << bytes;
    {
        GW_FONTSET_FILE file(gw::SCRATCH_ROOT, "Vantor.fs", 0);
        file.append_fontset(made({"-b", {KANJI}}));
        EXPECT_EQ(working_copy(), bytes);
        EXPECT_EQ(file.sync(), 1);
    }
    EXPECT_EQ(working_copy(), bytes + text_of({"-b", {KANJI}}));
}

// --- writing back ------------------------------------------------------------

TEST_F(FontsetFile, SyncKeepsOwnerAndMode) {
    const std::string path = dir.write("Vantor.fs", "! c\n");
    ASSERT_EQ(::chmod(path.c_str(), 0664), 0);
    const bool superuser = ::geteuid() == 0;
    if (superuser) {
        ASSERT_EQ(::chown(path.c_str(), 1, 1), 0);
    }
    const auto file = opened();
    file->append_fontset(made({"-a", {LATIN1}}));
    EXPECT_EQ(file->sync(), 1);
    struct stat info = {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & PERMISSION_BITS, 0664U);
    EXPECT_EQ(info.st_uid, superuser ? 1 : ::geteuid());
}

TEST_F(FontsetFile, SyncWritesTheNameOfTheWorkingCopy) {
    dir.write("other.fs", "! c\n");
    GW_FONTSET_FILE file(dir.c_str(), "other.fs", 0);
    file.append_fontset(made({"-a", {}}));
    EXPECT_EQ(file.sync(), 1);
    EXPECT_EQ(dir.read("other.fs"), "! c\n");
    EXPECT_EQ(dir.read("Vantor.fs"), "! c\n-a:definition\n");
}

TEST_F(FontsetFile, AFullDiskLeavesTheOldFile) {
    const SmallDisk disk;
    const std::string bytes = text_of({"-a", {LATIN1}});
    disk.write("Vantor.fs", bytes);
    GW_FONTSET_FILE file(disk.path().c_str(), "Vantor.fs", 0);
    file.append_fontset(made({"-b", std::vector<std::string>(200, KANJI)}));
    disk.leave_blocks(0);
    const gw::test::HeardFailures heard;
    EXPECT_EQ(file.sync(), 0);
    EXPECT_EQ(heard.text(), disk.file("Vantor.fs") + ": No space left on device; the fontsets in it stay\n");
    EXPECT_EQ(disk.read("Vantor.fs"), bytes);
    EXPECT_EQ(disk.entries(), 1);
}

TEST_F(FontsetFile, ADirectoryThatIsGoneIsReported) {
    const std::string gone = dir.file("gone/");
    GW_FONTSET_FILE file(gone.c_str(), "Vantor.fs", 0);
    const gw::test::HeardFailures heard;
    EXPECT_EQ(file.sync(), 0);
    EXPECT_EQ(heard.text(), gone + "Vantor.fs: No such file or directory; the fontsets in it stay\n");
}

TEST_F(FontsetFile, AFileThatMayNotBeWrittenStays) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser may write everything";
    const auto file = opened_on("! c\n");
    ASSERT_EQ(::chmod(dir.file("Vantor.fs").c_str(), 0444), 0);
    file->append_fontset(made({"-a", {}}));
    const gw::test::HeardFailures heard;
    EXPECT_EQ(file->sync(), 0);
    EXPECT_THAT(heard.text(),
                StrEq(dir.file("Vantor.fs") + ": Permission denied; the fontsets in it stay\n"));
    EXPECT_EQ(dir.read("Vantor.fs"), "! c\n");
}

// A file that exists but cannot be read must not be replaced by an empty one.
TEST_F(FontsetFile, AFileThatCouldNotBeReadStays) {
    dir.make_dir("Vantor.fs");
    const auto file = opened();
    EXPECT_THAT(read_from(*file), IsEmpty());
    EXPECT_EQ(working_copy(), "");
    std::filesystem::remove(dir.file("Vantor.fs"));
    dir.write("Vantor.fs", "! c\n");
    file->append_fontset(made({"-a", {}}));
    const gw::test::HeardFailures heard;
    EXPECT_EQ(file->sync(), 0);
    EXPECT_EQ(heard.text(), dir.file("Vantor.fs") + ": Is a directory; the fontsets in it stay\n");
    EXPECT_EQ(dir.read("Vantor.fs"), "! c\n");
}

// What another run has written into it meanwhile must not be lost either.
TEST_F(FontsetFile, AFileThatCannotBeReadAnyMoreStays) {
    const auto file = opened_on("! c\n");
    file->append_fontset(made({"-a", {}}));
    const std::uintmax_t too_large = gw::Directory::FILE_LIMIT + 1;
    std::filesystem::resize_file(dir.file("Vantor.fs"), too_large);
    const gw::test::HeardFailures heard;
    EXPECT_EQ(file->sync(), 0);
    EXPECT_EQ(heard.text(), dir.file("Vantor.fs") + ": File too large; the fontsets in it stay\n");
    EXPECT_EQ(std::filesystem::file_size(dir.file("Vantor.fs")), too_large);
    std::filesystem::remove(dir.file("Vantor.fs"));
    EXPECT_EQ(file->sync(), 1) << "a file that is gone is written anew";
    EXPECT_EQ(dir.read("Vantor.fs"), "! c\n-a:definition\n");
}

TEST_F(FontsetFile, LosesNoFontsetWithItsWorkingCopy) {
    const auto file = opened_on(text_of({"-a", {LATIN1}}));
    std::filesystem::remove(gw::SCRATCH_FONTSETS);
    std::filesystem::create_directory(gw::SCRATCH_FONTSETS);
    const gw::test::HeardFailures heard;
    file->append_fontset(made({"-b", {KANJI}}));
    file->append_fontset(made({"-c", {KANJI}}));
    EXPECT_EQ(
        heard.text(),
        "/tmp/Vantor.fs: this is a link or belongs to someone else; changed fontsets stand in memory only\n");
    EXPECT_EQ(file->sync(), 1);
    EXPECT_THAT(reread(), testing::SizeIs(3));
}

}  // namespace

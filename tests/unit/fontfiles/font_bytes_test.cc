// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "fontfiles/font_bytes.h"
#include "support/compressed.h"
#include "support/temp_dir.h"

namespace gw {
namespace {

/// Bytes of which no part is like another.
std::string many_bytes(std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; bytes.size() < count; ++i) bytes += std::to_string(i * 7919) + ' ';
    bytes.resize(count);
    return bytes;
}

class FontBytesTest : public testing::Test {
  protected:
    Result<FontBytes> opened(std::string_view bytes) { return FontBytes::open(dir_.write("font", bytes)); }
    test::TempDir dir_;
};

TEST_F(FontBytesTest, EveryPartOfAFileIsRead) {
    const std::string all = many_bytes(50000);
    const Result<FontBytes> bytes = opened(all);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->size(), all.size());
    EXPECT_FALSE(bytes->was_compressed());
    EXPECT_EQ(bytes->part(0, all.size()), all);
    for (const std::size_t start : {0U, 16383U, 16384U, 49999U, 20000U, 3U}) {
        for (const std::size_t count : {1U, 4U, 16384U, 16385U, 40000U})
            EXPECT_EQ(bytes->part(start, count), all.substr(start, count)) << start << ' ' << count;
    }
}

TEST_F(FontBytesTest, NothingIsReadBehindTheEnd) {
    const Result<FontBytes> bytes = opened("font");
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->part(3, 10), "t");
    EXPECT_EQ(bytes->part(4, 1), "");
    EXPECT_EQ(bytes->part(static_cast<std::size_t>(-1), 10), "");
    char buffer[8] = "";
    EXPECT_EQ(bytes->read(2, buffer, sizeof buffer), 2U);
}

TEST_F(FontBytesTest, CompressedFilesAreUnpackedWhateverTheirNames) {
    const std::string all = many_bytes(300000);
    for (const int filter : {ARCHIVE_FILTER_GZIP, ARCHIVE_FILTER_COMPRESS, ARCHIVE_FILTER_BZIP2}) {
        const Result<FontBytes> bytes = opened(test::compressed(all, filter));
        ASSERT_TRUE(bytes) << filter;
        EXPECT_TRUE(bytes->was_compressed());
        EXPECT_EQ(bytes->size(), all.size());
        EXPECT_EQ(bytes->part(0, all.size()), all) << filter;
        EXPECT_EQ(bytes->part(200000, 5), all.substr(200000, 5)) << filter;
    }
}

TEST_F(FontBytesTest, AFileThatIsPackedTwiceIsNoFont) {
    EXPECT_EQ(opened(test::gzipped(test::gzipped("font"))).failure(),
              (Failure{dir_.file("font"), Reason::NOT_A_FONT}));
}

TEST_F(FontBytesTest, ACompressedFileThatIsCutOffIsDamaged) {
    const std::string all = many_bytes(100000);
    for (const int filter : {ARCHIVE_FILTER_GZIP, ARCHIVE_FILTER_BZIP2}) {
        const std::string whole = test::compressed(all, filter);
        for (const std::size_t size :
             {whole.size() - 1, whole.size() - 9, whole.size() / 2, std::size_t{3}}) {
            const Result<FontBytes> bytes = opened(whole.substr(0, size));
            ASSERT_FALSE(bytes) << filter << ' ' << size;
            EXPECT_EQ(bytes.failure(), (Failure{dir_.file("font"), Reason::NOT_UNPACKED}));
        }
    }
}

TEST_F(FontBytesTest, ACompressedFileMayHoldSoMuchAndNoMore) {
    const std::string limit(FontBytes::UNPACKED_LIMIT, ' ');
    const Result<FontBytes> full = opened(test::gzipped(limit));
    ASSERT_TRUE(full);
    EXPECT_EQ(full->size(), limit.size());
    const Result<FontBytes> bomb = opened(test::gzipped(limit + ' '));
    ASSERT_FALSE(bomb);
    EXPECT_EQ(bomb.failure().text(), dir_.file("font") + ": unpacked, this file has more than 64 MB");
}

TEST_F(FontBytesTest, OnlyRegularFilesAreOpened) {
    EXPECT_EQ(FontBytes::open(dir_.make_dir("directory")).failure().error, EISDIR);
    ASSERT_EQ(::mkfifo(dir_.file("pipe").c_str(), 0644), 0);
    EXPECT_EQ(FontBytes::open(dir_.file("pipe")).failure().reason, Reason::NOT_A_FILE);
    EXPECT_EQ(FontBytes::open(dir_.file("nothing")).failure().error, ENOENT);
    const Result<FontBytes> empty = opened("");
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->size(), 0U);
}

TEST_F(FontBytesTest, AFileTooLargeForAFontIsNotRead) {
    const std::string path = dir_.write("large.otf", "");
    ASSERT_EQ(::truncate(path.c_str(), off_t{1} << 31), 0);
    EXPECT_EQ(FontBytes::open(path).failure().error, EFBIG);
}

}  // namespace
}  // namespace gw

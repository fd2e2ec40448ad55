// SPDX-License-Identifier: MIT
//
// The message catalogue has every text of the table unchanged, and the program finds the catalogue.
#include <gtest/gtest.h>

#include <nl_types.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <iterator>
#include <string>

#include "app/start/main_start.h"
#include "texts/messages.h"

namespace {

const nl_catd NO_CATALOGUE = reinterpret_cast<nl_catd>(-1);

class Catalogue {
  public:
    explicit Catalogue(const char* path) : catalogue_(::catopen(path, NL_CAT_LOCALE)) {}
    ~Catalogue() {
        if (is_open()) ::catclose(catalogue_);
    }
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    [[nodiscard]] bool is_open() const { return catalogue_ != NO_CATALOGUE; }
    [[nodiscard]] std::string text(int set, int number) const {
        return ::catgets(catalogue_, set, number, "not in the catalogue");
    }

  private:
    nl_catd catalogue_;
};

TEST(CatalogueTest, HoldsEveryTextOfTheTable) {
    const Catalogue catalogue(GLYPHWARD_CATALOGUE);
    ASSERT_TRUE(catalogue.is_open());
    EXPECT_GT(gw::message_table().size(), 50U);
    for (const gw::MessageEntry& entry : gw::message_table()) {
        EXPECT_EQ(catalogue.text(entry.set, entry.number), entry.text)
            << "set " << entry.set << ", number " << entry.number;
    }
}

// The English catalogue corrects the spelling mistakes of the defaults and changes nothing else.
TEST(CatalogueTest, EnglishLocalesHaveTheCorrectedTexts) {
    static constexpr gw::MessageEntry CORRECTED[] = {
#define MSG(set, number, text) {set, number, text},
#include "english.def"
#undef MSG
    };
    const Catalogue catalogue(ENGLISH_CATALOGUE);
    ASSERT_TRUE(catalogue.is_open());
    std::size_t corrected = 0;
    for (const gw::MessageEntry& entry : gw::message_table()) {
        const auto* found = std::find_if(std::begin(CORRECTED), std::end(CORRECTED), [&](const auto& other) {
            return other.set == entry.set && other.number == entry.number;
        });
        const bool is_corrected = found != std::end(CORRECTED);
        corrected += is_corrected ? 1 : 0;
        EXPECT_EQ(catalogue.text(entry.set, entry.number), is_corrected ? found->text : entry.text);
        EXPECT_TRUE(!is_corrected || std::string(found->text) != entry.text) << entry.text;
    }
    EXPECT_EQ(corrected, std::size(CORRECTED)) << "each stands for a text of the table";
}

TEST(CatalogueTest, HardTextsComeBackAsTheyWere) {
    static constexpr gw::MessageEntry HARD[] = {
#define MSG(set, number, name, text) {set, number, text},
#include "widget/kit/hard_texts/texts/messages.def"
#undef MSG
    };
    const Catalogue catalogue(HARD_CATALOGUE);
    ASSERT_TRUE(catalogue.is_open());
    for (const gw::MessageEntry& entry : HARD) {
        EXPECT_EQ(catalogue.text(entry.set, entry.number), entry.text)
            << "set " << entry.set << ", number " << entry.number;
    }
}

TEST(CatalogueTest, TheDefaultsStandWhereThereIsNone) {
    gw::close_catalogue();
    EXPECT_STREQ(gw::text_of(gw::Message::ROOT_ONLY), "Only root can modify font path");
    EXPECT_STREQ(gw::text_of(gw::Message::NOTICE_TITLE), "Glyph Warden - " GLYPHWARD_VERSION);
}

TEST(CatalogueTest, ANumberTakesThePlaceOfItsSign) {
    EXPECT_EQ(gw::text_of(gw::Message::KILOBYTES, 0), "0 Kbytes");
    EXPECT_EQ(gw::text_of(gw::Message::KILOBYTES, 4294967295U), "4294967295 Kbytes");
    EXPECT_EQ(gw::text_of(gw::Message::MAIN_TITLE, 5), "Glyph Warden");
}

TEST(CatalogueTest, TheInstalledOneIsFound) {
    ::unsetenv("NLSPATH");
    set_env();
    ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
    const Catalogue catalogue("glyphward");
    ASSERT_TRUE(catalogue.is_open()) << "NLSPATH=" << std::getenv("NLSPATH");
    EXPECT_EQ(catalogue.text(1, 2), "Glyph Warden");
}

TEST(MessageTableTest, TheTextsThatOthersRelyOnHaveTheirNumbers) {
    struct Case {
        gw::Message message;
        int set;
        int number;
        const char* text;
    };
    static constexpr Case CASES[] = {
        {gw::Message::MAIN_TITLE, 1, 2, "Glyph Warden"},
        {gw::Message::SIZE_LABEL, 1, 20, "Sample Text Point Size: "},
        {gw::Message::DISK_SPACE_LABEL, 1, 22, "Total disk space occupied : "},
        {gw::Message::INFORMATION_TITLE, 1, 25, "Glyph Warden - Information"},
        {gw::Message::NOTICE_TITLE, 10, 2, "Glyph Warden - " GLYPHWARD_VERSION},
        {gw::Message::ATTR_FONT, 4, 2, "Font: "},
        {gw::Message::ATTR_HELP, 4, 13, "Help..."},
    };
    for (const Case& c : CASES) {
        const gw::MessageEntry& entry = gw::message_table()[static_cast<std::size_t>(c.message)];
        EXPECT_EQ(entry.set, c.set) << c.text;
        EXPECT_EQ(entry.number, c.number) << c.text;
        EXPECT_STREQ(entry.text, c.text);
    }
}

TEST(MessageTableTest, TheNoticeBeginsWithTheNameAndGoesOnAfterTheLicenseReminder) {
    const std::string notice = gw::message_table()[static_cast<std::size_t>(gw::Message::NOTICE)].text;
    const std::string beginning = "Glyph Warden Version " GLYPHWARD_VERSION
                                  "\n\nPlease read license agreement of a font before\n\n"
                                  "installing it using Glyph Warden.\n\n\n";
    EXPECT_EQ(notice.substr(0, beginning.size()), beginning);
    EXPECT_GT(notice.size(), beginning.size() + 40);
}

}  // namespace

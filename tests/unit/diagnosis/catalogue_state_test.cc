// SPDX-License-Identifier: MIT
//
// What the diagnosis says about catalogues, and about directories that the server has through one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "diagnosis/answer.h"
#include "diagnosis/element_state.h"
#include "support/played_server.h"
#include "support/temp_dir.h"

namespace gw::diagnosis {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* LINKED = "-test-box-medium-r-normal--8-80-75-75-c-80-iso8859-1";
const std::string LINE_OF_IT = std::string("a.pcf ") + LINKED + "\n";

class CatalogueState : public testing::Test {
  protected:
    CatalogueState() {
        ::chmod(root.c_str(), 0755);
        server.add(LINKED);
        fs::create_directory(root.file("cat"));
        server.path = {catalogue};
    }
    std::string make(const std::string& name, const std::string& index = "1\n" + LINE_OF_IT) const {
        root.write(name + "/a.pcf", "font");
        root.write(name + "/fonts.dir", index);
        return root.file(name);
    }
    void link(const std::string& name, const std::string& target) const {
        fs::create_symlink(target, root.file("cat/" + name));
    }
    [[nodiscard]] std::vector<Said> said(std::size_t report) {
        const PathState state = look_at_path(server, surroundings);
        std::vector<Said> all;
        for (const Sentence& remark : state.reports.at(report).remarks) all.push_back(remark.said);
        return all;
    }
    Answer ask(const std::string& directory) {
        Question question;
        question.wanted = Wanted::DIRECTORY;
        question.name = directory;
        return answer(question, server, surroundings);
    }
    static std::vector<Remedy> remedies(const Answer& answer) {
        std::vector<Remedy> all;
        for (const Cure& cure : answer.cures) all.push_back(cure.remedy);
        return all;
    }

    test::TempDir root;
    std::string catalogue = "catalogue:" + root.file("cat");
    test::PlayedServer server;
    Surroundings surroundings;
};

TEST_F(CatalogueState, ADirectoryBehindALinkIsServed) {
    const std::string box = make("box");
    link("box:pri=1", "../box");
    surroundings.configured = {box + '/'};
    const PathState state = look_at_path(server, surroundings);
    ASSERT_THAT(state.reports, SizeIs(2));
    EXPECT_EQ(state.reports[1].place, 0);
    EXPECT_EQ(state.reports[1].state, ElementState::WORKS);
    EXPECT_EQ(state.reports[1].remarks, (std::vector<Sentence>{{Said::SERVED_BY_CATALOGUE, {catalogue}}}));
    EXPECT_THAT(state.unserved, IsEmpty()) << "its fonts are the catalogue's";
    EXPECT_EQ(state.sources.at(0).facts.directory, fs::canonical(box).string() + '/');
    surroundings.configured.clear();
    const Answer asked = ask(box);
    EXPECT_TRUE(asked.works);
    EXPECT_EQ(asked.verdict.back().said, Said::SERVED_BY_CATALOGUE);
    EXPECT_THAT(asked.cures, IsEmpty());
}

TEST_F(CatalogueState, AnIndexThatTheServerHasNotReadAgain) {
    make("box", "2\n" + LINE_OF_IT + "a.pcf another\n");
    link("box", "../box");
    EXPECT_THAT(said(0), ElementsAre(Said::INDEX_NOT_READ_AGAIN));
    EXPECT_THAT(remedies(ask(catalogue)), ElementsAre(Remedy::READ_AGAIN));
}

TEST_F(CatalogueState, BadAliasesAreMendedBehindTheLink) {
    make("box");
    make("other");
    root.write("other/fonts.alias", "good font\nlone\n");
    link("box", "../box");
    link("other", "../other");
    const Answer asked = ask(catalogue);
    ASSERT_THAT(remedies(asked), ElementsAre(Remedy::COMMENT_OUT));
    EXPECT_EQ(asked.cures[0].element, fs::canonical(root.file("other")).string());
}

TEST_F(CatalogueState, ADirectoryWithoutAnIndexGetsOne) {
    root.write("bare/a.pcf", "font");
    link("bare", "../bare");
    const Answer asked = ask(catalogue);
    ASSERT_THAT(remedies(asked), ElementsAre(Remedy::MAKE_INDEX));
    EXPECT_EQ(asked.cures[0].element, fs::canonical(root.file("bare")).string());
}

TEST_F(CatalogueState, OneThatIsOnNoPathIsLookedAt) {
    make("box");
    link("box", "../box");
    server.path = {"built-ins", "catalogue:" + root.file("box")};
    const Answer asked = ask(catalogue);
    EXPECT_FALSE(asked.works);
    EXPECT_EQ(asked.path.back().state, ElementState::NOT_SERVED);
    EXPECT_EQ(asked.path.back().remarks.front(), (Sentence{Said::IS_ON_NO_PATH, {catalogue}}));
    ASSERT_THAT(remedies(asked), ElementsAre(Remedy::SERVE_DIRECTORY));
    EXPECT_EQ(asked.cures[0].element, catalogue);
    EXPECT_EQ(ask("catalogue:" + root.file("none")).path.back().state, ElementState::DEAD);
    EXPECT_EQ(ask("catalogue:").path.back().remarks.front().said, Said::NAMES_NO_DIRECTORY);
}

TEST_F(CatalogueState, ItHasNoAttributes) {
    make("box");
    link("box", "../box");
    server.path = {catalogue + ":unscaled"};
    EXPECT_THAT(said(0), ElementsAre(Said::NO_SUCH_DIRECTORY, Said::SERVER_STILL_HAS_IT));
}

TEST_F(CatalogueState, OneThatMayNotBeReadIsNotKnown) {
    if (::geteuid() == 0) GTEST_SKIP() << "nothing is closed to the superuser";
    ::chmod(root.file("cat").c_str(), 0);
    const ElementReport report = look_at_path(server, surroundings).reports.at(0);
    EXPECT_EQ(report.state, ElementState::NOT_KNOWN);
    EXPECT_EQ(report.remarks, (std::vector<Sentence>{{Said::MAY_NOT_LOOK, {root.file("cat")}}}));
    ::chmod(root.file("cat").c_str(), 0755);
}

}  // namespace
}  // namespace gw::diagnosis

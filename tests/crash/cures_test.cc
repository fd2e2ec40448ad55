// SPDX-License-Identifier: MIT
//
// The cures of the diagnosis, and their undo, killed and failed at each call that changes the disk: what is
// found then is the old state or the new one, and the cure can be carried out again.
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "diagnosis/cure.h"
#include "platform/host_paths.h"
#include "store/directory_change.h"
#include "support/bitmap_maker.h"
#include "support/file_faults.h"
#include "support/heard_failures.h"
#include "support/sfnt_maker.h"
#include "support/under_policy.h"
#include "unit/cures/cure_fixture.h"

namespace {

using gw::Reason;
using gw::diagnosis::Cure;
using gw::diagnosis::Deed;
using gw::diagnosis::Remedy;
using gw::test::CALL_STEP;
using gw::test::FileFaults;
using gw::test::is_root;
using gw::test::TempDir;

/// So many calls are made only when two files would have times in the same second.
constexpr int UNSTEADY = 3;
constexpr const char* FONT = "-misc-fixed-medium-r-normal--13-120-75-75-c-70-iso8859-1";

/// A user's home, font path and server, for one run.
class Scene {
  public:
    Scene() : old_config_(TempDir::read_bytes(gw::test::MAIN_CONFIG)) {
        ::chmod(home.c_str(), 0755);
        const std::string name = home.path().substr(0, home.path().size() - 1);
        ::setenv("HOME", name.c_str(), 1);
        surroundings.user = ::geteuid();
        surroundings.home = name;
        surroundings.own_fonts = home.file("glyphwd_fonts/");
        server.path = {"built-ins"};
        dir = home.make_dir("fonts");
        if (is_root()) {
            // What we keep there is made anew, too, each time.
            const auto config_dir = std::filesystem::path(gw::test::MAIN_CONFIG).parent_path();
            std::filesystem::remove_all(config_dir / ".glyphward");
            gw::test::write(gw::test::MAIN_CONFIG, "XDISPLAY.0.fontpath:\t/a/,/gone/,/b/\n");
        } else {
            home.write(".VTfontpath", "/a/\n/gone/\n/b/\n");
        }
        surroundings.configured = {"/a/", "/gone/", "/b/"};
    }
    ~Scene() {
        if (is_root()) gw::test::write(gw::test::MAIN_CONFIG, old_config_);
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// The file with the font path, without the name of the home directory, which is another each time.
    [[nodiscard]] std::string path_file() const {
        std::string text = TempDir::read_bytes(is_root() ? gw::test::MAIN_CONFIG : home.file(".VTfontpath"));
        for (std::size_t at = text.find(home.path()); at != std::string::npos; at = text.find(home.path()))
            text.replace(at, home.path().size(), "~/");
        return text;
    }
    gw::Result<Deed> carry_out(const Cure& cure) {
        surroundings.configured.clear();
        unsigned count = 0;
        GWFontPath paths(gw::INSTALLATION_ROOT);
        for (const GW_STRING* element : *paths.get_fpe_list(GWFontPath::ALL_FP, count))
            surroundings.configured.emplace_back(element->get_str());
        return gw::diagnosis::carry_out(cure, server, surroundings);
    }

    TempDir home;
    std::string dir;
    gw::test::ReadingServer server;
    gw::diagnosis::Surroundings surroundings;

  private:
    std::string old_config_;
};

/// What a cure is carried out on, and what of it may be seen on the disk.
struct Kind {
    const char* name;
    std::function<Cure(Scene&)> prepare;
    /// The parts of the state that change, each completely or not at all.
    std::function<std::vector<std::string>(const Scene&)> look;
    friend std::ostream& operator<<(std::ostream& out, const Kind& kind) { return out << kind.name; }
};

std::string outline() {
    gw::test::SfntMaker maker;
    maker.names = gw::test::windows_names("Outlined");
    maker.charmap = 1;
    maker.characters.clear();
    for (char32_t code = 0x20; code < 0x7F; ++code) maker.characters += code;
    return maker.make();
}

std::string mode_of(const std::string& path) {
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 ? std::to_string(info.st_mode) : "missing";
}

std::string bytes_or_none(const std::string& path) {
    return std::filesystem::exists(path) ? "has " + TempDir::read_bytes(path) : "none";
}

/// An index is two files, which change together.
std::vector<std::string> indexes(const Scene& scene) {
    return {bytes_or_none(scene.dir + "fonts.dir") + bytes_or_none(scene.dir + "fonts.scale")};
}

const std::vector<Kind> KINDS = {
    {"serve_directory",
     [](Scene& scene) {
         scene.home.write("fonts/fonts.dir", "0\n");
         return Cure{.remedy = Remedy::SERVE_DIRECTORY, .element = scene.dir};
     },
     [](const Scene& scene) { return std::vector{scene.path_file()}; }},
    {"take_off",
     [](Scene& scene) {
         scene.server.path = {"/gone/", "built-ins"};
         return Cure{.remedy = Remedy::TAKE_OFF, .element = "/gone/"};
     },
     [](const Scene& scene) { return std::vector{scene.path_file()}; }},
    {"make_index",
     [](Scene& scene) {
         scene.home.write("fonts/fonts.dir", "nonsense\ngone.pcf -gone\nalone\n");
         scene.home.write("fonts/fonts.scale", "1\ngone.ttf -gone\n");
         scene.home.write("fonts/boxes.bdf", gw::test::BitmapMaker{}.make_bdf());
         scene.home.write("fonts/outlined.ttf", outline());
         return Cure{.remedy = Remedy::MAKE_INDEX, .element = scene.dir};
     },
     indexes},
    {"make_first_index",
     [](Scene& scene) {
         scene.home.write("fonts/boxes.bdf", gw::test::BitmapMaker{}.make_bdf());
         scene.home.write("fonts/outlined.ttf", outline());
         return Cure{.remedy = Remedy::MAKE_INDEX, .element = scene.dir};
     },
     indexes},
    {"make_readable",
     [](Scene& scene) {
         gw::diagnosis::Rights rights = {{scene.home.file("fonts"), S_IXOTH}};
         for (const char* name : {"a.pcf", "b.pcf", "c.pcf"}) {
             scene.home.write("fonts/" + std::string(name), "x");
             ::chmod((scene.dir + name).c_str(), 0600);
             rights.emplace_back(scene.dir + name, S_IROTH);
         }
         ::chmod(scene.dir.c_str(), 0700);
         return Cure{.remedy = Remedy::MAKE_READABLE, .element = scene.dir, .rights = rights};
     },
     [](const Scene& scene) {
         return std::vector{mode_of(scene.home.file("fonts")), mode_of(scene.dir + "a.pcf"),
                            mode_of(scene.dir + "b.pcf"), mode_of(scene.dir + "c.pcf")};
     }},
    {"add_first_alias",
     [](Scene&) {
         return Cure{.remedy = Remedy::ADD_ALIAS, .wanted = "fancy", .font = FONT, .in_front = true};
     },
     [](const Scene& scene) {
         return std::vector{scene.path_file(),
                            bytes_or_none(scene.surroundings.own_fonts + "aliases/fonts.alias")};
     }},
    {"comment_out",
     [](Scene& scene) {
         scene.home.write("fonts/fonts.dir", "0\n");
         scene.home.write("fonts/fonts.alias", "fancy fixed\nself self\nlone\ngood fixed\n");
         return Cure{.remedy = Remedy::COMMENT_OUT, .element = scene.dir, .aliases = {{"fancy", "fixed"}}};
     },
     [](const Scene& scene) { return std::vector{bytes_or_none(scene.dir + "fonts.alias")}; }},
    {"change_alias",
     [](Scene& scene) {
         scene.home.write("glyphwd_fonts/aliases/fonts.dir", "0\n");
         scene.home.write("glyphwd_fonts/aliases/fonts.alias",
                          "mine fixed\n! Made by Glyph Warden\nfancy other\n! mine too\n");
         return Cure{.remedy = Remedy::ADD_ALIAS, .wanted = "fancy", .font = FONT};
     },
     [](const Scene& scene) {
         return std::vector{scene.path_file(),
                            bytes_or_none(scene.surroundings.own_fonts + "aliases/fonts.alias")};
     }},
};

class CrashedCures : public testing::TestWithParam<Kind> {
  protected:
    using State = std::vector<std::string>;

    void SetUp() override {
        Scene scene;
        const Cure cure = GetParam().prepare(scene);
        before = GetParam().look(scene);
        {
            const FileFaults counting(FileFaults::Fault::NONE, 0);
            const auto deed = scene.carry_out(cure);
            ASSERT_TRUE(deed) << deed.failure().text();
            calls = FileFaults::calls();
            after = GetParam().look(scene);
            ASSERT_TRUE(deed->undo());
            undo_calls = FileFaults::calls() - calls;
        }
        ASSERT_NE(before, after);
        ASSERT_EQ(GetParam().look(scene), before);
        ASSERT_GT(calls, 0);
        ASSERT_LT(calls, gw::test::MOST_CALLS);
        ASSERT_GT(undo_calls, 0);
    }
    /// The next look at the directories, by whatever program of ours.
    static void settle(const Scene& scene) {
        for (const std::string& dir : {scene.dir, scene.surroundings.own_fonts + "aliases/"}) {
            EXPECT_TRUE(!std::filesystem::exists(dir) || gw::settle(dir)) << dir;
        }
    }
    /// Each part of the state is the old one or the new one.
    void expect_old_or_new(const Scene& scene, int at) const {
        const State now = GetParam().look(scene);
        ASSERT_EQ(now.size(), before.size());
        for (std::size_t i = 0; i < now.size(); ++i)
            EXPECT_TRUE(now[i] == before[i] || now[i] == after[i]) << "call " << at << ": " << now[i];
    }

    gw::test::HeardFailures heard;
    gw::test::UnderPolicy modern{true};
    State before;
    State after;
    int calls = 0;
    int undo_calls = 0;
};

TEST_P(CrashedCures, KilledAtAnyCallTheCureIsNotBegunOrCanBeCarriedOutAgain) {
    for (int at = 1; at <= calls; at += CALL_STEP) {
        Scene scene;
        const Cure cure = GetParam().prepare(scene);
        const bool killed = gw::test::killed_at(at, [&] { (void)scene.carry_out(cure); });
        ASSERT_TRUE(killed || at > calls - UNSTEADY) << at;
        settle(scene);
        expect_old_or_new(scene, at);
        const auto deed = scene.carry_out(cure);
        ASSERT_TRUE(deed) << "call " << at << ": " << deed.failure().text();
        EXPECT_EQ(GetParam().look(scene), after) << "call " << at;
    }
}

TEST_P(CrashedCures, KilledAtAnyCallTheUndoIsNotBegunOrCanBeDoneAgain) {
    for (int at = 1; at <= undo_calls; at += CALL_STEP) {
        Scene scene;
        const Cure cure = GetParam().prepare(scene);
        const auto deed = scene.carry_out(cure);
        ASSERT_TRUE(deed);
        const bool killed = gw::test::killed_at(at, [&] { (void)deed->undo(); });
        ASSERT_TRUE(killed || at > undo_calls - UNSTEADY) << at;
        settle(scene);
        expect_old_or_new(scene, at);
        const gw::Outcome undone = deed->undo();
        // What was undone to the end before the process was killed is not there any more.
        if (!undone) {
            EXPECT_EQ(undone.failure().reason, Reason::CHANGED_SINCE)
                << at << ": " << undone.failure().text();
        } else {
            EXPECT_EQ(GetParam().look(scene), before) << "call " << at;
        }
    }
}

TEST_P(CrashedCures, WhatFailsChangesNothing) {
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EACCES}) {
            for (int at = 1; at <= calls; at += CALL_STEP) {
                Scene scene;
                const Cure cure = GetParam().prepare(scene);
                bool succeeded = false;
                {
                    const FileFaults faults(fault, at, error);
                    succeeded = static_cast<bool>(scene.carry_out(cure));
                }
                settle(scene);
                // Where nothing can be written any more, nothing can be taken back either.
                if (fault == FileFaults::Fault::FAIL_FROM_THEN_ON) {
                    expect_old_or_new(scene, at);
                } else {
                    EXPECT_EQ(GetParam().look(scene), succeeded ? after : before)
                        << "call " << at << " of " << calls << ", error " << error;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, CrashedCures, testing::ValuesIn(KINDS),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace

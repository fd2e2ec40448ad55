// SPDX-License-Identifier: MIT
//
// What the tests of the font path store share: a private home directory, private installations, and the fixed
// files, which are restored afterwards.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "fontpath/gw_font_path.h"
#include "support/temp_dir.h"

namespace gw::test {

using Texts = std::vector<std::string>;

inline constexpr const char* MAIN_CONFIG = "/usr/vantor/server/etc/VTconfig";
inline bool is_root() {
    return ::geteuid() == 0;
}

inline void write(const std::string& path, const std::string& bytes) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

/// Limits the size of the files that this process writes. The effect is that of a full disk.
class SmallFiles {
  public:
    explicit SmallFiles(rlim_t bytes) : old_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old);
        const rlimit limited = {bytes, old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~SmallFiles() {
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, old_handler);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;

  private:
    rlimit old{};
    void (*old_handler)(int);
};

class FontPath : public testing::Test {
  protected:
    FontPath() : old_config(TempDir::read_bytes(MAIN_CONFIG)) {
        ::setenv("HOME", home.path().substr(0, home.path().size() - 1).c_str(), 1);
    }
    ~FontPath() override {
        if (is_root()) {
            write(MAIN_CONFIG, old_config);
            std::filesystem::remove_all("/etc/vantor/server");
        }
        ::unlink("/tmp/errors");
    }
    static Texts elements(GWFontPath&& path, int type) { return elements(path, type); }
    static Texts elements(GWFontPath& path, int type) {
        unsigned count = 0;
        Texts all;
        for (const GW_STRING* s : *path.get_fpe_list(static_cast<GWFontPath::TYPE>(type), count))
            all.emplace_back(s->get_str());
        EXPECT_EQ(count, all.size());
        return all;
    }
    /// The font path store of a private installation whose database has the font path `value`.
    std::unique_ptr<GWFontPath> own_store(const std::string& value) {
        write(own_root() + "/server/etc/VTconfig", "XDISPLAY.0.fontpath:\t" + value + "\n");
        return std::make_unique<GWFontPath>(own_root().c_str());
    }
    [[nodiscard]] std::string own_root() const { return home.file("root"); }
    [[nodiscard]] std::string own_config() const {
        return TempDir::read_bytes(own_root() + "/server/etc/VTconfig");
    }
    static std::unique_ptr<GWFontPath> main_store() { return std::make_unique<GWFontPath>("/usr/vantor"); }

    TempDir home;
    std::string old_config;
};

}  // namespace gw::test

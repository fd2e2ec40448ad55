// SPDX-License-Identifier: MIT
#include "package/package_machine.h"

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace gw::test::package {

Outcome run(const std::string& command) {
    FILE* pipe = ::popen(("{ " + command + "\n} 2>&1 </dev/null").c_str(), "r");
    if (pipe == nullptr) return {};
    Outcome outcome;
    std::array<char, 4096> piece{};
    while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), pipe)) {
        outcome.text.append(piece.data(), size);
    }
    const int status = ::pclose(pipe);
    if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
    return outcome;
}

testing::AssertionResult succeeds(const std::string& command) {
    const Outcome outcome = run(command);
    if (outcome.status == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure() << command << " gave " << outcome.status << ":\n" << outcome.text;
}

void write(const std::string& path, const std::string& bytes) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string read(const std::string& path) {
    return TempDir::read_bytes(path);
}

bool is_there(const std::string& path) {
    return fs::exists(fs::symlink_status(path));
}

std::set<std::string> files_below(const std::string& directories) {
    std::set<std::string> files;
    std::istringstream lines(
        run("find " + directories +
            " ! -type d ! -path '/var/cache/*' ! -path '/var/lib/dpkg/*' ! -path '/var/log/*'"
            " ! -name mimeinfo.cache ! -name icon-theme.cache ! -path /etc/mailcap")
            .text);
    for (std::string line; std::getline(lines, line);) files.insert(line);
    return files;
}

std::set<std::string> all_of_installation() {
    std::set<std::string> paths;
    if (!fs::exists(INSTALLATION)) return paths;
    for (const auto& entry : fs::recursive_directory_iterator(INSTALLATION)) paths.insert(entry.path());
    return paths;
}

std::string package_file() {
    for (const auto& entry : fs::directory_iterator(GLYPHWARD_BUILD)) {
        const std::string name = entry.path().filename();
        if (name.starts_with("glyphward_" GLYPHWARD_VERSION "_") && name.ends_with(".deb"))
            return entry.path();
    }
    return GLYPHWARD_BUILD "/glyphward_" GLYPHWARD_VERSION "_?.deb";
}

std::string install_command() {
    return "dpkg --force-unsafe-io -i " + package_file();
}

std::string joined(const std::vector<std::string>& names) {
    std::string path;
    for (const std::string& name : names) path += (path.empty() ? "" : ",") + LINKS + name;
    return path;
}

std::string config_of(const std::string& path) {
    return "XDISPLAY.0.fontpath:\t" + path + '\n';
}

std::string font_path_of(const std::vector<std::string>& names) {
    const auto has = [&](const std::string& element) {
        const std::string name = element.substr(0, element.find('/'));
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    std::vector<std::string> elements;
    for (const char* element :
         {"misc/", "cyrillic/", "100dpi/:unscaled", "75dpi/:unscaled", "Type1/", "100dpi/", "75dpi/"})
        if (has(element)) elements.emplace_back(element);
    return config_of(joined(elements) + (elements.empty() ? "" : ",") + gw::SUPERUSER_FONT_DIR);
}

std::string session(const char* name) {
    return std::string(GLYPHWARD_TREE "/scripts/inside log_in " GLYPHWARD_SESSIONS
                                      " --gtest_color=no "
                                      "--gtest_filter=") +
           name;
}

std::string superusers_session(const char* name) {
    return std::string("SANDBOX_SERVER=xvfb SANDBOX_MANAGER=1 SANDBOX_STOCK_PATH=1 " GLYPHWARD_TREE
                       "/scripts/inside serve " GLYPHWARD_SESSIONS " --gtest_color=no --gtest_filter=") +
           name;
}

void make_fonts(const std::string& dir, const std::vector<std::string>& lines) {
    std::string index = std::to_string(lines.size()) + '\n';
    for (const std::string& line : lines) {
        const std::string file = line.substr(0, line.find(' '));
        write(dir + file, read(HOST_FONTS + "75dpi/" + file));
        index += line + '\n';
    }
    write(dir + "fonts.dir", index);
}

}  // namespace gw::test::package

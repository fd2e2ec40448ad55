// SPDX-License-Identifier: MIT
//
// scripts/web as its user sees it: an address, a browser that opens it, mouse and keyboard in the browser,
// and nothing left behind at the end. The test runs in a sandbox with its own processes and its own loopback
// interface, and makes another sandbox inside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "end_to_end/waiting.h"
#include "support/temp_dir.h"
#include "web/browser.h"
#include "web/child.h"

namespace gw::web {

namespace {

using e2e::follows;
using e2e::wait_until;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr int STARTING = 60;     // seconds
constexpr int LINE_HEIGHT = 18;  // of the program's list, in the fonts of the sandbox
constexpr int FIRST_LINE = 12;

const Key DOWN{"ArrowDown", "ArrowDown", 40};
const Key ALT{"Alt", "AltLeft", 18};
const Key FONTS{"f", "KeyF", 70};
const Key EXIT{"e", "KeyE", 69};

const std::string SCRIPT = std::string(GLYPHWARD_TREE) + "/scripts/web";
const std::string PROGRAM = "/usr/vantor/bin/glyphward";

struct Place {
    int x;  // on the program's screen
    int y;
    int width;
    int height;
};

// All processes of the test's sandbox: the test and what it has started.
std::set<std::string> processes() {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (std::isdigit(static_cast<unsigned char>(name[0])) != 0) found.insert(name);
    }
    return found;
}

// The addresses of the listening sockets in one of the kernel's tables, in the kernel's notation.
std::vector<std::string> listening(const std::string& table) {
    std::vector<std::string> addresses;
    std::istringstream in(table);
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        std::string number;
        std::string local;
        std::string remote;
        std::string state;
        fields >> number >> local >> remote >> state;
        if (state == "0A") addresses.push_back(local);
    }
    return addresses;
}

std::string kernel_table(const std::string& name) {
    return test::TempDir::read_bytes("/proc/net/" + name);
}

std::vector<std::string> left_directories() {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
        if (entry.path().filename().string().starts_with("glyphward-web")) found.push_back(entry.path());
    }
    return found;
}

// A socket that occupies a port of the loopback interface.
class TakenPort {
  public:
    TakenPort() : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* any = reinterpret_cast<sockaddr*>(&address);
        if (::bind(socket_, any, size) != 0 || ::listen(socket_, 1) != 0 ||
            ::getsockname(socket_, any, &size) != 0)
            throw std::system_error(errno, std::generic_category(), "listening");
        number_ = std::to_string(ntohs(address.sin_port));
    }
    ~TakenPort() { ::close(socket_); }
    TakenPort(const TakenPort&) = delete;
    TakenPort& operator=(const TakenPort&) = delete;

    [[nodiscard]] const std::string& number() const { return number_; }

  private:
    int socket_;
    std::string number_;
};

// A run of scripts/web.
class Served {
  public:
    // Runs the shell command in the sandbox that scripts/web makes. `within` reads the files that the command
    // writes to $GLYPHWARD_OUT.
    explicit Served(const std::string& command, const std::string& port = "0",
                    const std::string& user = "--user") {
        // The program may run as another user.
        std::filesystem::permissions(scratch_.path(), std::filesystem::perms::all);
        const std::string out = scratch_.make_dir("out");
        child_.emplace(std::vector<std::string>{SCRIPT, "--port", port, user, "--stage", "--wm", "--out", out,
                                                "--", "sh", "-c", command},
                       scratch_.file("output"));
    }

    [[nodiscard]] Child& child() { return *child_; }
    [[nodiscard]] std::string within(const std::string& file) const { return scratch_.read("out/" + file); }
    // Waits for the address of the page; empty when none is printed.
    [[nodiscard]] std::string address() {
        static const std::regex LINE("(^|\n)(http://[^\n]*)\n");
        std::smatch match;
        std::string said;
        wait_until(
            [&] {
                said = child_->output();
                return std::regex_search(said, match, LINE) || !child_->is_running();
            },
            STARTING);
        return match.empty() ? std::string() : match[2].str();
    }

  private:
    test::TempDir scratch_;
    std::optional<Child> child_;
};

// Runs the program, and beside it a loop that records where the program's parts are and which sockets listen.
const std::string PROGRAM_AND_CLERK =
    "cd $GLYPHWARD_OUT; while sleep 0.1; do"
    " cat /proc/net/tcp /proc/net/tcp6 >listening; xwininfo -root -tree >places.new 2>/dev/null;"
    " mv places.new places; done & exec " +
    PROGRAM;

// The page of scripts/web in a browser.
class Page {
  public:
    explicit Page(const std::string& address) { browser.open(address); }

    [[nodiscard]] bool has(const std::string& style) {
        return browser.evaluate("String(document.documentElement.classList.contains('" + style + "'))") ==
               "true";
    }
    [[nodiscard]] bool is_connected() { return has("noVNC_connected"); }
    [[nodiscard]] bool connects() {
        return wait_until([this] { return is_connected(); }, STARTING);
    }
    // The page's status text: only its letters, digits and blanks.
    [[nodiscard]] std::string status() {
        return browser.evaluate(
            "document.getElementById('noVNC_status').textContent.replace(/[^A-Za-z0-9 ]/g, '')");
    }
    // Whether the server has refused the password, in the words of TigerVNC 1.12 or of 1.15.
    [[nodiscard]] bool is_refused() {
        const std::string reason = status();
        return reason.find("Authentication failure") != std::string::npos ||
               reason.find("Authentication failed") != std::string::npos;
    }
    [[nodiscard]] bool asks_for_password() {
        return browser.evaluate(
                   "String(document.getElementById('noVNC_credentials_dlg').classList.contains('noVNC_open')"
                   ")") == "true";
    }
    // Waits until two looks, some time apart, are the same.
    [[nodiscard]] static bool is_steady(const std::function<std::string()>& look) {
        constexpr int LOOKS = 20;  // with a pause after each
        std::string last;
        int same = 0;
        return wait_until([&] {
            std::string now = look();
            same = now == last ? same + 1 : 0;
            last = std::move(now);
            return same == LOOKS;
        });
    }
    // The width and height of the program's screen.
    [[nodiscard]] std::string size() {
        return browser.evaluate(CANVAS + "canvas.width + 'x' + canvas.height");
    }
    // A checksum of a part of the program's screen; 0 when the part has only one colour.
    [[nodiscard]] std::string drawn(const Place& part) {
        return browser.evaluate(CANVAS + "const bytes = canvas.getContext('2d').getImageData(" +
                                std::to_string(part.x) + "," + std::to_string(part.y) + "," +
                                std::to_string(part.width) + "," + std::to_string(part.height) +
                                ").data; let ink = 0, sum = 0;"
                                "for (let i = 0; i < bytes.length; i += 4) {"
                                "  if (bytes[i] !== bytes[0] || bytes[i + 1] !== bytes[1]) {"
                                "    ink++; sum = (sum * 31 + i) % 4294967291; } }"
                                "String(ink && sum)");
    }
    // Clicks a place of the program's screen. The page may show the screen scaled.
    void click(int x, int y) {
        std::istringstream box(browser.evaluate(CANVAS +
                                                "const box = canvas.getBoundingClientRect();"
                                                "[box.left, box.top, box.width / canvas.width].join(' ')"));
        double left = 0;
        double top = 0;
        double scale = 0;
        box >> left >> top >> scale;
        browser.click(left + x * scale, top + y * scale);
    }

    Browser browser;

  private:
    inline static const std::string CANVAS =
        "const canvas = document.querySelector('#noVNC_container canvas');";
};

// The place of a part of the program on its screen, by the part's name; no value while the part is not there.
std::optional<Place> place_of(const Served& served, const std::string& name) {
    const std::regex line("\"" + name + "\".* ([0-9]+)x([0-9]+)[+-].*\\+(-?[0-9]+)\\+(-?[0-9]+)");
    std::smatch match;
    const std::string places = served.within("places");
    if (!std::regex_search(places, match, line)) return std::nullopt;
    return Place{std::stoi(match[3]), std::stoi(match[4]), std::stoi(match[1]), std::stoi(match[2])};
}

// The inside of the sample field, without the cursor of an empty one.
std::optional<Place> sample_of(const Served& served) {
    constexpr int BORDER = 5;
    constexpr int CURSOR = 12;
    const std::optional<Place> field = place_of(served, "_sample_textfield");
    if (!field) return std::nullopt;
    return Place{field->x + BORDER + CURSOR, field->y + BORDER, field->width - 2 * BORDER - CURSOR,
                 field->height - 2 * BORDER};
}

class WebPage : public ::testing::Test {
  protected:
    // Processes of before may have ended: a browser needs some time to end.
    [[nodiscard]] bool nothing_new_runs() const { return std::ranges::includes(before_, processes()); }

    // Expects that nothing of a run is left: no process, no file, no open port.
    void expect_nothing_left() {
        EXPECT_TRUE(wait_until([this] { return nothing_new_runs(); })) << processes().size() << " processes";
        EXPECT_THAT(left_directories(), IsEmpty());
        EXPECT_THAT(listening(kernel_table("tcp")), IsEmpty());
    }

    std::set<std::string> before_ = processes();
};

TEST_F(WebPage, ShowsTheProgramAndTakesTheMouseAndTheKeyboard) {
    Served served(PROGRAM_AND_CLERK);
    const std::string address = served.address();
    ASSERT_THAT(address, StartsWith("http://127.0.0.1:")) << served.child().output();
    {
        Page page(address);
        ASSERT_TRUE(page.connects()) << page.status();
        EXPECT_EQ(page.size(), "1024x768");
        ASSERT_TRUE(wait_until([&] { return sample_of(served) && place_of(served, "_hrn_list"); }, STARTING));
        ASSERT_TRUE(wait_until([&] { return page.drawn(*place_of(served, "_hrn_list")) != "0"; }));
        // Until the pointer enters the screen, the server draws one in the middle.
        page.click(1000, 740);
        EXPECT_TRUE(wait_until([&] { return page.drawn(*sample_of(served)) == "0"; }));

        // The window manager may still move the window when it is first seen.
        ASSERT_TRUE(page.is_steady([&] { return served.within("places"); }));
        const Place list = *place_of(served, "_hrn_list");
        const auto sample = [&] { return page.drawn(*sample_of(served)); };
        EXPECT_TRUE(follows([&] { return sample() != "0"; },
                            [&] { page.click(list.x + 60, list.y + FIRST_LINE + 3 * LINE_HEIGHT); }));
        ASSERT_TRUE(page.is_steady(sample));
        const std::string by_mouse = sample();
        page.browser.picture("web-mouse");

        // The samples of neighbouring fonts may look the same.
        for (int line = 0; line < 4; ++line) page.browser.type(DOWN);
        EXPECT_TRUE(wait_until([&] { return sample() != by_mouse && sample() != "0"; }));
        page.browser.picture("web-keyboard");

        EXPECT_TRUE(page.is_connected());
        // The menu covers what is above the list.
        const auto above = [&] {
            return page.drawn({list.x, list.y - 5 * LINE_HEIGHT, list.width, 5 * LINE_HEIGHT});
        };
        ASSERT_TRUE(page.is_steady(above));
        const std::string without_menu = above();
        page.browser.press(ALT);
        page.browser.type(FONTS);
        page.browser.release(ALT);
        ASSERT_TRUE(wait_until([&] { return above() != without_menu; }) && page.is_steady(above));
        page.browser.type(EXIT);
        EXPECT_EQ(served.child().wait_for_exit(), 0) << served.child().output();
        EXPECT_TRUE(wait_until([&] { return !page.is_connected(); }));
    }
    expect_nothing_left();
}

TEST_F(WebPage, ListensOnTheLoopbackInterfaceAlone) {
    Served served(PROGRAM_AND_CLERK);
    const std::string address = served.address();
    std::smatch match;
    ASSERT_TRUE(std::regex_search(address, match, std::regex("^http://127\\.0\\.0\\.1:([0-9]+)/")))
        << served.child().output();

    std::ostringstream loopback;
    loopback << "0100007F:" << std::uppercase << std::hex << std::stoi(match[1]);
    EXPECT_THAT(listening(kernel_table("tcp")), ::testing::ElementsAre(StartsWith(loopback.str())));
    EXPECT_THAT(listening(kernel_table("tcp6")), IsEmpty());

    ASSERT_TRUE(
        wait_until([&] { return served.within("listening").find("local_address") != std::string::npos; }));
    EXPECT_THAT(listening(served.within("listening")), IsEmpty());
}

TEST_F(WebPage, RefusesAnotherPassword) {
    Served served("exec " + PROGRAM);
    const std::string address = served.address();
    const std::string start = "&password=";
    const std::size_t at = address.find(start);
    ASSERT_NE(at, std::string::npos) << served.child().output();
    const std::string password = address.substr(at + start.size());
    EXPECT_THAT(password, MatchesRegex("[A-Za-z0-9_-]{8}"));
    std::string other = password;
    other[0] = other[0] == 'a' ? 'b' : 'a';
    {
        Page page(address.substr(0, at) + start + other);
        EXPECT_TRUE(wait_until([&] { return page.is_refused(); })) << page.status();
        EXPECT_FALSE(page.is_connected());

        page.browser.open(address.substr(0, at));
        EXPECT_TRUE(wait_until([&] { return page.asks_for_password(); })) << page.status();
        EXPECT_FALSE(page.is_connected());

        page.browser.open(address);
        EXPECT_TRUE(page.connects()) << page.status();
    }
}

// Each run has its own password.
TEST_F(WebPage, MakesAPasswordForEachRun) {
    const auto password = [](const std::string& address) {
        return address.substr(address.find("password="));
    };
    Served one("exec " + PROGRAM);
    Served other("exec " + PROGRAM);
    const std::string first = one.address();
    const std::string second = other.address();
    ASSERT_THAT(first, HasSubstr("password=")) << one.child().output();
    ASSERT_THAT(second, HasSubstr("password=")) << other.child().output();
    EXPECT_NE(password(first), password(second));
}

class WebPageSignal : public WebPage, public ::testing::WithParamInterface<int> {};

TEST_P(WebPageSignal, LeavesNothingBehind) {
    Served served("exec " + PROGRAM);
    const std::string address = served.address();
    ASSERT_FALSE(address.empty()) << served.child().output();
    ASSERT_THAT(left_directories(), SizeIs(1));
    ASSERT_THAT(listening(kernel_table("tcp")), SizeIs(1));
    {
        Page page(address);  // so that a connection is open when the run ends
        ASSERT_TRUE(page.connects()) << page.status();
        served.child().signal(GetParam());
        EXPECT_EQ(served.child().wait_for_exit(), 128 + GetParam());
        EXPECT_TRUE(wait_until([&] { return !page.is_connected(); }));
    }
    expect_nothing_left();
}

INSTANTIATE_TEST_SUITE_P(Ends, WebPageSignal, ::testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto& signal) { return std::string(::sigabbrev_np(signal.param)); });

// A killed script cannot clean up, but the processes that it has started must end with it.
TEST_F(WebPage, LeavesNoProcessWhenItIsKilled) {
    Served served("exec " + PROGRAM);
    ASSERT_FALSE(served.address().empty()) << served.child().output();
    served.child().signal(SIGKILL);
    EXPECT_TRUE(wait_until([&] { return !served.child().is_running() && nothing_new_runs(); }));
    for (const std::string& directory : left_directories()) std::filesystem::remove_all(directory);
}

TEST_F(WebPage, EndsWithTheStatusOfTheCommand) {
    Served served("exit 7");
    EXPECT_EQ(served.child().wait_for_exit(STARTING), 7) << served.child().output();
    expect_nothing_left();
}

TEST_F(WebPage, RunsAsTheUserThatIsAskedFor) {
    for (const auto& [user, is_root] : {std::pair{"--user", false}, std::pair{"--root", true}}) {
        Served served("id -u >$GLYPHWARD_OUT/who; xset q >$GLYPHWARD_OUT/display", "0", user);
        EXPECT_EQ(served.child().wait_for_exit(STARTING), 0) << served.child().output();
        EXPECT_THAT(served.within("who"), MatchesRegex("[0-9]+\n"));
        EXPECT_EQ(served.within("who") == "0\n", is_root) << user;
        EXPECT_THAT(served.within("display"), HasSubstr("/usr/vantor/lib/X11/fonts/Type1/")) << user;
    }
    expect_nothing_left();
}

TEST_F(WebPage, TellsThatAPortIsTaken) {
    {
        const TakenPort taken;
        Served served("exec " + PROGRAM, taken.number());
        EXPECT_EQ(served.child().wait_for_exit(STARTING), 1);
        EXPECT_THAT(served.child().output(), StartsWith("Port " + taken.number() + " is taken.\n"));
        EXPECT_THAT(served.child().output(), Not(HasSubstr("http:")));
        EXPECT_TRUE(wait_until([this] { return nothing_new_runs(); }));
    }
    expect_nothing_left();
}

TEST_F(WebPage, TakesThePortThatItIsGiven) {
    std::string port;
    {
        const TakenPort free_soon;
        port = free_soon.number();
    }
    Served served("exec " + PROGRAM, port);
    EXPECT_THAT(served.address(), StartsWith("http://127.0.0.1:" + port + "/vnc.html#"))
        << served.child().output();
}

TEST_F(WebPage, RefusesWhatIsNoPort) {
    for (const char* port : {"65536", "-1", "80a", ""}) {
        Served served("exec " + PROGRAM, port);
        EXPECT_EQ(served.child().wait_for_exit(), 1) << port;
        EXPECT_THAT(served.child().output(), StartsWith("\"" + std::string(port) + "\" is no port.\n"));
    }
    expect_nothing_left();
}

// run.sh would build first, which cannot be done here; but it checks its options before that.
class RunScript : public WebPage,
                  public ::testing::WithParamInterface<std::pair<std::vector<std::string>, std::string>> {};

TEST_P(RunScript, RefusesOptionsThatDoNotGoTogether) {
    const test::TempDir scratch;
    std::vector<std::string> command = {std::string(GLYPHWARD_TREE) + "/run.sh"};
    command.insert(command.end(), GetParam().first.begin(), GetParam().first.end());
    Child run(command, scratch.file("output"));
    EXPECT_EQ(run.wait_for_exit(), 1);
    EXPECT_THAT(run.output(), StartsWith(GetParam().second));
}

INSTANTIATE_TEST_SUITE_P(
    Web, RunScript,
    ::testing::Values(std::pair{std::vector<std::string>{"--web", "--port", "65536"},
                                "\"65536\" is no port.\n"},
                      std::pair{std::vector<std::string>{"--web", "--port"}, "--port wants a number.\n"},
                      std::pair{std::vector<std::string>{"--port", "6080"}, "--port is the port of the page"},
                      std::pair{std::vector<std::string>{"--web", "--no-window"}, "--web and --no-window"}));

}  // namespace

}  // namespace gw::web

// SPDX-License-Identifier: MIT
#include "fontpath/xlib_server_view.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <utility>

#include "core/directory.h"
#include "fontpath/asked_server.h"
#include "fontpath/message.h"
#include "fontpath/server_place.h"
#include "platform/child_process.h"

namespace gw {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::size_t LONGEST_ELEMENT = 255;  // that the protocol has room for

// --- the child ---------------------------------------------------------------

/// Keeps the socket and closes everything else: the child must not hold on to our locks, to the windows'
/// connection or to a terminal. Returns the socket.
int keep_only(int socket) {
    constexpr int KEPT = STDERR_FILENO + 1;
    const int nowhere = ::open("/dev/null", O_RDWR);
    const int kept = ::fcntl(socket, F_DUPFD, KEPT);
    const int quiet = ::fcntl(nowhere, F_DUPFD, KEPT);
    for (int fd = 0; fd < KEPT; ++fd) ::dup2(quiet, fd);
    ::dup2(kept, KEPT);
    ::close_range(KEPT + 1, ~0U, 0);
    return KEPT;
}

[[noreturn]] void be_the_child(int socket, const std::string& display) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (const int signal : {SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGALRM, SIGCHLD}) ::signal(signal, SIG_IGN);
    serve_questions(keep_only(socket), display);
}

/// A child process and the socket to it.
class Asker {
  public:
    explicit Asker(const std::string& display) {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
        socket_ = Descriptor(ends[0]);
        const Descriptor theirs(ends[1]);
        child_ = ::fork();
        if (child_ == 0) be_the_child(theirs.get(), display);
    }
    ~Asker() { stop(); }
    Asker(const Asker&) = delete;
    Asker& operator=(const Asker&) = delete;

    [[nodiscard]] bool is_there() const { return child_ > 0; }

    /// The answer; nothing when it does not come within the limit. The child is gone then.
    std::optional<std::string> ask(std::string_view question, milliseconds limit) {
        if (is_there() && send_message(socket_.get(), question)) return answer(limit);
        stop();
        return {};
    }

    /// The same for what the child says without being asked.
    std::optional<std::string> answer(milliseconds limit) {
        const Clock::time_point end = Clock::now() + limit;
        MessageLength length = 0;
        std::string bytes;
        if (receive(reinterpret_cast<char*>(&length), sizeof length, end)) {
            bytes.resize(length);
            if (receive(bytes.data(), bytes.size(), end)) return bytes;
        }
        stop();
        return {};
    }

  private:
    bool receive(char* bytes, std::size_t size, Clock::time_point end) {
        while (size > 0) {
            const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now()).count();
            pollfd socket = {socket_.get(), POLLIN, 0};
            if (left <= 0) return false;
            const int ready = ::poll(&socket, 1, static_cast<int>(left));
            if (ready < 0 && errno == EINTR) continue;
            if (ready <= 0) return false;
            const ssize_t got = ::recv(socket_.get(), bytes, size, MSG_DONTWAIT);
            if (got <= 0) return false;
            bytes += got;
            size -= static_cast<std::size_t>(got);
        }
        return true;
    }

    void stop() {
        if (!is_there()) return;
        ::kill(child_, SIGKILL);
        (void)end_of_killed_child(child_, Clock::now() + LAST_MOMENT);
        child_ = -1;
        socket_ = Descriptor();
    }

    Descriptor socket_;
    pid_t child_ = -1;
};

// --- the view ----------------------------------------------------------------

/// The last two fields of a font's name.
std::string charset_of(const std::string& name) {
    const std::size_t encoding = name.rfind('-');
    if (encoding == std::string::npos || encoding == 0) return {};
    const std::size_t registry = name.rfind('-', encoding - 1);
    return registry == std::string::npos ? std::string() : name.substr(registry + 1);
}

class XlibServerView final : public ServerView {
  public:
    XlibServerView(const std::string& display, milliseconds limit) : limit_(limit), asker_(display) {
        const std::optional<std::string> introduction =
            asker_.is_there() ? asker_.answer(limit_) : std::nullopt;
        if (!introduction) return;
        MessageReader facts(*introduction);
        const bool is_local = facts.number() != 0;
        Peer peer = {static_cast<pid_t>(facts.number()), {}};
        const bool is_user_known = facts.number() != 0;
        const auto user = static_cast<uid_t>(facts.number());
        if (is_user_known) peer.user = user;
        if (is_local) peer_ = peer;
        resolution_ = {static_cast<int>(facts.number()), static_cast<int>(facts.number())};
    }

    /// Whether there was a server at all.
    [[nodiscard]] bool is_connected() const { return asker_.is_there(); }

    bool answers() override { return ask(ServerQuestion::ALIVE).has_value(); }

    ServerPlace place() override {
        if (!place_) place_ = find_place();
        return *place_;
    }
    std::optional<uid_t> user() override { return peer_ ? peer_->user : std::nullopt; }
    std::vector<gid_t> groups() override { return peer_ ? groups_of(peer_->process) : std::vector<gid_t>(); }

    ScreenResolution resolution() override { return resolution_; }

    std::vector<std::string> font_path() override {
        return MessageReader(ask(ServerQuestion::FONT_PATH).value_or("")).texts();
    }

    std::vector<std::string> names(const std::string& pattern, int most) override {
        MessageWriter details;
        details.text(pattern);
        details.number(most);
        const std::optional<std::string> answer = ask(ServerQuestion::NAMES, details);
        return MessageReader(answer ? *answer : std::string_view()).texts();
    }

    std::optional<OpenedFont> open(const std::string& name) override {
        MessageWriter details;
        details.text(name);
        const std::optional<std::string> answer = ask(ServerQuestion::OPEN, details);
        MessageReader facts(answer ? *answer : std::string_view());
        if (facts.number() == 0) return {};
        OpenedFont font;
        font.name = facts.text();
        font.ascent = static_cast<int>(facts.number());
        font.descent = static_cast<int>(facts.number());
        font.max_width = static_cast<int>(facts.number());
        font.characters = facts.number();
        font.has_letters = facts.number() != 0;
        return font;
    }

    OpenedFontset open_fontset(const std::string& base_names) override {
        constexpr int QUESTIONS_OF_A_SET = 3;
        const char* locale = std::setlocale(LC_CTYPE, nullptr);
        MessageWriter details;
        details.text(locale == nullptr ? "C" : locale);
        details.text(base_names);
        const std::optional<std::string> answer =
            ask(ServerQuestion::FONTSET, details, limit_ * QUESTIONS_OF_A_SET);
        MessageReader facts(answer ? *answer : std::string_view());
        OpenedFontset set;
        set.is_usable = facts.number() != 0;
        set.missing_charsets = facts.texts();
        for (const std::string& member : facts.texts()) set.members.push_back({member, charset_of(member)});
        return set;
    }

    Outcome set_font_path(const std::vector<std::string>& elements) override {
        for (const std::string& element : elements) {
            if (element.empty() || element.size() > LONGEST_ELEMENT)
                return Failure{element, Reason::REFUSED_BY_SERVER};
        }
        MessageWriter details;
        details.texts(elements);
        const std::optional<std::string> answer = ask(ServerQuestion::SET_FONT_PATH, details);
        if (!answer) return Failure{"XSetFontPath", Reason::NO_X_SERVER};
        if (MessageReader(*answer).number() == 0)
            return Failure{elements.empty() ? "" : elements.back(), Reason::REFUSED_BY_SERVER};
        return done();
    }

  private:
    std::optional<std::string> ask(ServerQuestion question, const MessageWriter& details = {}) {
        return ask(question, details, limit_);
    }
    std::optional<std::string> ask(ServerQuestion question, const MessageWriter& details,
                                   milliseconds limit) {
        return asker_.ask(static_cast<char>(question) + details.bytes(), limit);
    }

    ServerPlace find_place() {
        if (!peer_) return ServerPlace::ELSEWHERE;
        const PlaceOfProcess server = place_of(peer_->process);
        if (server.is_certain) return server.place;
        return has_files_of_its_own(*this) ? ServerPlace::ELSEWHERE : server.place;
    }

    milliseconds limit_;
    Asker asker_;
    std::optional<Peer> peer_;
    ScreenResolution resolution_;
    std::optional<ServerPlace> place_;
};

}  // namespace

std::unique_ptr<ServerView> connect_to_server(const std::string& display, milliseconds limit) {
    auto view = std::make_unique<XlibServerView>(display, limit);
    if (!view->is_connected()) return nullptr;
    return view;
}

}  // namespace gw

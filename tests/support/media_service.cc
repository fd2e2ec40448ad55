// SPDX-License-Identifier: MIT
#include "support/media_service.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace gw::test {

namespace {

constexpr const char* SERVICE = "org.freedesktop.UDisks2";
constexpr const char* SERVICE_PATH = "/org/freedesktop/UDisks2";
constexpr const char* ADDRESS_VARIABLE = "DBUS_SYSTEM_BUS_ADDRESS";

// One socket and no access rules: everybody who finds the bus may do everything.
std::string bus_configuration(const TempDir& dir) {
    return "<busconfig><listen>unix:path=" + dir.file("socket") + "</listen><servicedir>" +
           dir.file("services") +
           "</servicedir><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
           "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>\n";
}

// The first line that the bus prints, which is its address; empty when the bus ends before.
std::string first_line(int fd) {
    std::string line;
    for (char c = 0; ::read(fd, &c, 1) == 1 && c != '\n';) line += c;
    return line;
}

[[noreturn]] void become_bus(const std::string& configuration, int address_fd) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const std::string address_option = "--print-address=" + std::to_string(address_fd);
    const std::string file_option = "--config-file=" + configuration;
    ::execlp("dbus-daemon", "dbus-daemon", "--nofork", "--nosyslog", "--nopidfile", file_option.c_str(),
             address_option.c_str(), nullptr);
    ::_exit(127);
}

int check(int result, const char* what) {
    if (result < 0) throw std::runtime_error(std::string("the media service of the test: ") + what);
    return result;
}

// Appends the property with `text` as an array of bytes that ends with NUL.
int append_file_name(sd_bus_message* message, const char* property, const std::string& text) {
    int result = sd_bus_message_open_container(message, 'e', "sv");
    if (result >= 0) result = sd_bus_message_append(message, "s", property);
    if (result >= 0) result = sd_bus_message_open_container(message, 'v', "ay");
    if (result >= 0) result = sd_bus_message_append_array(message, 'y', text.c_str(), text.size() + 1);
    if (result >= 0) result = sd_bus_message_close_container(message);
    if (result >= 0) result = sd_bus_message_close_container(message);
    return result;
}

int append_manager(sd_bus_message* reply) {
    return sd_bus_message_append(reply, "{oa{sa{sv}}}", "/org/freedesktop/UDisks2/Manager", 1,
                                 "org.freedesktop.UDisks2.Manager", 2, "Version", "s", "2.9.4",
                                 "SupportedFilesystems", "as", 2, "ext4", "vfat");
}

int append_drive(sd_bus_message* reply, const std::string& path, bool removable, bool has_medium) {
    return sd_bus_message_append(reply, "{oa{sa{sv}}}", path.c_str(), 1, "org.freedesktop.UDisks2.Drive", 6,
                                 "Vendor", "s", "Example", "MediaRemovable", "b", removable ? 1 : 0,
                                 "MediaAvailable", "b", has_medium ? 1 : 0, "Size", "t", std::uint64_t{0},
                                 "MediaCompatibility", "as", 1, "optical_cd", "Configuration", "a{sv}", 0);
}

int append_block_device(sd_bus_message* reply, const std::string& path, const std::string& drive,
                        const std::string& device) {
    int result = sd_bus_message_open_container(reply, 'e', "oa{sa{sv}}");
    if (result >= 0) result = sd_bus_message_append(reply, "o", path.c_str());
    if (result >= 0) result = sd_bus_message_open_container(reply, 'a', "{sa{sv}}");
    if (result >= 0) result = sd_bus_message_open_container(reply, 'e', "sa{sv}");
    if (result >= 0) result = sd_bus_message_append(reply, "s", "org.freedesktop.UDisks2.Block");
    if (result >= 0) result = sd_bus_message_open_container(reply, 'a', "{sv}");
    if (result >= 0) result = append_file_name(reply, "Device", device);
    if (result >= 0) result = sd_bus_message_append(reply, "{sv}", "Drive", "o", drive.c_str());
    if (result >= 0) result = sd_bus_message_append(reply, "{sv}", "Symlinks", "aay", 0);
    for (int open = 0; open < 2 && result >= 0; ++open) result = sd_bus_message_close_container(reply);
    if (result >= 0) {
        result = sd_bus_message_append(reply, "{sa{sv}}", "org.freedesktop.UDisks2.Filesystem", 1,
                                       "MountPoints", "aay", 0);
    }
    for (int open = 0; open < 2 && result >= 0; ++open) result = sd_bus_message_close_container(reply);
    return result;
}

// A drive with a medium and its block device, whose properties have wrong types: texts and numbers instead of
// flags and paths.
int append_other_values(sd_bus_message* reply, const std::string& drive, const std::string& block,
                        const std::string& device) {
    return sd_bus_message_append(reply, "{oa{sa{sv}}}{oa{sa{sv}}}", drive.c_str(), 1,
                                 "org.freedesktop.UDisks2.Drive", 2, "MediaRemovable", "s", "true",
                                 "MediaAvailable", "i", 1, block.c_str(), 1, "org.freedesktop.UDisks2.Block",
                                 2, "Device", "s", device.c_str(), "Drive", "s", drive.c_str());
}

}  // namespace

PrivateBus::PrivateBus(const std::string& activation) {
    const std::string configuration = dir_.write("bus.conf", bus_configuration(dir_));
    dir_.make_dir("services");
    if (!activation.empty()) {
        dir_.write("services/media.service",
                   std::string("[D-BUS Service]\nName=") + SERVICE + "\nExec=" + activation + "\n");
    }
    std::array<int, 2> address_pipe{};
    if (::pipe(address_pipe.data()) != 0) throw std::runtime_error("pipe");
    pid_ = ::fork();
    if (pid_ == 0) become_bus(configuration, address_pipe[1]);
    ::close(address_pipe[1]);
    address_ = first_line(address_pipe[0]);
    ::close(address_pipe[0]);
    if (!address_.empty()) return;
    ::waitpid(pid_, nullptr, 0);
    throw std::runtime_error("dbus-daemon did not start");
}

PrivateBus::~PrivateBus() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
}

SystemBusAddress::SystemBusAddress(const std::string& address) {
    ::setenv(ADDRESS_VARIABLE, address.c_str(), 1);
}

SystemBusAddress::~SystemBusAddress() {
    ::unsetenv(ADDRESS_VARIABLE);
}

MediaService::MediaService(const std::string& address) : bus_(nullptr, sd_bus_close_unref) {
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus), "no memory");
    bus_.reset(bus);
    check(sd_bus_set_address(bus, address.c_str()), "the address");
    check(sd_bus_set_bus_client(bus, 1), "the kind of connection");
    check(sd_bus_start(bus), "no connection");
    const auto callback = [](sd_bus_message* call, void* service, sd_bus_error*) {
        return static_cast<MediaService*>(service)->answer(call);
    };
    check(sd_bus_add_object(bus, nullptr, SERVICE_PATH, callback, this), "the object");
    check(sd_bus_request_name(bus, SERVICE, 0), "the name is taken");
    thread_ = std::thread([this] { serve(); });
}

MediaService::~MediaService() {
    ::shutdown(sd_bus_get_fd(bus_.get()), SHUT_RDWR);  // this wakes the thread
    thread_.join();
}

void MediaService::add_drive(const std::string& name, Kind kind) {
    const std::scoped_lock lock(mutex_);
    drives_[name] = {.kind = kind, .has_medium = false};
}

void MediaService::insert_medium(const std::string& name) {
    const std::scoped_lock lock(mutex_);
    drives_.at(name).has_medium = true;
}

void MediaService::remove_medium(const std::string& name) {
    const std::scoped_lock lock(mutex_);
    drives_.at(name).has_medium = false;
}

void MediaService::serve() {
    for (;;) {
        const int progress = sd_bus_process(bus_.get(), nullptr);
        if (progress < 0) return;
        if (progress == 0 && sd_bus_wait(bus_.get(), UINT64_MAX) < 0) return;
    }
}

int MediaService::answer(sd_bus_message* call) {
    if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.ObjectManager", "GetManagedObjects") <= 0)
        return 0;
    switch (answer_.load()) {
        case Answer::SILENCE:
            return 1;
        case Answer::REFUSAL:
            return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "not for you");
        case Answer::ANOTHER_TYPE:
            return sd_bus_reply_method_return(call, "s", "/dev/sr0");
        case Answer::OBJECTS:
            break;
    }
    sd_bus_message* message = nullptr;
    int result = sd_bus_message_new_method_return(call, &message);
    const std::unique_ptr<sd_bus_message, sd_bus_message* (*)(sd_bus_message*)> reply(message,
                                                                                      sd_bus_message_unref);
    if (result >= 0) result = append_objects(message);
    return result >= 0 ? sd_bus_send(bus_.get(), message, nullptr) : result;
}

int MediaService::append_objects(sd_bus_message* reply) {
    const std::scoped_lock lock(mutex_);
    int result = sd_bus_message_open_container(reply, 'a', "{oa{sa{sv}}}");
    if (result >= 0) result = append_manager(reply);
    for (const auto& [name, drive] : drives_) {
        const std::string drive_path = std::string(SERVICE_PATH) + "/drives/Example_" + name;
        const std::string block_path = std::string(SERVICE_PATH) + "/block_devices/" + name;
        if (result >= 0 && drive.kind == Kind::ODD) {
            result = append_other_values(reply, drive_path, block_path, "/dev/" + name);
            continue;
        }
        if (result >= 0) result = append_block_device(reply, block_path, drive_path, "/dev/" + name);
        if (result >= 0)
            result = append_drive(reply, drive_path, drive.kind == Kind::REMOVABLE, drive.has_medium);
    }
    return result >= 0 ? sd_bus_message_close_container(reply) : result;
}

}  // namespace gw::test

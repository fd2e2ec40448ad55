// SPDX-License-Identifier: MIT
//
// The service lists its objects as a dictionary of dictionaries (signature "a{oa{sa{sv}}}"): object path,
// interface, property, value. A block device (/dev/sr0) names the drive that it belongs to, and the drive
// knows whether there is a medium. Other properties, and properties of an unexpected type, are skipped.
#include "platform/media_manager.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr auto PATIENCE = std::chrono::seconds(2);

constexpr const char* BUS = "org.freedesktop.DBus";
constexpr const char* BUS_PATH = "/org/freedesktop/DBus";
constexpr const char* SERVICE = "org.freedesktop.UDisks2";
constexpr const char* SERVICE_PATH = "/org/freedesktop/UDisks2";
constexpr std::string_view DRIVE = "org.freedesktop.UDisks2.Drive";
constexpr std::string_view BLOCK = "org.freedesktop.UDisks2.Block";

struct BusCloser {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }  // flushing might wait for ever
};
struct MessageReleaser {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, MessageReleaser>;

// One connection to the bus, which lasts no longer than `PATIENCE`.
class SystemBus {
  public:
    SystemBus() {
        sd_bus* bus = nullptr;
        if (sd_bus_open_system(&bus) < 0) return;
        bus_.reset(bus);
        if (!wait_until_ready()) bus_.reset();
    }

    /// The reply to a method without arguments; null when it is an error or does not come in time.
    [[nodiscard]] Message call(const char* destination, const char* path, const char* interface,
                               const char* method) const {
        const std::uint64_t left = time_left();
        if (bus_ == nullptr || left == 0) return nullptr;
        sd_bus_set_method_call_timeout(bus_.get(), left);
        sd_bus_message* reply = nullptr;
        if (sd_bus_call_method(bus_.get(), destination, path, interface, method, nullptr, &reply, nullptr) <
            0)
            return nullptr;
        return Message(reply);
    }

  private:
    // A method call would finish the connection by itself, but it waits 90 s for a silent bus, whatever its
    // own time-out is.
    bool wait_until_ready() {
        while (sd_bus_is_ready(bus_.get()) == 0) {
            const std::uint64_t left = time_left();
            if (left == 0) return false;
            const int progress = sd_bus_process(bus_.get(), nullptr);
            if (progress < 0) return false;
            if (progress > 0) continue;
            if (const int waited = sd_bus_wait(bus_.get(), left); waited < 0 && waited != -EINTR)
                return false;
        }
        return sd_bus_is_ready(bus_.get()) > 0;
    }

    // In microseconds, the unit of the bus library; 0 when the time is over.
    [[nodiscard]] std::uint64_t time_left() const {
        const auto left = std::chrono::duration_cast<microseconds>(end_ - steady_clock::now());
        return static_cast<std::uint64_t>(std::max(left, microseconds::zero()).count());
    }

    steady_clock::time_point end_ = steady_clock::now() + PATIENCE;
    std::unique_ptr<sd_bus, BusCloser> bus_;
};

// Walks the dictionary at the current place of the message. `signature` is that of an entry, and `read_value`
// is called with each key and consumes the value. False when the message is broken or has something else
// here.
template <class ReadValue>
bool read_dictionary(sd_bus_message* message, const std::string& signature, ReadValue read_value) {
    if (sd_bus_message_enter_container(message, 'a', ("{" + signature + "}").c_str()) <= 0) return false;
    int more = 0;
    while ((more = sd_bus_message_enter_container(message, 'e', signature.c_str())) > 0) {
        const char* key = nullptr;
        if (sd_bus_message_read_basic(message, signature[0], &key) <= 0 || !read_value(key)) return false;
        if (sd_bus_message_exit_container(message) < 0) return false;
    }
    return more == 0 && sd_bus_message_exit_container(message) >= 0;
}

bool holds(sd_bus_message* variant, std::string_view type) {
    const char* contents = nullptr;
    return sd_bus_message_peek_type(variant, nullptr, &contents) > 0 && contents != nullptr &&
           contents == type;
}

bool pass_over(sd_bus_message* variant) {
    return sd_bus_message_skip(variant, "v") >= 0;
}

bool read_flag(sd_bus_message* variant, bool& flag) {
    if (!holds(variant, "b")) return pass_over(variant);
    int value = 0;
    if (sd_bus_message_read(variant, "v", "b", &value) < 0) return false;
    flag = value != 0;
    return true;
}

bool read_object_path(sd_bus_message* variant, std::string& path) {
    if (!holds(variant, "o")) return pass_over(variant);
    const char* value = nullptr;
    if (sd_bus_message_read(variant, "v", "o", &value) < 0) return false;
    path = value;
    return true;
}

// The service gives file names as arrays of bytes that end with NUL.
bool read_file_name(sd_bus_message* variant, std::string& name) {
    if (!holds(variant, "ay")) return pass_over(variant);
    const void* bytes = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_enter_container(variant, 'v', "ay") < 0 ||
        sd_bus_message_read_array(variant, 'y', &bytes, &size) < 0 ||
        sd_bus_message_exit_container(variant) < 0)
        return false;
    const std::string_view text(static_cast<const char*>(bytes), size);
    name = text.substr(0, text.find('\0'));
    return true;
}

struct Object {
    std::string path;
    bool has_changeable_media = false;  // of a drive
    bool has_medium = false;            // of a drive
    std::string device;                 // of a block device
    std::string drive;                  // of a block device: the path of its drive
};

bool read_property(sd_bus_message* message, std::string_view interface, std::string_view property,
                   Object& object) {
    if (interface == DRIVE && property == "MediaRemovable")
        return read_flag(message, object.has_changeable_media);
    if (interface == DRIVE && property == "MediaAvailable") return read_flag(message, object.has_medium);
    if (interface == BLOCK && property == "Device") return read_file_name(message, object.device);
    if (interface == BLOCK && property == "Drive") return read_object_path(message, object.drive);
    return pass_over(message);
}

// All objects of the service; none when the message is broken or has another form.
std::vector<Object> read_objects(sd_bus_message* message) {
    std::vector<Object> objects;
    const bool whole = read_dictionary(message, "oa{sa{sv}}", [&](const char* path) {
        Object& object = objects.emplace_back();
        object.path = path;
        return read_dictionary(message, "sa{sv}", [&](const char* interface) {
            return read_dictionary(message, "sv", [&](const char* property) {
                return read_property(message, interface, property, object);
            });
        });
    });
    if (!whole) objects.clear();
    return objects;
}

// Whether the service is in one of the bus's lists of names.
bool is_listed(const SystemBus& bus, const char* list) {
    const Message reply = bus.call(BUS, BUS_PATH, BUS, list);
    if (reply == nullptr || sd_bus_message_enter_container(reply.get(), 'a', "s") < 0) return false;
    const char* name = nullptr;
    while (sd_bus_message_read_basic(reply.get(), 's', &name) > 0) {
        if (std::string_view(name) == SERVICE) return true;
    }
    return false;
}

}  // namespace

int media_manager_running() {
    const SystemBus bus;
    return is_listed(bus, "ListNames") || is_listed(bus, "ListActivatableNames") ? 1 : 0;
}

int media_manager_check(const char* device) {
    const Message reply =
        SystemBus().call(SERVICE, SERVICE_PATH, "org.freedesktop.DBus.ObjectManager", "GetManagedObjects");
    if (reply == nullptr) return 0;
    const std::vector<Object> objects = read_objects(reply.get());
    const auto is_asked_for = [&](const Object& drive) {
        return device == nullptr || std::ranges::any_of(objects, [&](const Object& block) {
                   return block.device == device && block.drive == drive.path;
               });
    };
    return std::ranges::any_of(objects, [&](const Object& drive) {
        return drive.has_changeable_media && drive.has_medium && is_asked_for(drive);
    });
}

// SPDX-License-Identifier: MIT
//
// A private message bus and a removable-media service, for tests of the code that asks the host's. A program
// finds the bus through DBUS_SYSTEM_BUS_ADDRESS. Both end with the test.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "support/temp_dir.h"

struct sd_bus;
struct sd_bus_message;

namespace gw::test {

/// A dbus-daemon with its socket and its configuration in a private directory.
class PrivateBus {
  public:
    /// Starts the bus and waits until it accepts connections. With an `activation` command (as in a .service
    /// file) the bus can start the media service.
    explicit PrivateBus(const std::string& activation = {});
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }

  private:
    TempDir dir_;
    pid_t pid_ = -1;
    std::string address_;
};

/// While this object exists, this process and its children find the system bus at another address.
class SystemBusAddress {
  public:
    explicit SystemBusAddress(const std::string& address);
    ~SystemBusAddress();
    SystemBusAddress(const SystemBusAddress&) = delete;
    SystemBusAddress& operator=(const SystemBusAddress&) = delete;
};

/// The media service: a thread that lists drives as UDisks2 does. It starts with none.
class MediaService {
  public:
    enum class Answer {
        OBJECTS,       ///< the drives and their block devices
        SILENCE,       ///< none, ever
        REFUSAL,       ///< an error
        ANOTHER_TYPE,  ///< a text instead of a dictionary
    };

    enum class Kind {
        REMOVABLE,  ///< the medium can be changed
        FIXED,      ///< a hard disk
        ODD,        ///< removable, but no property has the type that it should have
    };

    /// Connects to the bus at `address` and requests the service's name.
    explicit MediaService(const std::string& address);
    ~MediaService();
    MediaService(const MediaService&) = delete;
    MediaService& operator=(const MediaService&) = delete;

    /// Adds an empty drive of the block device /dev/`name`.
    void add_drive(const std::string& name, Kind kind = Kind::REMOVABLE);
    void insert_medium(const std::string& name);
    void remove_medium(const std::string& name);
    void set_answer(Answer answer) { answer_ = answer; }

  private:
    struct Drive {
        Kind kind = Kind::REMOVABLE;
        bool has_medium = false;
    };

    int answer(sd_bus_message* call);
    int append_objects(sd_bus_message* reply);
    void serve();

    std::atomic<Answer> answer_ = Answer::OBJECTS;
    std::mutex mutex_;  // guards the drives
    std::map<std::string, Drive> drives_;
    std::unique_ptr<sd_bus, sd_bus* (*)(sd_bus*)> bus_;
    std::thread thread_;
};

}  // namespace gw::test

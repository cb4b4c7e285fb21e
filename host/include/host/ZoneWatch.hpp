#pragma once

#include <filesystem>
#include <string>

#include "foundation/FileDescriptor.hpp"

namespace zelto::host {

/// Notices that the computer was given another time zone, or other data of all zones: `fd` is readable when
/// something in the folder of its setting, or of the data, has changed.
class ZoneWatch {
  public:
    explicit ZoneWatch(
        const std::filesystem::path& setting = "/etc/localtime",
        const std::filesystem::path& data = "/usr/share/zoneinfo");

    struct Changes {
        bool setting = false;  // the setting itself
        bool data = false;     // any file in the folder of the data: an upgrade replaces many, one by one
    };
    int fd() const { return events_.get(); }
    /// What has changed since the last call.
    Changes take();

  private:
    std::string name_;
    FileDescriptor events_;
    int data_;
};

}  // namespace zelto::host

#pragma once

#include <filesystem>
#include <string>

#include "platform/foundation/FileDescriptor.hpp"

namespace zelto::host {

/// Notices that the computer was given another time zone: `fd` is readable when something in the folder of
/// its setting has changed.
class ZoneWatch {
  public:
    explicit ZoneWatch(const std::filesystem::path& setting = "/etc/localtime");

    int fd() const { return events_.get(); }
    /// Whether the setting itself was among what changed.
    bool take();

  private:
    std::string name_;
    FileDescriptor events_;
};

}  // namespace zelto::host

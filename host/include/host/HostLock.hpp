#pragma once

#include <chrono>
#include <filesystem>

#include "foundation/FileDescriptor.hpp"

namespace zelto::host {

/// Held by the one host that writes the files of a configuration folder, with a message bus or without; gone
/// with this object, or with the process.
class HostLock {
  public:
    /// Of a folder, which is made if need be. Where there is no place for a lock, nothing can be written
    /// either, and it counts as held.
    /// One that is about to end may have it for a while still.
    explicit HostLock(const std::filesystem::path& folder, std::chrono::milliseconds patience = {});

    /// False when another process has it.
    bool isHeld() const { return isHeld_; }

  private:
    FileDescriptor file_;
    bool isHeld_ = true;
};

}  // namespace zelto::host

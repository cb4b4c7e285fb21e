#pragma once

#include <optional>

#include "foundation/Date.hpp"
#include "foundation/FileDescriptor.hpp"

namespace zelto::runloop {

/// An alarm by the wall clock, which also goes off when that clock is set or the computer wakes up: `fd` is
/// then readable.
class WallTimer {
  public:
    WallTimer();

    /// False when the kernel had none to give: it never goes off then.
    bool works() const { return static_cast<bool>(timer_); }
    int fd() const { return timer_.get(); }
    /// Replaces the alarm; without an instant only a set clock makes it go off.
    void arm(std::optional<Date> instant);

    enum class Event { none, expired, clockSet };
    /// What made it go off. After a set clock it must be armed anew.
    Event take();

  private:
    FileDescriptor timer_;
    bool wasSet_ = false;
};

}  // namespace zelto::runloop

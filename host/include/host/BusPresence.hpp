#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/DesktopInterface.hpp"
#include "runloop/Backoff.hpp"
#include "runloop/Log.hpp"
#include "runloop/MainLoop.hpp"

namespace zelto::host {

/// The host's service on its message bus: offered again whenever the bus has gone away and come back. For the
/// thread of the main loop.
class BusPresence {
  public:
    BusPresence(bus::Address address, DesktopActions actions, runloop::Log log);

    /// Offers the service; the reason when that fails. Nothing is tried again then.
    bus::Result<void> join();
    /// Tries until it succeeds.
    void rejoin();
    void leave();
    /// Whether anybody sees a widget, which an app that feeds them may want to know.
    void setSeen(bool isSeen);

    /// Seconds between two attempts.
    static constexpr double firstPause = 0.5, longestPause = 60;

  private:
    void tryAgain();

    bus::Address address_;
    /// Read on the bus's thread.
    std::shared_ptr<std::atomic<bool>> isSeen_ = std::make_shared<std::atomic<bool>>(true);
    DesktopActions actions_;
    runloop::Log log_;
    std::optional<bus::Listener> listener_;
    runloop::Backoff backoff_{firstPause, longestPause};
    runloop::MainSource retry_;
    std::string why_;  // the last attempt failed
};

}  // namespace zelto::host

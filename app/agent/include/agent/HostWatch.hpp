#pragma once

#include <functional>
#include <vector>

#include "bus/Client.hpp"

namespace zelto::agent {

/// The program that shows the widgets, as the bus tells of it. For the main thread.
class HostWatch {
  public:
    HostWatch(bus::Client& sessionBus, std::function<void()> changed);
    HostWatch(const HostWatch&) = delete;
    HostWatch& operator=(const HostWatch&) = delete;

    /// Somebody shows widgets, and somebody sees them; a host that does not say so is seen.
    bool isSeen() const { return isThere_ && isSeen_; }
    bool isThere() const { return isThere_; }
    /// Has a host that does not watch the snapshot's file take its news.
    void tell();

  private:
    void took(const bus::Data::Map& properties);

    bus::Client& bus_;
    const std::function<void()> changed_;
    bool isThere_ = false, isSeen_ = true, watchesFiles_ = false, isKnown_ = false;
    std::vector<bus::Client::Subscription> subscriptions_;
};

}  // namespace zelto::agent

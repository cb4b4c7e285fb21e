#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "bus/Client.hpp"
#include "sources/Power.hpp"

namespace zelto::sources {

/// The batteries as the power daemon (UPower) tells them, followed by its signals. For the main thread.
class PowerWatch {
  public:
    /// `changed` is called when something of what `reading` tells is another.
    PowerWatch(bus::Client& systemBus, std::function<void()> changed);
    PowerWatch(const PowerWatch&) = delete;
    PowerWatch& operator=(const PowerWatch&) = delete;

    /// Absent until the daemon has told everything, and while it is not there. What is kept in the kernel's
    /// files (`control`) is not in it.
    std::optional<PowerReading> reading() const;

  private:
    void daemonChanged(bool isThere);
    void enumerate();
    void ask(const std::string& path);
    void took(const bus::Signal& signal);

    bus::Client& bus_;
    const std::function<void()> changed_;
    bool isThere_ = false;
    std::optional<bool> isOnBattery_;
    /// The devices by path; one that has not answered yet is empty.
    std::optional<std::map<std::string, bus::Data::Map>> devices_;
    /// What an answer belongs to: one to an earlier question is passed over.
    unsigned round_ = 0;
    std::vector<bus::Client::Subscription> subscriptions_;
};

}  // namespace zelto::sources

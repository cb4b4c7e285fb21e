#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "bus/Address.hpp"
#include "bus/Interface.hpp"

namespace zelto::bus {

struct ListenerOptions {
    Address address;
    Interface interface;
    /// The users who may call; others get an access error, and nothing runs.
    std::vector<uid_t> trusted;
    /// Carries a call over to the thread on which the interface's functions are to run; they run on the
    /// listener's own without it.
    std::function<void(std::function<void()>)> dispatch = {};
    /// The caller is told so when an answer takes longer.
    std::chrono::milliseconds deadline{10'000};
    /// Called once, on the listener's thread, when the bus has gone away or the name was lost.
    std::function<void()> lost = {};
};

/// The offering side of a service: takes its name on the bus and answers calls until this object goes away.
class Listener {
  public:
    static Result<Listener> start(ListenerOptions options);
    Listener(Listener&&) noexcept;
    Listener& operator=(Listener&&) noexcept;
    ~Listener();

    /// Tells everybody on the bus that a property has another value.
    void changed(std::string_view property);
    /// Sends one of the interface's signals, whose arguments are of the types that it describes.
    void send(std::string_view signal, const Values& arguments);

  private:
    struct State;
    explicit Listener(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

}  // namespace zelto::bus

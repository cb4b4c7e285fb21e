#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/xpc/Bus.hpp"
#include "platform/xpc/Interface.hpp"

namespace zelto::xpc {

/// The caller's side of a service. Reaches the bus with the first call, and again after the bus or the other
/// side was started anew. For one thread at a time.
class Connection {
  public:
    Connection(Bus bus, Interface interface);
    Connection(Connection&&) noexcept;
    ~Connection();

    /// Calls a method and waits for its results, at most until the deadline. Never raises.
    Result<Values> call(
        const std::string& method, const Values& arguments, std::chrono::milliseconds deadline);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto::xpc

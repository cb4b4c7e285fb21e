#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

#include "platform/foundation/ReplyBlock.hpp"
#include "platform/xpc/Bus.hpp"
#include "platform/xpc/Interface.hpp"

namespace zelto::xpc {

/// What a call gets back.
using Answer = ReplyBlock<Result<Values>>;

struct ListenerOptions {
    Bus bus;
    Interface interface;
    /// The users who may call; others get an access error, and nothing runs.
    std::vector<uid_t> trusted;
    /// Gets each call of a trusted user with arguments of the method's kinds, on the listener's own thread.
    /// May answer later, from any thread.
    std::function<void(const std::string& method, Values arguments, Answer answer)> handler;
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
    ~Listener();

  private:
    struct State;
    explicit Listener(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

}  // namespace zelto::xpc

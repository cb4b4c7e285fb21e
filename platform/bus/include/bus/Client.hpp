#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "bus/Address.hpp"
#include "bus/Data.hpp"
#include "bus/Interface.hpp"

namespace zelto::bus {

/// A method of another program's object; its interface is told apart from the program's name.
struct Target {
    std::string service, path, interface, method;
};

/// Which signals are meant; what is empty may be any.
struct SignalMatch {
    std::string service, path, interface, name;
};

struct Signal {
    std::string path, interface, name;
    Data arguments;  // a list
};

/// Other programs' interfaces, asked and followed from the thread that runs the main loop: nothing here
/// waits. Reaches the bus when it is first wanted, and again, with pauses, as long as somebody follows
/// something. One that has gone calls nobody any more.
class Client {
  public:
    explicit Client(Address address);
    Client(Client&&) noexcept;
    ~Client();

    using Reply = std::function<void(const Result<Data>& results)>;
    /// Calls a method with arguments of the types that `signature` tells, such as "(ss)"; replies with the
    /// list of its results. Arguments that are not of those types, and no answer until the deadline, are
    /// faults. `startsService` lets the bus start the program.
    void call(
        const Target& target, const std::string& signature, Data::List arguments, Reply reply,
        std::chrono::milliseconds deadline = std::chrono::seconds(10), bool startsService = false);

    /// Ends what it stands for when it goes away.
    using Subscription = std::shared_ptr<void>;
    [[nodiscard]] Subscription follow(SignalMatch match, std::function<void(const Signal&)> came);
    /// Tells whether a name has an owner: once it is known, and whenever that changes. Another owner is a
    /// gone one and one that came.
    [[nodiscard]] Subscription watch(const std::string& name, std::function<void(bool isThere)> changed);

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace zelto::bus

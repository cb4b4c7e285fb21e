#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "bus/Address.hpp"
#include "bus/Interface.hpp"

namespace zelto::bus {

/// The caller's side of a service. Reaches the bus with the first call, and again after the bus or the other
/// side was started anew. For one thread at a time.
class Connection {
  public:
    Connection(Address address, std::string service);
    Connection(Connection&&) noexcept;
    ~Connection();

    /// Calls a method and waits for its results, at most until the deadline. Never raises.
    Result<Values> call(
        const std::string& method, const Values& arguments, std::chrono::milliseconds deadline);

    /// The same for a method whose one result is a T; void for one that has none.
    template <class T, Travels... Arguments>
    Result<T> call(const std::string& method, std::chrono::milliseconds deadline, Arguments... arguments) {
        auto values = call(method, Values{std::move(arguments)...}, deadline);
        if (!values) return std::move(values).fault();
        if constexpr (std::is_void_v<T>) {
            if (values->empty()) return {};
        } else {
            if (values->size() == 1)
                if (auto* value = std::get_if<T>(&values->front())) return std::move(*value);
        }
        return Error{ErrorKind::badPayload, "an answer of another shape than the method has"};
    }

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto::bus

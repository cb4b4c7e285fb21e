#pragma once

#include <string>
#include <utility>

namespace zelto::xpc {

/// Which message bus is meant.
class Bus {
  public:
    static Bus system() { return Bus(Kind::system, {}); }
    /// The user's own.
    static Bus session() { return Bus(Kind::session, {}); }
    /// By an address such as "unix:path=…".
    static Bus at(std::string address) { return Bus(Kind::address, std::move(address)); }

    enum class Kind { system, session, address };
    Kind kind() const { return kind_; }
    const std::string& address() const { return address_; }

  private:
    Bus(Kind kind, std::string address) : kind_(kind), address_(std::move(address)) {}

    Kind kind_;
    std::string address_;
};

}  // namespace zelto::xpc

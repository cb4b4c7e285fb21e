#pragma once

#include <string>
#include <utility>

namespace zelto::bus {

/// Which message bus is meant.
class Address {
  public:
    static Address system() { return Address(Kind::system, {}); }
    /// The user's own.
    static Address session() { return Address(Kind::session, {}); }
    /// By an address such as "unix:path=…".
    static Address at(std::string text) { return Address(Kind::text, std::move(text)); }

    enum class Kind { system, session, text };
    Kind kind() const { return kind_; }
    const std::string& text() const { return text_; }

  private:
    Address(Kind kind, std::string text) : kind_(kind), text_(std::move(text)) {}

    Kind kind_;
    std::string text_;
};

}  // namespace zelto::bus

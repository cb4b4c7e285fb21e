#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "foundation/FileDescriptor.hpp"

namespace zelto::bus {

/// What other programs' interfaces send, as a tree: integers of all widths are one or the other of two,
/// object paths are texts, arrays and structures are lists. Reading is lenient: what is of another type, or
/// is not there, is absent.
class Data {
  public:
    using List = std::vector<Data>;
    /// A dictionary whose keys are texts.
    using Map = std::map<std::string, Data>;
    /// A descriptor that came with the message; the copies share it.
    using Descriptor = std::shared_ptr<FileDescriptor>;

    Data() = default;
    Data(bool value) : value_(value) {}
    Data(std::int64_t value) : value_(value) {}
    Data(int value) : value_(std::int64_t{value}) {}
    Data(std::uint64_t value) : value_(value) {}
    Data(double value) : value_(value) {}
    Data(std::string value) : value_(std::move(value)) {}
    Data(const char* value) : value_(std::string(value)) {}
    Data(List value) : value_(std::move(value)) {}
    Data(Map value) : value_(std::move(value)) {}
    Data(Descriptor value) : value_(std::move(value)) {}

    std::optional<bool> flag() const { return get<bool>(); }
    std::optional<std::string> text() const { return get<std::string>(); }
    /// Any integer that has room.
    std::optional<std::int64_t> integer() const;
    /// A finite number, integers included.
    std::optional<double> number() const;
    /// Null where there is none.
    Descriptor descriptor() const { return get<Descriptor>().value_or(nullptr); }
    /// Empty where it is none.
    const List& list() const;
    const Map& map() const;
    /// An element or a member; nothing where there is none.
    const Data& operator[](std::size_t index) const;
    const Data& operator[](std::string_view key) const;

    using Content = std::variant<
        std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, List, Map, Descriptor>;
    const Content& content() const { return value_; }

  private:
    template <class T>
    std::optional<T> get() const {
        const T* value = std::get_if<T>(&value_);
        return value ? std::optional(*value) : std::nullopt;
    }

    Content value_;
};

}  // namespace zelto::bus

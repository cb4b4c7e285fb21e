#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace zelto {

/// Why something failed.
struct Fault {
    /// Where: "battery.limit", "clips[1].id", "line 1, column 214"; empty where the reason says it all.
    std::string path = {};
    /// What: "missing", "expected an integer, found 80.5".
    std::string reason = {};

    std::string text() const { return path.empty() ? reason : path + ": " + reason; }
    bool operator==(const Fault&) const = default;
};

/// A value, or why there is none. The shape is that of C++23's std::expected; asking for what is not there
/// raises an exception. A result that nobody holds gives its content away by value, so that
/// `for (auto& x : f().value())` walks over something that lives.
template <class T, class F = Fault>
class [[nodiscard]] Result {
  public:
    Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
    Result(F fault) : content_(std::in_place_index<1>, std::move(fault)) {}

    bool has_value() const { return content_.index() == 0; }
    explicit operator bool() const { return has_value(); }

    T& value() & { return std::get<0>(content_); }
    const T& value() const& { return std::get<0>(content_); }
    T value() && { return std::get<0>(std::move(content_)); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T operator*() && { return std::move(*this).value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

    F& fault() & { return std::get<1>(content_); }
    const F& fault() const& { return std::get<1>(content_); }
    F fault() && { return std::get<1>(std::move(content_)); }

  private:
    std::variant<T, F> content_;
};

/// Success without a value, or why there is none.
template <class F>
class [[nodiscard]] Result<void, F> {
  public:
    Result() = default;
    Result(F fault) : fault_(std::move(fault)) {}

    bool has_value() const { return !fault_.has_value(); }
    explicit operator bool() const { return has_value(); }

    F& fault() & { return fault_.value(); }
    const F& fault() const& { return fault_.value(); }
    F fault() && { return std::move(fault_).value(); }

  private:
    std::optional<F> fault_;
};

}  // namespace zelto

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Record.hpp"

namespace zelto::ui {

/// Bytes that travel as base64 text.
struct Bytes {
    std::vector<std::uint8_t> bytes;

    static std::optional<Bytes> parse(std::string_view base64);
    std::string text() const;
    void appendText(std::string& out) const { out += text(); }
    bool operator==(const Bytes&) const = default;
};

}  // namespace zelto::ui

template <>
struct zelto::TokenName<zelto::ui::Bytes> {
    static constexpr std::string_view name = "base64 text";
};

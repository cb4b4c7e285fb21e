#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

/// A 128-bit identifier. Its text is upper-case hexadecimal in 8-4-4-4-12 groups.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    /// A fresh version 4 identifier, drawn from the kernel's random source.
    static UUID random();
    static constexpr UUID nil() { return {}; }
    /// Exactly 36 characters, either case; anything else is absent.
    static std::optional<UUID> parse(std::string_view text);

    std::string text() const;
    void appendText(std::string& out) const;
    bool operator==(const UUID&) const = default;
};

}  // namespace zelto

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

/// Bytes; in JSON, base64 text.
struct Bytes {
    std::vector<std::uint8_t> bytes;

    static Bytes of(std::string_view content) { return {{content.begin(), content.end()}}; }
    std::string content() const { return {bytes.begin(), bytes.end()}; }

    static std::optional<Bytes> parse(std::string_view base64);
    std::string text() const;
    void appendText(std::string& out) const { out += text(); }
    bool operator==(const Bytes&) const = default;
};

}  // namespace zelto

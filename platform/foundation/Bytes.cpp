#include "foundation/Bytes.hpp"

#include <array>

namespace zelto {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr auto values = [] {
    std::array<std::int8_t, 256> table{};
    table.fill(-1);
    for (std::size_t i = 0; i < alphabet.size(); ++i)
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::int8_t>(i);
    return table;
}();

}  // namespace

std::optional<Bytes> Bytes::parse(std::string_view base64) {
    if (base64.size() % 4 != 0) return std::nullopt;
    const std::size_t padding = base64.ends_with("==") ? 2 : base64.ends_with('=') ? 1 : 0;
    Bytes out;
    out.bytes.reserve(base64.size() / 4 * 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < base64.size(); ++i) {
        const bool isPadding = i >= base64.size() - padding;
        const int value = isPadding ? 0 : values[static_cast<unsigned char>(base64[i])];
        if (value < 0) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        if (i % 4 == 3)
            for (const int shift : {16, 8, 0}) out.bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
    }
    // The bits that padding cuts off must be zero, so that each sequence of bytes has one text.
    for (std::size_t i = 0; i < padding; ++i) {
        if (out.bytes.back() != 0) return std::nullopt;
        out.bytes.pop_back();
    }
    return out;
}

std::string Bytes::text() const {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t left = bytes.size() - i;
        const std::uint32_t bits = static_cast<std::uint32_t>(bytes[i]) << 16 |
                                   static_cast<std::uint32_t>(left > 1 ? bytes[i + 1] : 0) << 8 |
                                   static_cast<std::uint32_t>(left > 2 ? bytes[i + 2] : 0);
        out += alphabet[bits >> 18];
        out += alphabet[bits >> 12 & 63];
        out += left > 1 ? alphabet[bits >> 6 & 63] : '=';
        out += left > 2 ? alphabet[bits & 63] : '=';
    }
    return out;
}

}  // namespace zelto

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ui/Nodes.hpp"

namespace zelto::pictures {

// What is said over the socket between who wants pictures and the picture process, a packet each.

struct PictureRequest {
    std::uint64_t id = 0;
    std::string path;
};
struct PictureReply {
    std::uint64_t id = 0;
    std::optional<ui::node::Image> picture = {};
};

/// No packet is longer.
inline constexpr std::size_t longestPacket = std::size_t{32} << 10;

std::string encode(const PictureRequest& request);
std::string encode(const PictureReply& reply);
/// Absent for what is no such packet: neither side trusts the other.
std::optional<PictureRequest> decodeRequest(std::string_view packet);
std::optional<PictureReply> decodePictureReply(std::string_view packet);

}  // namespace zelto::pictures

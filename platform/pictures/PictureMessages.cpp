#include "PictureMessages.hpp"

#include <cstring>

#include "pictures/PictureProcess.hpp"

namespace zelto::pictures {
namespace {

/// A path that the kernel would take.
constexpr std::size_t longestPath = 4096;

void append(std::string& packet, std::uint64_t number) {
    char bytes[sizeof(number)];
    std::memcpy(bytes, &number, sizeof(number));
    packet.append(bytes, sizeof(number));
}

std::optional<std::uint64_t> take(std::string_view& packet) {
    std::uint64_t number = 0;
    if (packet.size() < sizeof(number)) return std::nullopt;
    std::memcpy(&number, packet.data(), sizeof(number));
    packet.remove_prefix(sizeof(number));
    return number;
}

}  // namespace

std::string encode(const PictureRequest& request) {
    std::string packet;
    append(packet, request.id);
    return packet + request.path;
}

std::string encode(const PictureReply& reply) {
    std::string packet;
    append(packet, reply.id);
    if (!reply.picture) return packet;
    append(packet, static_cast<std::uint64_t>(reply.picture->width));
    append(packet, static_cast<std::uint64_t>(reply.picture->height));
    packet.append(reply.picture->pixels.bytes.begin(), reply.picture->pixels.bytes.end());
    return packet;
}

std::optional<PictureRequest> decodeRequest(std::string_view packet) {
    const auto id = take(packet);
    if (!id || packet.empty() || packet.size() > longestPath || packet.find('\0') != packet.npos)
        return std::nullopt;
    return PictureRequest{*id, std::string(packet)};
}

std::optional<PictureReply> decodePictureReply(std::string_view packet) {
    const auto id = take(packet);
    if (!id) return std::nullopt;
    if (packet.empty()) return PictureReply{.id = *id};
    const auto width = take(packet), height = take(packet);
    if (!width || !height || *width < 1 || *height < 1 || *width > side || *height > side ||
        packet.size() != *width * *height * 4)
        return std::nullopt;
    ui::node::Image picture{static_cast<std::int64_t>(*width), static_cast<std::int64_t>(*height), {}};
    picture.pixels.bytes.assign(packet.begin(), packet.end());
    return PictureReply{*id, std::move(picture)};
}

}  // namespace zelto::pictures

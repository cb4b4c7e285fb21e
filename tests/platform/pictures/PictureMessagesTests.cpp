#include <gtest/gtest.h>

#include "platform/pictures/PictureMessages.hpp"

namespace zelto::test {

using namespace pictures;
namespace {

TEST(PictureRequest, GoesThroughItsPacket) {
    const auto request = decodeRequest(encode(PictureRequest{7, "/a/ü.png"}));
    ASSERT_TRUE(request);
    EXPECT_EQ(request->id, 7U);
    EXPECT_EQ(request->path, "/a/ü.png");
}

TEST(PictureRequest, IsRefusedWhereItIsNone) {
    for (const std::string& packet :
         {std::string(),
          std::string("1234567"),
          std::string("12345678"),
          encode({1, std::string("a\0b", 3)}),
          encode(PictureRequest{1, std::string(4097, 'x')})})
        EXPECT_FALSE(decodeRequest(packet)) << packet.size();
}

ui::node::Image image(std::int64_t width, std::int64_t height) {
    return {width, height, {std::vector<std::uint8_t>(static_cast<std::size_t>(width * height * 4), 5)}};
}

TEST(PictureReply, GoesThroughItsPacket) {
    for (const auto& picture : {std::optional(image(66, 66)), std::optional(image(1, 2)), {}}) {
        const auto reply = decodePictureReply(encode(PictureReply{9, picture}));
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->id, 9U);
        EXPECT_EQ(reply->picture, picture);
    }
}

TEST(PictureReply, IsRefusedWhereItIsNone) {
    const std::string sound = encode(PictureReply{9, image(66, 66)});
    for (const std::string& packet :
         {std::string(),
          sound.substr(0, 7),
          sound.substr(0, 12),
          sound.substr(0, sound.size() - 1),
          sound + "x",
          encode(PictureReply{9, image(67, 1)}),
          encode(PictureReply{9, image(66, 0)})})
        EXPECT_FALSE(decodePictureReply(packet)) << packet.size();
}

}  // namespace
}  // namespace zelto::test

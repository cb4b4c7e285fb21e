#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "imaging/Thumbnail.hpp"
#include "tests/support/Pictures.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {
namespace {

std::optional<ui::node::Image> decoded(const std::filesystem::path& path) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return imaging::decode(file.get(), 66);
}

TEST(Thumbnail, IsTheMiddleScaledDown) {
    const TemporaryFolder folder;
    const auto image = decoded(folder.write("a.png", png(300, 200, 0xFF0000FF)));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 66);
    EXPECT_EQ(image->height, 66);
    EXPECT_EQ(image->pixels.bytes.size(), 66U * 66 * 4);
    EXPECT_EQ(image->pixels.bytes[0], 0);
    EXPECT_EQ(image->pixels.bytes[2], 255);
    EXPECT_EQ(image->pixels.bytes[3], 255);
}

TEST(Thumbnail, KeepsSmallPicturesAndTheirOpacity) {
    const TemporaryFolder folder;
    const auto image = decoded(folder.write("a.png", png(20, 10, 0x80400000)));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 10);
    EXPECT_EQ(image->height, 10);
    EXPECT_EQ(image->pixels.bytes[3], 0x80);
}

/// A PNG whose header claims a size that nobody has.
std::string bomb() {
    std::string bytes = png(1, 1, 0xFF000000);
    for (const std::size_t at : {16U, 20U}) bytes.replace(at, 4, std::string("\0\0\xEA\x60", 4));  // 60,000
    // The header's checksum, by the format's own polynomial.
    std::uint32_t sum = 0xFFFFFFFF;
    for (std::size_t i = 12; i < 29; ++i) {
        sum ^= static_cast<unsigned char>(bytes[i]);
        for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320 : 0);
    }
    sum = ~sum;
    for (std::size_t i = 0; i < 4; ++i) bytes[29 + i] = static_cast<char>(sum >> (24 - 8 * i));
    return bytes;
}

TEST(Thumbnail, IsAbsentForWhatIsNoSoundImage) {
    const TemporaryFolder folder;
    const std::string sound = png(300, 200, 0xFF0000FF);
    for (const auto& path :
         {folder.write("truncated.png", sound.substr(0, sound.size() / 2)),
          folder.write("short.png", sound.substr(0, sound.size() - 20)),
          folder.write("empty", ""),
          folder.write("text", "not an image"),
          folder.write("riff", "RIFFRR="),
          folder.write("magic", "\x89PNG\r\n\x1a\n"),
          folder.write("bomb.png", bomb()),
          folder.write("picture.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"),
          folder.write("a.ppm", "P6\n1 1\n255\n\xff\xff\xff")})
        EXPECT_FALSE(decoded(path)) << path;
}

}  // namespace
}  // namespace zelto::test

#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "drawing/PNG.hpp"
#include "imaging/Thumbnail.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {
namespace {

using imaging::thumbnail;

std::string png(int width, int height, std::uint32_t pixel) {
    const drawing::Picture picture{
        width,
        height,
        std::vector<std::uint32_t>(
            static_cast<std::size_t>(width) * static_cast<std::size_t>(height), pixel)};
    return *drawing::encodePNG(picture);
}

TEST(Thumbnail, IsTheMiddleScaledDown) {
    const TemporaryFolder folder;
    const auto image = thumbnail(folder.write("a.png", png(300, 200, 0xFF0000FF)), 66);
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
    const auto image = thumbnail(folder.write("a.png", png(20, 10, 0x80400000)), 66);
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

long peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

TEST(Thumbnail, IsAbsentForWhatIsNoSoundImageAtOnceAndWithoutMemory) {
    const TemporaryFolder folder;
    const std::string sound = png(300, 200, 0xFF0000FF);
    ASSERT_EQ(mkfifo((folder.path() / "fifo").c_str(), 0600), 0);
    const auto sparse = folder.write("sparse", "");
    ASSERT_EQ(truncate(sparse.c_str(), off_t{4} << 30), 0);
    const auto zeros = folder.write("zeros", "");
    ASSERT_EQ(truncate(zeros.c_str(), 32 << 20), 0);
    const long before = peakMegabytes();
    for (const std::string& path : std::vector<std::string>{
             (folder.path() / "missing").string(),
             folder.path().string(),
             (folder.path() / "fifo").string(),
             std::string("/dev/zero"),
             sparse.string(),
             zeros.string(),
             folder.write("truncated.png", sound.substr(0, sound.size() / 2)).string(),
             folder.write("empty", "").string(),
             folder.write("text", "not an image").string(),
             folder.write("bomb.png", bomb()).string()})
        EXPECT_FALSE(thumbnail(path, 66)) << path;
    EXPECT_LT(peakMegabytes() - before, 16);
}

}  // namespace
}  // namespace zelto::test

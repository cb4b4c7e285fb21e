// Pictures of today's cameras and screens are shown; what would take for ever is not.

#include <array>
#include <cstdio>
#include <functional>

#include <gtest/gtest.h>
#include <png.h>

#include "foundation/Files.hpp"
#include "foundation/Handle.hpp"
#include "pictures/PictureProcess.hpp"
#include "tests/platform/JPEGs.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Sanitizers.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

using namespace pictures;
namespace {

constexpr std::uint32_t width = 8000, height = 6000;
using Stream = Handle<std::FILE, std::fclose>;

struct LargePictures : testing::Test {
    TemporaryFolder folder;
    const std::filesystem::path path = folder.path() / "picture";
    PictureProcess process = PictureProcess::standBy(programFolder() / "zelto-pictures");

    Stream stream() const { return Stream(std::fopen(path.c_str(), "wb")); }
    std::optional<ui::node::Image> picture(const std::filesystem::path& file) const {
        return process.thumbnail(file, PictureProcess::Clock::now() + std::chrono::seconds(30));
    }

    /// Something to be compressed, of so many bytes a pixel.
    static std::vector<std::uint8_t> row(std::size_t channels) {
        std::vector<std::uint8_t> out(width * channels);
        for (std::size_t i = 0; i < out.size(); ++i) out[i] = static_cast<std::uint8_t>(i * i / 7);
        return out;
    }
    void writePNG(int colorType, std::uint32_t columns, std::uint32_t rows, int depth) const {
        const Stream file = stream();
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, file.get());
        png_set_compression_level(png, 1);
        png_set_filter(png, 0, PNG_FILTER_NONE);
        png_set_IHDR(
            png,
            info,
            columns,
            rows,
            depth,
            colorType,
            PNG_INTERLACE_NONE,
            PNG_COMPRESSION_TYPE_DEFAULT,
            PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        const auto pixels = row(4);
        for (std::uint32_t y = 0; y < rows; ++y) png_write_row(png, pixels.data());
        png_write_end(png, info);
        png_destroy_write_struct(&png, &info);
    }
    void writeJPEG(bool isProgressive) const {
        const JPEG jpeg{width, height, isProgressive};
        ASSERT_TRUE(writeFileAtomically(path, encoded(jpeg, [](std::uint32_t) { return row(3); })));
    }
};

TEST_F(LargePictures, OfFortyEightMegapixelsAreShown) {
    writePNG(PNG_COLOR_TYPE_RGB, width, height, 8);
    EXPECT_TRUE(picture(path)) << "PNG without opacity";
    writePNG(PNG_COLOR_TYPE_RGB_ALPHA, width, height, 8);
    EXPECT_TRUE(picture(path)) << "PNG with opacity";
    writeJPEG(false);
    EXPECT_TRUE(picture(path)) << "JPEG, baseline";
    writeJPEG(true);
    EXPECT_TRUE(picture(path)) << "JPEG, progressive";
}

TEST_F(LargePictures, ThatTakeTooLongAreNotAndHoldUpNobody) {
    // A gigapixel and a half of two colours, in three hundred kilobytes.
    writePNG(PNG_COLOR_TYPE_GRAY, 32'000, 45'000, 1);
    const auto small = folder.path() / "small";
    std::filesystem::rename(path, folder.path() / "bomb");
    writePNG(PNG_COLOR_TYPE_RGB, 100, 100, 8);
    std::filesystem::rename(path, small);
    const auto begin = PictureProcess::Clock::now();
    EXPECT_FALSE(process.thumbnail(folder.path() / "bomb", begin));
    EXPECT_TRUE(picture(small));
    EXPECT_LT(PictureProcess::Clock::now() - begin, std::chrono::seconds(2));
    // Three seconds of processor time, or ten by the wall.
    EXPECT_FALSE(picture(folder.path() / "bomb"));
    EXPECT_LT(PictureProcess::Clock::now() - begin, std::chrono::seconds(20));
    // And it is known from then on. Where processor time has no limit, the wall ended it, which may be the
    // disk's fault.
    if (isSanitized) return;
    const auto again = PictureProcess::Clock::now();
    EXPECT_FALSE(picture(folder.path() / "bomb"));
    EXPECT_LT(PictureProcess::Clock::now() - again, std::chrono::seconds(1));
}

}  // namespace
}  // namespace zelto::test

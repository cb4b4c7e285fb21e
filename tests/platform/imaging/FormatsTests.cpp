// Each format, written by its own library.

#include <array>
#include <fstream>
#include <functional>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <sstream>
#include <webp/encode.h>
#include <webp/mux.h>

#include <fcntl.h>
#include <gtest/gtest.h>

#include "foundation/FileDescriptor.hpp"
#include "imaging/Thumbnail.hpp"
#include "tests/platform/JPEGs.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {
namespace {

using namespace std::string_literals;

/// 160 by 80 pixels; of the square in the middle, the corner on the upper left is red, the rest blue.
constexpr int width = 160, height = 80;
std::vector<std::uint8_t> pixels() {
    std::vector<std::uint8_t> out;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool isRed = x < width / 2 && y < height / 2;
            out.insert(
                out.end(),
                {static_cast<std::uint8_t>(isRed ? 255 : 0), 0, static_cast<std::uint8_t>(isRed ? 0 : 255)});
        }
    return out;
}

/// An EXIF block with nothing but an orientation.
std::string exif(int orientation) {
    std::string out = "Exif\0\0MM\0\x2a\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0?\0\0\0\0\0\0"s;
    out[out.find('?')] = static_cast<char>(orientation);
    return out;
}

std::string jpeg(bool isProgressive, const std::string& block) {
    const auto all = pixels();
    return encoded({width, height, isProgressive, block}, [&](std::uint32_t y) {
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(y) * width * 3;
        return std::vector<std::uint8_t>(begin, begin + width * 3);
    });
}

std::string webp(const std::string& block) {
    std::uint8_t* bytes = nullptr;
    const std::size_t size = WebPEncodeRGB(pixels().data(), width, height, width * 3, 90, &bytes);
    std::string out(reinterpret_cast<const char*>(bytes), size);
    WebPFree(bytes);
    if (block.empty()) return out;
    WebPMux* mux = WebPMuxNew();
    const WebPData image{reinterpret_cast<const std::uint8_t*>(out.data()), out.size()};
    const WebPData chunk{reinterpret_cast<const std::uint8_t*>(block.data()), block.size()};
    WebPMuxSetImage(mux, &image, 1);
    WebPMuxSetChunk(mux, "EXIF", &chunk, 1);
    WebPData whole{};
    WebPMuxAssemble(mux, &whole);
    out.assign(reinterpret_cast<const char*>(whole.bytes), whole.size);
    WebPDataClear(&whole);
    WebPMuxDelete(mux);
    return out;
}

std::string byToolkit(const char* format) {
    auto rows = pixels();
    GdkPixbuf* picture = gdk_pixbuf_new_from_data(
        rows.data(), GDK_COLORSPACE_RGB, FALSE, 8, width, height, width * 3, nullptr, nullptr);
    gchar* bytes = nullptr;
    gsize size = 0;
    gdk_pixbuf_save_to_buffer(picture, &bytes, &size, format, nullptr, nullptr);
    std::string out(bytes, size);
    g_free(bytes);
    g_object_unref(picture);
    return out;
}

/// Two by two pixels: red, blue, blue, blue.
std::string gif() {
    return "GIF89a\x02\0\x02\0\x80\0\0\xff\0\0\0\0\xff,\0\0\0\0\x02\0\x02\0\0\x02\x03\x44\x12\x05\0;"s;
}

/// Which of the four corners are red, from the upper left, row by row.
std::string redCorners(const std::string& bytes) {
    const TemporaryFolder folder;
    const FileDescriptor file(open(folder.write("picture", bytes).c_str(), O_RDONLY | O_CLOEXEC));
    const auto image = imaging::decode(file.get(), 66);
    if (!image) return "none";
    const auto side = static_cast<std::size_t>(image->width);
    std::ostringstream out;
    out << image->width << "×" << image->height << ":";
    const std::size_t near = side / 8, far = side - 1 - near;
    for (const auto& [x, y] : {std::pair{near, near}, {far, near}, {near, far}, {far, far}}) {
        const auto* pixel = image->pixels.bytes.data() + (y * side + x) * 4;
        out << (pixel[0] > 200 && pixel[2] < 60 ? " red" : pixel[0] < 60 && pixel[2] > 200 ? " blue" : " ?");
    }
    return out.str();
}

TEST(Formats, AreKnownByTheirFirstBytes) {
    EXPECT_EQ(redCorners(byToolkit("png")), "66×66: red blue blue blue");
    EXPECT_EQ(redCorners(byToolkit("bmp")), "66×66: red blue blue blue");
    EXPECT_EQ(redCorners(jpeg(false, "")), "66×66: red blue blue blue");
    EXPECT_EQ(redCorners(jpeg(true, "")), "66×66: red blue blue blue");
    EXPECT_EQ(redCorners(webp("")), "66×66: red blue blue blue");
    EXPECT_EQ(redCorners(gif()), "2×2: red blue blue blue");
    EXPECT_EQ(redCorners(byToolkit("tiff")), "none");
    EXPECT_EQ(redCorners(byToolkit("ico")), "none");
}

TEST(Formats, AreTurnedUpright) {
    // By what EXIF says of the row and the column that come first.
    const std::array<const char*, 9> expected{
        "",
        "66×66: red blue blue blue",
        "66×66: blue red blue blue",
        "66×66: blue blue blue red",
        "66×66: blue blue red blue",
        "66×66: red blue blue blue",
        "66×66: blue red blue blue",
        "66×66: blue blue blue red",
        "66×66: blue blue red blue"};
    for (std::size_t orientation = 1; orientation <= 8; ++orientation) {
        const std::string block = exif(static_cast<int>(orientation));
        EXPECT_EQ(redCorners(jpeg(false, block)), expected[orientation]) << orientation;
        EXPECT_EQ(redCorners(webp(block)), expected[orientation]) << orientation;
        EXPECT_EQ(redCorners(webp(block.substr(6))), expected[orientation]) << orientation;
    }
    EXPECT_EQ(redCorners(jpeg(false, exif(9))), expected[1]);
    EXPECT_EQ(redCorners(jpeg(false, exif(6).substr(0, 20))), expected[1]);
}

TEST(Formats, ThatBreakOffAreNone) {
    for (const std::string& whole :
         {byToolkit("png"), byToolkit("bmp"), jpeg(false, ""), jpeg(true, ""), webp("")})
        for (const std::size_t part : {2U, 3U, 10U})
            EXPECT_EQ(redCorners(whole.substr(0, whole.size() - whole.size() / part)), "none")
                << testing::PrintToString(whole.substr(0, 4)) << " " << part;
}

}  // namespace
}  // namespace zelto::test

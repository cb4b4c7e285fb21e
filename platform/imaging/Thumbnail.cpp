#include "imaging/Thumbnail.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "foundation/Handle.hpp"

namespace zelto::imaging {
namespace {

/// Of decoded pixels at four bytes each.
constexpr std::int64_t mostBytes = 48'000'000;
/// A file that is larger is not read at all.
constexpr off_t largestFile = 64 * 1024 * 1024;

using Loader = Handle<GdkPixbufLoader, g_object_unref>;
using Pixbuf = Handle<GdkPixbuf, g_object_unref>;

/// How far a file has come.
struct Progress {
    bool tooLarge = false;
    int rows = 0;  // that have their pixels
};

/// Called as soon as the file has told its size, before there is room for pixels. A size of nothing makes the
/// decoder stop.
void checkSize(GdkPixbufLoader* loader, int width, int height, void* progress) {
    if (std::int64_t{4} * width * height <= mostBytes) return;
    static_cast<Progress*>(progress)->tooLarge = true;
    gdk_pixbuf_loader_set_size(loader, 0, 0);
}
void noteRows(GdkPixbufLoader*, int, int y, int, int height, void* progress) {
    auto& rows = static_cast<Progress*>(progress)->rows;
    rows = std::max(rows, y + height);
}

/// Feeds the file to the loader; false when it is no sound image or too large.
bool feed(GdkPixbufLoader* loader, int fd, Progress& progress) {
    g_signal_connect(loader, "size-prepared", G_CALLBACK(checkSize), &progress);
    g_signal_connect(loader, "area-updated", G_CALLBACK(noteRows), &progress);
    std::array<guchar, 4096> buffer;
    while (true) {
        const ssize_t count = read(fd, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        const bool written =
            count >= 0 &&
            (count == 0 ||
             gdk_pixbuf_loader_write(loader, buffer.data(), static_cast<gsize>(count), nullptr) != FALSE);
        if (!written || progress.tooLarge) {
            gdk_pixbuf_loader_close(loader, nullptr);
            return false;
        }
        if (count == 0) return gdk_pixbuf_loader_close(loader, nullptr) != FALSE;
    }
}

/// The pixels of a picture as red, green, blue and opacity.
ui::node::Image copyPixels(const GdkPixbuf* picture) {
    const int width = gdk_pixbuf_get_width(picture), height = gdk_pixbuf_get_height(picture);
    const int channels = gdk_pixbuf_get_n_channels(picture), stride = gdk_pixbuf_get_rowstride(picture);
    const guchar* pixels = gdk_pixbuf_read_pixels(picture);
    ui::node::Image out{width, height, {}};
    out.pixels.bytes.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const guchar* pixel =
                pixels + static_cast<std::ptrdiff_t>(y) * stride + static_cast<std::ptrdiff_t>(x) * channels;
            out.pixels.bytes.insert(out.pixels.bytes.end(), pixel, pixel + 3);
            out.pixels.bytes.push_back(channels == 4 ? pixel[3] : 255);
        }
    return out;
}

}  // namespace

std::optional<ui::node::Image> thumbnail(const std::string& path, int side) {
    const FileDescriptor fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!fd || fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largestFile)
        return std::nullopt;

    // One picture at a time, or requests side by side would add their memory up.
    static std::mutex oneAtATime;
    const std::lock_guard lock(oneAtATime);
    const Loader loader(gdk_pixbuf_loader_new());
    Progress progress;
    if (!feed(loader.get(), fd.get(), progress)) return std::nullopt;
    GdkPixbuf* whole = gdk_pixbuf_loader_get_pixbuf(loader.get());
    // A file that breaks off leaves rows without pixels, which not every decoder calls a fault.
    if (!whole || progress.rows < gdk_pixbuf_get_height(whole)) return std::nullopt;
    const int width = gdk_pixbuf_get_width(whole), height = gdk_pixbuf_get_height(whole);
    const int square = std::min(width, height);
    const Pixbuf middle(
        gdk_pixbuf_new_subpixbuf(whole, (width - square) / 2, (height - square) / 2, square, square));
    if (square <= side) return copyPixels(middle.get());
    const Pixbuf scaled(gdk_pixbuf_scale_simple(middle.get(), side, side, GDK_INTERP_BILINEAR));
    if (!scaled) return std::nullopt;
    return copyPixels(scaled.get());
}

}  // namespace zelto::imaging

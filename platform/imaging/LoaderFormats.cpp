#include <array>
#include <cerrno>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <set>

#include <unistd.h>

#include "Formats.hpp"
#include "Shrinker.hpp"
#include "foundation/Handle.hpp"
#include "imaging/Thumbnail.hpp"

namespace zelto::imaging {
namespace {

using Loader = Handle<GdkPixbufLoader, g_object_unref>;
using Pixbuf = Handle<GdkPixbuf, g_object_unref>;

/// Which rows have their pixels; some formats begin with the last.
void noteRows(GdkPixbufLoader*, int, int y, int, int height, void* rows) {
    auto& filled = *static_cast<std::set<int>*>(rows);
    for (int i = 0; i < height; ++i) filled.insert(y + i);
}

/// False when it is no sound image.
bool feed(GdkPixbufLoader* loader, int file) {
    std::array<guchar, 16 * 1024> buffer;
    while (true) {
        const ssize_t count = read(file, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        const bool written =
            count >= 0 &&
            (count == 0 ||
             gdk_pixbuf_loader_write(loader, buffer.data(), static_cast<gsize>(count), nullptr) != FALSE);
        if (!written) {
            gdk_pixbuf_loader_close(loader, nullptr);
            return false;
        }
        if (count == 0) return gdk_pixbuf_loader_close(loader, nullptr) != FALSE;
    }
}

}  // namespace

std::optional<Square> decodeByLoader(const char* format, int file, int side) {
    const Loader loader(gdk_pixbuf_loader_new_with_type(format, nullptr));
    if (!loader) return std::nullopt;
    std::set<int> rows;
    g_signal_connect(loader.get(), "area-updated", G_CALLBACK(noteRows), &rows);
    if (!feed(loader.get(), file)) return std::nullopt;
    GdkPixbuf* whole = gdk_pixbuf_loader_get_pixbuf(loader.get());
    // A file that breaks off leaves rows without pixels, which not every decoder calls a fault.
    if (!whole || rows.size() < static_cast<std::size_t>(gdk_pixbuf_get_height(whole))) return std::nullopt;
    const Pixbuf pixels(gdk_pixbuf_add_alpha(whole, FALSE, 0, 0, 0));
    if (!pixels) return std::nullopt;
    const int height = gdk_pixbuf_get_height(pixels.get());
    Shrinker shrinker(gdk_pixbuf_get_width(pixels.get()), height, side);
    for (int y = 0; y < height; ++y)
        shrinker.take(
            gdk_pixbuf_read_pixels(pixels.get()) +
            std::ptrdiff_t{y} * gdk_pixbuf_get_rowstride(pixels.get()));
    auto image = shrinker.finish();
    if (!image) return std::nullopt;
    return Square{*std::move(image)};
}

void prepare() {
    for (const char* format : {"gif", "bmp"}) {
        const Loader loader(gdk_pixbuf_loader_new_with_type(format, nullptr));
        if (loader) gdk_pixbuf_loader_close(loader.get(), nullptr);
    }
}

}  // namespace zelto::imaging

#include "Shrinker.hpp"

#include <algorithm>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include "foundation/Handle.hpp"

namespace zelto::imaging {
namespace {

using Pixbuf = Handle<GdkPixbuf, g_object_unref>;
constexpr std::size_t channels = 4;

/// The pixels of a picture as red, green, blue and opacity.
ui::node::Image pixelsOf(const GdkPixbuf* picture) {
    const int width = gdk_pixbuf_get_width(picture), height = gdk_pixbuf_get_height(picture);
    const auto stride = static_cast<std::size_t>(gdk_pixbuf_get_rowstride(picture));
    const guchar* pixels = gdk_pixbuf_read_pixels(picture);
    ui::node::Image out{width, height, {}};
    const std::size_t row = static_cast<std::size_t>(width) * channels;
    out.pixels.bytes.reserve(row * static_cast<std::size_t>(height));
    for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y)
        out.pixels.bytes.insert(out.pixels.bytes.end(), pixels + y * stride, pixels + y * stride + row);
    return out;
}

}  // namespace

int Shrinker::spareFactor(int width, int height, int side) {
    return std::max(1, std::min(width, height) / (2 * side));
}

Shrinker::Shrinker(int width, int height, int side)
    : side_(side),
      factor_(spareFactor(width, height, side)),
      size_(std::min(width, height) / factor_),
      left_((width - size_ * factor_) / 2),
      top_((height - size_ * factor_) / 2),
      height_(height),
      sums_(static_cast<std::size_t>(size_) * channels),
      kept_() {
    kept_.reserve(sums_.size() * static_cast<std::size_t>(size_));
}

void Shrinker::take(const std::uint8_t* row) {
    const int y = y_++ - top_;
    if (y < 0 || y >= size_ * factor_) return;
    const std::uint8_t* pixel = row + static_cast<std::size_t>(left_) * channels;
    for (std::size_t x = 0; x < sums_.size(); x += channels)
        for (int i = 0; i < factor_; ++i, pixel += channels) {
            // What cannot be seen gives no colour.
            const std::uint32_t opacity = pixel[3];
            for (std::size_t channel = 0; channel < 3; ++channel)
                sums_[x + channel] += (pixel[channel] * opacity + 127) / 255;
            sums_[x + 3] += opacity;
        }
    if ((y + 1) % factor_ != 0) return;
    for (std::size_t x = 0; x < sums_.size(); x += channels) {
        const std::uint32_t opacity = sums_[x + 3];
        for (std::size_t channel = 0; channel < 3; ++channel)
            kept_.push_back(static_cast<std::uint8_t>(
                opacity == 0
                    ? 0
                    : std::min<std::uint64_t>(255, std::uint64_t{sums_[x + channel]} * 255 / opacity)));
        kept_.push_back(static_cast<std::uint8_t>(opacity / static_cast<std::uint32_t>(factor_ * factor_)));
    }
    std::ranges::fill(sums_, 0);
}

std::optional<ui::node::Image> Shrinker::finish() const {
    if (y_ != height_) return std::nullopt;
    if (size_ <= side_) return ui::node::Image{size_, size_, {kept_}};
    const Pixbuf square(gdk_pixbuf_new_from_data(
        kept_.data(), GDK_COLORSPACE_RGB, TRUE, 8, size_, size_, size_ * 4, nullptr, nullptr));
    const Pixbuf scaled(gdk_pixbuf_scale_simple(square.get(), side_, side_, GDK_INTERP_BILINEAR));
    if (!scaled) return std::nullopt;
    return pixelsOf(scaled.get());
}

}  // namespace zelto::imaging

#include <algorithm>
#include <memory>
#include <webp/decode.h>
#include <webp/demux.h>

#include "Formats.hpp"
#include "Shrinker.hpp"
#include "foundation/Handle.hpp"

namespace zelto::imaging {
namespace {

using Demuxer = Handle<WebPDemuxer, WebPDemuxDelete>;

int orientationOf(const WebPDemuxer* file) {
    WebPChunkIterator chunk;
    if (WebPDemuxGetChunk(file, "EXIF", 1, &chunk) == 0) return 1;
    const int found = imaging::orientationOf({chunk.chunk.bytes, chunk.chunk.size});
    WebPDemuxReleaseChunkIterator(&chunk);
    return found;
}

/// Made smaller while it is decoded.
std::optional<ui::node::Image> decodeFrame(const WebPData& frame, int side) {
    WebPDecoderConfig config;
    if (WebPInitDecoderConfig(&config) == 0 ||
        WebPGetFeatures(frame.bytes, frame.size, &config.input) != VP8_STATUS_OK)
        return std::nullopt;
    const int factor = Shrinker::spareFactor(config.input.width, config.input.height, side);
    config.options.use_scaling = factor > 1 ? 1 : 0;
    config.options.scaled_width = std::max(1, config.input.width / factor);
    config.options.scaled_height = std::max(1, config.input.height / factor);
    config.output.colorspace = MODE_RGBA;
    const bool isSound = WebPDecode(frame.bytes, frame.size, &config) == VP8_STATUS_OK;
    std::optional<ui::node::Image> out;
    if (isSound) {
        Shrinker shrinker(config.output.width, config.output.height, side);
        for (int y = 0; y < config.output.height; ++y)
            shrinker.take(config.output.u.RGBA.rgba + std::ptrdiff_t{y} * config.output.u.RGBA.stride);
        out = shrinker.finish();
    }
    WebPFreeDecBuffer(&config.output);
    return out;
}

}  // namespace

std::optional<Square> decodeWebP(std::span<const std::uint8_t> bytes, int side) {
    const WebPData whole{bytes.data(), bytes.size()};
    const Demuxer file(WebPDemux(&whole));
    if (!file) return std::nullopt;
    WebPIterator frame;
    if (WebPDemuxGetFrame(file.get(), 1, &frame) == 0) return std::nullopt;
    auto image = decodeFrame(frame.fragment, side);
    WebPDemuxReleaseIterator(&frame);
    if (!image) return std::nullopt;
    return Square{*std::move(image), orientationOf(file.get())};
}

}  // namespace zelto::imaging

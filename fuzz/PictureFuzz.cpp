// Any bytes as an image file, and as the packets of the picture process.

#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <thread>

#include <glib.h>
#include <sys/mman.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "imaging/Thumbnail.hpp"
#include "platform/pictures/PictureMessages.hpp"

namespace {

std::jmp_buf outOfMemory;

/// The toolkit's library ends the process where there is no memory, which is what a decoding process is for:
/// here the next file is tried instead.
void logged(const gchar*, GLogLevelFlags level, const gchar* message, gpointer) {
    if ((level & G_LOG_LEVEL_ERROR) == 0) return;
    if (std::string_view(message).find("failed to allocate") == std::string_view::npos) std::abort();
    std::longjmp(outOfMemory, 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (const auto request = pictures::decodeRequest(bytes); request && pictures::encode(*request) != bytes)
        std::abort();
    if (const auto reply = pictures::decodePictureReply(bytes); reply && pictures::encode(*reply) != bytes)
        std::abort();

    const FileDescriptor file(memfd_create("picture", MFD_CLOEXEC));
    if (write(file.get(), data, size) != static_cast<ssize_t>(size)) std::abort();
    lseek(file.get(), 0, SEEK_SET);
    [[maybe_unused]] static const auto handler = g_log_set_default_handler(logged, nullptr);
    std::optional<ui::node::Image> image;
    // In a thread of its own, since the library still thinks of one that was left as logging.
    std::thread([&] {
        // NOLINTNEXTLINE(cert-err52-cpp): through frames of C, where nothing can be thrown
        if (setjmp(outOfMemory) == 0) image = imaging::decode(file.get(), 66);
    }).join();
    if (image && (image->width < 1 || image->width > 66 || image->height != image->width ||
                  image->pixels.bytes.size() != static_cast<std::size_t>(image->width * image->width * 4)))
        std::abort();
    return 0;
}

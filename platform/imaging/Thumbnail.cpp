#include "imaging/Thumbnail.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string_view>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Formats.hpp"
#include "foundation/Handle.hpp"

namespace zelto::imaging {
namespace {

using namespace std::string_view_literals;

/// A file's bytes in memory, read as they are looked at.
class MappedFile {
  public:
    explicit MappedFile(int file) {
        struct stat status {};
        if (fstat(file, &status) != 0 || status.st_size <= 0) return;
        size_ = static_cast<std::size_t>(status.st_size);
        memory_ = mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file, 0);
    }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile() {
        if (memory_ != MAP_FAILED) munmap(memory_, size_);
    }

    std::span<const std::uint8_t> bytes() const {
        if (memory_ == MAP_FAILED) return {};
        return {static_cast<const std::uint8_t*>(memory_), size_};
    }

  private:
    void* memory_ = MAP_FAILED;
    std::size_t size_ = 0;
};

std::string_view beginning(int file, std::array<char, 12>& bytes) {
    const ssize_t count = pread(file, bytes.data(), bytes.size(), 0);
    return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

using Stream = Handle<std::FILE, std::fclose>;
Stream streamOf(int file) {
    return Stream(fdopen(dup(file), "rb"));
}

std::optional<Square> decodeSquare(int file, int side) {
    std::array<char, 12> bytes{};
    const std::string_view magic = beginning(file, bytes);
    if (magic.starts_with("\x89PNG\r\n\x1a\n"sv))
        if (const Stream stream = streamOf(file)) return decodePNG(stream.get(), side);
    if (magic.starts_with("\xff\xd8\xff"sv))
        if (const Stream stream = streamOf(file)) return decodeJPEG(stream.get(), side);
    if (magic.starts_with("RIFF"sv) && magic.size() == 12 && magic.ends_with("WEBP"sv))
        return decodeWebP(MappedFile(file).bytes(), side);
    if (magic.starts_with("GIF87a"sv) || magic.starts_with("GIF89a"sv))
        return decodeByLoader("gif", file, side);
    if (magic.starts_with("BM"sv)) return decodeByLoader("bmp", file, side);
    return std::nullopt;
}

}  // namespace

std::optional<ui::node::Image> decode(int file, int side) {
    auto square = decodeSquare(file, side);
    if (!square) return std::nullopt;
    return upright(*std::move(square));
}

}  // namespace zelto::imaging

#include "host/EntryStore.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <set>
#include <span>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "foundation/Files.hpp"

namespace zelto::host {
namespace {

/// Bytes; a larger file counts as none.
constexpr std::size_t largestFile = std::size_t{2} << 20;

/// Ids come from a file that a person edits: anything but letters and digits is spelled out.
std::string spelled(std::string_view text) {
    constexpr const char* digits = "0123456789abcdef";
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-') {
            out += c;
        } else {
            out += '_';
            out += digits[byte >> 4];
            out += digits[byte & 15];
        }
    }
    return out;
}

constexpr std::size_t markSize = 4096;
constexpr const char* markName = "drawing";
/// Deaths, one after the other, while one picture was drawn: of one alone somebody else may be the cause.
constexpr std::uint8_t mostDeaths = 3;

/// The first byte last: before it, there is no name.
void put(std::string_view name, std::span<char> place) {
    if (name.empty() || name.size() >= place.size()) return;
    place[0] = '\0';
    std::copy(name.begin() + 1, name.end(), place.begin() + 1);
    place[name.size()] = '\0';
    std::atomic_signal_fence(std::memory_order_release);
    place[0] = name.front();
}

/// The page of a file, which outlives the process.
std::shared_ptr<void> mappedPage(const std::filesystem::path& path) {
    const FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    // With room on the disk, which would otherwise be missed at the first touch, and that is deadly.
    if (!file || posix_fallocate(file.get(), 0, markSize) != 0) return nullptr;
    void* const page = mmap(nullptr, markSize, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (page == MAP_FAILED) return nullptr;
    return {page, [](void* mapped) { munmap(mapped, markSize); }};
}

}  // namespace

std::optional<std::string> EntryStore::dropUnfinished() {
    makeFolder();
    mark_ = std::static_pointer_cast<Mark>(mappedPage(folder_ / markName));
    if (!mark_ || mark_->drawing[0] == '\0') return std::nullopt;
    const std::string name(mark_->drawing.data(), strnlen(mark_->drawing.data(), mark_->drawing.size()));
    mark_->drawing[0] = '\0';
    if (name !=
        std::string_view(mark_->suspect.data(), strnlen(mark_->suspect.data(), mark_->suspect.size()))) {
        put(name, mark_->suspect);
        mark_->deaths = 0;
    }
    if (++mark_->deaths < mostDeaths) return std::nullopt;
    mark_->suspect[0] = '\0';
    std::error_code error;
    // Whatever the page says, nothing beyond the folder is meant.
    if (std::filesystem::path(name).filename() == name && std::filesystem::remove(folder_ / name, error))
        return name;
    return std::nullopt;
}

void EntryStore::makeFolder() const {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    // It may hold what was copied to the clipboard.
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
}

void EntryStore::whileDrawing(const PlacedWidget& widget, const std::function<void()>& draw) const {
    const std::string name = fileOf(widget).filename().string();
    if (!mark_ || name.size() >= mark_->drawing.size()) {
        draw();
        return;
    }
    put(name, mark_->drawing);
    draw();
    mark_->drawing[0] = '\0';
    if (name == mark_->suspect.data()) mark_->suspect[0] = '\0';
}

std::filesystem::path EntryStore::fileOf(const PlacedWidget& widget) const {
    return folder_ / (spelled(widget.id) + "." + spelled(widget.kind) + "." +
                      std::string(records::nameOf(widget.family)) + ".json");
}

std::optional<widgetkit::ArchivedTimeline> EntryStore::load(const PlacedWidget& widget) const {
    const auto line = readFile(fileOf(widget), largestFile);
    if (!line) return std::nullopt;
    auto reply = widgetkit::decodeReply(*line);
    if (!reply) return std::nullopt;
    return std::move(reply->timeline);
}

Result<void> EntryStore::save(const PlacedWidget& widget, std::string_view line) const {
    if (line.size() > largestFile) return Fault{.reason = "larger than 2 MiB"};
    makeFolder();
    const auto file = fileOf(widget);
    if (!writeFileAtomically(file, line, {.durability = Durability::processDeath, .readers = Readers::owner}))
        return Fault{.path = file.string(), .reason = "cannot be written"};
    return {};
}

void EntryStore::keepOnly(const std::vector<PlacedWidget>& widgets) const {
    std::set<std::filesystem::path> kept{folder_ / markName};
    for (const PlacedWidget& widget : widgets) kept.insert(fileOf(widget));
    std::error_code error;
    std::vector<std::filesystem::path> others;
    for (std::filesystem::directory_iterator entry(folder_, error), end; entry != end && !error;
         entry.increment(error))
        if (!kept.contains(entry->path())) others.push_back(entry->path());
    for (const auto& other : others) std::filesystem::remove(other, error);
}

}  // namespace zelto::host

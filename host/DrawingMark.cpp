#include "DrawingMark.hpp"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstring>
#include <ctime>
#include <span>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"

namespace zelto::host {
namespace {

constexpr std::size_t pageSize = 4096;
constexpr std::uint8_t mostKills = 3;
constexpr double longDrawing =
    2;  // seconds; the longest that a view within its bounds needs is a third of one

/// The signals of a program that fails by itself.
constexpr std::array crashes = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};
std::array<struct sigaction, crashes.size()> actionsBefore;

/// The first byte last: before it, there is no name.
void put(std::string_view name, std::span<char> place) {
    place[0] = '\0';
    if (name.empty() || name.size() >= place.size()) return;
    std::copy(name.begin() + 1, name.end(), place.begin() + 1);
    place[name.size()] = '\0';
    std::atomic_signal_fence(std::memory_order_release);
    place[0] = name.front();
}

std::string_view in(std::span<const char> place) {
    return {place.data(), strnlen(place.data(), place.size())};
}

}  // namespace

volatile DrawingMark::Page* DrawingMark::current = nullptr;

double DrawingMark::sinceBoot() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

std::shared_ptr<DrawingMark> DrawingMark::at(const std::filesystem::path& path, Clock clock) {
    const FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    // With room on the disk, which would otherwise be missed at the first touch, and that is deadly.
    if (!file || posix_fallocate(file.get(), 0, pageSize) != 0) return nullptr;
    void* const page = mmap(nullptr, pageSize, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (page == MAP_FAILED) return nullptr;
    std::shared_ptr<void> mapped(page, [](void* each) { munmap(each, pageSize); });
    return std::shared_ptr<DrawingMark>(
        new DrawingMark(std::static_pointer_cast<Page>(std::move(mapped)), std::move(clock)));
}

DrawingMark::DrawingMark(std::shared_ptr<Page> page, Clock clock)
    : page_(std::move(page)), clock_(std::move(clock)) {
    static_assert(sizeof(Page) <= pageSize);
    // For the rest of the process's life: where nothing is drawn they change nothing.
    [[maybe_unused]] static const bool areHandled = [] {
        struct sigaction action {};
        action.sa_sigaction = crashed;
        action.sa_flags = SA_SIGINFO;
        for (std::size_t i = 0; i < crashes.size(); ++i)
            sigaction(crashes.at(i), &action, &actionsBefore.at(i));
        return true;
    }();
}

void DrawingMark::crashed(int signal, siginfo_t* info, void* /*context*/) {
    if (volatile Page* const page = current) page->isCrash = 1;
    // As if there had been no handler: what failed fails again, and a signal that was sent is sent again.
    const auto* const place = std::ranges::find(crashes, signal);
    sigaction(signal, &actionsBefore.at(static_cast<std::size_t>(place - crashes.begin())), nullptr);
    if (info->si_code <= 0) raise(signal);
}

std::optional<std::string> DrawingMark::cause() {
    Page& page = *page_;
    const std::string name(in(page.drawing));
    const bool isCrash = std::exchange(page.isCrash, std::uint8_t{0}) != 0;
    page.drawing[0] = '\0';
    if (name.empty()) return std::nullopt;
    if (name != in(page.suspect)) {
        put(name, page.suspect);
        page.kills = 0;
    }
    // Started again within these seconds, or by another start of the computer, it was not long at it.
    if (clock_() - page.began >= longDrawing) ++page.kills;
    if (!isCrash && page.kills < mostKills) return std::nullopt;
    page.suspect[0] = '\0';
    return name;
}

void DrawingMark::during(std::string_view name, const std::function<void()>& draw) {
    page_->began = clock_();
    put(name, page_->drawing);
    current = page_.get();
    draw();
    current = nullptr;
    page_->drawing[0] = '\0';
    if (name == in(page_->suspect)) page_->suspect[0] = '\0';
}

}  // namespace zelto::host

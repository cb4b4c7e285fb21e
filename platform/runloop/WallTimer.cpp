#include "runloop/WallTimer.hpp"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <utility>

#include <sys/timerfd.h>
#include <unistd.h>

namespace zelto::runloop {
namespace {

/// Farther than anybody waits, and within what the kernel counts.
constexpr double farFuture = 8e9;

}  // namespace

WallTimer::WallTimer() : timer_(timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK)) {}

void WallTimer::arm(std::optional<Date> instant) {
    // An instant of 0 would disarm it; one that has passed goes off at once.
    const double seconds = std::clamp(instant ? instant->since1970() : farFuture, 1.0, farFuture);
    const double whole = std::floor(seconds);
    itimerspec alarm{};
    alarm.it_value.tv_sec = static_cast<time_t>(whole);
    alarm.it_value.tv_nsec = std::min(static_cast<long>(std::ceil((seconds - whole) * 1e9)), 999'999'999L);
    constexpr int flags = TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET;
    if (timerfd_settime(timer_.get(), flags, &alarm, nullptr) == 0 || errno != ECANCELED) return;
    // The clock was set and nobody has heard of it yet; arming has taken the news, so it goes off at once.
    wasSet_ = true;
    alarm.it_value = {.tv_sec = 1, .tv_nsec = 0};
    timerfd_settime(timer_.get(), flags, &alarm, nullptr);
}

WallTimer::Event WallTimer::take() {
    std::uint64_t count = 0;
    const bool wasSet = std::exchange(wasSet_, false);
    if (read(timer_.get(), &count, sizeof(count)) == sizeof(count))
        return wasSet ? Event::clockSet : Event::expired;
    return wasSet || errno == ECANCELED ? Event::clockSet : Event::none;
}

}  // namespace zelto::runloop

#pragma once

#include <functional>

#include "runloop/MainLoop.hpp"

namespace zelto::test {

/// Runs the main loop until a condition holds, which may be one of another process; false when it has not
/// within half a minute.
inline bool runUntil(const std::function<bool()>& condition) {
    bool isLate = false;
    const auto limit = runloop::MainSource::after(30, [&] { isLate = true; });
    runloop::MainSource look;
    const std::function<void()> again = [&] { look = runloop::MainSource::after(0.005, again); };
    again();
    runloop::runMainLoopUntil([&] { return condition() || isLate; });
    return condition();
}

/// Runs it until all that was posted by now has been done.
inline void runWhatWaits() {
    bool isDone = false;
    runloop::postToMainThread([&] { isDone = true; });
    runloop::runMainLoopUntil([&] { return isDone; });
}

}  // namespace zelto::test

#include "runloop/Log.hpp"

#include <array>
#include <cstdio>
#include <ctime>
#include <mutex>

#include "runloop/LogLimiter.hpp"

namespace zelto::runloop {

void logToStandardError(LogLevel level, const std::string& line) {
    static std::mutex mutex;
    static LogLimiter limiter;
    const std::lock_guard lock(mutex);
    const auto passed = limiter.pass(line);
    if (!passed) return;
    constexpr std::array names{"info", "warning", "error"};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 32> time{};
    std::strftime(time.data(), time.size(), "%F %T", &local);
    std::fprintf(
        stderr, "%s %s: %s\n", time.data(), names.at(static_cast<std::size_t>(level)), passed->c_str());
}

}  // namespace zelto::runloop

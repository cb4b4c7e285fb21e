#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace zelto::runloop {

/// Lets so many lines of log through at once, and so many more each minute; tells how many it left out. For
/// one thread.
class LogLimiter {
  public:
    using Clock = std::chrono::steady_clock;

    explicit LogLimiter(double burst = 100, double eachMinute = 20)
        : burst_(burst), eachMinute_(eachMinute), left_(burst) {}

    /// The line as it is to be written; absent when there have been too many. Long lines are cut.
    std::optional<std::string> pass(std::string line, Clock::time_point now = Clock::now());

    static constexpr std::size_t longestLine = 1000;  // bytes

  private:
    double burst_, eachMinute_, left_;
    Clock::time_point last_ = {};
    std::size_t leftOut_ = 0;
};

}  // namespace zelto::runloop

#include "runloop/LogLimiter.hpp"

#include <algorithm>
#include <utility>

#include "foundation/UTF8.hpp"

namespace zelto::runloop {

std::optional<std::string> LogLimiter::pass(std::string line, Clock::time_point now) {
    if (last_ != Clock::time_point{})
        left_ = std::min(
            burst_, left_ + std::chrono::duration<double, std::ratio<60>>(now - last_).count() * eachMinute_);
    last_ = now;
    if (left_ < 1) {
        ++leftOut_;
        return std::nullopt;
    }
    left_ -= 1;
    // What others said must not look like lines of ours.
    std::ranges::replace_if(
        line, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    if (line.size() > longestLine) {
        line.resize(validUTF8Prefix(std::string_view(line).substr(0, longestLine)));
        line += "…";
    }
    if (const std::size_t leftOut = std::exchange(leftOut_, 0); leftOut > 0)
        line += " (" + std::to_string(leftOut) + " lines before this one were left out)";
    return line;
}

}  // namespace zelto::runloop

#pragma once

#include <algorithm>

namespace zelto::runloop {

/// Pauses that double with every failure, up to a longest one, and halve with every success.
class Backoff {
  public:
    /// In seconds.
    Backoff(double first, double longest) : first_(first), longest_(longest) {}

    void failed() { pause_ = pause_ > 0 ? std::min(pause_ * 2, longest_) : first_; }
    void succeeded() { pause_ = pause_ > first_ ? std::max(pause_ / 2, first_) : 0; }
    /// Seconds to wait before the next attempt.
    double pause() const { return pause_; }

  private:
    double first_, longest_;
    double pause_ = 0;
};

}  // namespace zelto::runloop

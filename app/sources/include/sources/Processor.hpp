#pragma once

#include <optional>
#include <vector>

#include "system/SystemReadings.hpp"

namespace zelto::sources {

/// The processor's load over time: two readings of its ticks give the exact mean of the time between them.
class ProcessorHistory {
  public:
    /// A reading; the first one only begins. Ticks that stand still or step back begin anew.
    void add(const system::CPUTicks& ticks);
    /// Nobody looked for a while: the next reading begins anew, what was seen stays.
    void pause() { last_.reset(); }

    /// Fractions from 0 to 1, oldest first, at most `longest`.
    const std::vector<double>& values() const { return values_; }
    double current() const { return values_.empty() ? 0 : values_.back(); }

    static constexpr std::size_t longest = 40;

  private:
    std::optional<system::CPUTicks> last_;
    std::vector<double> values_;
};

}  // namespace zelto::sources

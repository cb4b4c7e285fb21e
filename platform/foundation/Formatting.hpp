#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/Date.hpp"
#include "platform/foundation/Environment.hpp"

namespace zelto {

/// The platform's locale-aware texts and calendar for one environment. For one thread at a time.
class Formatting {
  public:
    explicit Formatting(Environment environment);
    ~Formatting();
    Formatting(Formatting&&) noexcept;
    Formatting& operator=(Formatting&&) noexcept;

    const Environment& environment() const;

    /// Hours and minutes in the locale's short style: "09:05" in pt_BR.
    std::string shortTime(Date date) const;

    /// The instant at which the calendar minute that contains `date` begins; absent for a date that is not
    /// finite.
    static std::optional<Date> startOfMinute(Date date);

    /// A byte count in file style, in decimal units: "112,4 GB", "Zero KB".
    std::string byteCount(std::int64_t bytes) const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto

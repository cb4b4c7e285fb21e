#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Date.hpp"
#include "texts/Environment.hpp"

namespace zelto::texts {

/// The platform's locale-aware texts and calendar for one environment. For one thread at a time.
class Formatting {
  public:
    explicit Formatting(Environment environment);
    ~Formatting();
    Formatting(Formatting&&) noexcept;
    Formatting& operator=(Formatting&&) noexcept;

    const Environment& environment() const;

    /// What the environment's zone is called where it has no name: a rule's abbreviation ("CET"), or nothing
    /// for a file from elsewhere. Absent where it has a name.
    std::optional<std::string> namelessZone() const;

    // ---- texts ----

    /// Hours and minutes in the locale's short style: "09:05" in pt_BR.
    std::string shortTime(Date date) const;
    /// The same in another zone; an unknown identifier means the environment's own.
    std::string shortTime(Date date, const std::string& timeZone) const;
    /// Wide month and wide weekday, as the locale arranges them: "março quarta-feira".
    std::string monthAndWeekday(Date date) const;
    /// Abbreviated weekday and day of the month: "qua., 11".
    std::string weekdayAndDay(Date date) const;
    /// The distance from `reference` in the named style and wide units: "há 1 hora", "ontem".
    std::string relativeDate(Date date, Date reference) const;
    /// A byte count in file style, in decimal units: "112,4 GB", "Zero KB".
    std::string byteCount(std::int64_t bytes) const;

    // ---- calendar ----

    /// The day of the month, from 1.
    int dayOfMonth(Date date) const;
    /// The hour in another zone, 0 to 23; an unknown identifier means the environment's own. Absent for a
    /// date that is not finite.
    std::optional<int> hour(Date date, const std::string& timeZone) const;
    bool isSameDay(Date a, Date b) const;
    /// The same time on the next calendar day.
    Date nextDay(Date date) const;
    /// The instant at which the calendar minute that contains `date` begins; absent for a date that is not
    /// finite.
    static std::optional<Date> startOfMinute(Date date);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto::texts

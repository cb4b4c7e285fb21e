#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>

#include "foundation/Date.hpp"

namespace zelto::host {

/// Which kinds of widgets are to be asked for because files changed: at the first change at once; what
/// follows within 0.3 s is taken together in one more time. A pure function of what it is told.
class FileNews {
  public:
    /// Files of these kinds have changed.
    void changed(const std::set<std::string>& kinds) { waiting_.insert(kinds.begin(), kinds.end()); }
    /// The kinds to be asked for at `now`.
    std::set<std::string> due(Date now) {
        // A clock that was set back holds nothing up.
        const bool isQuiet = quietUntil_ && now < *quietUntil_ && *quietUntil_ - now <= together;
        if (waiting_.empty() || isQuiet) return {};
        quietUntil_ = now + together;
        return std::exchange(waiting_, {});
    }
    /// When `due` has something next.
    std::optional<Date> nextInstant() const { return waiting_.empty() ? std::nullopt : quietUntil_; }

    static constexpr double together = 0.3;

  private:
    std::set<std::string> waiting_;
    std::optional<Date> quietUntil_;
};

}  // namespace zelto::host

#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "widgetkit/Messages.hpp"

namespace zelto::widgetkit {

/// Reads replies as decodeReply does. Most widgets look from one timeline to the next as they did: a view
/// whose text is one of the latest is not decoded again, which is most of what reading costs.
class ReplyReader {
  public:
    Result<Reply> read(std::string_view line);

    /// How many views are remembered, and the longest of them, in bytes of text.
    static constexpr std::size_t mostViews = 32, longestText = std::size_t{16} << 10;

  private:
    struct Known {
        std::string text;
        ui::View view;
    };
    std::deque<Known> known_;  // the latest first
};

}  // namespace zelto::widgetkit

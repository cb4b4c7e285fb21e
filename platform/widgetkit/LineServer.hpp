#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace zelto::widgetkit {

/// Answers lines: each line of `input` is handed to `answer` on a thread of its own (at most 64 at once,
/// fewer where no more are to be had; more wait), and what that gives is written to `output` as one line, in
/// the order in which answers are ready. Of a line longer than `longestLine` only the first `longestLine` + 1
/// bytes are handed on. Empty lines are passed over. Returns when the input has ended and every answer is
/// out, or at once, with false, when the output broke.
bool serveLines(
    int input, int output, std::size_t longestLine,
    const std::function<std::string(std::string_view)>& answer);

}  // namespace zelto::widgetkit

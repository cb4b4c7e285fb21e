#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "foundation/Result.hpp"

namespace zelto::agent {

/// What the widgets' links ask for.
struct AwakeLink {
    enum class Action { on, off, toggle };
    Action action = Action::toggle;
    /// Until it ends; absent for no end.
    std::optional<std::int64_t> minutes = {};

    bool operator==(const AwakeLink&) const = default;
};
struct OpenLink {
    std::string tab;

    bool operator==(const OpenLink&) const = default;
};
/// A meeting's page, of http or https.
struct JoinLink {
    std::string page;

    bool operator==(const JoinLink&) const = default;
};
struct ClipLink {
    std::string id;

    bool operator==(const ClipLink&) const = default;
};
struct EqualizerLink {
    bool operator==(const EqualizerLink&) const = default;
};
using Link = std::variant<AwakeLink, OpenLink, JoinLink, ClipLink, EqualizerLink>;

inline constexpr std::size_t longestLink = 8192;  // bytes
/// A week.
inline constexpr std::int64_t mostAwakeMinutes = 10'080;

/// Reads a `zelto://` link. What is not one of the widgets' links, letter for letter, is refused: the text
/// may come from anywhere.
Result<Link> parseLink(std::string_view text);

}  // namespace zelto::agent

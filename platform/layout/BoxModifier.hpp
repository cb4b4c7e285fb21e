#pragma once

#include <variant>

#include "Children.hpp"
#include "ui/Modifiers.hpp"

namespace zelto::layout {

/// A modifier that takes part in the layout by itself, with the view that it is applied to as its one child;
/// all others only change what is inherited.
using BoxModifier = std::variant<
    const ui::modifier::Padding*, const ui::modifier::Frame*, const ui::modifier::Stretch*,
    const ui::modifier::ScaledToFill*, const ui::modifier::Rotation*, const ui::modifier::Background*,
    const ui::modifier::ClipShape*, const ui::modifier::Link*>;

/// What a modifier offers its child of what it is offered itself.
ProposedSize childProposal(const BoxModifier& modifier, const ProposedSize& proposal);

/// What it answers.
Size sizeOf(const BoxModifier& modifier, const ProposedSize& proposal, Children& child);

/// How far down its first baseline is.
double baselineOf(const BoxModifier& modifier, const ProposedSize& proposal, Children& child);

}  // namespace zelto::layout

#include "BoxModifier.hpp"

#include <algorithm>

namespace zelto::layout {
namespace {

double reduced(double length, double by) {
    return std::max(length - by, 0.0);
}

struct Propose {
    const ProposedSize& proposal;

    ProposedSize operator()(const ui::modifier::Padding* padding) const {
        ProposedSize inside = proposal;
        if (inside.width) inside.width = reduced(*inside.width, padding->leading + padding->trailing);
        if (inside.height) inside.height = reduced(*inside.height, padding->top + padding->bottom);
        return inside;
    }
    ProposedSize operator()(const ui::modifier::Frame* frame) const {
        return {
            frame->width ? frame->width : proposal.width, frame->height ? frame->height : proposal.height};
    }
    ProposedSize operator()(const ui::modifier::Stretch*) const { return proposal; }
    ProposedSize operator()(const ui::modifier::ScaledToFill*) const { return proposal; }
    ProposedSize operator()(const ui::modifier::Rotation*) const { return proposal; }
    ProposedSize operator()(const ui::modifier::Background*) const { return proposal; }
    ProposedSize operator()(const ui::modifier::ClipShape*) const { return proposal; }
    ProposedSize operator()(const ui::modifier::Link*) const { return proposal; }
};

struct Answer {
    const ProposedSize& proposal;
    Children& child;
    Size inside;

    Size operator()(const ui::modifier::Padding* padding) const {
        return {
            inside.width + padding->leading + padding->trailing,
            inside.height + padding->top + padding->bottom};
    }
    Size operator()(const ui::modifier::Frame* frame) const {
        return {frame->width.value_or(inside.width), frame->height.value_or(inside.height)};
    }
    Size operator()(const ui::modifier::Stretch* stretch) const {
        const auto stretched = [](bool wanted, const std::optional<double>& offered, double own) {
            return wanted ? std::max(offered.value_or(own), own) : own;
        };
        return {
            stretched(stretch->width, proposal.width, inside.width),
            stretched(stretch->height, proposal.height, inside.height)};
    }
    Size operator()(const ui::modifier::ScaledToFill*) const {
        const Size ideal = child.measure(0, {});
        const Size room{proposal.width.value_or(ideal.width), proposal.height.value_or(ideal.height)};
        // What has no size by itself has no aspect ratio to keep.
        if (!(ideal.width > 0 && ideal.height > 0)) return room;
        const double x = room.width / ideal.width, y = room.height / ideal.height;
        double scale = y;
        if (proposal.width) scale = proposal.height ? std::max(x, y) : x;
        return {ideal.width * scale, ideal.height * scale};
    }
    Size operator()(const ui::modifier::Rotation*) const { return inside; }
    Size operator()(const ui::modifier::Background*) const { return inside; }
    Size operator()(const ui::modifier::ClipShape*) const { return inside; }
    Size operator()(const ui::modifier::Link*) const { return inside; }
};

}  // namespace

ProposedSize childProposal(const BoxModifier& modifier, const ProposedSize& proposal) {
    return std::visit(Propose{proposal}, modifier);
}

Size sizeOf(const BoxModifier& modifier, const ProposedSize& proposal, Children& child) {
    const Size inside = child.measure(0, childProposal(modifier, proposal));
    return std::visit(Answer{proposal, child, inside}, modifier);
}

double baselineOf(const BoxModifier& modifier, const ProposedSize& proposal, Children& child) {
    const ProposedSize inside = childProposal(modifier, proposal);
    const double baseline = child.firstBaseline(0, inside);
    if (const auto* padding = std::get_if<const ui::modifier::Padding*>(&modifier))
        return (*padding)->top + baseline;
    // In all others the content is centred, or they are no larger than it.
    return (sizeOf(modifier, proposal, child).height - child.measure(0, inside).height) / 2 + baseline;
}

}  // namespace zelto::layout

#include "Stack.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace zelto::layout {
namespace {

/// Between neighbours whose stack tells no spacing; none beside a spacer. In points.
constexpr double defaultSpacing = 8;

bool isRow(const StackInput& input) {
    return std::holds_alternative<ui::VAlign>(input.alignment);
}

/// A size along a stack's main and cross axis.
struct Along {
    bool horizontal;

    double main(Size s) const { return horizontal ? s.width : s.height; }
    double cross(Size s) const { return horizontal ? s.height : s.width; }
    std::optional<double> main(const ProposedSize& p) const { return horizontal ? p.width : p.height; }
    ProposedSize withMain(const ProposedSize& p, std::optional<double> length) const {
        return horizontal ? ProposedSize{length, p.height} : ProposedSize{p.width, length};
    }
    Size size(double main, double cross) const { return horizontal ? Size{main, cross} : Size{cross, main}; }
};

/// Whose turn it is when a stack shares out its room.
enum class Turn : std::uint8_t { others, cutTexts, shrinkingTexts, spacers };

bool isSpacer(StackChild child) {
    return child.kind == StackChild::Kind::spacer;
}
/// A text that may be broken into lines.
bool isWrapping(StackChild child) {
    return child.kind == StackChild::Kind::text && !child.isLimited;
}

Turn turnOf(StackChild child, bool isRow, bool hasWrapping) {
    if (isSpacer(child)) return Turn::spacers;
    if (!isRow || child.kind != StackChild::Kind::text) return Turn::others;
    if (child.shrinks) return Turn::shrinkingTexts;
    return child.isLimited && hasWrapping ? Turn::cutTexts : Turn::others;
}

struct Sharer {
    std::size_t index;
    Turn turn;
    double least, flexibility;
};

bool comesFirst(const Sharer& a, const Sharer& b) {
    if (a.turn != b.turn) return a.turn < b.turn;
    if (a.flexibility != b.flexibility) return a.flexibility < b.flexibility;
    return std::isinf(a.flexibility) && a.least > b.least;
}

/// The children in the order in which they are offered room.
std::vector<Sharer> sharersOf(const StackInput& input, Along along, Children& children) {
    const bool hasWrapping = std::ranges::any_of(input.children, isWrapping);
    std::vector<Sharer> out(input.children.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double least = along.main(children.measure(i, along.withMain(input.proposal, 0)));
        const double most = along.main(
            children.measure(i, along.withMain(input.proposal, std::numeric_limits<double>::infinity())));
        out[i] = {i, turnOf(input.children[i], along.horizontal, hasWrapping), least, most - least};
    }
    std::ranges::stable_sort(out, comesFirst);
    return out;
}

/// Shares out the room between the children. What comes later has its least length set aside, and gets it
/// back when its turn comes.
StackLayout shared(StackLayout out, double room, const StackInput& input, Along along, Children& children) {
    const std::vector<Sharer> sharers = sharersOf(input, along, children);
    std::array<double, 4> reserved{};  // the least lengths of those whose turn it is then
    std::array<double, 4> left{};      // and their number
    for (const Sharer& sharer : sharers) {
        reserved[static_cast<std::size_t>(sharer.turn)] += sharer.least;
        left[static_cast<std::size_t>(sharer.turn)] += 1;
    }
    double space = room - std::accumulate(reserved.begin() + 1, reserved.end(), 0.0);
    Turn turn = Turn::others;
    for (const Sharer& sharer : sharers) {
        for (; turn != sharer.turn; turn = static_cast<Turn>(static_cast<int>(turn) + 1))
            space += reserved[static_cast<std::size_t>(turn) + 1];
        double& others = left[static_cast<std::size_t>(turn)];
        auto& wanted = out.proposals[sharer.index];
        wanted = along.withMain(input.proposal, std::max(space / others, 0.0));
        out.sizes[sharer.index] = children.measure(sharer.index, wanted);
        space -= along.main(out.sizes[sharer.index]);
        others -= 1;
    }
    return out;
}

/// The height of a row whose children stand on one line, and how far down that is.
struct Baselines {
    double height, baseline;
};
Baselines baselinesOf(const StackLayout& layout, Children& children) {
    double above = 0, below = 0;
    for (std::size_t i = 0; i < layout.sizes.size(); ++i) {
        const double baseline = children.firstBaseline(i, layout.proposals[i]);
        above = std::max(above, baseline);
        below = std::max(below, layout.sizes[i].height - baseline);
    }
    return {above + below, above};
}

bool alignsByBaselines(const StackInput& input) {
    const auto* row = std::get_if<ui::VAlign>(&input.alignment);
    return row && *row == ui::VAlign::firstTextBaseline;
}

}  // namespace

double aligned(ui::HAlign alignment, double room, double child) {
    switch (alignment) {
        case ui::HAlign::leading: return 0;
        case ui::HAlign::center: return (room - child) / 2;
        case ui::HAlign::trailing: return room - child;
    }
    return 0;
}

StackLayout layOutStack(const StackInput& input, Children& children) {
    const Along along{isRow(input)};
    const std::size_t count = input.children.size();
    const auto isGap = [&](std::size_t i) { return isSpacer(input.children[i]); };

    StackLayout out;
    out.sizes.resize(count);
    out.spacings.resize(count);
    out.proposals.assign(count, along.withMain(input.proposal, std::nullopt));
    for (std::size_t i = 1; i < count; ++i)
        out.spacings[i] = input.spacing ? *input.spacing : (isGap(i - 1) || isGap(i) ? 0 : defaultSpacing);
    const double gaps = std::accumulate(out.spacings.begin(), out.spacings.end(), 0.0);

    if (const auto offered = along.main(input.proposal))
        out = shared(std::move(out), *offered - gaps, input, along, children);
    else
        for (std::size_t i = 0; i < count; ++i) out.sizes[i] = children.measure(i, out.proposals[i]);

    double main = gaps, cross = 0;
    for (const Size& size : out.sizes) {
        main += along.main(size);
        cross = std::max(cross, along.cross(size));
    }
    if (alignsByBaselines(input)) {
        const auto [height, baseline] = baselinesOf(out, children);
        cross = height;
        out.baseline = baseline;
    }
    out.size = along.size(main, cross);
    return out;
}

std::vector<Point> stackOrigins(
    const StackInput& input, const StackLayout& layout, Rect frame, Children& children) {
    std::vector<Point> out(layout.sizes.size());
    double at = isRow(input) ? frame.x : frame.y;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const Size size = layout.sizes[i];
        at += layout.spacings[i];
        if (const auto* column = std::get_if<ui::HAlign>(&input.alignment)) {
            out[i] = {frame.x + aligned(*column, frame.width, size.width), at};
            at += size.height;
            continue;
        }
        double y = frame.y;
        switch (std::get<ui::VAlign>(input.alignment)) {
            case ui::VAlign::top: break;
            case ui::VAlign::center: y += (frame.height - size.height) / 2; break;
            case ui::VAlign::bottom: y += frame.height - size.height; break;
            case ui::VAlign::firstTextBaseline:
                y += layout.baseline - children.firstBaseline(i, layout.proposals[i]);
                break;
        }
        out[i] = {at, y};
        at += size.width;
    }
    return out;
}

}  // namespace zelto::layout

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

#include "Box.hpp"

namespace zelto::layout {
namespace {

/// Between neighbours whose stack tells no spacing; none beside a spacer. In points.
constexpr double defaultSpacing = 8;

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

/// Where a child of length `child` begins within `room`.
double aligned(ui::HAlign alignment, double room, double child) {
    switch (alignment) {
        case ui::HAlign::leading: return 0;
        case ui::HAlign::center: return (room - child) / 2;
        case ui::HAlign::trailing: return room - child;
    }
    return 0;
}

}  // namespace

/// In a row, a text that may be cut gives way to one that would be broken into lines, and one that may shrink
/// gives way to all others. Spacers come last everywhere.
BoxTree::Turn BoxTree::turnOf(std::size_t box, bool isRow, bool hasLines) const {
    if (isSpacer(box)) return Turn::spacers;
    if (!isRow || !isText(box)) return Turn::others;
    if (boxes_[box].inherited.minimumScale < 1) return Turn::shrinkingTexts;
    return hasLines && boxes_[box].inherited.lineLimit > 0 ? Turn::cutTexts : Turn::others;
}

bool BoxTree::isText(std::size_t box) const {
    return boxes_[box].node && std::holds_alternative<ui::node::Text>(*boxes_[box].node);
}

bool BoxTree::isSpacer(std::size_t box) const {
    return boxes_[box].node && std::holds_alternative<ui::node::Spacer>(*boxes_[box].node);
}

BoxTree::StackLayout BoxTree::layOutStack(const Box& box, const ProposedSize& proposal) {
    const auto* row = std::get_if<ui::node::HStack>(box.node);
    const Along along{row != nullptr};
    const auto& spacing = row ? row->spacing : std::get<ui::node::VStack>(*box.node).spacing;
    const std::vector<std::size_t>& children = box.children;
    const std::size_t count = children.size();

    StackLayout out;
    out.sizes.resize(count);
    out.spacings.resize(count);
    out.proposals.assign(count, along.withMain(proposal, std::nullopt));
    for (std::size_t i = 1; i < count; ++i)
        out.spacings[i] =
            spacing ? *spacing : (isSpacer(children[i - 1]) || isSpacer(children[i]) ? 0 : defaultSpacing);

    if (const auto offered = along.main(proposal)) {
        struct Child {
            std::size_t index;
            Turn turn;
            double least, flexibility;
        };
        std::vector<Child> order(count);
        std::array<double, 4> reserved{};  // the least lengths of those whose turn it is then
        std::array<double, 4> left{};      // and their number
        const bool hasLines = along.horizontal && std::ranges::any_of(children, [this](std::size_t child) {
                                  return isText(child) && boxes_[child].inherited.lineLimit == 0;
                              });
        for (std::size_t i = 0; i < count; ++i) {
            const double least = along.main(measure(children[i], along.withMain(proposal, 0)));
            const double most = along.main(
                measure(children[i], along.withMain(proposal, std::numeric_limits<double>::infinity())));
            order[i] = {i, turnOf(children[i], along.horizontal, hasLines), least, most - least};
            reserved[static_cast<std::size_t>(order[i].turn)] += least;
            left[static_cast<std::size_t>(order[i].turn)] += 1;
        }
        std::ranges::stable_sort(order, [](const Child& a, const Child& b) {
            if (a.turn != b.turn) return a.turn < b.turn;
            if (a.flexibility != b.flexibility) return a.flexibility < b.flexibility;
            return std::isinf(a.flexibility) && a.least > b.least;
        });

        // What comes later has its least length set aside, and gets it back when its turn comes.
        double space = *offered - std::accumulate(out.spacings.begin(), out.spacings.end(), 0.0) -
                       std::accumulate(reserved.begin() + 1, reserved.end(), 0.0);
        Turn turn = Turn::others;
        for (const Child& child : order) {
            for (; turn != child.turn; turn = static_cast<Turn>(static_cast<int>(turn) + 1))
                space += reserved[static_cast<std::size_t>(turn) + 1];
            auto& wanted = out.proposals[child.index];
            auto& sharers = left[static_cast<std::size_t>(turn)];
            wanted = along.withMain(proposal, std::max(space / sharers, 0.0));
            out.sizes[child.index] = measure(children[child.index], wanted);
            space -= along.main(out.sizes[child.index]);
            sharers -= 1;
        }
    } else {
        for (std::size_t i = 0; i < count; ++i) out.sizes[i] = measure(children[i], out.proposals[i]);
    }

    double main = std::accumulate(out.spacings.begin(), out.spacings.end(), 0.0), cross = 0;
    for (const Size& size : out.sizes) {
        main += along.main(size);
        cross = std::max(cross, along.cross(size));
    }
    if (row && row->alignment == ui::VAlign::firstTextBaseline) {
        double below = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const double baseline = firstBaseline(children[i], out.proposals[i]);
            out.baseline = std::max(out.baseline, baseline);
            below = std::max(below, out.sizes[i].height - baseline);
        }
        cross = out.baseline + below;
    }
    out.size = along.size(main, cross);
    return out;
}

void BoxTree::placeStack(const Box& box, Rect frame, const ProposedSize& proposal) {
    const StackLayout stack = layOutStack(box, proposal);
    const auto* row = std::get_if<ui::node::HStack>(box.node);
    const auto* column = std::get_if<ui::node::VStack>(box.node);
    const std::vector<std::size_t>& children = box.children;
    double at = row ? frame.x : frame.y;
    for (std::size_t i = 0; i < children.size(); ++i) {
        const Size size = stack.sizes[i];
        at += stack.spacings[i];
        if (column) {
            place(
                children[i],
                {frame.x + aligned(column->alignment, frame.width, size.width), at},
                stack.proposals[i]);
            at += size.height;
            continue;
        }
        double y = frame.y;
        switch (row->alignment) {
            case ui::VAlign::top: break;
            case ui::VAlign::center: y += (frame.height - size.height) / 2; break;
            case ui::VAlign::bottom: y += frame.height - size.height; break;
            case ui::VAlign::firstTextBaseline:
                y += stack.baseline - firstBaseline(children[i], stack.proposals[i]);
                break;
        }
        place(children[i], {at, y}, stack.proposals[i]);
        at += size.width;
    }
}

BoxTree::GridLayout BoxTree::layOutGrid(const Box& box, const ProposedSize& proposal) {
    const auto& grid = std::get<ui::node::Grid>(*box.node);
    const std::vector<std::size_t>& children = box.children;
    const auto columns = static_cast<std::size_t>(std::max<std::int64_t>(grid.columns, 1));
    const double gaps = static_cast<double>(columns - 1) * grid.columnSpacing;
    GridLayout out{.columnWidth = 0, .rowHeights = {}, .size = {}};
    if (proposal.width) {
        out.columnWidth = std::max((*proposal.width - gaps) / static_cast<double>(columns), 0.0);
    } else {
        for (const std::size_t child : children)
            out.columnWidth = std::max(out.columnWidth, measure(child, {}).width);
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
        if (i % columns == 0) out.rowHeights.push_back(0);
        out.rowHeights.back() =
            std::max(out.rowHeights.back(), measure(children[i], {out.columnWidth, std::nullopt}).height);
    }
    out.size.width = out.columnWidth * static_cast<double>(columns) + gaps;
    out.size.height = std::accumulate(out.rowHeights.begin(), out.rowHeights.end(), 0.0);
    if (!out.rowHeights.empty())
        out.size.height += static_cast<double>(out.rowHeights.size() - 1) * grid.rowSpacing;
    return out;
}

void BoxTree::placeGrid(const Box& box, Rect frame, const ProposedSize& proposal) {
    const auto& grid = std::get<ui::node::Grid>(*box.node);
    const GridLayout layout = layOutGrid(box, proposal);
    const std::vector<std::size_t>& children = box.children;
    const auto columns = static_cast<std::size_t>(std::max<std::int64_t>(grid.columns, 1));
    double y = frame.y;
    for (std::size_t i = 0; i < children.size(); ++i) {
        const std::size_t column = i % columns, row = i / columns;
        if (i > 0 && column == 0) y += layout.rowHeights[row - 1] + grid.rowSpacing;
        const ProposedSize cell{layout.columnWidth, std::nullopt};
        const Size size = measure(children[i], cell);
        const double x = frame.x + static_cast<double>(column) * (layout.columnWidth + grid.columnSpacing);
        place(
            children[i],
            {x + aligned(grid.alignment, layout.columnWidth, size.width),
             y + (layout.rowHeights[row] - size.height) / 2},
            cell);
    }
}

}  // namespace zelto::layout

#include "Box.hpp"

#include <algorithm>

#include "Grid.hpp"
#include "ui/TimerText.hpp"

namespace zelto::layout {
namespace {

/// What the secondary style leaves of the primary colour.
constexpr double secondaryOpacity = 0.55;
/// The side of a shape to which nothing is proposed, in points.
constexpr double idealShapeSide = 10;
/// The least length of a spacer that tells none, in points.
constexpr double defaultSpacerLength = 8;

/// Where a symbol's ink ends, as a part of its height: there it stands on a line of text.
constexpr double symbolBaseline = 0.86;
/// More than any widget holds.
constexpr std::int64_t mostLines = 1000;

/// What a modifier does to those inside: it changes what they inherit, or it has a box of its own.
struct ApplyModifier {
    using Result = std::optional<BoxModifier>;

    Inherited& inherited;
    DisplayList& displayList;

    Result operator()(const ui::modifier::Font& font) const {
        inherited.font = font;
        return {};
    }
    Result operator()(const ui::modifier::Foreground& foreground) const {
        inherited.foreground = resolve(foreground.style, inherited);
        if (std::holds_alternative<ui::Color>(foreground.style)) inherited.primary = inherited.foreground;
        return {};
    }
    Result operator()(const ui::modifier::LineLimit& limit) const {
        inherited.lineLimit = std::clamp<std::int64_t>(limit.lines, 0, mostLines);
        return {};
    }
    Result operator()(const ui::modifier::MinimumScale& scale) const {
        inherited.minimumScale = std::clamp(scale.factor, 0.01, 1.0);
        return {};
    }
    // Of the whole widget: the outermost one is met first and stays.
    Result operator()(const ui::modifier::WidgetURL& link) const {
        if (!displayList.widgetURL) displayList.widgetURL = link.url;
        return {};
    }
    Result operator()(const ui::modifier::ContainerBackground& background) const {
        if (!displayList.background) displayList.background = background.gradient;
        return {};
    }
    // Nothing of it shows.
    Result operator()(const ui::modifier::AccessibilityLabel&) const { return {}; }

    Result operator()(const ui::modifier::Padding& padding) const { return &padding; }
    Result operator()(const ui::modifier::Frame& frame) const { return &frame; }
    Result operator()(const ui::modifier::Stretch& stretch) const { return &stretch; }
    Result operator()(const ui::modifier::ScaledToFill& fill) const { return &fill; }
    Result operator()(const ui::modifier::Rotation& rotation) const { return &rotation; }
    Result operator()(const ui::modifier::Background& background) const { return &background; }
    Result operator()(const ui::modifier::ClipShape& clip) const { return &clip; }
    Result operator()(const ui::modifier::Link& link) const { return &link; }
};

}  // namespace

ui::Color resolve(const ui::Style& style, const Inherited& inherited) {
    if (const auto* color = std::get_if<ui::Color>(&style)) return *color;
    if (inherited.contrast == Contrast::high) return inherited.primary;
    return inherited.primary.withOpacity(inherited.primary.opacity * secondaryOpacity);
}

BoxTree::BoxTree(
    const ui::View& view, Date now, Contrast contrast, TextMeasuring& measuring, DisplayList& displayList)
    : root_(0), now_(now), measuring_(measuring), displayList_(displayList) {
    boxes_.reserve(128);
    root_ = build(view, view.modifiers.size(), {.contrast = contrast});
}

std::size_t BoxTree::build(const ui::View& view, std::size_t modifiers, Inherited inherited) {
    if (modifiers == 0) return buildNode(view, inherited);
    const ui::Modifier& modifier = view.modifiers[modifiers - 1];
    const auto boxed = std::visit(ApplyModifier{inherited, displayList_}, modifier);
    if (!boxed) return build(view, modifiers - 1, inherited);
    const std::size_t index = boxes_.size();
    boxes_.push_back(
        {.modifier = boxed,
         .view = &view,
         .inherited = inherited,
         .children = {},
         .stackChildren = {},
         .answers = {}});
    const std::size_t child = build(view, modifiers - 1, inherited);
    boxes_[index].children.push_back(child);
    return index;
}

std::size_t BoxTree::buildNode(const ui::View& view, const Inherited& inherited) {
    const std::size_t index = boxes_.size();
    boxes_.push_back(
        {.node = &view.node,
         .view = &view,
         .inherited = inherited,
         .children = {},
         .stackChildren = {},
         .answers = {}});
    const ui::Views* children = ui::childrenOf(view.node);
    if (!children) return index;
    Inherited inside = inherited;
    inside.stackAxis = std::holds_alternative<ui::node::HStack>(view.node)   ? Axis::horizontal
                       : std::holds_alternative<ui::node::VStack>(view.node) ? Axis::vertical
                                                                             : Axis::none;
    std::vector<std::size_t> indices;
    indices.reserve(children->size());
    for (const ui::View& child : *children) indices.push_back(build(child, child.modifiers.size(), inside));
    if (inside.stackAxis != Axis::none)
        for (const std::size_t child : indices) boxes_[index].stackChildren.push_back(stackChildOf(child));
    boxes_[index].children = std::move(indices);
    return index;
}

Size BoxTree::measure(std::size_t index, const ProposedSize& proposal) {
    for (const auto& [asked, answered] : boxes_[index].answers)
        if (asked == proposal) return answered;
    const Box& box = boxes_[index];
    ChildrenOf children(*this, box);
    const Size size = box.node ? answer(box, proposal) : sizeOf(*box.modifier, proposal, children);
    boxes_[index].answers.emplace_back(proposal, size);
    return size;
}

Size BoxTree::answer(const Box& box, const ProposedSize& proposal) {
    struct Answer {
        BoxTree& tree;
        const Box& box;
        const ProposedSize& proposal;

        Size operator()(const ui::node::Text& text) const {
            return tree.fit(text.text, box, proposal).extent.size;
        }
        Size operator()(const ui::node::Countdown& countdown) const {
            return tree.fit(ui::timerText(countdown.end, tree.now_), box, proposal).extent.size;
        }
        Size operator()(const ui::node::Symbol& symbol) const {
            return tree.measuring_.symbolSize(symbol.name, box.inherited.font.size);
        }
        Size operator()(const ui::node::Image& image) const {
            return {
                proposal.width.value_or(static_cast<double>(image.width)),
                proposal.height.value_or(static_cast<double>(image.height))};
        }
        Size operator()(const ui::node::Spacer& spacer) const {
            const double least = spacer.minLength.value_or(defaultSpacerLength);
            const auto along = [&](const std::optional<double>& offered, Axis across) {
                return box.inherited.stackAxis == across ? 0 : std::max(offered.value_or(least), least);
            };
            return {along(proposal.width, Axis::vertical), along(proposal.height, Axis::horizontal)};
        }
        Size operator()(const ui::node::Shape&) const {
            return {proposal.width.value_or(idealShapeSide), proposal.height.value_or(idealShapeSide)};
        }
        Size operator()(const ui::node::VStack&) const { return stack(); }
        Size operator()(const ui::node::HStack&) const { return stack(); }
        Size operator()(const ui::node::ZStack&) const {
            Size size;
            for (const std::size_t child : box.children) {
                const Size one = tree.measure(child, proposal);
                size = {std::max(size.width, one.width), std::max(size.height, one.height)};
            }
            return size;
        }
        Size operator()(const ui::node::Grid& grid) const {
            ChildrenOf children(tree, box);
            return layOutGrid({grid, box.children.size(), proposal.width}, children).size;
        }
        Size stack() const {
            ChildrenOf children(tree, box);
            return layOutStack(stackOf(box, proposal), children).size;
        }
    };
    return std::visit(Answer{*this, box, proposal}, *box.node);
}

TextFit BoxTree::fit(const std::string& text, const Box& box, const ProposedSize& proposal) {
    const Inherited& inherited = box.inherited;
    return fitText({text, inherited.font, inherited.lineLimit, inherited.minimumScale}, proposal, measuring_);
}

StackChild BoxTree::stackChildOf(std::size_t index) const {
    const Box& box = boxes_[index];
    if (!box.node) return {};
    if (std::holds_alternative<ui::node::Spacer>(*box.node)) return {.kind = StackChild::Kind::spacer};
    if (!std::holds_alternative<ui::node::Text>(*box.node)) return {};
    return {
        .kind = StackChild::Kind::text,
        .shrinks = box.inherited.minimumScale<1, .isLimited = box.inherited.lineLimit> 0};
}

StackInput BoxTree::stackOf(const Box& box, const ProposedSize& proposal) {
    StackInput out{.alignment = {}, .spacing = {}, .children = box.stackChildren, .proposal = proposal};
    if (const auto* row = std::get_if<ui::node::HStack>(box.node)) {
        out.alignment = row->alignment;
        out.spacing = row->spacing;
    } else {
        const auto& column = std::get<ui::node::VStack>(*box.node);
        out.alignment = column.alignment;
        out.spacing = column.spacing;
    }
    return out;
}

double BoxTree::firstBaselineOfNode(const Box& box, double height, const ProposedSize& proposal) {
    struct Baseline {
        BoxTree& tree;
        const Box& box;
        double height;
        const ProposedSize& proposal;

        double operator()(const ui::node::Text& text) const {
            return tree.fit(text.text, box, proposal).extent.baseline;
        }
        double operator()(const ui::node::Countdown& countdown) const {
            return tree.fit(ui::timerText(countdown.end, tree.now_), box, proposal).extent.baseline;
        }
        double operator()(const ui::node::Symbol&) const { return symbolBaseline * height; }
        // What holds no text stands on its lower edge.
        double operator()(const ui::node::Image&) const { return height; }
        double operator()(const ui::node::Spacer&) const { return height; }
        double operator()(const ui::node::Shape&) const { return height; }
        double operator()(const ui::node::VStack&) const { return height; }
        double operator()(const ui::node::HStack&) const { return height; }
        double operator()(const ui::node::ZStack&) const { return height; }
        double operator()(const ui::node::Grid&) const { return height; }
    };
    return std::visit(Baseline{*this, box, height, proposal}, *box.node);
}

double BoxTree::firstBaseline(std::size_t index, const ProposedSize& proposal) {
    const Box& box = boxes_[index];
    if (box.node) return firstBaselineOfNode(box, measure(index, proposal).height, proposal);
    ChildrenOf children(*this, box);
    return baselineOf(*box.modifier, proposal, children);
}

}  // namespace zelto::layout

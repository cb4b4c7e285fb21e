#include "Box.hpp"

#include <algorithm>
#include <cmath>

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

double coalesce(const std::optional<double>& a, double b) {
    return a ? *a : b;
}
double reduced(double length, double by) {
    return std::max(length - by, 0.0);
}

/// What a modifier does to those inside: it changes what they inherit, or it has a box of its own.
struct ApplyModifier {
    using Result = std::optional<BoxModifier>;

    Inherited& inherited;
    Placement& placement;

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
        if (!placement.widgetURL) placement.widgetURL = link.url;
        return {};
    }
    Result operator()(const ui::modifier::ContainerBackground& background) const {
        if (!placement.background) placement.background = background.gradient;
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
    return inherited.primary.withOpacity(inherited.primary.opacity * secondaryOpacity);
}

BoxTree::BoxTree(const ui::View& view, Date now, TextMeasuring& measuring, Placement& placement)
    : root_(0), now_(now), measuring_(measuring), placement_(placement) {
    boxes_.reserve(128);
    root_ = build(view, view.modifiers.size(), {});
}

std::size_t BoxTree::build(const ui::View& view, std::size_t modifiers, Inherited inherited) {
    if (modifiers == 0) return buildNode(view, inherited);
    const ui::Modifier& modifier = view.modifiers[modifiers - 1];
    const auto boxed = std::visit(ApplyModifier{inherited, placement_}, modifier);
    if (!boxed) return build(view, modifiers - 1, inherited);
    const std::size_t index = boxes_.size();
    boxes_.push_back(
        {.modifier = boxed, .view = &view, .inherited = inherited, .children = {}, .answers = {}});
    const std::size_t child = build(view, modifiers - 1, inherited);
    boxes_[index].children.push_back(child);
    return index;
}

std::size_t BoxTree::buildNode(const ui::View& view, const Inherited& inherited) {
    const std::size_t index = boxes_.size();
    boxes_.push_back(
        {.node = &view.node, .view = &view, .inherited = inherited, .children = {}, .answers = {}});
    const ui::Views* children = ui::childrenOf(view.node);
    if (!children) return index;
    Inherited inside = inherited;
    inside.stackAxis = std::holds_alternative<ui::node::HStack>(view.node)   ? Axis::horizontal
                       : std::holds_alternative<ui::node::VStack>(view.node) ? Axis::vertical
                                                                             : Axis::none;
    std::vector<std::size_t> indices;
    indices.reserve(children->size());
    for (const ui::View& child : *children) indices.push_back(build(child, child.modifiers.size(), inside));
    boxes_[index].children = std::move(indices);
    return index;
}

Size BoxTree::measure(std::size_t index, const ProposedSize& proposal) {
    for (const auto& [asked, answered] : boxes_[index].answers)
        if (asked == proposal) return answered;
    const Box& box = boxes_[index];
    const Size size = box.node ? answer(box, proposal) : answer(box, *box.modifier, proposal);
    boxes_[index].answers.emplace_back(proposal, size);
    return size;
}

Size BoxTree::answer(const Box& box, const ProposedSize& proposal) {
    struct Answer {
        BoxTree& tree;
        const Box& box;
        const ProposedSize& proposal;

        Size operator()(const ui::node::Text& text) const {
            return tree.fitText(text.text, box.inherited, proposal).extent.size;
        }
        Size operator()(const ui::node::Countdown& countdown) const {
            return tree.fitText(ui::timerText(countdown.end, tree.now_), box.inherited, proposal).extent.size;
        }
        Size operator()(const ui::node::Symbol& symbol) const {
            return tree.measuring_.symbolSize(symbol.name, box.inherited.font.size);
        }
        Size operator()(const ui::node::Image& image) const {
            return {
                coalesce(proposal.width, static_cast<double>(image.width)),
                coalesce(proposal.height, static_cast<double>(image.height))};
        }
        Size operator()(const ui::node::Spacer& spacer) const {
            const double least = coalesce(spacer.minLength, defaultSpacerLength);
            const auto along = [&](const std::optional<double>& offered, Axis across) {
                return box.inherited.stackAxis == across ? 0 : std::max(coalesce(offered, least), least);
            };
            return {along(proposal.width, Axis::vertical), along(proposal.height, Axis::horizontal)};
        }
        Size operator()(const ui::node::Shape&) const {
            return {coalesce(proposal.width, idealShapeSide), coalesce(proposal.height, idealShapeSide)};
        }
        Size operator()(const ui::node::VStack&) const { return tree.layOutStack(box, proposal).size; }
        Size operator()(const ui::node::HStack&) const { return tree.layOutStack(box, proposal).size; }
        Size operator()(const ui::node::ZStack&) const {
            Size size;
            for (const std::size_t child : box.children) {
                const Size one = tree.measure(child, proposal);
                size = {std::max(size.width, one.width), std::max(size.height, one.height)};
            }
            return size;
        }
        Size operator()(const ui::node::Grid&) const { return tree.layOutGrid(box, proposal).size; }
    };
    return std::visit(Answer{*this, box, proposal}, *box.node);
}

ProposedSize BoxTree::childProposal(const BoxModifier& modifier, const ProposedSize& proposal) {
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
                frame->width ? frame->width : proposal.width,
                frame->height ? frame->height : proposal.height};
        }
        ProposedSize operator()(const ui::modifier::Stretch*) const { return proposal; }
        ProposedSize operator()(const ui::modifier::ScaledToFill*) const { return proposal; }
        ProposedSize operator()(const ui::modifier::Rotation*) const { return proposal; }
        ProposedSize operator()(const ui::modifier::Background*) const { return proposal; }
        ProposedSize operator()(const ui::modifier::ClipShape*) const { return proposal; }
        ProposedSize operator()(const ui::modifier::Link*) const { return proposal; }
    };
    return std::visit(Propose{proposal}, modifier);
}

Size BoxTree::answer(const Box& box, const BoxModifier& modifier, const ProposedSize& proposal) {
    struct Answer {
        BoxTree& tree;
        std::size_t child;
        const ProposedSize& proposal;
        Size inside;

        Size operator()(const ui::modifier::Padding* padding) const {
            return {
                inside.width + padding->leading + padding->trailing,
                inside.height + padding->top + padding->bottom};
        }
        Size operator()(const ui::modifier::Frame* frame) const {
            return {coalesce(frame->width, inside.width), coalesce(frame->height, inside.height)};
        }
        Size operator()(const ui::modifier::Stretch* stretch) const {
            return {
                stretch->width ? std::max(coalesce(proposal.width, inside.width), inside.width)
                               : inside.width,
                stretch->height ? std::max(coalesce(proposal.height, inside.height), inside.height)
                                : inside.height};
        }
        Size operator()(const ui::modifier::ScaledToFill*) const {
            const Size ideal = tree.measure(child, {});
            // What has no size by itself has no aspect ratio to keep.
            if (!(ideal.width > 0 && ideal.height > 0))
                return {coalesce(proposal.width, ideal.width), coalesce(proposal.height, ideal.height)};
            const double x = coalesce(proposal.width, ideal.width) / ideal.width;
            const double y = coalesce(proposal.height, ideal.height) / ideal.height;
            double scale = y;
            if (proposal.width) scale = proposal.height ? std::max(x, y) : x;
            return {ideal.width * scale, ideal.height * scale};
        }
        Size operator()(const ui::modifier::Rotation*) const { return inside; }
        Size operator()(const ui::modifier::Background*) const { return inside; }
        Size operator()(const ui::modifier::ClipShape*) const { return inside; }
        Size operator()(const ui::modifier::Link*) const { return inside; }
    };
    const std::size_t child = box.children.front();
    const Size inside = measure(child, childProposal(modifier, proposal));
    return std::visit(Answer{*this, child, proposal, inside}, modifier);
}

double BoxTree::firstBaselineOfNode(const Box& box, double height, const ProposedSize& proposal) {
    struct Baseline {
        BoxTree& tree;
        const Box& box;
        double height;
        const ProposedSize& proposal;

        double operator()(const ui::node::Text& text) const {
            return tree.fitText(text.text, box.inherited, proposal).extent.baseline;
        }
        double operator()(const ui::node::Countdown& countdown) const {
            return tree.fitText(ui::timerText(countdown.end, tree.now_), box.inherited, proposal)
                .extent.baseline;
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
    const Size size = measure(index, proposal);
    if (box.node) return firstBaselineOfNode(box, size.height, proposal);
    const std::size_t child = box.children.front();
    const ProposedSize inside = childProposal(*box.modifier, proposal);
    const double baseline = firstBaseline(child, inside);
    if (const auto* padding = std::get_if<const ui::modifier::Padding*>(&*box.modifier))
        return (*padding)->top + baseline;
    // In all others the content is centred, or they are no larger than it.
    return (size.height - measure(child, inside).height) / 2 + baseline;
}

}  // namespace zelto::layout

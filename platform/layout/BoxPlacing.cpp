#include "Box.hpp"
#include "Grid.hpp"
#include "ui/Reading.hpp"
#include "ui/TimerText.hpp"

namespace zelto::layout {
namespace {

ui::Paint resolved(const ui::Paint& paint, const Inherited& inherited) {
    ui::Paint out = paint;
    std::visit([&](auto& p) { p.style = resolve(p.style, inherited); }, out);
    return out;
}

}  // namespace

void BoxTree::place(std::size_t index, Point origin, const ProposedSize& proposal) {
    const Size size = measure(index, proposal);
    const Box& box = boxes_[index];
    const Rect frame{origin.x, origin.y, size.width, size.height};
    if (box.node)
        emit(box, frame, proposal);
    else
        emit(box, *box.modifier, frame, proposal);
}

void BoxTree::emit(const Box& box, Rect frame, const ProposedSize& proposal) {
    struct Emit {
        BoxTree& tree;
        const Box& box;
        Rect frame;
        const ProposedSize& proposal;

        Point origin() const { return {frame.x, frame.y}; }
        void put(DisplayItem item) const { tree.displayList_.items.push_back(std::move(item)); }

        void operator()(const ui::node::Text& text) const {
            if (!text.text.empty()) put(tree.placeText(text.text, box, origin(), proposal));
        }
        void operator()(const ui::node::Countdown& countdown) const {
            put(PlacedCountdown{
                tree.placeText(ui::timerText(countdown.end, tree.now_), box, origin(), proposal),
                countdown.end});
        }
        void operator()(const ui::node::Symbol& symbol) const {
            put(PlacedSymbol{frame, symbol.name, box.inherited.font.size, box.inherited.foreground});
        }
        void operator()(const ui::node::Image& image) const { put(PlacedImage{frame, image}); }
        void operator()(const ui::node::Spacer&) const {}
        void operator()(const ui::node::Shape& shape) const {
            put(PlacedShape{frame, shape.geometry, shape.trim, resolved(shape.paint, box.inherited)});
        }
        void operator()(const ui::node::VStack&) const { tree.placeStack(box, frame, proposal); }
        void operator()(const ui::node::HStack&) const { tree.placeStack(box, frame, proposal); }
        void operator()(const ui::node::ZStack&) const {
            for (const std::size_t child : box.children) tree.placeCentered(child, frame, proposal);
        }
        void operator()(const ui::node::Grid&) const { tree.placeGrid(box, frame, proposal); }
    };
    std::visit(Emit{*this, box, frame, proposal}, *box.node);
}

void BoxTree::placeCentered(std::size_t child, Rect frame, const ProposedSize& proposal) {
    const Size size = measure(child, proposal);
    place(
        child,
        {frame.x + (frame.width - size.width) / 2, frame.y + (frame.height - size.height) / 2},
        proposal);
}

void BoxTree::emit(const Box& box, const BoxModifier& modifier, Rect frame, const ProposedSize& proposal) {
    struct Emit {
        BoxTree& tree;
        const Box& box;
        Rect frame;
        ProposedSize inside;

        std::size_t child() const { return box.children.front(); }
        void placeInside() const { tree.place(child(), {frame.x, frame.y}, inside); }
        void placeBetween(DisplayItem begin) const {
            tree.displayList_.items.push_back(std::move(begin));
            placeInside();
            tree.displayList_.items.emplace_back(End{});
        }

        void operator()(const ui::modifier::Padding* padding) const {
            tree.place(child(), {frame.x + padding->leading, frame.y + padding->top}, inside);
        }
        void operator()(const ui::modifier::Frame*) const { tree.placeCentered(child(), frame, inside); }
        void operator()(const ui::modifier::Stretch*) const { tree.placeCentered(child(), frame, inside); }
        void operator()(const ui::modifier::ScaledToFill*) const {
            tree.place(child(), {frame.x, frame.y}, {frame.width, frame.height});
        }
        void operator()(const ui::modifier::Background* background) const {
            tree.displayList_.items.emplace_back(PlacedShape{
                frame, background->geometry, {}, ui::Fill{resolve(background->style, box.inherited)}});
            placeInside();
        }
        void operator()(const ui::modifier::Rotation* rotation) const {
            placeBetween(BeginRotation{frame.center(), rotation->degrees});
        }
        void operator()(const ui::modifier::ClipShape* clip) const {
            placeBetween(BeginClip{frame, clip->geometry});
        }
        void operator()(const ui::modifier::Link* link) const {
            tree.displayList_.links.push_back(
                {frame, link->url, ui::joined(ui::readingTexts(*box.view, tree.now_))});
            placeInside();
        }
    };
    std::visit(Emit{*this, box, frame, childProposal(modifier, proposal)}, modifier);
}

PlacedText BoxTree::placeText(
    const std::string& text, const Box& box, Point origin, const ProposedSize& proposal) {
    const TextFit fitted = fit(text, box, proposal);
    return {
        .frame = {origin.x, origin.y, fitted.extent.size.width, fitted.extent.size.height},
        .text = shownText(text, box.inherited.lineLimit),
        .font = box.inherited.font,
        .scale = fitted.scale,
        .color = box.inherited.foreground,
        .width = fitted.width,
        .lines = fitted.lines};
}

void BoxTree::placeStack(const Box& box, Rect frame, const ProposedSize& proposal) {
    ChildrenOf children(*this, box);
    const StackInput input = stackOf(box, proposal);
    const StackLayout stack = layOutStack(input, children);
    const auto origins = stackOrigins(input, stack, frame, children);
    for (std::size_t i = 0; i < origins.size(); ++i) place(box.children[i], origins[i], stack.proposals[i]);
}

void BoxTree::placeGrid(const Box& box, Rect frame, const ProposedSize& proposal) {
    ChildrenOf children(*this, box);
    const GridInput input{std::get<ui::node::Grid>(*box.node), box.children.size(), proposal.width};
    const GridLayout grid = layOutGrid(input, children);
    const auto origins = gridOrigins(input, grid, frame, children);
    for (std::size_t i = 0; i < origins.size(); ++i) place(box.children[i], origins[i], grid.cell());
}

}  // namespace zelto::layout

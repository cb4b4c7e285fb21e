#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "BoxModifier.hpp"
#include "Stack.hpp"
#include "TextFit.hpp"
#include "layout/DisplayList.hpp"
#include "layout/Layout.hpp"
#include "layout/TextMeasuring.hpp"
#include "ui/View.hpp"

namespace zelto::layout {

enum class Axis : std::uint8_t { horizontal, vertical, none };

/// What a view inherits from those around it.
struct Inherited {
    ui::modifier::Font font{.size = 13};
    ui::Color primary{1, 1, 1};  // the last explicit foreground
    ui::Color foreground{1, 1, 1};
    std::int64_t lineLimit = 0;
    double minimumScale = 1;
    Axis stackAxis = Axis::none;  // of the stack that it stands in directly
    Contrast contrast = Contrast::normal;
};

/// The foreground that a style means.
ui::Color resolve(const ui::Style& style, const Inherited& inherited);

/// One step of the layout: a node, or a modifier that takes part in it (then with one child). Modifiers that
/// only change what is inherited have no box.
struct Box {
    const ui::Node* node = nullptr;
    std::optional<BoxModifier> modifier = {};
    const ui::View* view = nullptr;  // that it comes from
    Inherited inherited;
    std::vector<std::size_t> children;
    std::vector<StackChild> stackChildren;  // of a stack
    /// What it answered to each proposal so far.
    std::vector<std::pair<ProposedSize, Size>> answers;
};

/// The boxes of one view; made for one layout. What it knows of each is handed to the algorithms (Stack.hpp,
/// Grid.hpp, TextFit.hpp, BoxModifier.hpp), and what they answer becomes frames.
class BoxTree {
  public:
    BoxTree(
        const ui::View& view, Date now, Contrast contrast, TextMeasuring& measuring,
        DisplayList& displayList);

    std::size_t root() const { return root_; }
    Size measure(std::size_t box, const ProposedSize& proposal);
    void place(std::size_t box, Point origin, const ProposedSize& proposal);
    /// From the top of the box's frame; its bottom edge when it holds no text.
    double firstBaseline(std::size_t box, const ProposedSize& proposal);

  private:
    class ChildrenOf;

    std::size_t build(const ui::View& view, std::size_t modifiers, Inherited inherited);
    std::size_t buildNode(const ui::View& view, const Inherited& inherited);

    Size answer(const Box& box, const ProposedSize& proposal);
    double firstBaselineOfNode(const Box& box, double height, const ProposedSize& proposal);
    TextFit fit(const std::string& text, const Box& box, const ProposedSize& proposal);
    static StackInput stackOf(const Box& box, const ProposedSize& proposal);
    StackChild stackChildOf(std::size_t box) const;

    void emit(const Box& box, Rect frame, const ProposedSize& proposal);
    void emit(const Box& box, const BoxModifier& modifier, Rect frame, const ProposedSize& proposal);
    void placeCentered(std::size_t child, Rect frame, const ProposedSize& proposal);
    PlacedText placeText(const std::string& text, const Box& box, Point origin, const ProposedSize& proposal);
    void placeStack(const Box& box, Rect frame, const ProposedSize& proposal);
    void placeGrid(const Box& box, Rect frame, const ProposedSize& proposal);

    std::vector<Box> boxes_;
    std::size_t root_;
    Date now_;
    TextMeasuring& measuring_;
    DisplayList& displayList_;
};

/// A box's children, for the algorithms.
class BoxTree::ChildrenOf : public Children {
  public:
    ChildrenOf(BoxTree& tree, const Box& box) : tree_(tree), box_(box) {}

    Size measure(std::size_t child, const ProposedSize& proposal) override {
        return tree_.measure(box_.children[child], proposal);
    }
    double firstBaseline(std::size_t child, const ProposedSize& proposal) override {
        return tree_.firstBaseline(box_.children[child], proposal);
    }

  private:
    BoxTree& tree_;
    const Box& box_;
};

}  // namespace zelto::layout

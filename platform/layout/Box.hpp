#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "layout/Geometry.hpp"
#include "layout/Placement.hpp"
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
};

/// The foreground that a style means.
ui::Color resolve(const ui::Style& style, const Inherited& inherited);

/// A modifier that takes part in the layout by itself; all others only change what is inherited.
using BoxModifier = std::variant<
    const ui::modifier::Padding*, const ui::modifier::Frame*, const ui::modifier::Stretch*,
    const ui::modifier::ScaledToFill*, const ui::modifier::Rotation*, const ui::modifier::Background*,
    const ui::modifier::ClipShape*, const ui::modifier::Link*>;

/// One step of the layout: a node, or a modifier that takes part in it (then with one child). Modifiers that
/// only change what is inherited have no box.
struct Box {
    const ui::Node* node = nullptr;
    std::optional<BoxModifier> modifier = {};
    const ui::View* view = nullptr;  // that it comes from
    Inherited inherited;
    std::vector<std::size_t> children;
    /// What it answered to each proposal so far.
    std::vector<std::pair<ProposedSize, Size>> answers;
};

/// The boxes of one view and the algorithms over them; made for one layout.
class BoxTree {
  public:
    BoxTree(const ui::View& view, Date now, TextMeasuring& measuring, Placement& placement);

    std::size_t root() const { return root_; }
    Size measure(std::size_t box, const ProposedSize& proposal);
    void place(std::size_t box, Point origin, const ProposedSize& proposal);
    /// From the top of the box's frame; its bottom edge when it holds no text.
    double firstBaseline(std::size_t box, const ProposedSize& proposal);

  private:
    struct TextFit {
        TextExtent extent;
        double scale;
        std::optional<double> width;
        std::int64_t lines;
    };
    struct StackLayout {
        std::vector<Size> sizes;
        std::vector<double> spacings;  // before each child
        std::vector<ProposedSize> proposals;
        Size size;
        double baseline = 0;  // of the stack, when it aligns by baselines
    };

    std::size_t build(const ui::View& view, std::size_t modifiers, Inherited inherited);
    std::size_t buildNode(const ui::View& view, const Inherited& inherited);

    Size answer(const Box& box, const ProposedSize& proposal);
    Size answer(const Box& box, const BoxModifier& modifier, const ProposedSize& proposal);
    void emit(std::size_t box, Point origin, Size size, const ProposedSize& proposal);
    void emit(const Box& box, const BoxModifier& modifier, Rect frame, const ProposedSize& proposal);
    void placeCentered(std::size_t child, Rect frame, const ProposedSize& proposal);
    static ProposedSize childProposal(const BoxModifier& modifier, const ProposedSize& proposal);
    double firstBaselineOfNode(const Box& box, double height, const ProposedSize& proposal);

    TextFit fitText(const std::string& text, const Inherited& inherited, const ProposedSize& proposal);
    PlacedText placeText(
        const std::string& text, const Inherited& inherited, Point origin, const ProposedSize& proposal);

    StackLayout layOutStack(const Box& box, const ProposedSize& proposal);
    void placeStack(const Box& box, Rect frame, const ProposedSize& proposal);
    /// Whose turn it is when a stack shares out its room.
    enum class Turn : std::uint8_t { others, cutTexts, shrinkingTexts, spacers };
    Turn turnOf(std::size_t box, bool isRow, bool hasLines) const;
    bool isText(std::size_t box) const;
    bool isSpacer(std::size_t box) const;

    struct GridLayout {
        double columnWidth;
        std::vector<double> rowHeights;
        Size size;
    };
    GridLayout layOutGrid(const Box& box, const ProposedSize& proposal);
    void placeGrid(const Box& box, Rect frame, const ProposedSize& proposal);

    std::vector<Box> boxes_;
    std::size_t root_;
    Date now_;
    TextMeasuring& measuring_;
    Placement& placement_;
};

}  // namespace zelto::layout

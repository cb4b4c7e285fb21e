#include <algorithm>
#include <cmath>

#include "records/JSONEncoder.hpp"
#include "texts/Characters.hpp"
#include "ui/Reading.hpp"
#include "widgetkit/ViewBounds.hpp"

namespace zelto::widgetkit {
namespace {

std::size_t nodesOf(const ui::View& view) {
    std::size_t nodes = 1;
    if (const ui::Views* children = ui::childrenOf(view.node))
        for (const ui::View& child : *children) nodes += nodesOf(child);
    return nodes;
}

/// The children of the node in the tree that has most of them, or none.
ui::Views* longestList(ui::View& view) {
    ui::Views* longest = ui::childrenOf(view.node);
    if (!longest) return nullptr;
    for (ui::View& child : *longest)
        if (ui::Views* other = longestList(child); other && other->size() > longest->size()) longest = other;
    return longest;
}

/// The first, least, greatest and last value of each of `steps` equal parts, the middle two in their own
/// order: what can be told apart of a line that has a step for every fraction of a pixel.
std::vector<double> thinned(const std::vector<double>& values, std::size_t steps) {
    std::vector<double> out;
    out.reserve(4 * steps);
    for (std::size_t step = 0; step < steps; ++step) {
        const auto at = [&](std::size_t i) {
            return values.begin() + static_cast<std::ptrdiff_t>(i * values.size() / steps);
        };
        auto [first, second] = std::minmax_element(at(step), at(step + 1));
        if (second < first) std::swap(first, second);
        out.insert(out.end(), {*at(step), *first, *second, *(at(step + 1) - 1)});
    }
    return out;
}

class Cutter {
  public:
    Cutter(const ViewBudget& budget, double width)
        : budget_(budget),
          left_(budget.allTextBytes),
          steps_(static_cast<std::size_t>(std::ceil(width / budget.pointsPerStep))) {}

    void cut(ui::View& view) {
        std::visit([this](auto& node) { this->cutNode(node); }, view.node);
        for (ui::Modifier& modifier : view.modifiers)
            if (auto* accessible = std::get_if<ui::modifier::AccessibilityLabel>(&modifier))
                cut(accessible->label);
        // Nothing would be read instead of what is there.
        std::erase_if(view.modifiers, [](const ui::Modifier& modifier) {
            const auto* accessible = std::get_if<ui::modifier::AccessibilityLabel>(&modifier);
            return accessible && accessible->label.empty();
        });
        if (ui::Views* children = ui::childrenOf(view.node))
            for (ui::View& child : *children) cut(child);

        std::erase_if(view.modifiers, [this](const ui::Modifier& modifier) {
            if (const auto* whole = std::get_if<ui::modifier::WidgetURL>(&modifier))
                return records::jsonLength(whole->url) > budget_.linkBytes;
            const auto* link = std::get_if<ui::modifier::Link>(&modifier);
            return link && (records::jsonLength(link->url) > budget_.linkBytes || links_++ >= budget_.links);
        });
        const bool isLink = std::ranges::any_of(view.modifiers, [](const ui::Modifier& modifier) {
            return std::holds_alternative<ui::modifier::Link>(modifier);
        });
        if (isLink) cutName(view);
    }

  private:
    void cutNode(ui::node::Text& text) { cut(text.text); }
    void cutNode(ui::node::Symbol& symbol) { cut(symbol.name); }
    static void cutNode(ui::node::Countdown& countdown) { countdown.end = countdown.end.held(); }
    void cutNode(ui::node::Shape& shape) const {
        auto* line = std::get_if<ui::Polyline>(&shape.geometry);
        if (line && line->fractions.size() > 4 * steps_) line->fractions = thinned(line->fractions, steps_);
    }
    static void cutNode(ui::node::Image&) {}
    static void cutNode(ui::node::Spacer&) {}
    static void cutNode(ui::node::VStack&) {}
    static void cutNode(ui::node::HStack&) {}
    static void cutNode(ui::node::ZStack&) {}
    static void cutNode(ui::node::Grid&) {}

    void cut(std::string& text) { cut(text, budget_.textBytes); }
    void cut(std::string& text, std::size_t most) {
        most = std::min(most, left_);
        if (const std::size_t end = records::jsonPrefix(text, most); end < text.size())
            text.resize(texts::characterPrefix(text, end));
        left_ -= records::jsonLength(text);
    }

    /// A link is called by what is read of it: where that is too long, it gets the beginning as its label.
    void cutName(ui::View& view) {
        std::string name = ui::joined(ui::readingTexts(view, {}));
        if (records::jsonLength(name) <= budget_.linkNameBytes) return;
        std::erase_if(view.modifiers, [](const ui::Modifier& modifier) {
            return std::holds_alternative<ui::modifier::AccessibilityLabel>(modifier);
        });
        cut(name, budget_.linkNameBytes);
        view = std::move(view).accessibilityLabel(std::move(name));
    }

    const ViewBudget& budget_;
    std::size_t left_;
    std::size_t steps_;
    std::size_t links_ = 0;
};

}  // namespace

void keepToBudget(ui::View& view, double width, const ViewBudget& budget) {
    for (std::size_t nodes = nodesOf(view); nodes > budget.nodes;) {
        ui::Views& list = *longestList(view);
        while (nodes > budget.nodes && !list.empty()) {
            nodes -= nodesOf(list.back());
            list.pop_back();
        }
    }
    Cutter(budget, width).cut(view);
}

}  // namespace zelto::widgetkit

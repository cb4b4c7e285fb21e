#include "layout/ChangedArea.hpp"

#include <algorithm>
#include <span>

namespace zelto::layout {
namespace {

/// A rectangle that grows.
class Cover {
  public:
    void add(const Rect& frame, double margin) {
        const double left = frame.x - margin, top = frame.y - margin;
        const double right = frame.x + frame.width + margin, bottom = frame.y + frame.height + margin;
        if (isEmpty_) {
            left_ = left, top_ = top, right_ = right, bottom_ = bottom;
        } else {
            left_ = std::min(left_, left), top_ = std::min(top_, top);
            right_ = std::max(right_, right), bottom_ = std::max(bottom_, bottom);
        }
        isEmpty_ = false;
    }
    Rect within(Size size) const {
        if (isEmpty_) return {};
        const double left = std::max(left_, 0.0), top = std::max(top_, 0.0);
        return {
            left,
            top,
            std::max(std::min(right_, size.width) - left, 0.0),
            std::max(std::min(bottom_, size.height) - top, 0.0)};
    }

  private:
    bool isEmpty_ = true;
    double left_ = 0, top_ = 0, right_ = 0, bottom_ = 0;
};

/// Adds an item to what is covered; false for what changes how others are painted.
class Covering {
  public:
    explicit Covering(Cover& cover) : cover_(cover) {}

    bool operator()(const PlacedText& text) const {
        cover_.add(text.frame, text.font.size * text.scale);
        return true;
    }
    bool operator()(const PlacedCountdown& countdown) const { return (*this)(countdown.text); }
    bool operator()(const PlacedSymbol& symbol) const {
        cover_.add(symbol.frame, symbol.fontSize);
        return true;
    }
    bool operator()(const PlacedShape& shape) const {
        const auto* stroke = std::get_if<ui::Stroke>(&shape.paint);
        // Corners that are joined in a point reach as far as the limit lets them.
        cover_.add(shape.frame, 2 + (stroke ? stroke->lineWidth * std::max(stroke->miterLimit, 1.0) : 0));
        return true;
    }
    bool operator()(const PlacedImage& image) const {
        cover_.add(image.frame, 2);
        return true;
    }
    bool operator()(const BeginClip&) const { return false; }
    bool operator()(const BeginRotation&) const { return false; }
    bool operator()(const End&) const { return false; }

  private:
    Cover& cover_;
};

using Items = std::span<const DisplayItem>;

bool coverAll(Items items, Cover& cover) {
    return std::ranges::all_of(
        items, [&](const DisplayItem& item) { return std::visit(Covering(cover), item); });
}

/// False when it cannot be told.
bool coverChanges(Items before, Items after, Cover& cover) {
    if (before.size() == after.size()) {
        for (std::size_t i = 0; i < before.size(); ++i)
            if (before[i] != after[i] &&
                !(coverAll(before.subspan(i, 1), cover) && coverAll(after.subspan(i, 1), cover)))
                return false;
        return true;
    }
    // Something came or went in the middle.
    const auto front = std::ranges::mismatch(before, after);
    before = {front.in1, before.end()};
    after = {front.in2, after.end()};
    while (!before.empty() && !after.empty() && before.back() == after.back()) {
        before = before.first(before.size() - 1);
        after = after.first(after.size() - 1);
    }
    return coverAll(before, cover) && coverAll(after, cover);
}

bool isTurning(const DisplayItem& item) {
    return std::holds_alternative<BeginRotation>(item);
}

}  // namespace

Rect changedArea(const DisplayList& before, const DisplayList& after) {
    const Rect whole{0, 0, after.size.width, after.size.height};
    if (before.size != after.size || before.background != after.background || before.border != after.border)
        return whole;
    Cover cover;
    if (!coverChanges(before.items, after.items, cover)) return whole;
    const Rect area = cover.within(after.size);
    // What is turned lies elsewhere than its frame says.
    return area.width > 0 && std::ranges::any_of(after.items, isTurning) ? whole : area;
}

}  // namespace zelto::layout

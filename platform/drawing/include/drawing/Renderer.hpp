#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "drawing/Picture.hpp"
#include "layout/DisplayList.hpp"
#include "layout/TextMeasuring.hpp"

namespace zelto::drawing {

/// The container's corner radius, continuous, in points.
inline constexpr double containerCornerRadius = 24;

/// A widget's corners: the picture's own, rounded and clear behind the outline, or only outlined, for windows
/// that cut them off by themselves.
enum class Corners : std::uint8_t { square, rounded, outlined };

/// A displayList's place on a sheet.
struct SheetItem {
    layout::Point origin;  // points
    const layout::DisplayList* displayList;
};

/// Turns display lists into pictures. Keeps fonts, set texts and masks from one picture to the next. For one
/// thread.
class Renderer {
  public:
    Renderer();
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// What layouts for this renderer measure with.
    layout::TextMeasuring& measuring();

    /// Which font is drawn with instead of the system font, where that is missing.
    static std::optional<std::string> substituteFont();

    /// A picture at `scale` pixels a point.
    Picture draw(const layout::DisplayList& displayList, double scale, Corners corners = Corners::square);
    /// The same into a picture whose pixels are used again when their number is right.
    void draw(const layout::DisplayList& displayList, double scale, Corners corners, Picture& into);
    /// Draws what lies in `area` anew into a picture of the same size, scale and corners.
    void redraw(
        const layout::DisplayList& displayList, double scale, Corners corners, layout::Rect area,
        Picture& into);

    /// Widgets with rounded corners and shadows on a backdrop of `size` points.
    Picture drawSheet(std::span<const SheetItem> items, layout::Size size, double scale);

    /// An SVG document with everything as outlines; absent when Cairo refuses.
    std::optional<std::string> svg(const layout::DisplayList& displayList, Corners corners = Corners::square);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto::drawing

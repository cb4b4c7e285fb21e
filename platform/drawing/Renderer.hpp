#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/drawing/Picture.hpp"
#include "platform/layout/Placement.hpp"
#include "platform/layout/TextMeasuring.hpp"

namespace zelto::drawing {

/// The container's corner radius, continuous, in points.
inline constexpr double containerCornerRadius = 24;

/// A placement's place on a sheet.
struct SheetItem {
    layout::Point origin;  // points
    const layout::Placement* placement;
};

/// Turns placements into pictures. Keeps fonts, set texts and masks from one picture to the next. For one
/// thread.
class Renderer {
  public:
    Renderer();
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// What layouts for this renderer measure with.
    layout::TextMeasuring& measuring();

    /// A picture at `scale` pixels a point, its container background reaching into rounded corners or square
    /// ones.
    Picture draw(const layout::Placement& placement, double scale, double cornerRadius = 0);
    /// The same into a picture whose pixels are used again when their number is right.
    void draw(const layout::Placement& placement, double scale, double cornerRadius, Picture& into);
    /// Draws what lies in `area` anew into a picture of the same size, scale and corners.
    void redraw(
        const layout::Placement& placement, double scale, double cornerRadius, layout::Rect area,
        Picture& into);

    /// Widgets with rounded corners and shadows on a backdrop of `size` points.
    Picture drawSheet(std::span<const SheetItem> items, layout::Size size, double scale);

    /// An SVG document with everything as outlines; absent when Cairo refuses.
    std::optional<std::string> svg(const layout::Placement& placement);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto::drawing

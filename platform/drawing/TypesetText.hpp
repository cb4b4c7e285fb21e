#pragma once

#include <vector>

#include "Handles.hpp"
#include "Masks.hpp"
#include "layout/TextMeasuring.hpp"

namespace zelto::drawing {

/// A text with its lines broken and its glyphs chosen.
struct TypesetText {
    /// A mask of it, made once for each scale and each quarter of a pixel at which it begins.
    struct ScaledMask {
        double scale;  // pixels a point
        int quarter;
        Mask mask;  // from where the text begins on its first baseline
    };

    TextLayout layout;
    layout::TextExtent extent;
    double lineHeight = 0;  // points, from baseline to baseline
    /// What it covers, from where it begins on its first baseline, in points.
    layout::Rect ink = {};
    /// The width of the stroke that rounds the outlines, in points; 0 for plain outlines.
    double roundingStroke = 0;
    /// Some of its glyphs bring their own colours.
    bool isColored = false;
    mutable std::vector<ScaledMask> masks = {};
    /// Counts the bytes of all masks of the typesetter's texts.
    std::size_t* maskBytes = nullptr;
    /// From the layout's left edge to the leftmost line, in points: cut lines that run from right to left
    /// stand at the right of what they were offered.
    double left = 0;

    /// Calls `visit` with each line and where it begins on its baseline, from where the first one does.
    template <class Visit>
    void forEachLine(Visit visit) const {
        PangoLayoutIter* iterator = pango_layout_get_iter(layout.get());
        double y = 0;
        do {
            PangoRectangle logical;
            pango_layout_iter_get_line_extents(iterator, nullptr, &logical);
            visit(
                pango_layout_iter_get_line_readonly(iterator),
                static_cast<double>(logical.x) / PANGO_SCALE - left,
                y);
            y += lineHeight;
        } while (pango_layout_iter_next_line(iterator));
        pango_layout_iter_free(iterator);
    }
};

}  // namespace zelto::drawing

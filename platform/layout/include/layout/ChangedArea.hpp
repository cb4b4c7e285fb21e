#pragma once

#include "layout/DisplayList.hpp"

namespace zelto::layout {

/// What has to be painted anew for a picture of `before` to become one of `after`, in points: a rectangle
/// that holds all that differs, with room for what letters and strokes reach beyond their frames; the whole
/// picture where that cannot be told; without width where they look the same.
Rect changedArea(const DisplayList& before, const DisplayList& after);

}  // namespace zelto::layout

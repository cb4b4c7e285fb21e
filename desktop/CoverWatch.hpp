#pragma once

#include <functional>
#include <gdk/gdk.h>
#include <memory>

#include "Covering.hpp"

namespace zelto::desktop {

/// Notices on X11 when the windows of other programs come to hide ours, with a compositor or without: by the
/// window manager's stacking order, states, workspaces, and where windows say that they are opaque. What is
/// not told counts as seen. Elsewhere it tells nothing.
class CoverWatch {
  public:
    /// `changed` is called, not at once, when `isHidden` may have another answer.
    CoverWatch(GdkDisplay* display, std::function<void()> changed);
    ~CoverWatch();
    CoverWatch(const CoverWatch&) = delete;
    CoverWatch& operator=(const CoverWatch&) = delete;

    bool isHidden(GdkWindow* window) const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto::desktop

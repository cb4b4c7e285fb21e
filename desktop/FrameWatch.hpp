#pragma once

#include <functional>
#include <gdk/gdk.h>
#include <memory>
#include <vector>

namespace zelto::desktop {

/// Asks a Wayland compositor whether windows are seen: it tells when to draw the next frame of those only.
/// What it tells of a window that is covered all the same counts as seen. Elsewhere it tells nothing.
class FrameWatch {
  public:
    /// `changed` is called when `isHidden` may have another answer.
    FrameWatch(GdkDisplay* display, std::function<void()> changed);
    ~FrameWatch();
    FrameWatch(const FrameWatch&) = delete;
    FrameWatch& operator=(const FrameWatch&) = delete;

    /// Asks for a frame of each of these windows, and calls `then` once it is known which of them are seen:
    /// at once where there is nobody to ask.
    void ask(const std::vector<GdkWindow*>& windows, std::function<void()> then);
    /// Whether no frame was wanted of it; seen until it was asked for.
    bool isHidden(GdkWindow* window) const;
    /// It is shown anew, or is no more: what was known of it is void.
    void forget(GdkWindow* window);

    /// A compositor that shows a window wants a frame of it within so many seconds.
    static constexpr double patience = 0.25;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto::desktop

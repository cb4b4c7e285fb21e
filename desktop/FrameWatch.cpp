#include "FrameWatch.hpp"

#include <algorithm>
#include <gdk/gdkwayland.h>
#include <map>
#include <utility>
#include <wayland-client.h>

#include "foundation/Handle.hpp"
#include "runloop/MainLoop.hpp"

namespace zelto::desktop {
namespace {

using Callback = Handle<wl_callback, wl_callback_destroy>;

}  // namespace

struct FrameWatch::State {
    struct Asked {
        State* state;
        /// Of a frame that is still to come.
        Callback callback = {};
        bool isHidden = false;
    };

    explicit State(std::function<void()> told) : changed(std::move(told)) {}

    void ask(GdkWindow* window) {
        wl_surface* surface = gdk_wayland_window_get_wl_surface(window);
        if (!surface || gdk_window_is_visible(window) == FALSE) return;
        Asked& asked = windows.try_emplace(window, Asked{.state = this}).first->second;
        if (asked.callback) return;
        static constexpr wl_callback_listener listener{.done = [](void* data, wl_callback*, std::uint32_t) {
            auto& told = *static_cast<Asked*>(data);
            told.state->drawn(told);
        }};
        asked.callback = Callback(wl_surface_frame(surface));
        wl_callback_add_listener(asked.callback.get(), &listener, &asked);
        wl_surface_commit(surface);
    }

    void drawn(Asked& asked) {
        asked.callback = {};
        if (std::exchange(asked.isHidden, false)) changed();
        goOn();
    }

    /// Once all is known that was asked.
    void goOn() {
        const bool isWaiting = std::ranges::any_of(
            windows, [](const auto& each) { return each.second.callback && !each.second.isHidden; });
        if (isWaiting) return;
        tooLate.reset();
        for (const auto& then : std::exchange(waiting, {})) then();
    }

    void giveUp() {
        for (auto& [window, asked] : windows)
            if (asked.callback) asked.isHidden = true;
        changed();
        goOn();
    }

    std::function<void()> changed;
    std::map<GdkWindow*, Asked> windows;
    std::vector<std::function<void()>> waiting;
    runloop::MainSource tooLate;
};

FrameWatch::FrameWatch(GdkDisplay* display, std::function<void()> changed) {
    if (GDK_IS_WAYLAND_DISPLAY(display)) state_ = std::make_unique<State>(std::move(changed));
}

FrameWatch::~FrameWatch() = default;

void FrameWatch::ask(const std::vector<GdkWindow*>& windows, std::function<void()> then) {
    if (!state_) return then();
    for (GdkWindow* window : windows) state_->ask(window);
    state_->waiting.push_back(std::move(then));
    state_->tooLate = runloop::MainSource::after(patience, [this] { state_->giveUp(); });
    state_->goOn();
}

bool FrameWatch::isHidden(GdkWindow* window) const {
    if (!state_) return false;
    const auto found = state_->windows.find(window);
    return found != state_->windows.end() && found->second.isHidden;
}

void FrameWatch::forget(GdkWindow* window) {
    // Who waits for it is called in time: this may be while all of it ends.
    if (state_) state_->windows.erase(window);
}

}  // namespace zelto::desktop

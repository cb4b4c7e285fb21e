#pragma once

#include <algorithm>
#include <functional>
#include <memory>

#include <glib-unix.h>
#include <glib.h>

namespace zelto::desktop {

/// Runs a function on the main thread, later. May be called on any thread.
inline void postToMainThread(std::function<void()> function) {
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer data) -> gboolean {
            (*static_cast<std::function<void()>*>(data))();
            return G_SOURCE_REMOVE;
        },
        new std::function<void()>(std::move(function)),
        [](gpointer data) { delete static_cast<std::function<void()>*>(data); });
}

/// A source of the main loop; goes away with this object.
class MainSource {
  public:
    MainSource() = default;
    MainSource(MainSource&& other) noexcept { swap(other); }
    MainSource& operator=(MainSource&& other) noexcept {
        swap(other);
        return *this;
    }
    ~MainSource() { reset(); }

    /// Calls `function` whenever `fd` can be read.
    static MainSource whenReadable(int fd, std::function<void()> function) {
        MainSource source(std::move(function));
        source.id_ = g_unix_fd_add(
            fd,
            G_IO_IN,
            [](gint, GIOCondition, gpointer data) -> gboolean {
                (*static_cast<std::function<void()>*>(data))();
                return G_SOURCE_CONTINUE;
            },
            source.function_.get());
        return source;
    }
    /// Calls `function` once, after so many seconds.
    static MainSource after(double seconds, std::function<void()> function) {
        MainSource source(std::move(function));
        // The library counts whole milliseconds; too early would only mean to wait again.
        source.id_ = g_timeout_add(
            static_cast<guint>(std::clamp(seconds, 0.0, longest) * 1000) + 1,
            [](gpointer data) -> gboolean {
                // It may be replaced by what it calls.
                const auto called = *static_cast<std::function<void()>*>(data);
                called();
                return G_SOURCE_REMOVE;
            },
            source.function_.get());
        return source;
    }

    void reset() {
        // A source that has gone off is gone already.
        if (id_ != 0)
            if (GSource* source = g_main_context_find_source_by_id(nullptr, id_)) g_source_destroy(source);
        id_ = 0;
    }

  private:
    /// A day: whoever waits for longer looks again.
    static constexpr double longest = 86'400;

    explicit MainSource(std::function<void()> function)
        : function_(std::make_unique<std::function<void()>>(std::move(function))) {}
    void swap(MainSource& other) {
        std::swap(id_, other.id_);
        std::swap(function_, other.function_);
    }

    guint id_ = 0;
    std::unique_ptr<std::function<void()>> function_;
};

}  // namespace zelto::desktop

#include "runloop/MainLoop.hpp"

#include <algorithm>

#include <glib-unix.h>

namespace zelto::runloop {
namespace {

/// A day, in seconds: whoever waits for longer looks again.
constexpr double longestWait = 86'400;

void call(gpointer function) {
    // It may be replaced by what it calls.
    const auto called = *static_cast<std::function<void()>*>(function);
    called();
}

}  // namespace

void postToMainThread(std::function<void()> function) {
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer data) -> gboolean {
            (*static_cast<std::function<void()>*>(data))();
            return G_SOURCE_REMOVE;
        },
        new std::function<void()>(std::move(function)),
        [](gpointer data) { delete static_cast<std::function<void()>*>(data); });
}

void runMainLoopUntil(const std::function<bool()>& condition) {
    while (!condition()) g_main_context_iteration(nullptr, TRUE);
}

MainSource MainSource::watch(int fd, int condition, std::function<void()> function) {
    MainSource source(std::move(function));
    source.id_ = g_unix_fd_add(
        fd,
        static_cast<GIOCondition>(condition | G_IO_HUP | G_IO_ERR),
        [](gint, GIOCondition, gpointer data) -> gboolean {
            call(data);
            return G_SOURCE_CONTINUE;
        },
        source.function_.get());
    return source;
}

MainSource MainSource::whenReadable(int fd, std::function<void()> function) {
    return watch(fd, G_IO_IN, std::move(function));
}

MainSource MainSource::whenWritable(int fd, std::function<void()> function) {
    return watch(fd, G_IO_OUT, std::move(function));
}

MainSource MainSource::after(double seconds, std::function<void()> function) {
    MainSource source(std::move(function));
    // The library counts whole milliseconds; too early would only mean to wait again.
    source.id_ = g_timeout_add(
        static_cast<guint>(std::clamp(seconds, 0.0, longestWait) * 1000) + 1,
        [](gpointer data) -> gboolean {
            call(data);
            return G_SOURCE_REMOVE;
        },
        source.function_.get());
    return source;
}

void MainSource::reset() {
    // A source that has gone off is gone already.
    if (id_ != 0)
        if (GSource* source = g_main_context_find_source_by_id(nullptr, id_)) g_source_destroy(source);
    id_ = 0;
    // With what it holds, which may be the source's owner. What is being called has a copy.
    function_.reset();
}

}  // namespace zelto::runloop

#include "DisplayChoice.hpp"

#include <X11/Xlib.h>
#include <cstring>
#include <gdk/gdk.h>
#include <wayland-client.h>

#include "foundation/EnvironmentVariable.hpp"
#include "foundation/Handle.hpp"

namespace zelto::desktop {
namespace {

using Compositor = Handle<wl_display, wl_display_disconnect>;
using Registry = Handle<wl_registry, wl_registry_destroy>;
using XServer = Handle<Display, XCloseDisplay>;

/// Whether a compositor lets windows lie below all others; absent without a compositor.
std::optional<bool> compositorHasLayers() {
    const Compositor compositor(wl_display_connect(nullptr));
    if (!compositor) return std::nullopt;
    bool isFound = false;
    static constexpr wl_registry_listener listener{
        .global =
            [](void* found, wl_registry*, std::uint32_t, const char* interface, std::uint32_t) {
                if (std::strcmp(interface, "zwlr_layer_shell_v1") == 0) *static_cast<bool*>(found) = true;
            },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {}};
    const Registry registry(wl_display_get_registry(compositor.get()));
    wl_registry_add_listener(registry.get(), &listener, &isFound);
    wl_display_roundtrip(compositor.get());
    return isFound;
}

}  // namespace

std::optional<std::string> chooseDisplay() {
    if (environmentVariable("GDK_BACKEND") || compositorHasLayers().value_or(true)) return std::nullopt;
    if (const XServer server(XOpenDisplay(nullptr)); server) {
        gdk_set_allowed_backends("x11");
        return std::nullopt;
    }
    return "this Wayland compositor offers no layer below other windows, and no X server: "
           "widgets are ordinary windows, which it places itself";
}

}  // namespace zelto::desktop

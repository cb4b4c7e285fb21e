#include "ActivationToken.hpp"

#include <gdk/gdkwayland.h>
#include <gtk/gtk.h>

#include "foundation/Handle.hpp"

namespace zelto::desktop {

std::string activationToken() {
    GdkDisplay* display = gdk_display_get_default();
    const guint32 time = gtk_get_current_event_time();
    // On X11 the time of the tap is all that window managers look at. The library's own identifier would also
    // show a busy pointer, until a window comes that most links do not open.
    if (!GDK_IS_WAYLAND_DISPLAY(display))
        return time == GDK_CURRENT_TIME ? "" : "zelto_TIME" + std::to_string(time);
    const Handle<GAppInfo, g_object_unref> app(
        g_app_info_create_from_commandline("zelto-agent", "Zelto", G_APP_INFO_CREATE_NONE, nullptr));
    const Handle<GdkAppLaunchContext, g_object_unref> context(gdk_display_get_app_launch_context(display));
    gdk_app_launch_context_set_timestamp(context.get(), time);
    const Handle<gchar, g_free> token(
        g_app_launch_context_get_startup_notify_id(G_APP_LAUNCH_CONTEXT(context.get()), app.get(), nullptr));
    return token ? token.get() : "";
}

}  // namespace zelto::desktop

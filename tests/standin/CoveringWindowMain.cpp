// A window, as large as the screen if it can be, until its input ends:
// covering-window [translucent|maximized|plain]. Says "shown" once it is.

#include <cstdio>
#include <gtk/gtk.h>
#include <string_view>

int main(int argc, char** argv) {
    gtk_init(nullptr, nullptr);
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    const std::string_view how = argc > 1 ? argv[1] : "";
    if (how == "translucent") {
        gtk_widget_set_visual(window, gdk_screen_get_rgba_visual(gdk_screen_get_default()));
        gtk_widget_set_app_paintable(window, TRUE);
    }
    gtk_window_set_title(GTK_WINDOW(window), "covering");
    if (how == "maximized")
        gtk_window_maximize(GTK_WINDOW(window));
    else if (how != "plain")
        gtk_window_fullscreen(GTK_WINDOW(window));
    g_signal_connect(
        window,
        "map-event",
        G_CALLBACK(+[](GtkWidget*, GdkEvent*, gpointer) -> gboolean {
            std::puts("shown");
            std::fflush(stdout);
            return FALSE;
        }),
        nullptr);
    gtk_widget_show(window);
    gtk_main();
    return 0;
}

#include "agent/Pages.hpp"

#include <memory>

#include <gio/gio.h>

#include "foundation/Handle.hpp"

namespace zelto::agent {

void openPage(
    const std::string& address, const std::string& token, std::function<void(Result<void>)> opened) {
    using Opened = std::function<void(Result<void>)>;
    const Handle<GAppLaunchContext, g_object_unref> context(g_app_launch_context_new());
    if (!token.empty())
        for (const char* variable : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
            g_app_launch_context_setenv(context.get(), variable, token.c_str());
    g_app_info_launch_default_for_uri_async(
        address.c_str(),
        context.get(),
        nullptr,
        [](GObject*, GAsyncResult* result, gpointer data) {
            const std::unique_ptr<Opened> called(static_cast<Opened*>(data));
            GError* error = nullptr;
            if (g_app_info_launch_default_for_uri_finish(result, &error)) {
                (*called)({});
                return;
            }
            const std::string reason = error ? error->message : "no reason was given";
            g_clear_error(&error);
            (*called)(Fault{.reason = reason});
        },
        new Opened(std::move(opened)));
}

std::string addressOfFile(const std::filesystem::path& file) {
    const Handle<gchar, g_free> address(g_filename_to_uri(file.c_str(), nullptr, nullptr));
    return address ? address.get() : "";
}

}  // namespace zelto::agent

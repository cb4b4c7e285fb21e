#include "host/LinkOpener.hpp"

#include <memory>

#include <gio/gio.h>

namespace zelto::host {
namespace {

constexpr const char* scheme = "zelto";

/// The reason of a library's error, which it frees.
std::string take(GError* error) {
    std::string out = error ? error->message : "no reason was given";
    g_clear_error(&error);
    return out;
}

}  // namespace

LinkOpener::LinkOpener(std::string command, std::function<void(const std::string&)> log)
    : command_(std::move(command)), log_(std::move(log)) {}

bool LinkOpener::open(const std::string& url) const {
    if (!url.starts_with(std::string(scheme) + "://")) {
        log_("a link that is not the app's is not opened: " + url);
        return false;
    }
    return command_.empty() ? openWithHandler(url) : openWithCommand(url);
}

bool LinkOpener::openWithCommand(const std::string& url) const {
    // The shell splits the command only; the link is an argument that it does not look at.
    const std::string script = command_ + " \"$1\"";
    const char* words[] = {"/bin/sh", "-c", script.c_str(), "sh", url.c_str(), nullptr};
    GError* error = nullptr;
    const bool isStarted = g_spawn_async(
        nullptr, const_cast<gchar**>(words), nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, nullptr, &error);
    if (!isStarted) log_("the link " + url + " cannot be opened: " + take(error));
    return isStarted;
}

bool LinkOpener::openWithHandler(const std::string& url) const {
    const std::unique_ptr<GAppInfo, void (*)(gpointer)> handler(
        g_app_info_get_default_for_uri_scheme(scheme), g_object_unref);
    if (!handler) {
        log_("no program opens " + url);
        return false;
    }
    std::string mutableURL = url;
    GList link{mutableURL.data(), nullptr, nullptr};
    GError* error = nullptr;
    const bool isLaunched = g_app_info_launch_uris(handler.get(), &link, nullptr, &error);
    if (!isLaunched) log_("the link " + url + " cannot be opened: " + take(error));
    return isLaunched;
}

}  // namespace zelto::host

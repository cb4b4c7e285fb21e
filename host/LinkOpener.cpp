#include "host/LinkOpener.hpp"

#include <algorithm>
#include <array>
#include <chrono>

#include <gio/gio.h>

#include "bus/Connection.hpp"
#include "foundation/Handle.hpp"

namespace zelto::host {
namespace {

constexpr const char* scheme = "zelto";
constexpr const char* app = "com.kavra.zelto";
constexpr std::chrono::seconds appPatience{5};

/// Success, or the library's reason, which it frees.
Result<void, LinkFault> outcomeOf(bool isOpened, const std::string& url, GError* error) {
    if (isOpened) return {};
    const std::string reason = error ? error->message : "no reason was given";
    g_clear_error(&error);
    return LinkFault{LinkFault::Kind::failed, "the link " + url + " cannot be opened: " + reason};
}

}  // namespace

Result<void, LinkFault> LinkOpener::open(const std::string& url, const std::string& token) const {
    if (!url.starts_with(std::string(scheme) + "://"))
        return LinkFault{LinkFault::Kind::refused, "a link that is not the app's is not opened: " + url};
    return command_.empty() ? openWithHandler(url, token) : openWithCommand(url);
}

Result<void, LinkFault> LinkOpener::openWithCommand(const std::string& url) const {
    // The shell splits the command only; the link is an argument that it does not look at.
    std::array<std::string, 5> words{"/bin/sh", "-c", command_ + " \"$1\"", "sh", url};
    std::array<gchar*, 6> argv{};
    std::ranges::transform(words, argv.begin(), [](std::string& word) { return word.data(); });
    GError* error = nullptr;
    const bool isStarted =
        g_spawn_async(nullptr, argv.data(), nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, nullptr, &error);
    return outcomeOf(isStarted, url, error);
}

Result<void, LinkFault> LinkOpener::openWithHandler(const std::string& url, const std::string& token) {
    const Handle<GAppInfo, g_object_unref> handler(g_app_info_get_default_for_uri_scheme(scheme));
    if (!handler) return LinkFault{LinkFault::Kind::noProgram, "no program opens " + url};
    std::string mutableURL = url;
    GList link{mutableURL.data(), nullptr, nullptr};
    const Handle<GAppLaunchContext, g_object_unref> context(g_app_launch_context_new());
    if (!token.empty())
        for (const char* variable : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
            g_app_launch_context_setenv(context.get(), variable, token.c_str());
    GError* error = nullptr;
    const bool isLaunched = g_app_info_launch_uris(handler.get(), &link, context.get(), &error);
    return outcomeOf(isLaunched, url, error);
}

Result<void, LinkFault> LinkOpener::handToApp(
    const bus::Address& bus, const std::string& url, const std::string& token) {
    bus::Connection connection(bus, app);
    const auto opened = connection.call<void>("open", appPatience, url, token);
    if (opened) return {};
    if (opened.fault().kind == bus::ErrorKind::peerAbsent)
        return LinkFault{LinkFault::Kind::noProgram, "no program opens " + url};
    return LinkFault{
        LinkFault::Kind::failed, "the link " + url + " cannot be opened: " + opened.fault().text};
}

}  // namespace zelto::host

#include "agent/Links.hpp"

#include <algorithm>
#include <array>
#include <charconv>

#include <glib.h>

#include "foundation/Handle.hpp"
#include "foundation/UTF8.hpp"
#include "foundation/UUID.hpp"

namespace zelto::agent {
namespace {

using URI = Handle<GUri, g_uri_unref>;
using Text = Handle<gchar, g_free>;

constexpr std::string_view scheme = "zelto://";
constexpr std::array<std::string_view, 6> tabs{"home", "battery", "system", "fans", "calendar", "clipboard"};

Fault refused(std::string why) {
    return {.reason = std::move(why)};
}

/// Percent-encoding undone; absent where it is broken, or stands for what is no text.
std::optional<std::string> decoded(std::string_view text) {
    const Text plain(g_uri_unescape_segment(text.data(), text.data() + text.size(), nullptr));
    if (!plain || !isValidUTF8(plain.get())) return std::nullopt;
    return plain.get();
}

Result<Link> awake(std::string_view key, const std::string& value) {
    if (key == "action" && value == "off") return Link(AwakeLink{AwakeLink::Action::off});
    if (key == "action" && value == "toggle") return Link(AwakeLink{AwakeLink::Action::toggle});
    std::int64_t minutes = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), minutes);
    if (key != "minutes" || error != std::errc() || end != value.data() + value.size() || minutes < 0 ||
        minutes > mostAwakeMinutes)
        return refused("no such way to keep the machine awake");
    return Link(AwakeLink{AwakeLink::Action::on, minutes > 0 ? std::optional(minutes) : std::nullopt});
}

Result<Link> join(const std::string& page) {
    const URI uri(g_uri_parse(page.c_str(), G_URI_FLAGS_NONE, nullptr));
    const std::string_view its = uri ? g_uri_get_scheme(uri.get()) : "";
    const char* host = uri ? g_uri_get_host(uri.get()) : nullptr;
    // An invitation is a stranger's text.
    if ((its != "https" && its != "http") || !host || *host == '\0')
        return refused("a meeting's page must be one of http or https");
    return Link(JoinLink{page});
}

}  // namespace

Result<Link> parseLink(std::string_view text) {
    if (text.size() > longestLink) return refused("a link of more than 8192 bytes");
    if (!text.starts_with(scheme)) return refused("not a link of zelto://");
    const std::string_view rest = text.substr(scheme.size());
    if (rest == "eq") return Link(EqualizerLink{});
    const auto question = rest.find('?'), equals = rest.find('=');
    if (question == std::string_view::npos || equals == std::string_view::npos || equals < question)
        return refused("no such link");
    const std::string_view path = rest.substr(0, question);
    const std::string_view key = rest.substr(question + 1, equals - question - 1);
    const auto value = decoded(rest.substr(equals + 1));
    if (!value || rest.find('&') != std::string_view::npos || rest.find('#') != std::string_view::npos)
        return refused("no such link");
    if (path == "awake") return awake(key, *value);
    if (path == "open" && key == "tab" && std::ranges::find(tabs, *value) != tabs.end())
        return Link(OpenLink{*value});
    if (path == "join" && key == "url") return join(*value);
    if (path == "clip" && key == "id" && UUID::parse(*value)) return Link(ClipLink{*value});
    return refused("no such link");
}

}  // namespace zelto::agent

#include "host/DesktopInterface.hpp"

#include <charconv>

#include <unistd.h>

#include "platform/foundation/JSONEncoder.hpp"

namespace zelto::host {
namespace {

using xpc::ErrorKind;
using xpc::ValueKind;
using xpc::Values;

xpc::Error refusal(const std::string& why) {
    return {ErrorKind::badPayload, why};
}

std::int64_t integer(const std::string& digits) {
    std::int64_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

xpc::Result<Values> answerTo(const WidgetHost::Refusal& why, Values results = {}) {
    if (!why.empty()) return refusal(why);
    return results;
}

}  // namespace

const xpc::Interface& desktopInterface() {
    static const xpc::Interface interface {
        .service = "com.kavra.zelto.desktop", .methods = {
            {"reload", {ValueKind::text}, {}},
            {"list", {}, {ValueKind::text}},
            {"add", {ValueKind::text, ValueKind::text}, {ValueKind::text}},
            {"remove", {ValueKind::text}, {}},
            {"move", {ValueKind::text, ValueKind::text, ValueKind::integer, ValueKind::integer}, {}},
            {"resize", {ValueKind::text, ValueKind::text}, {}},
            {"gallery", {}, {}},
            {"quit", {}, {}}
        }
    };
    return interface;
}

xpc::Result<Values> perform(
    const DesktopActions& actions, const std::string& method, const Values& arguments) {
    WidgetHost& host = actions.host;
    if (method == "reload") {
        if (!arguments[0].empty()) return answerTo(host.reloadKind(arguments[0]));
        host.reloadAll();
        return Values{};
    }
    if (method == "list") return Values{encodeJSON(host.widgets()).value_or("[]")};
    if (method == "remove") return answerTo(host.remove(arguments[0]));
    if (method == "move") {
        std::optional<std::string> monitor;
        if (!arguments[1].empty()) monitor = arguments[1];
        return answerTo(host.move(arguments[0], monitor, {integer(arguments[2]), integer(arguments[3])}));
    }
    if (method == "gallery") {
        actions.showGallery();
        return Values{};
    }
    if (method == "quit") {
        actions.quit();
        return Values{};
    }
    const auto family = named<WidgetFamily>(arguments[1]);
    if (!family) return refusal("'" + arguments[1] + "' is not systemSmall, systemMedium or systemLarge");
    if (method == "resize") return answerTo(host.setFamily(arguments[0], *family, actions.columns()));
    std::string id;
    const auto why = host.add(arguments[0], *family, std::nullopt, actions.columns(), id);
    return answerTo(why, {id});
}

xpc::Result<xpc::Listener> listenAsDesktop(
    xpc::Bus bus,
    std::function<void(const std::string& method, Values arguments, xpc::Answer answer)> handler) {
    return xpc::Listener::start(
        {.bus = std::move(bus),
         .interface = desktopInterface(),
         .trusted = {getuid()},
         .handler = std::move(handler)});
}

std::optional<std::pair<std::string, std::string>> parseWish(const std::string& text) {
    const auto colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) return std::nullopt;
    std::string family = text.substr(colon + 1);
    if (family == "small") family = "systemSmall";
    if (family == "medium") family = "systemMedium";
    if (family == "large") family = "systemLarge";
    if (!named<WidgetFamily>(family)) return std::nullopt;
    return std::pair(text.substr(0, colon), family);
}

}  // namespace zelto::host

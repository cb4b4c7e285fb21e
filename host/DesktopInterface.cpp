#include "host/DesktopInterface.hpp"

#include <unistd.h>

#include "records/JSONEncoder.hpp"

namespace zelto::host {
namespace {

using bus::method;

bus::Error refusal(const Fault& fault) {
    return {bus::ErrorKind::badPayload, fault.text()};
}

template <class T>
bus::Result<T> onBus(Result<T> result) {
    if (!result) return refusal(result.fault());
    if constexpr (std::is_void_v<T>)
        return {};
    else
        return *std::move(result);
}

Result<WidgetFamily> familyNamed(const std::string& name) {
    if (const auto family = named<WidgetFamily>(name)) return *family;
    return Fault{.reason = "'" + name + "' is not systemSmall, systemMedium or systemLarge"};
}

}  // namespace

bus::Interface desktopInterface(const DesktopActions& actions) {
    using Done = bus::Result<void>;
    using Text = bus::Result<std::string>;
    const auto& host = actions.host;
    return {
        .service = std::string(desktopService),
        .methods = {
            method(
                "reload",
                {"kind"},
                {},
                [host](const std::string& kind) -> Done {
                    if (!kind.empty()) return onBus(host().reloadKind(kind));
                    host().reloadAll();
                    return {};
                }),
            method(
                "list",
                {},
                {"widgets"},
                [host]() -> Text { return encodeJSON(host().widgets()).value_or("[]"); }),
            method(
                "add",
                {"kind", "family"},
                {"id"},
                [host](const std::string& kind, const std::string& family) -> Text {
                    const auto wanted = familyNamed(family);
                    return wanted ? onBus(host().add(kind, *wanted)) : refusal(wanted.fault());
                }),
            method(
                "remove",
                {"id"},
                {},
                [host](const std::string& id) -> Done { return onBus(host().remove(id)); }),
            method(
                "move",
                {"id", "monitor", "column", "row"},
                {},
                [host](
                    const std::string& id, const std::string& monitor, std::int64_t column, std::int64_t row)
                    -> Done {
                    std::optional<std::string> name;
                    if (!monitor.empty()) name = monitor;
                    return onBus(host().move(id, name, {column, row}));
                }),
            method(
                "resize",
                {"id", "family"},
                {},
                [host](const std::string& id, const std::string& family) -> Done {
                    const auto wanted = familyNamed(family);
                    return wanted ? onBus(host().setFamily(id, *wanted)) : refusal(wanted.fault());
                }),
            method(
                "gallery",
                {},
                {},
                [show = actions.showGallery]() -> Done {
                    show();
                    return {};
                }),
            method("quit", {}, {}, [quit = actions.quit]() -> Done {
                quit();
                return {};
            })}};
}

bus::Result<bus::Listener> listenAsDesktop(
    bus::Address address, const DesktopActions& actions,
    std::function<void(std::function<void()>)> dispatch) {
    return bus::Listener::start(
        {.address = std::move(address),
         .interface = desktopInterface(actions),
         .trusted = {getuid()},
         .dispatch = std::move(dispatch)});
}

std::optional<std::pair<std::string, WidgetFamily>> parseAddition(const std::string& text) {
    const auto colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) return std::nullopt;
    const std::string name = text.substr(colon + 1);
    const auto family = familyCalled(name) ? familyCalled(name) : named<WidgetFamily>(name);
    if (!family) return std::nullopt;
    return std::pair(text.substr(0, colon), *family);
}

}  // namespace zelto::host

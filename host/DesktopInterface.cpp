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

Result<widgetkit::WidgetFamily> familyNamed(const std::string& name) {
    if (const auto family = records::named<widgetkit::WidgetFamily>(name)) return *family;
    return Fault{.reason = "'" + name + "' is not systemSmall, systemMedium or systemLarge"};
}

using Done = bus::Result<void>;
using Text = bus::Result<std::string>;
using Host = std::function<WidgetHost&()>;

/// What changes which widgets there are, and where.
std::vector<bus::Method> layoutMethods(const Host& host) {
    const auto add = [host](const std::string& kind, const std::string& family) -> Text {
        const auto wanted = familyNamed(family);
        return wanted ? onBus(host().add(kind, *wanted)) : refusal(wanted.fault());
    };
    const auto remove = [host](const std::string& id) -> Done { return onBus(host().remove(id)); };
    const auto move = [host](
                          const std::string& id,
                          const std::string& monitor,
                          std::int64_t column,
                          std::int64_t row) -> Done {
        std::optional<std::string> name;
        if (!monitor.empty()) name = monitor;
        return onBus(host().move(id, name, {column, row}));
    };
    const auto resize = [host](const std::string& id, const std::string& family) -> Done {
        const auto wanted = familyNamed(family);
        return wanted ? onBus(host().setFamily(id, *wanted)) : refusal(wanted.fault());
    };
    return {
        method("add", {"kind", "family"}, {"id"}, add),
        method("remove", {"id"}, {}, remove),
        method("move", {"id", "monitor", "column", "row"}, {}, move),
        method("resize", {"id", "family"}, {}, resize)};
}

}  // namespace

bus::Interface desktopInterface(const DesktopActions& actions) {
    const Host& host = actions.host;
    const auto reload = [host](const std::string& kind) -> Done {
        if (!kind.empty()) return onBus(host().reloadKind(kind));
        host().reloadAll();
        return {};
    };
    const auto list = [host]() -> Text { return records::encodeJSON(host().widgets()).value_or("[]"); };
    const auto gallery = [show = actions.showGallery]() -> Done {
        show();
        return {};
    };
    const auto quit = [end = actions.quit]() -> Done {
        end();
        return {};
    };
    bus::Interface out{.service = std::string(desktopService), .methods = layoutMethods(host)};
    out.methods.push_back(method("reload", {"kind"}, {}, reload));
    out.methods.push_back(method("list", {}, {"widgets"}, list));
    out.methods.push_back(method("gallery", {}, {}, gallery));
    out.methods.push_back(method("quit", {}, {}, quit));
    return out;
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

std::optional<std::pair<std::string, widgetkit::WidgetFamily>> parseAddition(const std::string& text) {
    const auto colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) return std::nullopt;
    const std::string name = text.substr(colon + 1);
    const auto family = widgetkit::familyCalled(name) ? widgetkit::familyCalled(name)
                                                      : records::named<widgetkit::WidgetFamily>(name);
    if (!family) return std::nullopt;
    return std::pair(text.substr(0, colon), *family);
}

}  // namespace zelto::host

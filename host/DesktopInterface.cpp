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
    if (const auto family = widgetkit::familyCalled(name)) return *family;
    return Fault{.reason = "'" + name + "' is not small, medium or large"};
}

using Done = bus::Result<void>;
using Text = bus::Result<std::string>;
using Host = std::function<WidgetHost&()>;

/// Answers a call once what it changed is on the disk, or cannot be.
WidgetHost::Saved whenSaved(const std::shared_ptr<ReplyBlock<Done>>& reply) {
    return [reply](const Result<void>& saved) { (*reply)(onBus(saved)); };
}

/// Makes a change, and answers at once where it is refused.
template <class Change>
void answerAfter(ReplyBlock<Done> reply, Change change) {
    const auto shared = std::make_shared<ReplyBlock<Done>>(std::move(reply));
    if (const Result<void> done = change(whenSaved(shared)); !done) (*shared)(refusal(done.fault()));
}

std::optional<std::string> unlessEmpty(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

void add(
    const Host& host, ReplyBlock<Text> reply, const std::string& kind, const std::string& family,
    const std::string& monitor) {
    const auto wanted = familyNamed(family);
    if (!wanted) {
        reply(refusal(wanted.fault()));
        return;
    }
    const auto shared = std::make_shared<ReplyBlock<Text>>(std::move(reply));
    const auto id = std::make_shared<std::string>();
    // The disk may have answered before the id is known.
    const auto saved = std::make_shared<std::optional<Result<void>>>();
    const auto answer = [shared, id, saved] {
        if (id->empty() || !*saved) return;
        (*shared)(**saved ? Text(*id) : Text(refusal((*saved)->fault())));
    };
    const auto added =
        host().add(kind, *wanted, {.monitor = unlessEmpty(monitor)}, [saved, answer](const auto& written) {
            *saved = written;
            answer();
        });
    if (!added) {
        (*shared)(refusal(added.fault()));
        return;
    }
    *id = *added;
    answer();
}

/// What changes which widgets there are, and where.
std::vector<bus::Method> layoutMethods(const Host& host) {
    const auto addOne = [host](
                            ReplyBlock<Text> reply,
                            const std::string& kind,
                            const std::string& family,
                            const std::string& monitor) {
        add(host, std::move(reply), kind, family, monitor);
    };
    const auto remove = [host](ReplyBlock<Done> reply, const std::string& id) {
        answerAfter(std::move(reply), [&](const auto& saved) { return host().remove(id, saved); });
    };
    const auto move = [host](
                          ReplyBlock<Done> reply,
                          const std::string& id,
                          const std::string& monitor,
                          std::int64_t column,
                          std::int64_t row) {
        answerAfter(std::move(reply), [&](const auto& saved) {
            return host().move(id, unlessEmpty(monitor), {column, row}, saved);
        });
    };
    const auto resize = [host](ReplyBlock<Done> reply, const std::string& id, const std::string& family) {
        answerAfter(std::move(reply), [&](const auto& saved) -> Result<void> {
            const auto wanted = familyNamed(family);
            return wanted ? host().setFamily(id, *wanted, saved) : wanted.fault();
        });
    };
    return {
        method("add", {"kind", "family", "monitor"}, {"id"}, addOne),
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
    const auto focus = [give = actions.focusNext]() -> Done {
        give();
        return {};
    };
    const auto undo = [host]() -> Text { return onBus(host().undoRemoval()); };
    const auto set = [setOption = actions.setOption](
                         const std::string& name, const std::string& value) -> Done {
        return onBus(setOption(name, value));
    };
    const auto quit = [end = actions.quit]() -> Done {
        end();
        return {};
    };
    bus::Interface out{.service = std::string(desktopService), .methods = layoutMethods(host)};
    out.methods.push_back(method("reload", {"kind"}, {}, reload));
    out.methods.push_back(method("list", {}, {"widgets"}, list));
    out.methods.push_back(method("gallery", {}, {}, gallery));
    out.methods.push_back(method("focus", {}, {}, focus));
    out.methods.push_back(method("undo", {}, {"id"}, undo));
    out.methods.push_back(method("set", {"option", "value"}, {}, set));
    out.methods.push_back(method("quit", {}, {}, quit));
    out.properties.push_back({"seen", actions.isSeen});
    // Nobody need call `reload` when the snapshot has changed.
    out.properties.push_back({"watchesFiles", [] { return true; }});
    return out;
}

bus::Result<bus::Listener> listenAsDesktop(
    bus::Address address, const DesktopActions& actions, std::function<void(std::function<void()>)> dispatch,
    std::function<void()> lost) {
    return bus::Listener::start(
        {.address = std::move(address),
         .interface = desktopInterface(actions),
         .trusted = {getuid()},
         .dispatch = std::move(dispatch),
         .lost = std::move(lost)});
}

std::optional<std::pair<std::string, widgetkit::WidgetFamily>> parseAddition(const std::string& text) {
    const auto colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) return std::nullopt;
    const std::string name = text.substr(colon + 1);
    const auto family = familyNamed(name);
    if (!family) return std::nullopt;
    return std::pair(text.substr(0, colon), *family);
}

}  // namespace zelto::host

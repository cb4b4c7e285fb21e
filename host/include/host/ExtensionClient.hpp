#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/ExtensionProcess.hpp"
#include "runloop/Log.hpp"
#include "texts/Environment.hpp"

namespace zelto::host {

/// How the extension is asked: on behalf of the locale and time zone of the moment.
struct ExtensionClient {
    texts::Environment environment;
    /// The completion runs on the host's thread, later, with what became of each request, in one call or in
    /// several.
    std::function<void(std::vector<widgetkit::Request>, std::function<void(Outcomes)>)> ask;

    widgetkit::Request request(widgetkit::RequestKind kind) const {
        return {.request = kind, .locale = environment.locale, .timeZone = environment.timeZone};
    }
    widgetkit::Request request(
        widgetkit::RequestKind kind, std::string widget, widgetkit::WidgetFamily family) const {
        widgetkit::Request out = request(kind);
        out.kind = std::move(widget);
        out.family = family;
        return out;
    }
};

/// What those get who ask the extension by themselves.
struct AskerSeams {
    const ExtensionClient& client;
    std::function<Date()> now;
    runloop::Log log;
    /// An answer came, or failed to: something may be new, or due.
    std::function<void()> changed;
};

}  // namespace zelto::host

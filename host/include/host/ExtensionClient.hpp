#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "host/ExtensionProcess.hpp"
#include "texts/Environment.hpp"

namespace zelto::host {

/// How the extension is asked: on behalf of the locale and time zone of the moment.
struct ExtensionClient {
    Environment environment;
    /// The completion runs on the host's thread, later, with what became of each request, in one call or in
    /// several.
    std::function<void(std::vector<Request>, std::function<void(Outcomes)>)> ask;

    Request request(RequestKind kind) const {
        return {.request = kind, .locale = environment.locale, .timeZone = environment.timeZone};
    }
    Request request(RequestKind kind, std::string widget, WidgetFamily family) const {
        Request out = request(kind);
        out.kind = std::move(widget);
        out.family = family;
        return out;
    }
};

}  // namespace zelto::host

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "host/ExtensionClient.hpp"
#include "runloop/Log.hpp"

namespace zelto::host {

/// The gallery's looks of widgets.
class Previews {
  public:
    /// `client` must outlive what was asked.
    Previews(const ExtensionClient& client, runloop::Log log) : client_(client), log_(std::move(log)) {}

    /// The completion gets nothing, and the log a line, when the extension has none.
    void ask(
        const std::string& kind, widgetkit::WidgetFamily family,
        std::function<void(const std::optional<widgetkit::ArchivedEntry>&)> completion) const {
        widgetkit::Request wanted = client_.request(widgetkit::RequestKind::snapshot, kind, family);
        wanted.preview = true;
        client_.ask(
            {std::move(wanted)}, [log = log_, kind, completion = std::move(completion)](Outcomes outcomes) {
                Outcome& outcome = outcomes.at(0);
                if (!outcome) log(kind + ": " + outcome.fault().reason);
                completion(outcome ? std::move(outcome->reply.entry) : std::nullopt);
            });
    }

  private:
    const ExtensionClient& client_;
    runloop::Log log_;
};

}  // namespace zelto::host

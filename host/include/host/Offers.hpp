#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/ExtensionClient.hpp"
#include "host/Schedule.hpp"
#include "runloop/Backoff.hpp"

namespace zelto::host {

/// Which widgets the extension offers: asked for until it tells. For one thread.
class Offers {
  public:
    explicit Offers(AskerSeams seams) : seams_(std::move(seams)) {}

    /// Asks if it is time to.
    void tick(Date now);
    /// When `tick` has something to do next.
    std::optional<Date> nextInstant() const;
    /// Asks without a pause, unless the widgets are known already.
    void reload() { askAt_ = Date{}; }

    /// Empty until they are told.
    const std::vector<widgetkit::WidgetDescription>& widgets() const { return widgets_; }
    /// How the extension is confined, as it told with the widgets.
    const widgetkit::Confinement& confinement() const { return confinement_; }
    const widgetkit::WidgetDescription* find(const std::string& kind) const;
    /// The kind that a person means (KindNames.hpp); what they say when there is none.
    std::string kindCalled(const std::string& name) const;
    /// Refuses a kind that is not offered, or not in that family, once it is known what is.
    Result<void> check(const std::string& kind, widgetkit::WidgetFamily family) const;

  private:
    AskerSeams seams_;
    std::vector<widgetkit::WidgetDescription> widgets_;
    widgetkit::Confinement confinement_;
    bool isAsking_ = false;
    Date askAt_{};
    runloop::Backoff backoff_{Schedule::firstPause, Schedule::longestPause};
};

}  // namespace zelto::host

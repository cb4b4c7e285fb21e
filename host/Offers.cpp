#include "host/Offers.hpp"

#include <algorithm>

#include "widgetkit/KindNames.hpp"

namespace zelto::host {

void Offers::tick(Date now) {
    if (!widgets_.empty() || isAsking_ || askAt_ > now) return;
    isAsking_ = true;
    seams_.client.ask({seams_.client.request(widgetkit::RequestKind::bundle)}, [this](Outcomes outcomes) {
        isAsking_ = false;
        Outcome& outcome = outcomes.at(0);
        if (outcome && outcome->reply.widgets) {
            widgets_ = *std::move(outcome->reply.widgets);
            if (outcome->reply.confinement) confinement_ = *std::move(outcome->reply.confinement);
            for (const std::string& name : confinement_.lacks)
                seams_.log.info("the widget extension is not fully confined: this system has no " + name);
        } else {
            seams_.log(
                "could not list the widgets: " +
                (outcome ? "an answer without widgets" : outcome.fault().reason));
            backoff_.failed();
            askAt_ = seams_.now() + backoff_.pause();
        }
        seams_.changed();
    });
}

std::optional<Date> Offers::nextInstant() const {
    if (!widgets_.empty() || isAsking_) return std::nullopt;
    return askAt_;
}

const widgetkit::WidgetDescription* Offers::find(const std::string& kind) const {
    const auto found = std::ranges::find(widgets_, kind, &widgetkit::WidgetDescription::kind);
    return found == widgets_.end() ? nullptr : &*found;
}

std::string Offers::kindCalled(const std::string& name) const {
    const auto* widget = widgetkit::findWidget(widgets_, name);
    return widget ? widget->kind : name;
}

Result<void> Offers::check(const std::string& kind, widgetkit::WidgetFamily family) const {
    if (widgets_.empty()) return {};
    const widgetkit::WidgetDescription* widget = find(kind);
    if (!widget) return Fault{.reason = "no widget '" + kind + "'"};
    if (std::ranges::find(widget->families, family) == widget->families.end())
        return Fault{.reason = kind + " is not offered as " + std::string(records::nameOf(family))};
    return {};
}

}  // namespace zelto::host

#pragma once

#include <string>
#include <vector>

#include "Commands.hpp"
#include "host/ExtensionSupervisor.hpp"

namespace zelto::cli {

/// The extension, for one command.
class Extension {
  public:
    explicit Extension(const ExtensionOptions& options);

    /// Raises Failure when they are not told.
    std::vector<widgetkit::WidgetDescription> widgets();
    /// What became of each request, in this process's locale and zone.
    host::Outcomes ask(std::vector<widgetkit::Request> requests);
    /// The reply to one request; raises Failure when there is none.
    widgetkit::Reply ask(widgetkit::Request request);

  private:
    host::ExtensionSupervisor supervisor_;
};

/// The widget that a person means: by its kind, or by the kind without its "Zelto" in any case ("battery");
/// the overview also by that name. Raises Failure, which lists what there is.
const widgetkit::WidgetDescription& findWidget(
    const std::vector<widgetkit::WidgetDescription>& widgets, const std::string& name);

/// Raises Failure, which names the families on offer, unless the widget offers the family.
void requireFamily(const widgetkit::WidgetDescription& widget, widgetkit::WidgetFamily family);

}  // namespace zelto::cli

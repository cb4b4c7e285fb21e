#pragma once

#include <string>
#include <vector>

#include "cli/Commands.hpp"
#include "host/ExtensionProcess.hpp"

namespace zelto::cli {

/// The extension process, for one command. Its failures are raised.
class Extension {
  public:
    explicit Extension(const ExtensionOptions& options);

    std::vector<WidgetDescription> widgets();
    /// One reply for each request, in order, in this process's locale and zone.
    std::vector<Reply> ask(std::vector<Request> requests);

  private:
    host::ExtensionProcess process_;
};

/// The widget that a person means: by its kind, or by the kind without its "Zelto" in any case ("battery");
/// the overview also by that name. Raises Failure, which lists what there is.
const WidgetDescription& findWidget(const std::vector<WidgetDescription>& widgets, const std::string& name);

/// Raises Failure, which names the families on offer, unless the widget offers the family.
void requireFamily(const WidgetDescription& widget, WidgetFamily family);

}  // namespace zelto::cli

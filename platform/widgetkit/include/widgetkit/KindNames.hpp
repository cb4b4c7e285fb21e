#pragma once

#include <string_view>
#include <vector>

#include "widgetkit/Messages.hpp"

namespace zelto::widgetkit {

/// Whether a person means that kind: by its own name or, in any case of letters, without the prefix
/// ("worldClock" for ZeltoWorldClock); "overview" is ZeltoWidget.
bool isCalled(std::string_view kind, std::string_view name);

/// The widget that a person means; null where there is none.
const WidgetDescription* findWidget(const std::vector<WidgetDescription>& widgets, std::string_view name);

}  // namespace zelto::widgetkit

#include "widgetkit/KindNames.hpp"

#include <algorithm>
#include <cctype>
#include <string>

namespace zelto::widgetkit {
namespace {

std::string shortName(std::string_view kind) {
    constexpr std::string_view prefix = "Zelto";
    std::string name(kind.starts_with(prefix) ? kind.substr(prefix.size()) : kind);
    std::ranges::transform(
        name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name == "widget" ? "overview" : name;
}

}  // namespace

bool isCalled(std::string_view kind, std::string_view name) {
    return kind == name || shortName(kind) == shortName(name);
}

const WidgetDescription* findWidget(const std::vector<WidgetDescription>& widgets, std::string_view name) {
    const auto exact = std::ranges::find(widgets, name, &WidgetDescription::kind);
    const auto found = exact != widgets.end() ? exact : std::ranges::find_if(widgets, [&](const auto& each) {
        return isCalled(each.kind, name);
    });
    return found == widgets.end() ? nullptr : &*found;
}

}  // namespace zelto::widgetkit

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "ui/View.hpp"

namespace zelto::widget {

/// The title row of a widget.
struct WidgetHeader {
    std::string title;
    std::string icon;                          // a symbol's name
    ui::Color color;                           // of the icon
    std::optional<std::string> trailing = {};  // small, at the right end of the row

    ui::View body() const;
};

/// Shown instead of data that the app has not written yet.
struct OpenAppNote {
    ui::View body() const;
};

/// What every widget's root gets: the link to the app that a tap opens ("open?tab=fans"), the colour of its
/// texts, and the shared background under the whole widget.
std::function<ui::View(ui::View)> zeltoRoot(std::string_view path);

}  // namespace zelto::widget

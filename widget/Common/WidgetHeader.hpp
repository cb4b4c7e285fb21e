#pragma once

#include <optional>
#include <string>

#include "ui/View.hpp"

namespace zelto {

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

/// The treatment of every widget's root: the shared background under the whole widget.
ui::View zeltoBackground(ui::View view);

}  // namespace zelto

#pragma once

#include <array>
#include <filesystem>
#include <map>
#include <string>

#include "WidgetKinds.hpp"
#include "widgetkit/Service.hpp"

namespace zelto::widget {

/// What a widget shows.
struct ShownSources {
    const char* kind;
    bool readings;  // of the moment
    bool snapshot;
};

inline constexpr std::array shownSources{
    ShownSources{WidgetKinds::overview, true, false},
    ShownSources{WidgetKinds::battery, true, true},
    ShownSources{WidgetKinds::system, true, true},
    ShownSources{WidgetKinds::storage, true, true},
    ShownSources{WidgetKinds::fans, false, true},
    ShownSources{WidgetKinds::calendar, false, true},
    ShownSources{WidgetKinds::worldClock, false, true},
    ShownSources{WidgetKinds::clipboard, false, true},
    ShownSources{WidgetKinds::awake, false, true},
    ShownSources{WidgetKinds::equalizer, false, true},
    ShownSources{WidgetKinds::care, false, true},
};

/// The same as hosts are told it, where the snapshot is in a file.
inline std::map<std::string, widgetkit::WidgetContents> contentsOf(const std::filesystem::path& snapshot) {
    std::map<std::string, widgetkit::WidgetContents> out;
    for (const auto& shown : shownSources) {
        auto& contents = out[shown.kind];
        if (shown.snapshot) contents.files.push_back(snapshot.string());
        contents.live = shown.readings;
    }
    return out;
}

}  // namespace zelto::widget

#include "widget/Widgets/ZeltoWidgetBundle.hpp"

#include "Widgets/AwakeWidget.hpp"
#include "Widgets/BatteryWidget.hpp"
#include "Widgets/CareWidget.hpp"
#include "Widgets/ClipboardWidget.hpp"
#include "Widgets/EqualizerWidget.hpp"
#include "Widgets/FansWidget.hpp"
#include "Widgets/OverviewWidget.hpp"
#include "Widgets/StorageWidget.hpp"
#include "Widgets/SystemWidget.hpp"
#include "Widgets/WorldClockWidget.hpp"
#include "widget/Widgets/CalendarWidget.hpp"

namespace zelto::widget {

using namespace widgetkit;

static_assert(WidgetBundle<ZeltoWidgetBundle> && Widget<OverviewWidget, ProviderSources>);

std::vector<WidgetConfiguration> ZeltoWidgetBundle::body() const {
    return {
        OverviewWidget{}.body(sources),
        BatteryWidget{}.body(sources),
        SystemWidget{}.body(sources),
        StorageWidget{}.body(sources),
        FansWidget{}.body(sources),
        CalendarWidget{}.body(sources),
        WorldClockWidget{}.body(sources),
        ClipboardWidget{}.body(sources),
        AwakeWidget{}.body(sources),
        EqualizerWidget{}.body(sources),
        CareWidget{}.body(sources),
    };
}

}  // namespace zelto::widget

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

namespace zelto {

static_assert(WidgetBundle<ZeltoWidgetBundle> && Widget<OverviewWidget>);

std::vector<WidgetConfiguration> ZeltoWidgetBundle::body() const {
    return {
        OverviewWidget{sources}.body(),
        BatteryWidget{sources}.body(),
        SystemWidget{sources}.body(),
        StorageWidget{sources}.body(),
        FansWidget{sources}.body(),
        CalendarWidget{sources}.body(),
        WorldClockWidget{sources}.body(),
        ClipboardWidget{sources}.body(),
        AwakeWidget{sources}.body(),
        EqualizerWidget{sources}.body(),
        CareWidget{sources}.body(),
    };
}

}  // namespace zelto

#include "widget/Widgets/ZeltoWidgetBundle.hpp"

#include "widget/Widgets/AwakeWidget.hpp"
#include "widget/Widgets/BatteryWidget.hpp"
#include "widget/Widgets/CalendarWidget.hpp"
#include "widget/Widgets/CareWidget.hpp"
#include "widget/Widgets/ClipboardWidget.hpp"
#include "widget/Widgets/EqualizerWidget.hpp"
#include "widget/Widgets/FansWidget.hpp"
#include "widget/Widgets/OverviewWidget.hpp"
#include "widget/Widgets/StorageWidget.hpp"
#include "widget/Widgets/SystemWidget.hpp"
#include "widget/Widgets/WorldClockWidget.hpp"

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

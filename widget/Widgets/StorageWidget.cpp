#include "Widgets/StorageWidget.hpp"

#include "Common/Palette.hpp"
#include "Common/Ring.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace ui;
using namespace widgetkit;

WidgetConfiguration StorageWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<StorageWidgetView>(WidgetKinds::storage, {.sources = sources})
        .configurationDisplayName("Zelto · Armazenamento")
        .description("Espaço usado e livre no disco. Toque para limpar.")
        .supportedFamilies({WidgetFamily::systemSmall});
}

View StorageWidgetView::body() const {
    const LiveData& live = entry.live;
    const auto bytes = [&](std::uint64_t count) {
        return environment.formatting.byteCount(static_cast<std::int64_t>(count));
    };
    // There is no tab for storage in the app: the system tab has what is needed.
    return VStack(
               {.spacing = 6},
               WidgetHeader{
                   .title = entry.snapshot && entry.snapshot->disk ? entry.snapshot->disk->name : "Disco",
                   .icon = "internaldrive",
                   .color = Palette::accent},
               Ring::single(live.disk, Palette::loadColor(live.disk), "usado")
                   .body()
                   .padding(Edges::horizontal, 12),
               Text(bytes(live.diskFree) + " livres").font(10, Weight::semibold),
               Text("de " + bytes(live.diskTotal)).font(9).foreground(secondary))
        .apply(zeltoRoot("open?tab=system"));
}

}  // namespace zelto::widget

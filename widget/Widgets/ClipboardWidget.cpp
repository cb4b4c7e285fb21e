#include "Widgets/ClipboardWidget.hpp"

#include <algorithm>
#include <span>

#include "Common/DeepLink.hpp"
#include "Common/Palette.hpp"
#include "Common/WidgetHeader.hpp"
#include "Common/ZeltoConfiguration.hpp"
#include "Widgets/WidgetKinds.hpp"
#include "texts/Characters.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace shared;
using namespace texts;
using namespace ui;
using namespace widgetkit;

namespace {

/// Bytes; whoever copies more than that does not copy nothing.
constexpr std::size_t longestBlank = 1024;
constexpr double thumbnailSide = 22;  // points

Views content(const WidgetSnapshot::Clip& clip, const EnvironmentValues& environment) {
    if (clip.imagePath && environment.thumbnail)
        if (auto image = environment.thumbnail(*clip.imagePath))
            return list(
                Image(*std::move(image))
                    .scaledToFill()
                    .frame({.width = thumbnailSide, .height = thumbnailSide})
                    .clipShape(RoundedRectangle{4}),
                Text("Imagem").font(11));
    const std::string text = ClipboardWidgetView::rowText(clip);
    View shown = Text(text).font(11).lineLimit(1);
    return list(
        text.size() < longestBlank && isBlank(text) ? std::move(shown).accessibilityLabel("item vazio")
                                                    : std::move(shown));
}

View row(const WidgetSnapshot::Clip& clip, const EnvironmentValues& environment) {
    return HStack(
               {.spacing = 6},
               content(clip, environment),
               Spacer(4),
               when(
                   clip.pinned,
                   [] {
                       return Symbol("pin.fill")
                           .font(8)
                           .foreground(Palette::warning)
                           .accessibilityLabel("fixado");
                   }))
        .padding(Edges::horizontal, 8)
        .padding(Edges::vertical, 5)
        .background(RoundedRectangle{7}, Palette::card)
        .link(deepLink("clip?id=" + clip.id.text()));
}

}  // namespace

WidgetConfiguration ClipboardWidget::body(const ProviderSources& sources) const {
    return zeltoConfiguration<ClipboardWidgetView>(WidgetKinds::clipboard, {.sources = sources})
        .configurationDisplayName("Zelto · Copiados")
        .description("Últimos itens copiados. Toque num item para copiar de novo.")
        .supportedFamilies({WidgetFamily::systemMedium, WidgetFamily::systemLarge});
}

std::string ClipboardWidgetView::rowText(const WidgetSnapshot::Clip& clip) {
    std::string text = clip.text.value_or("");
    std::ranges::replace(text, '\n', ' ');
    return text;
}

View ClipboardWidgetView::body() const {
    return VStack(
               {.alignment = HAlign::leading, .spacing = 5},
               WidgetHeader{
                   .title = "Copiados",
                   .icon = "doc.on.clipboard",
                   .color = Palette::blue,
                   .trailing = "toque para copiar"},
               rows())
        .apply(zeltoRoot("open?tab=clipboard"));
}

Views ClipboardWidgetView::rows() const {
    if (!entry.snapshot || entry.snapshot->clips.empty())
        return list(
            Spacer(), Text("Copie algo e ele aparece aqui.").font(11).foreground(secondary), Spacer());
    const std::span clips(entry.snapshot->clips);
    const std::size_t limit = environment.family == WidgetFamily::systemLarge ? 7 : 3;
    const auto rowOf = [this](const WidgetSnapshot::Clip& clip) { return row(clip, environment); };
    return list(forEach(clips.first(std::min(limit, clips.size())), rowOf), Spacer(0));
}

}  // namespace zelto::widget

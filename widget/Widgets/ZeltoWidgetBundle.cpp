#include "widget/Widgets/ZeltoWidgetBundle.hpp"

#include "platform/ui/Building.hpp"
#include "widget/Common/Palette.hpp"
#include "widget/Common/WidgetHeader.hpp"
#include "widget/Widgets/OverviewWidget.hpp"
#include "widget/Widgets/WidgetKinds.hpp"

namespace zelto {
namespace {

using enum WidgetFamily;

/// A widget whose view is not written yet: the open-app note under its gallery name. The one place that knows
/// which widgets those are is `body` below.
WidgetConfiguration unwritten(
    const ProviderSources& sources, const char* kind, const char* name, const char* description,
    std::vector<WidgetFamily> families, bool minuteByMinute = false) {
    const std::string title = name;
    return StaticConfiguration(
               kind,
               ZeltoProvider{.minuteByMinute = minuteByMinute, .sources = sources},
               [title](const ZeltoEntry&, const EnvironmentValues&) {
                   return ui::VStack(
                              {.spacing = 6},
                              WidgetHeader{.title = title, .icon = "sparkles", .color = Palette::accent},
                              ui::Spacer(),
                              OpenAppNote{},
                              ui::Spacer())
                       .foreground(Palette::white)
                       .apply(zeltoBackground);
               })
        .configurationDisplayName(name)
        .description(description)
        .supportedFamilies(std::move(families));
}

}  // namespace

static_assert(WidgetBundle<ZeltoWidgetBundle> && Widget<OverviewWidget>);

std::vector<WidgetConfiguration> ZeltoWidgetBundle::body() const {
    return {
        OverviewWidget{sources}.body(),
        unwritten(
            sources,
            WidgetKinds::battery,
            "Zelto · Bateria",
            "Carga, saúde, ciclos e limite de carga.",
            {systemSmall, systemMedium}),
        unwritten(
            sources,
            WidgetKinds::system,
            "Zelto · Sistema",
            "CPU, GPU, memória e temperatura do chip.",
            {systemSmall, systemMedium}),
        unwritten(
            sources,
            WidgetKinds::storage,
            "Zelto · Armazenamento",
            "Espaço usado e livre no disco. Toque para limpar.",
            {systemSmall}),
        unwritten(
            sources,
            WidgetKinds::fans,
            "Zelto · Ventoinhas",
            "Velocidade e modo das ventoinhas.",
            {systemSmall}),
        unwritten(
            sources,
            WidgetKinds::calendar,
            "Zelto · Agenda",
            "Próximos compromissos com botão para entrar na reunião.",
            {systemMedium, systemLarge}),
        unwritten(
            sources,
            WidgetKinds::worldClock,
            "Zelto · Relógio mundial",
            "A hora nas cidades da sua aba Agenda.",
            {systemSmall, systemMedium},
            true),
        unwritten(
            sources,
            WidgetKinds::clipboard,
            "Zelto · Copiados",
            "Últimos itens copiados. Toque num item para copiar de novo.",
            {systemMedium, systemLarge}),
        unwritten(
            sources,
            WidgetKinds::awake,
            "Zelto · Manter acordado",
            "Impede o Mac de dormir. Toque para ligar ou desligar.",
            {systemSmall, systemMedium}),
        unwritten(
            sources,
            WidgetKinds::equalizer,
            "Zelto · Equalizador",
            "Estado e preset do equalizador. Toque para ligar ou desligar.",
            {systemSmall}),
        unwritten(
            sources,
            WidgetKinds::care,
            "Zelto · Cuidados",
            "Resultado da última análise do Mac.",
            {systemSmall, systemMedium}),
    };
}

}  // namespace zelto

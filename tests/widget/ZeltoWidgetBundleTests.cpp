#include <gtest/gtest.h>

#include "tests/support/Looks.hpp"
#include "widget/Common/DeepLink.hpp"
#include "widget/Widgets/ZeltoWidgetBundle.hpp"

namespace zelto::test {

using namespace records;
using namespace texts;
using namespace widget;
using namespace widgetkit;
namespace {

std::string catalogue() {
    std::string out;
    for (const auto& widget : ZeltoWidgetBundle{}.body()) {
        const auto& info = widget.info();
        out += info.kind + " | " + info.displayName + " | " + info.description + " |";
        for (const WidgetFamily family : info.families) out += " " + std::string(nameOf(family).substr(6));
        out += "\n";
    }
    return out;
}

TEST(ZeltoWidgetBundle, ListsElevenWidgetsInGalleryOrder) {
    EXPECT_EQ(
        catalogue(),
        "ZeltoWidget | Zelto · Visão geral | Bateria, CPU, memória e disco do seu Mac. | Small Medium\n"
        "ZeltoBattery | Zelto · Bateria | Carga, saúde, ciclos e limite de carga. | Small Medium\n"
        "ZeltoSystem | Zelto · Sistema | CPU, GPU, memória e temperatura do chip. | Small Medium\n"
        "ZeltoStorage | Zelto · Armazenamento | Espaço usado e livre no disco. Toque para limpar. | Small\n"
        "ZeltoFans | Zelto · Ventoinhas | Velocidade e modo das ventoinhas. | Small\n"
        "ZeltoCalendar | Zelto · Agenda | Próximos compromissos com botão para entrar na reunião. | Medium "
        "Large\n"
        "ZeltoWorldClock | Zelto · Relógio mundial | A hora nas cidades da sua aba Agenda. | Small Medium\n"
        "ZeltoClipboard | Zelto · Copiados | Últimos itens copiados. Toque num item para copiar de novo. | "
        "Medium Large\n"
        "ZeltoAwake | Zelto · Manter acordado | Impede o Mac de dormir. Toque para ligar ou desligar. | "
        "Small Medium\n"
        "ZeltoEqualizer | Zelto · Equalizador | Estado e preset do equalizador. Toque para ligar ou "
        "desligar. | Small\n"
        "ZeltoCare | Zelto · Cuidados | Resultado da última análise do Mac. | Small Medium\n");
}

TEST(ZeltoWidgetBundle, OnlyTheWorldClockGoesMinuteByMinute) {
    const ProviderSources sources{
        .now = [] { return wednesday; },
        .live = [] { return LiveData{}; },
        .snapshot = [] { return std::nullopt; }};
    const Formatting formatting({"pt_BR", "America/Sao_Paulo"});
    int thirty = 0;
    for (const auto& widget : ZeltoWidgetBundle{sources}.body()) {
        const WidgetFamily family = widget.info().families.front();
        const auto timeline = widget.timeline({family, false}, {family, formatting, sources.now});
        const bool clock = widget.info().kind == "ZeltoWorldClock";
        EXPECT_EQ(timeline.entries.size(), clock ? 30U : 1U) << widget.info().kind;
        EXPECT_EQ(timeline.reloadAfter, wednesday + (clock ? 1800 : 300)) << widget.info().kind;
        thirty += clock ? 1 : 0;
    }
    EXPECT_EQ(thirty, 1);
}

TEST(DeepLink, IsTheSchemeAndThePath) {
    EXPECT_EQ(deepLink("open?tab=home"), "zelto://open?tab=home");
    EXPECT_EQ(deepLink("eq"), "zelto://eq");
    EXPECT_TRUE(URL::parse(deepLink("open?tab=home")));
}

}  // namespace
}  // namespace zelto::test

// The rules of the single widgets.

#include <gtest/gtest.h>

#include "tests/support/Looks.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/Trees.hpp"
#include "widget/Common/Palette.hpp"
#include "widget/Widgets/AwakeWidget.hpp"
#include "widget/Widgets/BatteryWidget.hpp"
#include "widget/Widgets/CalendarWidget.hpp"
#include "widget/Widgets/CareWidget.hpp"
#include "widget/Widgets/ClipboardWidget.hpp"
#include "widget/Widgets/FansWidget.hpp"
#include "widget/Widgets/WorldClockWidget.hpp"

namespace zelto::test {
namespace {

using Edit = std::function<void(WidgetSnapshot&)>;

/// A look at the sample, `age` seconds old, after an edit.
Look sample(
    const Edit& edit = [](auto&) {}, double age = 0) {
    Look look{.snapshot = WidgetSnapshot::sample(wednesday - age)};
    edit(*look.snapshot);
    return look;
}
Look without() {
    return {};
}

// ---- battery
// -------------------------------------------------------------------------------------------------------

const LiveData onPower{.battery = 50, .charging = true}, onBattery{.battery = 50, .charging = false};

std::string batteryStatus(const std::function<void(WidgetSnapshot::Battery&)>& edit, bool charging) {
    WidgetSnapshot::Battery info;
    edit(info);
    return BatteryView::statusText(&info, charging ? onPower : onBattery);
}

TEST(BatteryStatusText, FollowsItsOrder) {
    EXPECT_EQ(BatteryView::statusText(nullptr, onPower), "Carregando");
    EXPECT_EQ(BatteryView::statusText(nullptr, onBattery), "Na bateria");
    EXPECT_EQ(
        batteryStatus([](auto& b) { b.adapterDisabled = b.chargingPaused = true; }, true),
        "Usando bateria (limite)");
    EXPECT_EQ(batteryStatus([](auto& b) { b.chargingPaused = true; }, true), "Pausada em 80%");
    EXPECT_EQ(batteryStatus([](auto& b) { b.minutesRemaining = 10; }, true), "Carregando");
    EXPECT_EQ(batteryStatus([](auto& b) { b.charging = true; }, false), "Na bateria");
}

TEST(BatteryStatusText, TellsTheTimeLeftWithoutPadding) {
    for (const auto& [minutes, text] : std::vector<std::pair<std::int64_t, const char*>>{
             {135, "2 h 15 min restantes"},
             {45, "0 h 45 min restantes"},
             {60, "1 h 0 min restantes"},
             {-1, "0 h -1 min restantes"},
             {-61, "-1 h -1 min restantes"}})
        EXPECT_EQ(batteryStatus([&](auto& b) { b.minutesRemaining = minutes; }, false), text);
}

std::string battery(WidgetFamily family, Look look, std::optional<std::int64_t> percent, bool charging) {
    look.live.battery = percent;
    look.live.charging = charging;
    return outlineOf("ZeltoBattery", family, look);
}

TEST(BatteryWidget, ShowsOnlyANoteWithoutALiveBattery) {
    for (const WidgetFamily family : {small, medium})
        EXPECT_EQ(
            texts(battery(family, sample(), {}, false)),
            std::vector<std::string>{"Este Mac não tem bateria."});
}

TEST(BatteryWidget, TurnsToDangerAtTwentyPercentUnlessCharging) {
    EXPECT_EQ(arcColor(battery(small, sample(), 20, false)), "#FF6166");
    EXPECT_EQ(arcColor(battery(small, sample(), 20, true)), "#40D9B2");
    EXPECT_EQ(arcColor(battery(medium, sample(), 21, false)), "#40D9B2");
    EXPECT_EQ(arcColor(battery(medium, sample(), 20, false)), "#FF6166");
}

TEST(BatteryWidget, ShowsTheChargingIconOnlyInTheSmallFamily) {
    EXPECT_TRUE(has(battery(small, sample(), 50, true), "Symbol \"bolt.fill\" .foreground(#FFA640)"));
    EXPECT_TRUE(
        has(battery(small, sample(), 50, false), "Symbol \"battery.75percent\" .foreground(#40D9B2)"));
    EXPECT_TRUE(
        has(battery(medium, sample(), 50, true), "Symbol \"battery.75percent\" .foreground(#40D9B2)"));
}

TEST(BatteryWidget, ShowsDetailsOfAFreshSnapshotOnly) {
    const std::string fresh = battery(medium, sample([](auto&) {}, 899), 50, false);
    EXPECT_TRUE(shows(fresh, "Saúde"));
    EXPECT_FALSE(shows(fresh, "Abra o Zelto para atualizar"));
    const std::string stale = battery(medium, sample([](auto&) {}, 900), 50, false);
    EXPECT_FALSE(shows(stale, "Saúde"));
    EXPECT_TRUE(shows(stale, "Abra o Zelto para atualizar"));
    EXPECT_TRUE(shows(stale, "50%"));
    EXPECT_TRUE(shows(battery(medium, sample([](auto&) {}, -5000), 50, false), "Saúde"));
    EXPECT_TRUE(shows(battery(medium, without(), 50, false), "Abra o Zelto para atualizar"));
}

TEST(BatteryWidget, FormatsItsDetails) {
    const auto details = [](const std::function<void(WidgetSnapshot::Battery&)>& edit) {
        return battery(medium, sample([&](auto& s) { edit(*s.battery); }), 50, false);
    };
    EXPECT_TRUE(shows(details([](auto& b) { b.health = 0.876; }), "88%"));
    EXPECT_TRUE(shows(details([](auto& b) { b.cycles = 12345; }), "12345"));
    EXPECT_TRUE(shows(details([](auto& b) { b.temperature = 31.4; }), "31 °C"));
    EXPECT_FALSE(shows(details([](auto& b) { b.watts = 0.5; }), "Carregador"));
    EXPECT_TRUE(shows(details([](auto& b) { b.watts = 60.4; }), "60 W"));
    EXPECT_TRUE(shows(details([](auto& b) { b.limitEnabled = false; }), "desligado"));
    EXPECT_FALSE(shows(
        details([](auto& b) {
            b.health = {};
            b.cycles = {};
            b.temperature = {};
        }),
        "Saúde"));
}

// ---- system
// --------------------------------------------------------------------------------------------------------

TEST(SystemWidget, LeavesOutWhatOnlyAFreshSnapshotTells) {
    for (const Look& look : {without(), sample([](auto&) {}, 900)}) {
        const std::string mediumText = outlineOf("ZeltoSystem", medium, look),
                          smallText = outlineOf("ZeltoSystem", small, look);
        EXPECT_EQ(texts(mediumText), (std::vector<std::string>{"Sistema", "22%", "CPU", "55%", "Memória"}));
        EXPECT_FALSE(has(mediumText, "polyline"));
        EXPECT_EQ(texts(smallText), (std::vector<std::string>{"Sistema", "22%", "CPU", "55%"}));
        EXPECT_FALSE(has(smallText, "thermometer.medium"));
    }
}

TEST(SystemWidget, ShowsTwoRingsWithoutAGPU) {
    EXPECT_EQ(count(outlineOf("ZeltoSystem", medium, sample([](auto& s) { s.gpu = {}; })), "ZStack"), 2);
    EXPECT_EQ(count(outlineOf("ZeltoSystem", medium, sample()), "ZStack"), 3);
}

TEST(SystemWidget, DrawsTheHistoryFromThreeValuesOn) {
    const auto look = [](std::vector<double> values) {
        return sample([&](auto& s) { s.cpuHistory = std::move(values); });
    };
    EXPECT_FALSE(has(outlineOf("ZeltoSystem", medium, look({0.1, 0.2})), "polyline"));
    EXPECT_TRUE(has(outlineOf("ZeltoSystem", medium, look({0.1, 0.2, 0.3})), "polyline([0.1 0.2 0.3])"));
}

TEST(SystemWidget, RoundsTheTemperature) {
    const Look look = sample([](auto& s) { s.chipTemperature = 51.5; });
    EXPECT_TRUE(shows(outlineOf("ZeltoSystem", small, look), "52°"));
    EXPECT_TRUE(shows(outlineOf("ZeltoSystem", medium, look), "chip 52°"));
}

TEST(SystemWidget, ColoursTheLoad) {
    const auto color = [](double cpu) {
        Look look;
        look.live.cpu = cpu;
        return arcColor(outlineOf("ZeltoSystem", small, look));
    };
    EXPECT_EQ(color(0.59), "#40D9B2");
    EXPECT_EQ(color(0.6), "#FFA640");
    EXPECT_EQ(color(0.85), "#FF6166");
}

// ---- storage
// -------------------------------------------------------------------------------------------------------

TEST(StorageWidget, IsNamedAfterTheVolume) {
    EXPECT_EQ(texts(outlineOf("ZeltoStorage", small, without()))[0], "Disco");
    EXPECT_EQ(texts(outlineOf("ZeltoStorage", small, sample()))[0], "Disco");
    const Look named = sample([](auto& s) { s.disk = WidgetSnapshot::Disk{"Dados", 1, 1}; }, 1e6);
    EXPECT_EQ(texts(outlineOf("ZeltoStorage", small, named))[0], "Dados");  // however old
}

TEST(StorageWidget, ShowsZeroForAFailedReading) {
    Look look;
    look.live = LiveData{};
    EXPECT_EQ(
        texts(outlineOf("ZeltoStorage", small, look)),
        (std::vector<std::string>{"Disco", "0%", "usado", "Zero KB livres", "de Zero KB"}));
    EXPECT_EQ(arcColor(outlineOf("ZeltoStorage", small, look)), "#40D9B2");
}

TEST(StorageWidget, ColoursItsUse) {
    const auto color = [](double disk) {
        Look look;
        look.live.disk = disk;
        return arcColor(outlineOf("ZeltoStorage", small, look));
    };
    EXPECT_EQ(color(0.8499), "#FFA640");
    EXPECT_EQ(color(0.85), "#FF6166");
}

// ---- fans
// ----------------------------------------------------------------------------------------------------------

TEST(FansWidget, PlacesTheSpeedBetweenLowestAndHighest) {
    EXPECT_EQ(FansWidgetView::ringFraction({2400, 1200, 7200, false}), 0.2);
    EXPECT_EQ(FansWidgetView::ringFraction({2400, 1200, 1200, false}), 0);
    EXPECT_EQ(FansWidgetView::ringFraction({2400, 7200, 1200, false}), 0);
    EXPECT_EQ(FansWidgetView::ringFraction({600, 1200, 7200, false}), 0);
    EXPECT_EQ(FansWidgetView::ringFraction({13200, 1200, 7200, false}), 2);
}

TEST(FansWidget, NamesTheMode) {
    EXPECT_EQ(FansWidgetView::modeText("automatic", true), "Manual");
    EXPECT_EQ(FansWidgetView::modeText({}, false), "Automático");
    EXPECT_EQ(FansWidgetView::modeText({}, true), "Manual");
    EXPECT_EQ(FansWidgetView::modeText("temperature", true), "Por temperatura");
    EXPECT_EQ(FansWidgetView::modeText("fixed", false), "Fixo");
    EXPECT_EQ(FansWidgetView::modeText("Fixed", false), "Automático");
}

TEST(FansWidget, WritesWholeSpeedsAndStopsAtImpossibleOnes) {
    EXPECT_EQ(FansWidgetView::speedText(1849.5), "1850");
    EXPECT_EQ(FansWidgetView::speedText(0), "0");
    EXPECT_DEATH(FansWidgetView::speedText(1e19), "");
    EXPECT_DEATH(FansWidgetView::speedText(-1e19), "");
    EXPECT_DEATH(FansWidgetView::speedText(0.0 / 0.0), "");
}

TEST(FansWidget, ChoosesItsBody) {
    EXPECT_TRUE(shows(outlineOf("ZeltoFans", small, sample([](auto&) {}, 899)), "2400"));
    EXPECT_TRUE(
        shows(outlineOf("ZeltoFans", small, sample([](auto&) {}, 900)), "Abra o Zelto para atualizar"));
    EXPECT_TRUE(shows(
        outlineOf("ZeltoFans", small, sample([](auto& s) { s.fans.clear(); })),
        "Este Mac não tem ventoinhas."));
    const Look several = sample([](auto& s) {
        s.fans.push_back({9999, 0, 1, true});
        s.chipTemperature = 51.5;
    });
    EXPECT_EQ(
        texts(outlineOf("ZeltoFans", small, several)),
        (std::vector<std::string>{"Ventoinhas", "2400", "rpm", "Automático", "chip a 52°"}));
    EXPECT_EQ(
        texts(outlineOf("ZeltoFans", small, sample([](auto& s) { s.chipTemperature = {}; }))).size(), 4U);
}

// ---- calendar
// ------------------------------------------------------------------------------------------------------

struct EventRow {
    Formatting formatting{{"pt_BR", "America/Sao_Paulo"}};
    Date now = wednesday;
    Date realNow = wednesday;

    std::string operator()(
        const char* start, const char* end = "2026-12-31T00:00:00-03:00", bool allDay = false) const {
        WidgetSnapshot::Event event;
        event.start = *parseISO8601(start);
        event.end = *parseISO8601(end);
        event.allDay = allDay;
        const EnvironmentValues environment{medium, formatting, [this] { return realNow; }};
        return EventLine{event, now, environment}.timeText();
    }
};

TEST(EventTimeText, TellsWhenItIs) {
    EventRow text;
    EXPECT_EQ(text("2026-03-11T16:30:00-03:00"), "16:30");
    EXPECT_EQ(text("2026-03-12T09:30:00-03:00"), "Amanhã · 09:30");
    EXPECT_EQ(text("2026-03-13T09:30:00-03:00"), "sex., 13 · 09:30");
    EXPECT_EQ(text("2026-03-11T14:05:00-03:00", "2026-03-11T15:00:00-03:00"), "Agora · até 15:00");
    EXPECT_EQ(text("2026-03-11T10:00:00-03:00", "2026-03-11T15:00:00-03:00"), "Agora · até 15:00");
    EXPECT_EQ(text("2026-03-10T10:00:00-03:00", "2026-03-11T15:00:00-03:00", true), "Dia todo");
}

TEST(EventTimeText, TellsTomorrowFromTheRealDate) {
    EventRow text;
    text.realNow = wednesday + 86400;
    EXPECT_EQ(text("2026-03-12T09:30:00-03:00"), "qui., 12 · 09:30");
    EXPECT_EQ(text("2026-03-13T09:30:00-03:00"), "Amanhã · 09:30");
    EXPECT_EQ(text("2026-03-11T16:30:00-03:00"), "16:30");
}

TEST(CalendarWidget, AsksForAccessWithoutASnapshotOrWithoutPermission) {
    const char* note = "Abra a aba Agenda do Zelto e permita o acesso.";
    EXPECT_TRUE(shows(outlineOf("ZeltoCalendar", medium, without()), note));
    const std::string denied =
        outlineOf("ZeltoCalendar", large, sample([](auto& s) { s.calendarAccess = false; }));
    EXPECT_TRUE(shows(denied, note));
    EXPECT_FALSE(shows(denied, "Almoço"));
    EXPECT_EQ(texts(outlineOf("ZeltoCalendar", medium, without()))[0], "11");
    EXPECT_EQ(texts(outlineOf("ZeltoCalendar", medium, without()))[1], "Março quarta-feira");
}

TEST(CalendarWidget, DropsEventsThatHaveEnded) {
    const Look ended = sample([](auto& s) {
        for (auto& event : s.events) event.end = wednesday;
    });
    EXPECT_TRUE(shows(outlineOf("ZeltoCalendar", medium, ended), "Nenhum compromisso nos próximos 7 dias."));
    const Look running = sample([](auto& s) {
        for (auto& event : s.events) event.end = wednesday + 0.5;
    });
    EXPECT_EQ(count(outlineOf("ZeltoCalendar", medium, running), "roundedRectangle(2)"), 3);
    EXPECT_TRUE(shows(
        outlineOf("ZeltoCalendar", medium, sample([](auto&) {}, 1500)), "Daily do time"));  // however old
}

TEST(CalendarWidget, ShowsTheFirstThreeOrSevenInPublishedOrder) {
    const Look ten = sample([](auto& s) {
        s.events.clear();
        for (int i = 10; i > 0; --i) {
            WidgetSnapshot::Event event;
            event.title = "E" + std::to_string(i);
            event.start = wednesday + 60.0 * i;
            event.end = event.start + 60;
            s.events.push_back(event);
        }
    });
    EXPECT_EQ(count(outlineOf("ZeltoCalendar", medium, ten), "Text \"E"), 3);
    const std::string rows = outlineOf("ZeltoCalendar", large, ten);
    EXPECT_EQ(count(rows, "Text \"E"), 7);
    EXPECT_LT(rows.find("\"E10\""), rows.find("\"E9\""));
    EXPECT_TRUE(shows(rows, "E4"));
    EXPECT_FALSE(shows(rows, "E3"));
}

TEST(CalendarWidget, EncodesMeetingLinks) {
    const Look look = sample([](auto& s) { s.events[0].meetingURL = URL::parse("https://a.b/c-d?e=f g"); });
    EXPECT_TRUE(
        has(outlineOf("ZeltoCalendar", medium, look),
            ".link(\"zelto://join?url=https%3A%2F%2Fa%2Eb%2Fc%2Dd%3Fe%3Df%2520g\")"));
    EXPECT_EQ(count(outlineOf("ZeltoCalendar", medium, look), "Text \"Entrar\""), 2);
}

TEST(CalendarWidget, TakesTheFallbackForAColourThatIsNone) {
    const Look look = sample([](auto& s) { s.events[0].colorHex = "verde"; });
    EXPECT_TRUE(has(outlineOf("ZeltoCalendar", medium, look), "fill(#4F8DF7) .frame(width=3 height=26)"));
}

// ---- world clock
// ---------------------------------------------------------------------------------------------------

TEST(WorldClockWidget, PutsTheLocalZoneFirstAndCutsTheList) {
    const Look five = sample([](auto& s) {
        s.clockZones = {"Asia/Tokyo", "Europe/Lisbon", "America/New_York", "UTC", "Asia/Kolkata"};
    });
    EXPECT_EQ(
        texts(outlineOf("ZeltoWorldClock", small, five)),
        (std::vector<std::string>{
            "Relógio mundial", "🇧🇷", "Sao Paulo", "14:05", "🇯🇵", "Tokyo", "02:05", "🇵🇹", "Lisbon", "17:05"}));
    EXPECT_EQ(count(outlineOf("ZeltoWorldClock", medium, five), "#FFFFFF12"), 4);
    EXPECT_EQ(count(outlineOf("ZeltoWorldClock", medium, without()), "#FFFFFF12"), 1);
    EXPECT_EQ(count(outlineOf("ZeltoWorldClock", small, without()), "digits=monospaced"), 1);
}

TEST(WorldClockWidget, ListsAZoneTwiceThatWasChosenTwice) {
    const Look twice = sample([](auto& s) { s.clockZones = {"America/Sao_Paulo"}; });
    EXPECT_EQ(count(outlineOf("ZeltoWorldClock", small, twice), "Text \"Sao Paulo\""), 2);
}

TEST(WorldClockWidget, ShowsUnknownZonesInLocalTimeWithoutAFlag) {
    const Look mars = sample([](auto& s) { s.clockZones = {"Mars/Olympus"}; });
    EXPECT_EQ(
        texts(outlineOf("ZeltoWorldClock", small, mars)),
        (std::vector<std::string>{"Relógio mundial", "🇧🇷", "Sao Paulo", "14:05", "Olympus", "14:05"}));
}

TEST(WorldClockWidget, NamesCities) {
    for (const auto& [zone, city] : std::vector<std::pair<const char*, const char*>>{
             {"America/Sao_Paulo", "Sao Paulo"},
             {"America/Argentina/Buenos_Aires", "Buenos Aires"},
             {"Etc/GMT+3", "GMT+3"},
             {"UTC", "UTC"},
             {"", ""},
             {"//", "//"},
             {"A//", "A"}})
        EXPECT_EQ(WorldClockView::cityName(zone), city);
}

TEST(WorldClockWidget, IsDayFromSixToSix) {
    const Formatting formatting({"pt_BR", "America/Sao_Paulo"});
    for (const auto& [time, day] : std::vector<std::pair<const char*, bool>>{
             {"05:59", false}, {"06:00", true}, {"17:59", true}, {"18:00", false}, {"00:00", false}}) {
        const ZeltoEntry entry{*parseISO8601(std::string("2026-03-11T") + time + ":00-03:00"), {}, nullptr};
        EXPECT_EQ((WorldClockView{medium, entry, formatting}.isDay("America/Sao_Paulo")), day) << time;
    }
}

TEST(WorldClockWidget, CrossesDaylightSavingAndHalfHours) {
    const Formatting formatting({"pt_BR", "Europe/Lisbon"});
    const auto at = [&](const char* date, const char* zone) {
        const ZeltoEntry entry{*parseISO8601(date), {}, nullptr};
        return WorldClockView{medium, entry, formatting}.time(zone);
    };
    EXPECT_EQ(at("2026-03-29T00:59:00Z", "Europe/Lisbon"), "00:59");
    EXPECT_EQ(at("2026-03-29T01:00:00Z", "Europe/Lisbon"), "02:00");
    EXPECT_EQ(at("2026-03-29T01:00:00Z", "Asia/Kolkata"), "06:30");
    EXPECT_EQ(at("2026-03-29T01:00:00Z", "Asia/Kathmandu"), "06:45");
}

// ---- clipboard
// -----------------------------------------------------------------------------------------------------

Look clips(
    std::size_t howMany, const std::function<void(WidgetSnapshot::Clip&)>& edit = [](auto&) {}) {
    return sample([&](auto& s) {
        s.clips.clear();
        for (std::size_t i = 0; i < howMany; ++i) {
            WidgetSnapshot::Clip clip{.id = {}, .text = "clip", .imagePath = {}, .date = {}};
            edit(clip);
            s.clips.push_back(clip);
        }
    });
}

TEST(ClipboardWidget, ShowsTheFirstThreeOrSeven) {
    EXPECT_EQ(count(outlineOf("ZeltoClipboard", medium, clips(10)), ".link("), 3);
    EXPECT_EQ(count(outlineOf("ZeltoClipboard", large, clips(10)), ".link("), 7);
    EXPECT_TRUE(
        has(outlineOf("ZeltoClipboard", large, clips(1)),
            ".link(\"zelto://clip?id=00000000-0000-0000-0000-000000000000\")"));
}

TEST(ClipboardWidget, HasANoteWithoutClips) {
    for (const Look& look : {without(), clips(0)})
        EXPECT_EQ(
            texts(outlineOf("ZeltoClipboard", medium, look)),
            (std::vector<std::string>{"Copiados", "toque para copiar", "Copie algo e ele aparece aqui."}));
}

TEST(ClipboardWidget, PutsATextOnOneLine) {
    const auto text = [](std::optional<std::string> value) {
        return ClipboardWidgetView::rowText(
            {.id = {}, .text = std::move(value), .imagePath = {}, .date = {}});
    };
    EXPECT_EQ(text("a\nb"), "a b");
    EXPECT_EQ(text("a\r\n\n b "), "a\r   b ");
    EXPECT_EQ(text({}), "");
}

TEST(ClipboardWidget, PinsOnlyWhatIsPinned) {
    EXPECT_EQ(count(outlineOf("ZeltoClipboard", medium, clips(2)), "pin.fill"), 0);
    EXPECT_EQ(
        count(outlineOf("ZeltoClipboard", medium, clips(2, [](auto& c) { c.pinned = true; })), "pin.fill"),
        2);
}

TEST(ClipboardWidget, FallsBackToTheTextOfAnImageThatCannotBeRead) {
    const Look look = clips(1, [](auto& c) { c.imagePath = "/no/such/image.png"; });
    EXPECT_TRUE(shows(outlineOf("ZeltoClipboard", medium, look), "clip"));
    EXPECT_FALSE(has(outlineOf("ZeltoClipboard", medium, look), "Image "));
}

TEST(ClipboardWidget, ShowsAThumbnail) {
    const TemporaryFolder folder;
    // A PPM file needs no compression to be written by hand: 100 × 80 red pixels.
    std::string picture = "P6\n100 80\n255\n";
    for (int i = 0; i < 8000; ++i) picture += std::string("\xff\0\0", 3);
    const std::string path = folder.write("a.ppm", picture);
    const std::string text =
        outlineOf("ZeltoClipboard", medium, clips(1, [&](auto& c) { c.imagePath = path; }));
    EXPECT_TRUE(
        has(text,
            "Image width=66 height=66 pixels=17424 bytes .scaledToFill() .frame(width=22 height=22)"
            " .clipShape(roundedRectangle(4))"))
        << text;
    EXPECT_TRUE(shows(text, "Imagem"));
}

// ---- awake
// ---------------------------------------------------------------------------------------------------------

TEST(AwakeWidget, IsInactiveWithoutAFreshSnapshotThatSaysOtherwise) {
    for (const Look& look :
         {without(), sample([](auto&) {}, 900), sample([](auto& s) { s.awakeActive = false; })}) {
        EXPECT_EQ(
            texts(outlineOf("ZeltoAwake", medium, look)),
            (std::vector<std::string>{
                "Manter acordado", "Desligado", "toque para 1 h", "30 min", "1 h", "2 h", "∞"}));
        EXPECT_TRUE(has(outlineOf("ZeltoAwake", small, look), "Symbol \"moon.zzz.fill\" .font(size=30"));
    }
}

TEST(AwakeWidget, CountsDownOrWaitsToBeSwitchedOff) {
    const std::string counting = outlineOf("ZeltoAwake", medium, sample());
    EXPECT_TRUE(has(counting, "Countdown "));
    EXPECT_EQ(count(counting, ".link("), 5);
    EXPECT_TRUE(
        has(counting,
            ".background(geometry=roundedRectangle(7) style=#FF616640) .link(\"zelto://awake?action=off\")"));
    EXPECT_TRUE(has(counting, "Symbol \"cup.and.saucer.fill\" .font(size=26"));
    const std::string endless = outlineOf("ZeltoAwake", medium, sample([](auto& s) { s.awakeEnd = {}; }));
    EXPECT_TRUE(shows(endless, "até desligar"));
    EXPECT_FALSE(has(endless, "Countdown"));
}

TEST(AwakeWidget, HasNoButtonsAndNoSpacerInTheSmallFamily) {
    const std::string text = outlineOf("ZeltoAwake", small, sample());
    EXPECT_EQ(count(text, ".link("), 0);
    EXPECT_EQ(count(text, "Spacer"), 1);  // the header's
}

// ---- equalizer
// -----------------------------------------------------------------------------------------------------

TEST(EqualizerWidget, IsOffWithoutAFreshSnapshotThatSaysOtherwise) {
    for (const Look& look :
         {without(), sample([](auto&) {}, 900), sample([](auto& s) { s.eqEnabled = false; })}) {
        const std::string text = outlineOf("ZeltoEqualizer", small, look);
        EXPECT_EQ(texts(text), (std::vector<std::string>{"Equalizador", "Desligado", "toque para ligar"}));
        EXPECT_EQ(count(text, "fill(#FFFFFF1F)"), 10);
    }
}

TEST(EqualizerWidget, ShowsPresetAndOutput) {
    const std::string text = outlineOf("ZeltoEqualizer", small, sample());
    EXPECT_EQ(
        texts(text), (std::vector<std::string>{"Equalizador", "Ligado", "Graves+", "MacBook Pro Speakers"}));
    EXPECT_EQ(count(text, "fill(#FFA640)"), 10);
    EXPECT_EQ(texts(outlineOf("ZeltoEqualizer", small, sample([](auto& s) { s.eqOutput = {}; }))).size(), 3U);
    EXPECT_EQ(texts(outlineOf("ZeltoEqualizer", small, sample([](auto& s) { s.eqPreset = ""; })))[2], "");
}

TEST(EqualizerWidget, HasBarsOfFixedHeights) {
    const std::string text = outlineOf("ZeltoEqualizer", small, sample());
    std::string heights;
    for (auto at = text.find("frame(height="); at != std::string::npos;
         at = text.find("frame(height=", at + 1))
        heights += text.substr(at + 13, text.find(')', at) - at - 13) + " ";
    EXPECT_EQ(heights, "34 17 23.8 20.4 13.6 10.2 15.3 18.7 23.8 27.2 22.1 ");
}

TEST(EqualizerWidget, CountsItsHeights) {
    EXPECT_EQ(count(outlineOf("ZeltoEqualizer", small, sample()), "capsule"), 10);
}

// ---- care
// ----------------------------------------------------------------------------------------------------------

Look care(std::vector<std::pair<const char*, const char*>> items) {
    return sample([&](auto& s) {
        s.careItems.clear();
        for (const auto& [title, level] : items) s.careItems.push_back({title, level, ""});
    });
}

TEST(CareWidget, AsksForAnAnalysisWithoutFindings) {
    const std::vector<std::string> dated{"Cuidados", "há 1 hora", "Abra o Zelto e toque em Analisar."};
    EXPECT_EQ(texts(outlineOf("ZeltoCare", small, care({}))), dated);
    EXPECT_EQ(texts(outlineOf("ZeltoCare", medium, care({}))), dated);
    EXPECT_EQ(
        texts(outlineOf("ZeltoCare", small, without())),
        (std::vector<std::string>{"Cuidados", "Abra o Zelto e toque em Analisar."}));
}

TEST(CareWidget, CountsPointsOfAttention) {
    EXPECT_EQ(CareWidgetView::verdictText(0), "Tudo certo");
    EXPECT_EQ(CareWidgetView::verdictText(1), "1 ponto de atenção");
    EXPECT_EQ(CareWidgetView::verdictText(3), "3 pontos de atenção");
    const std::string one = outlineOf(
        "ZeltoCare",
        small,
        care({{"a", "ok"}, {"b", "attention"}, {"c", "info"}, {"d", "Attention"}, {"e", ""}}));
    EXPECT_TRUE(shows(one, "1 ponto de atenção"));
    EXPECT_TRUE(
        has(one,
            "Symbol \"exclamationmark.triangle.fill\" .font(size=30 weight=regular design=standard"
            " digits=proportional) .foreground(#FFA640)"));
    const std::string none = outlineOf("ZeltoCare", small, care({{"a", "ok"}, {"b", "info"}}));
    EXPECT_TRUE(shows(none, "Tudo certo"));
    EXPECT_TRUE(has(none, "checkmark.seal.fill"));
}

TEST(CareWidget, DotsAreColouredByExactLevels) {
    EXPECT_EQ(CareWidgetView::levelColor("attention"), Palette::warning);
    EXPECT_EQ(CareWidgetView::levelColor("info"), Palette::blue);
    EXPECT_EQ(CareWidgetView::levelColor("Attention"), Palette::accent);
    EXPECT_EQ(CareWidgetView::levelColor(""), Palette::accent);
}

TEST(CareWidget, PlacesEveryFindingInTwoColumns) {
    const std::string nine = outlineOf(
        "ZeltoCare", medium, care(std::vector<std::pair<const char*, const char*>>(9, {"Igual", "ok"})));
    EXPECT_EQ(count(nine, "Text \"Igual\""), 9);
    EXPECT_TRUE(has(nine, "Grid columns=2 columnSpacing=8 rowSpacing=4 alignment=leading"));
}

TEST(CareWidget, TellsTheAnalysissAgeFromTheRealDate) {
    Look look = care({});
    look.now = wednesday + 86400;
    EXPECT_EQ(texts(outlineOf("ZeltoCare", small, look))[1], "ontem");
}

}  // namespace
}  // namespace zelto::test

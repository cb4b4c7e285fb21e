#include <array>
#include <cmath>

#include "shared/WidgetSnapshot.hpp"

namespace zelto::shared {

using namespace texts;
namespace {

struct SampleEvent {
    const char* title;
    double hours;  // from now to its start
    const char* colorHex;
    bool hasMeeting;
};
constexpr std::array sampleEvents{
    SampleEvent{"Daily do time", 0.5, "#40D9B3", true},
    SampleEvent{"Almoço", 3, "#FFA640", false},
    SampleEvent{"Revisão do projeto", 5, "#4F8DF7", true}};

constexpr const char* meetingRoom = "https://meet.example.com/daily-zelto";
constexpr std::array clipTexts{
    "Reunião às 15h com o time", "https://code.example.com/zelto/widgets", "Endereço: Rua das Flores, 123"};

constexpr std::array<std::array<const char*, 2>, 4> careLevels{
    {{"Memória", "attention"}, {"Discos", "info"}, {"Bateria", "ok"}, {"Segurança", "ok"}}};

std::vector<double> sampleHistory() {
    std::vector<double> values;
    for (int i = 0; i < 40; ++i) values.push_back((0.15 + 0.12 * std::sin(i * 0.25)) + 0.05);
    return values;
}

// The title serves as the event's identity.
WidgetSnapshot::Event event(const SampleEvent& row, Date now) {
    const Date start = now + row.hours * 3600;
    return {
        .id = row.title,
        .title = row.title,
        .start = start,
        .end = start + 1800,
        .allDay = false,
        .colorHex = row.colorHex,
        .location = {},
        .meetingURL = row.hasMeeting ? URL::parse(meetingRoom) : std::nullopt};
}

}  // namespace

WidgetSnapshot WidgetSnapshot::sample(Date now) {
    WidgetSnapshot sample;
    sample.date = now;
    sample.battery = WidgetSnapshot::Battery{
        .percent = 80,
        .charging = true,
        .pluggedIn = true,
        .health = 0.86,
        .cycles = 454,
        .minutesRemaining = {},
        .temperature = 31.0,
        .watts = 45.0,
        .limitEnabled = true,
        .limit = 80,
        .chargingPaused = false,
        .adapterDisabled = false};
    sample.cpu = 0.22;
    sample.cpuHistory = sampleHistory();
    sample.gpu = 0.08;
    sample.memory = 0.55;
    sample.memoryUsed = 4'400'000'000;
    sample.memoryTotal = 8'000'000'000;
    sample.chipTemperature = 52.0;
    sample.fans = {{.actual = 2400, .minimum = 1200, .maximum = 7200, .manual = false}};
    sample.fanMode = "automatic";
    sample.awakeActive = true;
    sample.awakeEnd = now + 2700;
    sample.eqEnabled = true;
    sample.eqPreset = "Graves+";
    sample.eqOutput = "MacBook Pro Speakers";
    for (const char* text : clipTexts)
        sample.clips.push_back(
            {.id = UUID::random(), .text = text, .imagePath = {}, .date = now, .pinned = false});
    sample.calendarAccess = true;
    for (const SampleEvent& row : sampleEvents) sample.events.push_back(event(row, now));
    sample.clockZones = {"America/New_York", "Europe/Lisbon", "Asia/Tokyo"};
    sample.careDate = now - 3600;
    for (const auto& [title, level] : careLevels)
        sample.careItems.push_back({.title = title, .level = level, .summary = {}});
    return sample;
}

}  // namespace zelto::shared

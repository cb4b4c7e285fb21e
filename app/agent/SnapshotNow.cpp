// A snapshot without an agent.

#include <chrono>

#include "FanSpeeds.hpp"
#include "agent/Agent.hpp"
#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto::agent {

shared::WidgetSnapshot snapshotNow(const Places& places, const std::filesystem::path& root) {
    shared::WidgetSnapshot snapshot;
    auto seams = sources::Machine::Seams::ofLinux(root);
    seams.fanSpeeds = loadFanSpeeds(places.state / "fans.json");
    const auto readings = seams.readings;
    sources::ProcessorHistory processor;
    const auto sample = [&] {
        if (const auto ticks = readings.cpuTicks()) processor.add(*ticks);
    };
    sample();
    sources::Machine machine(std::move(seams));
    for (const sources::Part& part : machine.parts()) part.begin()()(snapshot);
    readings.sleep(std::chrono::milliseconds(500));
    sample();
    snapshot.cpu = processor.current();
    snapshot.cpuHistory = processor.values();
    if (const auto settings = SettingsStore(places.configuration).load())
        snapshot.clockZones = settings->zones();
    const auto report = records::decodeJSON<CareReport>(readFile(places.state / "care.json").value_or(""));
    snapshot.date = Date::now();
    // Without an earlier analysis, what files tell: there is nobody to wait for daemons.
    snapshot.careDate = report ? report->date : snapshot.date;
    snapshot.careItems = report ? report->items : sources::careItems(sources::readCareFiles(root, ""));
    return snapshot;
}

}  // namespace zelto::agent

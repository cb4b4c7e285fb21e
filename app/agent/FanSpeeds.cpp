#include "FanSpeeds.hpp"

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"

namespace zelto::agent {

/// One line of the file.
struct FanSpeed {
    std::string fan;
    double highest = 0;
};

}  // namespace zelto::agent

ZELTO_RECORD(zelto::agent::FanSpeed, fan, highest);

namespace zelto::agent {

sources::FanMemory::Speeds loadFanSpeeds(const std::filesystem::path& file) {
    sources::FanMemory::Speeds speeds;
    const auto kept = records::decodeJSON<std::vector<FanSpeed>>(readFile(file).value_or("[]"));
    if (kept)
        for (const FanSpeed& each : *kept) speeds[each.fan] = each.highest;
    return speeds;
}

void storeFanSpeeds(const std::filesystem::path& file, const sources::FanMemory::Speeds& speeds) {
    std::vector<FanSpeed> kept;
    for (const auto& [fan, highest] : speeds) kept.push_back({fan, highest});
    makePrivateFolder(file.parent_path());
    // Lost, they are seen again.
    static_cast<void>(writeFileAtomically(
        file,
        records::encodeJSON(kept).value_or("[]"),
        {.durability = Durability::processDeath, .readers = Readers::owner}));
}

}  // namespace zelto::agent

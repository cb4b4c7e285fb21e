#include <algorithm>
#include <iostream>

#include "Commands.hpp"
#include "Failure.hpp"
#include "Input.hpp"
#include "SnapshotNotes.hpp"
#include "foundation/ISO8601.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto::cli {
namespace {

std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

void snapshotSample() {
    std::cout << records::encodeJSON(shared::WidgetSnapshot::sample()).value_or("") << '\n';
}

void snapshotCheck(const std::string& file) {
    const std::string path = file.empty() ? shared::WidgetSnapshot::url().string() : file;
    const std::string name = path == "-" ? "standard input" : path;
    const std::string bytes = readInput(path, shared::WidgetSnapshot::largestDocument);
    static_assert(shared::WidgetSnapshot::largestDocument == std::size_t{16} << 20);
    if (bytes.size() > shared::WidgetSnapshot::largestDocument)
        throw Failure(name + ": larger than 16 MiB, which no widget reads");
    const auto snapshot = records::decodeJSON<shared::WidgetSnapshot>(bytes);
    if (!snapshot) throw Failure(name + ": " + snapshot.fault().text());
    std::cout << "ok: taken " << iso8601(snapshot->date) << ", "
              << (snapshot->battery ? "battery " + std::to_string(snapshot->battery->percent) + "%"
                                    : "no battery")
              << ", " << counted(snapshot->fans.size(), "fan", "fans") << ", "
              << counted(snapshot->clips.size(), "clip", "clips") << ", "
              << counted(snapshot->events.size(), "event", "events") << ", "
              << counted(snapshot->clockZones.size(), "clock zone", "clock zones") << ", "
              << counted(snapshot->careItems.size(), "finding", "findings") << '\n';
    const auto notes = notesOn(*snapshot);
    constexpr std::size_t most = 20;
    for (std::size_t i = 0; i < std::min(notes.size(), most); ++i) std::cout << "note: " << notes[i] << '\n';
    if (notes.size() > most) std::cout << "note: and " << notes.size() - most << " more\n";
}

}  // namespace zelto::cli

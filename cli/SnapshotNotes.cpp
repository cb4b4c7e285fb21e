#include "SnapshotNotes.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "widget/Widgets/CalendarWidget.hpp"
#include "widgetkit/ViewBounds.hpp"
#include "widgetkit/WidgetFamily.hpp"

namespace zelto::cli {
namespace {

using Kind = records::Schema::Kind;

/// How many of a list are sure to be looked at, and shown where there is room.
constexpr std::size_t mostItems = 1000;

/// Texts that no widget shows.
bool isShown(std::string_view field) {
    for (const std::string_view hidden :
         {"id", "location", "summary", "level", "imagePath", "colorHex", "fanMode"})
        if (field == hidden) return false;
    return true;
}

class Notes {
  public:
    std::vector<std::string> lines;

    void walk(const records::Schema& schema, const void* value, const std::string& place) {
        switch (schema.kind) {
            case Kind::record:
                for (const auto& field : schema.fields)
                    if (isShown(field.name))
                        walk(
                            field.schema(),
                            schema.address(field, value),
                            (place.empty() ? "" : place + ".") + std::string(field.name));
                break;
            case Kind::optional:
                if (schema.count(value) == 1) walk(schema.element(), schema.at(value, 0), place);
                break;
            case Kind::list:
                for (std::size_t i = 0; i < schema.count(value); ++i)
                    walk(schema.element(), schema.at(value, i), place + "[" + std::to_string(i) + "]");
                break;
            case Kind::string:
                static_assert(widgetkit::ViewBudget().textBytes == 1024);
                if (records::jsonLength(*static_cast<const std::string*>(value)) >
                    widgetkit::ViewBudget().textBytes)
                    note(place, "longer than 1,024 bytes; the widgets show its beginning");
                break;
            case Kind::date:
                if (static_cast<const Date*>(value)->held() != *static_cast<const Date*>(value))
                    note(place, "beyond the years 1 to 9999, at whose end it is held");
                break;
            default: break;
        }
    }
    void note(const std::string& place, const std::string& what) { lines.push_back(place + ": " + what); }
};

}  // namespace

std::vector<std::string> notesOn(const shared::WidgetSnapshot& snapshot) {
    Notes notes;
    notes.walk(records::schemaOf<shared::WidgetSnapshot>(), &snapshot, "");

    constexpr widgetkit::ViewBudget budget;
    const double width = widgetkit::sizeOf(widgetkit::WidgetFamily::systemMedium).width;
    if (const auto most = static_cast<std::size_t>(4 * std::ceil(width / budget.pointsPerStep));
        snapshot.cpuHistory.size() > most)
        notes.note(
            "cpuHistory",
            "more than " + std::to_string(most) + " values; only what can be told apart of them is drawn");
    for (const auto& [name, count] :
         {std::pair{"clips", snapshot.clips.size()},
          {"events", snapshot.events.size()},
          {"clockZones", snapshot.clockZones.size()},
          {"careItems", snapshot.careItems.size()}})
        if (count > mostItems) notes.note(name, "more than 1,000; the last ones may be left out");
    std::size_t titles = 0;
    for (const auto& item : snapshot.careItems)
        titles += std::min(records::jsonLength(item.title), budget.textBytes);
    static_assert(widgetkit::ViewBudget().allTextBytes == std::size_t{48} << 10);
    if (titles > budget.allTextBytes)
        notes.note("careItems", "titles of more than 48 KiB together; the last ones are cut");
    if (!snapshot.fans.empty() && !(std::fabs(snapshot.fans[0].actual) < 0x1p63))
        notes.note("fans[0].actual", "beyond 64 bits; the fans widget keeps its last picture");
    for (std::size_t i = 0; i < snapshot.events.size(); ++i) {
        const auto& url = snapshot.events[i].meetingURL;
        if (url && records::jsonLength(widget::EventLine::joinLink(*url)) > budget.linkBytes)
            notes.note(
                "events[" + std::to_string(i) + "].meetingURL",
                "too long for a link; its button opens the calendar tab");
    }
    return notes.lines;
}

}  // namespace zelto::cli

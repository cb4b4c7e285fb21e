// Every text, list and number that an app may legally write, at its ends, from the snapshot through the
// extension to the host's check.

#include <cfloat>
#include <limits>
#include <span>

#include <gtest/gtest.h>

#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/support/Looks.hpp"
#include "widgetkit/Service.hpp"

namespace zelto::test {

using namespace records;
using namespace shared;
using namespace texts;
using namespace widget;
using namespace widgetkit;
namespace {

using Kind = Schema::Kind;

/// The sample with everything that it leaves out.
WidgetSnapshot wholeSnapshot() {
    WidgetSnapshot s = WidgetSnapshot::sample(wednesday);
    s.battery->minutesRemaining = 135;
    s.disk = WidgetSnapshot::Disk{.name = "Sistema", .total = 1'000'000, .available = 1000};
    s.clips[1].imagePath = "/no/such/picture";
    for (auto& event : s.events) event.location = "Sala 1";
    return s;
}

std::string repeated(const std::string& piece, std::size_t count) {
    std::string out;
    while (count-- > 0) out += piece;
    return out;
}

struct Place {
    const Schema* schema;
    void* value;
    std::string name;
};

/// All values of a kind below a value, with their places.
void collect(const Schema& schema, void* value, const std::string& name, Kind kind, std::vector<Place>& out) {
    if (schema.kind == kind) out.push_back({&schema, value, name});
    if (schema.kind == Kind::record)
        for (const auto& field : schema.fields)
            collect(field.schema(), field.address(value), name + "." + std::string(field.name), kind, out);
    if (schema.kind == Kind::optional || schema.kind == Kind::list)
        for (std::size_t i = 0; i < schema.count(value); ++i)
            collect(
                schema.element(),
                const_cast<void*>(schema.at(value, i)),
                name + "[" + std::to_string(i) + "]",
                kind,
                out);
}
std::vector<Place> placesOf(WidgetSnapshot& snapshot, Kind kind) {
    std::vector<Place> out;
    collect(schemaOf<WidgetSnapshot>(), &snapshot, "", kind, out);
    return out;
}

/// Asks the extension for every look of a snapshot that has gone through its document, as a host does.
void isShown(const WidgetSnapshot& snapshot, const std::string& what) {
    const auto document = encodeJSON(snapshot);
    ASSERT_TRUE(document) << what;
    const auto read = decodeJSON<WidgetSnapshot>(*document);
    ASSERT_TRUE(read) << what;
    const ProviderSources sources{
        .now = [] { return wednesday; },
        .live = [] { return placeholderLiveData(); },
        .snapshot = [&]() -> std::optional<WidgetSnapshot> { return *read; }};
    const Service service(
        ZeltoWidgetBundle{sources}.body(),
        {.environment = {"pt_BR", "America/Sao_Paulo"}, .now = [] { return wednesday; }});
    for (const auto& widget : ZeltoWidgetBundle{sources}.body())
        for (const WidgetFamily family : widget.info().families) {
            const Request request{
                .id = 1, .request = RequestKind::timeline, .kind = widget.info().kind, .family = family};
            const std::string line = service.answer(*encodeJSON(request));
            const auto reply = decodeReply(line);
            ASSERT_TRUE(reply) << what << " " << widget.info().kind << ": " << reply.fault().text();
            EXPECT_TRUE(reply->timeline) << what << " " << widget.info().kind << ": " << *reply->error;
            EXPECT_LT(line.size(), std::size_t{2} << 20) << what << " " << widget.info().kind;
        }
}

TEST(Extremes, OfEveryTextAreShown) {
    WidgetSnapshot snapshot = wholeSnapshot();
    const auto places = placesOf(snapshot, Kind::string);
    EXPECT_GT(places.size(), 20U);
    const std::vector<std::pair<const char*, std::string>> ends{
        {"empty", ""},
        {"control characters", repeated("\x01", 20'000)},
        {"one character of 2 KiB", "a" + repeated("\u0301", 1024)},
        {"a megabyte", std::string(1'000'000, 'x')},
        {"breaks", repeated("\u2028", 20'000)},
        {"nulls", std::string(20'000, '\0')},
        {"slashes", std::string(20'000, '/')}};
    // Each by itself, then all of them at once.
    for (const auto& [name, text] : std::span(ends).first(3))
        for (const Place& place : places) {
            auto& own = *static_cast<std::string*>(place.value);
            const std::string before = std::exchange(own, text);
            isShown(snapshot, place.name + ", " + name);
            own = before;
        }
    for (const auto& [name, text] : ends) {
        WidgetSnapshot all = wholeSnapshot();
        for (const Place& place : placesOf(all, Kind::string)) *static_cast<std::string*>(place.value) = text;
        isShown(all, name);
    }
}

TEST(Extremes, OfEveryListAreShown) {
    const auto lengthened = [](auto& list, std::size_t count) {
        while (list.size() < count) list.push_back(list.front());
    };
    for (const std::size_t count : {0U, 1U, 1000U, 5000U}) {
        WidgetSnapshot s = wholeSnapshot();
        if (count == 0) {
            s.cpuHistory.clear();
            s.fans.clear();
            s.clips.clear();
            s.events.clear();
            s.clockZones.clear();
            s.careItems.clear();
        } else {
            for (auto& event : s.events) event.title = std::string(20'000, 'x');
            for (auto& item : s.careItems) item.title = std::string(20'000, 'x');
            lengthened(s.cpuHistory, count * 20);
            lengthened(s.fans, count);
            lengthened(s.clips, count);
            lengthened(s.events, count);
            lengthened(s.clockZones, count);
            lengthened(s.careItems, count);
        }
        isShown(s, std::to_string(count));
    }
}

TEST(Extremes, OfEveryNumberAndDateAreShown) {
    WidgetSnapshot snapshot = wholeSnapshot();
    std::vector<std::pair<std::string, double*>> numbers;
    for (const Place& place : placesOf(snapshot, Kind::real))
        numbers.emplace_back(place.name, static_cast<double*>(place.value));
    const std::size_t reals = numbers.size();
    for (const Place& place : placesOf(snapshot, Kind::date))
        numbers.emplace_back(place.name, &static_cast<Date*>(place.value)->sinceReference);
    EXPECT_GT(reals, 10U);
    EXPECT_GT(numbers.size() - reals, 5U);
    for (const auto& [name, number] : numbers) {
        // A fan's speed beyond 64 bits ends the process, which is the fans widget's rule.
        if (name == ".fans[0].actual") continue;
        double& own = *number;
        for (const double end : {DBL_MAX, -DBL_MAX, 1e13, DBL_TRUE_MIN, -0.0}) {
            const double before = std::exchange(own, end);
            isShown(snapshot, name + " " + std::to_string(end));
            own = before;
        }
    }
    for (const Place& place : placesOf(snapshot, Kind::integer)) {
        auto& own = *static_cast<std::int64_t*>(place.value);
        for (const auto end :
             {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
            const auto before = std::exchange(own, end);
            isShown(snapshot, place.name);
            own = before;
        }
    }
    for (const Place& place : placesOf(snapshot, Kind::unsignedInteger)) {
        auto& own = *static_cast<std::uint64_t*>(place.value);
        for (const auto end : {std::uint64_t{0}, std::numeric_limits<std::uint64_t>::max()}) {
            const auto before = std::exchange(own, end);
            isShown(snapshot, place.name);
            own = before;
        }
    }
}

TEST(Extremes, OfALinkAreShown) {
    WidgetSnapshot s = wholeSnapshot();
    for (const std::size_t length : {1U, 8000U, 17'000U, 1'000'000U}) {
        s.events[0].meetingURL = URL::parse("https://" + std::string(length, 'x'));
        ASSERT_TRUE(s.events[0].meetingURL);
        isShown(s, std::to_string(length));
    }
}

}  // namespace
}  // namespace zelto::test

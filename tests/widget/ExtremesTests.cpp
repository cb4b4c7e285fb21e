// Every text, list and number that an app may legally write, at its ends, from the snapshot through the
// extension to the host's check.

#include <cfloat>
#include <limits>
#include <span>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

using Document = nlohmann::json;
using Place = Document::json_pointer;

/// Where a document has values of a kind.
void collect(
    const Schema& schema, const void* value, const Place& place, Kind kind, std::vector<Place>& out) {
    if (schema.kind == kind) out.push_back(place);
    if (schema.kind == Kind::record)
        for (const auto& field : schema.fields)
            collect(field.schema(), schema.address(field, value), place / std::string(field.name), kind, out);
    if (schema.kind == Kind::optional && schema.count(value) == 1)
        collect(schema.element(), schema.at(value, 0), place, kind, out);
    if (schema.kind == Kind::list)
        for (std::size_t i = 0; i < schema.count(value); ++i)
            collect(schema.element(), schema.at(value, i), place / i, kind, out);
}
std::vector<Place> placesOf(const WidgetSnapshot& snapshot, Kind kind) {
    std::vector<Place> out;
    collect(schemaOf<WidgetSnapshot>(), &snapshot, Place(), kind, out);
    return out;
}

Document documentOf(const WidgetSnapshot& snapshot) {
    return Document::parse(encodeJSON(snapshot).value());
}

/// Asks the extension for every look of a snapshot's document.
void isShown(const Document& document, const std::string& what) {
    const auto read = decodeJSON<WidgetSnapshot>(document.dump());
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

/// With one value replaced.
void isShown(const Document& whole, const Place& place, const Document& value) {
    Document document = whole;
    document.at(place) = value;
    isShown(document, place.to_string() + " " + value.dump().substr(0, 100));
}

TEST(Extremes, OfEveryTextAreShown) {
    const Document whole = documentOf(wholeSnapshot());
    const auto places = placesOf(wholeSnapshot(), Kind::string);
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
        for (const Place& place : places) isShown(whole, place, text);
    for (const auto& [name, text] : ends) {
        Document all = whole;
        for (const Place& place : places) all.at(place) = text;
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
        isShown(documentOf(s), std::to_string(count));
    }
}

TEST(Extremes, OfEveryNumberAndDateAreShown) {
    const Document whole = documentOf(wholeSnapshot());
    const auto reals = placesOf(wholeSnapshot(), Kind::real), dates = placesOf(wholeSnapshot(), Kind::date);
    EXPECT_GT(reals.size(), 10U);
    EXPECT_GT(dates.size(), 5U);
    for (const auto& places : {reals, dates})
        for (const Place& place : places) {
            // A fan's speed beyond 64 bits ends the process, which is the fans widget's rule.
            if (place.to_string() == "/fans/0/actual") continue;
            for (const double end : {DBL_MAX, -DBL_MAX, 1e13, DBL_TRUE_MIN, -0.0}) isShown(whole, place, end);
        }
    using Integer = std::numeric_limits<std::int64_t>;
    for (const Place& place : placesOf(wholeSnapshot(), Kind::integer))
        for (const auto end : {Integer::min(), Integer::max()}) isShown(whole, place, end);
    for (const Place& place : placesOf(wholeSnapshot(), Kind::unsignedInteger))
        for (const auto end : {std::uint64_t{0}, std::numeric_limits<std::uint64_t>::max()})
            isShown(whole, place, end);
}

TEST(Extremes, OfALinkAreShown) {
    WidgetSnapshot s = wholeSnapshot();
    for (const std::size_t length : {1U, 8000U, 17'000U, 1'000'000U}) {
        s.events[0].meetingURL = URL::parse("https://" + std::string(length, 'x'));
        ASSERT_TRUE(s.events[0].meetingURL);
        isShown(documentOf(s), std::to_string(length));
    }
}

}  // namespace
}  // namespace zelto::test

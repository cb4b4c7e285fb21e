#pragma once

#include <string>

#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto::test {

/// A snapshot of which the widgets cut and leave out as much as they ever do.
inline std::string enormousDocument() {
    auto s = shared::WidgetSnapshot::sample(Date{0});
    s.clips[0].text = std::string(17'000, 'x');
    s.events[0].title = std::string(100'000, 'y');
    s.events[0].meetingURL = texts::URL::parse("https://example.com/" + std::string(9000, 'z'));
    s.events[0].location = std::string(100'000, 'y');
    s.cpuHistory.assign(100'000, 0.5);
    s.careItems.assign(5000, {.title = "Memória", .level = "attention", .summary = {}});
    s.awakeEnd = Date{1e300};
    s.fans[0].actual = 1e300;
    return *records::encodeJSON(s);
}

}  // namespace zelto::test

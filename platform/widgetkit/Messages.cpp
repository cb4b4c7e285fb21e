#include "widgetkit/Messages.hpp"

#include "records/JSONEncoder.hpp"

namespace zelto::widgetkit {
namespace {

std::size_t answersIn(const Reply& reply) {
    return std::size_t{reply.widgets.has_value()} + std::size_t{reply.entry.has_value()} +
           std::size_t{reply.timeline.has_value()} + std::size_t{reply.error.has_value()};
}

/// Refuses a reply whose contents are out of bounds.
Result<void> checkContents(const Reply& reply) {
    if (reply.entry) return check(reply.entry->view);
    if (!reply.timeline) return {};
    if (reply.timeline->entries.empty()) return Fault{.reason = "a timeline without entries"};
    for (std::size_t i = 0; i < reply.timeline->entries.size(); ++i) {
        if (auto checked = check(reply.timeline->entries[i].view); !checked) return checked;
        if (i > 0 && reply.timeline->entries[i].date < reply.timeline->entries[i - 1].date)
            return Fault{.reason = "timeline entries out of order"};
    }
    return {};
}

}  // namespace

std::optional<std::string> encodeReply(const Reply& reply) {
    return records::encodeJSON(reply);
}

Result<Reply> decodeReply(std::string_view line) {
    auto reply = records::decodeJSON<Reply>(line);
    if (!reply) return reply;
    if (answersIn(*reply) != 1)
        return Fault{.reason = "a reply needs exactly one of widgets, entry, timeline and error"};
    if (const auto checked = checkContents(*reply); !checked)
        return Reply{.id = reply->id, .error = "out of bounds: " + checked.fault().text()};
    return reply;
}

}  // namespace zelto::widgetkit

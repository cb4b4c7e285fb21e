#include "platform/widgetkit/Messages.hpp"

#include "platform/foundation/JSONEncoder.hpp"

namespace zelto {
namespace {

std::size_t answersIn(const Reply& reply) {
    return std::size_t{reply.widgets.has_value()} + std::size_t{reply.entry.has_value()} +
           std::size_t{reply.timeline.has_value()} + std::size_t{reply.error.has_value()};
}

/// What is wrong with the contents of a reply that is one, or nothing.
std::optional<std::string> faultIn(const Reply& reply) {
    if (reply.entry) return faultOf(reply.entry->view);
    if (!reply.timeline) return std::nullopt;
    if (reply.timeline->entries.empty()) return "a timeline without entries";
    for (std::size_t i = 0; i < reply.timeline->entries.size(); ++i) {
        if (auto fault = faultOf(reply.timeline->entries[i].view)) return fault;
        if (i > 0 && reply.timeline->entries[i].date < reply.timeline->entries[i - 1].date)
            return "timeline entries out of order";
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> encodeReply(const Reply& reply) {
    return encodeJSON(reply);
}

std::optional<Reply> decodeReply(std::string_view line, std::string* why) {
    DecodingError error;
    auto reply = decodeJSON<Reply>(line, &error);
    if (!reply || answersIn(*reply) != 1) {
        if (why)
            *why = reply ? "a reply needs exactly one of widgets, entry, timeline and error" : error.text();
        return std::nullopt;
    }
    if (const auto fault = faultIn(*reply))
        return Reply{.id = reply->id, .error = "out of bounds: " + *fault};
    return reply;
}

}  // namespace zelto

#include "widgetkit/Messages.hpp"

#include <cmath>

#include "foundation/UTF8.hpp"
#include "records/JSONEncoder.hpp"

namespace zelto::widgetkit {
namespace {

constexpr ReplyBounds bounds;

std::size_t answersIn(const Reply& reply) {
    return std::size_t{reply.widgets.has_value()} + std::size_t{reply.entry.has_value()} +
           std::size_t{reply.timeline.has_value()} + std::size_t{reply.error.has_value()};
}

bool isOnClocks(Date date) {
    return std::fabs(date.sinceReference) <= ViewBounds().seconds;
}

Result<void> checkEntry(const ArchivedEntry& entry) {
    if (!isOnClocks(entry.date)) return Fault{.reason = "a date beyond all clocks"};
    return check(entry.view);
}

/// As it can stand in a line of log.
std::string tamed(std::string text) {
    if (text.size() > bounds.errorBytes)
        text.resize(validUTF8Prefix(std::string_view(text).substr(0, bounds.errorBytes)));
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7f') c = ' ';
    return text;
}

Result<void> checkFiles(const WidgetDescription& widget) {
    if (!widget.files) return {};
    if (widget.files->size() > bounds.files) return Fault{.reason = "too many files"};
    for (const std::string& file : *widget.files)
        if (!file.starts_with('/') || file.size() > bounds.pathBytes || file.find('\0') != std::string::npos)
            return Fault{.reason = "a file that is no whole path"};
    return {};
}

/// Refuses a reply whose contents are out of bounds.
Result<void> checkContents(const Reply& reply) {
    if (reply.widgets && reply.widgets->size() > bounds.kinds) return Fault{.reason = "too many widgets"};
    if (reply.widgets)
        for (const WidgetDescription& widget : *reply.widgets)
            if (auto checked = checkFiles(widget); !checked) return checked;
    if (reply.entry) return checkEntry(*reply.entry);
    if (!reply.timeline) return {};
    if (!isOnClocks(reply.timeline->reloadAfter)) return Fault{.reason = "a date beyond all clocks"};
    if (reply.timeline->entries.size() > bounds.entries) return Fault{.reason = "too many entries"};
    if (reply.timeline->entries.empty()) return Fault{.reason = "a timeline without entries"};
    for (std::size_t i = 0; i < reply.timeline->entries.size(); ++i) {
        if (auto checked = checkEntry(reply.timeline->entries[i]); !checked) return checked;
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
    if (reply->error) reply->error = tamed(*std::move(reply->error));
    if (const auto checked = checkContents(*reply); !checked)
        return Reply{.id = reply->id, .error = "out of bounds: " + checked.fault().text()};
    return reply;
}

}  // namespace zelto::widgetkit

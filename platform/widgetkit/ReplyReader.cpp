#include "widgetkit/ReplyReader.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "records/JSONEncoder.hpp"

namespace zelto::widgetkit {
namespace {

/// Stands in a line where a known view was.
const ui::View& standIn() {
    static const ui::View view{.node = ui::node::Text{"\x1a"}, .modifiers = {}};
    return view;
}

/// Where the first view of a reply begins, if the line has one.
std::optional<std::size_t> beginOfView(std::string_view line) {
    // Within a text each quote has a backslash before it.
    constexpr std::string_view key = R"(,"view":)";
    const auto found = line.find(key);
    return found == std::string_view::npos ? std::nullopt : std::optional(found + key.size());
}

ui::View* onlyViewOf(Reply& reply) {
    return reply.timeline && reply.timeline->entries.size() == 1 ? &reply.timeline->entries.front().view
                                                                 : nullptr;
}

}  // namespace

Result<Reply> ReplyReader::read(std::string_view line) {
    const auto begin = beginOfView(line);
    if (!begin) return decodeReply(line);
    const std::string_view rest = line.substr(*begin);
    const auto known =
        std::ranges::find_if(known_, [rest](const Known& each) { return rest.starts_with(each.text); });
    if (known != known_.end()) {
        static const std::string replacement = *records::encodeJSON(standIn());
        std::string shortened(line.substr(0, *begin));
        shortened += replacement;
        shortened += rest.substr(known->text.size());
        auto reply = decodeReply(shortened);
        // It may have stood elsewhere than where a timeline has its view.
        if (ui::View* view = reply ? onlyViewOf(*reply) : nullptr; view && *view == standIn()) {
            *view = known->view;
            std::rotate(known_.begin(), known, std::next(known));
            return reply;
        }
    }

    auto reply = decodeReply(line);
    const ui::View* view = reply ? onlyViewOf(*reply) : nullptr;
    if (!view) return reply;
    auto text = records::encodeJSON(*view);
    if (!text || text->size() > longestText || !rest.starts_with(*text)) return reply;
    known_.push_front({std::move(*text), *view});
    if (known_.size() > mostViews) known_.pop_back();
    return reply;
}

}  // namespace zelto::widgetkit

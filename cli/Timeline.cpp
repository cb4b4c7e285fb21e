#include <iostream>

#include "Commands.hpp"
#include "Extension.hpp"
#include "Failure.hpp"
#include "Input.hpp"
#include "foundation/ISO8601.hpp"
#include "records/JSONEncoder.hpp"
#include "ui/Outline.hpp"

namespace zelto::cli {

void timeline(const TimelineOptions& options) {
    const widgetkit::WidgetFamily family = parseFamily(options.family);
    Extension extension(options.extension);
    const auto widgets = extension.widgets();
    const widgetkit::WidgetDescription& widget = findWidget(widgets, options.kind);
    requireFamily(widget, family);
    const widgetkit::Reply reply = extension.ask(widgetkit::Request{
        .request = widgetkit::RequestKind::timeline,
        .kind = widget.kind,
        .family = family,
        .preview = options.preview});
    if (!reply.timeline) throw Failure("the widget extension did not answer with a timeline");
    if (options.json) {
        std::cout << records::encodeJSON(*reply.timeline).value_or("") << '\n';
        return;
    }
    for (const widgetkit::ArchivedEntry& entry : reply.timeline->entries)
        std::cout << "entry " << iso8601(entry.date) << '\n';
    std::cout << "reload after " << iso8601(reply.timeline->reloadAfter) << "\n\n"
              << ui::outline(reply.timeline->entries.front().view);
}

}  // namespace zelto::cli

#include "widgetkit/Service.hpp"

#include <algorithm>

#include "LineServer.hpp"
#include "records/JSONEncoder.hpp"
#include "texts/TimeZone.hpp"

namespace zelto::widgetkit {
namespace {

/// All pictures of an answer together: well within what hosts wait for it.
constexpr std::chrono::seconds picturePatience{4};

std::string errorLine(std::optional<std::int64_t> id, std::string error) {
    Reply reply;
    reply.id = id;
    reply.error = std::move(error);
    return encodeReply(reply).value_or(R"({"error":"the fault cannot be told in UTF-8"})");
}

std::string familyNames(const WidgetDescription& widget) {
    std::string out;
    for (const WidgetFamily family : widget.families) {
        if (!out.empty()) out += ", ";
        out += records::nameOf(family);
    }
    return out;
}

/// What is handed out is within the bounds that hosts set, whatever was to be shown.
void finish(ArchivedEntry& entry, WidgetFamily family) {
    entry.date = entry.date.held();
    keepToBudget(entry.view, sizeOf(family).width);
}

/// The id of a request that is faulty elsewhere, also when it breaks off behind its id.
std::optional<std::int64_t> idOf(std::string_view line) {
    RequestHead head;
    const auto decoded = records::decodeJSON(line, records::schemaOf<RequestHead>(), &head, 1);
    return !decoded && decoded.fault().path == "id" ? std::nullopt : head.id;
}

}  // namespace

Service::Service(std::vector<WidgetConfiguration> widgets, ServiceSeams seams)
    : widgets_(std::move(widgets)), seams_(std::move(seams)) {}

std::string Service::answer(std::string_view line) const {
    if (line.size() > longestLine)
        return errorLine({}, "a request line holds at most " + std::to_string(longestLine) + " bytes");
    const auto request = records::decodeJSON<Request>(line);
    if (!request) return errorLine(idOf(line), request.fault().text());
    // What runs out while one request is worked on costs that request.
    try {
        Reply out = reply(*request);
        out.id = request->id;
        if (auto encoded = encodeReply(out)) return *std::move(encoded);
        return errorLine(
            request->id, "the view holds a number that is not finite or a text that is not UTF-8");
    } catch (const std::exception& failure) {
        return errorLine(request->id, std::string("the request failed: ") + failure.what());
    }
}

Reply Service::reply(const Request& request) const {
    Reply out;
    if (request.request == RequestKind::bundle) {
        auto& widgets = out.widgets.emplace();
        for (const auto& widget : widgets_) {
            WidgetDescription& told = widgets.emplace_back(widget.info());
            const auto contents = seams_.contents.find(told.kind);
            if (contents == seams_.contents.end()) continue;
            told.files = contents->second.files;
            told.live = contents->second.live;
        }
        out.confinement = seams_.confinement;
        return out;
    }

    const auto fail = [&](std::string error) {
        out.error = std::move(error);
        return out;
    };
    if (!request.kind) return fail("kind: missing");
    if (!request.family) return fail("family: missing");
    const auto widget =
        std::ranges::find(widgets_, *request.kind, [](const auto& w) { return w.info().kind; });
    if (widget == widgets_.end()) return fail("kind: no widget \"" + *request.kind + "\"");
    if (std::ranges::find(widget->info().families, *request.family) == widget->info().families.end())
        return fail("family: " + *request.kind + " offers " + familyNames(widget->info()));
    if (request.timeZone && !texts::TimeZone::find(*request.timeZone)) return fail("timeZone: unknown");
    if (request.locale && !texts::isKnownLocale(*request.locale)) return fail("locale: unknown");

    const texts::Formatting formatting(
        {request.locale.value_or(seams_.environment.locale),
         request.timeZone.value_or(seams_.environment.timeZone)});
    const TimelineProviderContext context{*request.family, request.preview.value_or(false)};
    const auto deadline = std::chrono::steady_clock::now() + picturePatience;
    const EnvironmentValues values{
        .family = *request.family,
        .formatting = formatting,
        .now = seams_.now,
        .thumbnail = [&](const std::string& path) -> std::optional<ui::node::Image> {
            return seams_.thumbnail ? seams_.thumbnail(path, deadline) : std::nullopt;
        }};
    switch (request.request) {
        case RequestKind::bundle: break;
        case RequestKind::placeholder: out.entry = widget->placeholder(context, values); break;
        case RequestKind::snapshot: out.entry = widget->snapshot(context, values); break;
        case RequestKind::timeline: out.timeline = widget->timeline(context, values); break;
    }
    if (out.entry) finish(*out.entry, *request.family);
    if (out.timeline) {
        for (ArchivedEntry& entry : out.timeline->entries) finish(entry, *request.family);
        out.timeline->reloadAfter = out.timeline->reloadAfter.held();
    }
    return out;
}

bool Service::serve(int input, int output) const {
    return serveLines(input, output, longestLine, [this](std::string_view line) { return answer(line); });
}

}  // namespace zelto::widgetkit

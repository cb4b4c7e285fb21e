#include <iostream>
#include <memory>

#include <unistd.h>

#include "Commands.hpp"
#include "Extension.hpp"
#include "Failure.hpp"
#include "Input.hpp"
#include "drawing/PNG.hpp"
#include "drawing/Renderer.hpp"
#include "foundation/Files.hpp"
#include "layout/Layout.hpp"
#include "pictures/PictureProcess.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "texts/TimeZone.hpp"
#include "ui/Outline.hpp"
#include "ui/Reading.hpp"
#include "widget/Common/LiveDataFields.hpp"
#include "widget/Common/LiveReader.hpp"
#include "widget/Widgets/ZeltoWidgetBundle.hpp"

namespace zelto::cli {
namespace {

template <class T>
T decodeInput(const std::string& path) {
    auto value = records::decodeJSON<T>(readInput(path));
    if (!value) throw Failure((path == "-" ? "standard input" : path) + ": " + value.fault().text());
    return *std::move(value);
}

std::optional<shared::WidgetSnapshot> snapshotFor(const PreviewOptions& options, Date date) {
    if (options.noSnapshot) return std::nullopt;
    if (options.sample) return shared::WidgetSnapshot::sample(date);
    if (options.snapshot.empty()) return shared::WidgetSnapshot::load();
    return decodeInput<shared::WidgetSnapshot>(options.snapshot);
}

widget::LiveData liveDataFor(const PreviewOptions& options) {
    if (options.placeholder) return widget::placeholderLiveData();
    if (options.live.empty()) return widget::LiveReader::read(system::SystemReadings::ofLinux());
    return decodeInput<widget::LiveData>(options.live);
}

texts::Environment environmentFor(const PreviewOptions& options) {
    texts::Environment environment = texts::Environment::current();
    if (!options.locale.empty()) environment.locale = options.locale;
    if (!options.timeZone.empty()) environment.timeZone = options.timeZone;
    if (!texts::isKnownLocale(environment.locale))
        throw Failure("--locale: '" + environment.locale + "' is not known");
    if (!texts::TimeZone::find(environment.timeZone))
        throw Failure("--time-zone: '" + environment.timeZone + "' is not known");
    return environment;
}

/// As asked, else by the output file's ending, else text.
std::string formatFor(const PreviewOptions& options) {
    if (!options.format.empty()) return options.format;
    if (options.output.empty() || options.output == "-") return "text";
    for (const char* format : {"svg", "json"})
        if (options.output.ends_with(std::string(".") + format)) return format;
    return options.output.ends_with(".txt") ? "text" : "png";
}

/// Drawn as a host would, from what an extension would hand out; texts and outlines are the widget's own.
std::string drawn(
    widgetkit::ArchivedEntry entry, widgetkit::WidgetFamily family, Date now, const std::string& format,
    const PreviewOptions& options) {
    const ui::Size size = widgetkit::sizeOf(family);
    widgetkit::keepToBudget(entry.view, size.width);
    if (const auto checked = widgetkit::check(entry.view); !checked)
        throw Failure("the view cannot be drawn: " + checked.fault().text());
    drawing::Renderer renderer;
    const auto displayList = layout::layOut(entry.view, {.size = size, .now = now}, renderer.measuring());
    const auto corners = options.corners ? drawing::Corners::rounded : drawing::Corners::square;
    auto bytes = format == "svg" ? renderer.svg(displayList, corners)
                                 : drawing::encodePNG(renderer.draw(displayList, options.scale, corners));
    if (!bytes) throw Failure("the picture could not be made");
    return *std::move(bytes);
}

}  // namespace

void preview(const PreviewOptions& options) {
    const widgetkit::WidgetFamily family = parseFamily(options.family);
    const texts::Environment environment = environmentFor(options);
    const std::string format = formatFor(options);
    if (options.accessibility && format != "text") throw Failure("--accessibility: only with --format text");
    if (options.corners && format != "png" && format != "svg") throw Failure("--corners: only for pictures");
    if (format == "png" && (options.output.empty() || options.output == "-") && isatty(STDOUT_FILENO) != 0)
        throw Failure("refusing to write a PNG to a terminal; use --output FILE");

    const Date date = options.date.empty() ? Date::now() : parseDate(options.date, "--date");
    const Date now = options.now.empty() ? date : parseDate(options.now, "--now");

    // The widget is asked through its own configuration, with sources that give what the options say.
    std::optional<widgetkit::ArchivedEntry> entry;
    const widget::ProviderSources sources{
        .now = [&] { return date; },
        .live = [&] { return liveDataFor(options); },
        .snapshot = [&] { return snapshotFor(options, date); }};
    const auto widgets = widget::ZeltoWidgetBundle{sources}.body();
    std::vector<widgetkit::WidgetDescription> descriptions;
    for (const auto& widget : widgets) descriptions.push_back(widget.info());
    const widgetkit::WidgetDescription& found = findWidget(descriptions, options.kind);
    requireFamily(found, family);
    const auto& widget = widgets[static_cast<std::size_t>(&found - descriptions.data())];

    const texts::Formatting formatting(environment);
    const auto pictures = pictures::PictureProcess::standBy(programBeside(pictures::programName));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    entry = widget.snapshot(
        {family, false},
        {.family = family,
         .formatting = formatting,
         .now = [&] { return now; },
         .thumbnail = [&](const std::string& path) { return pictures.thumbnail(path, deadline); }});
    std::string out;
    if (options.accessibility)
        for (const std::string& text : ui::readingTexts(entry->view, now)) out += text + "\n";
    else if (format == "text")
        out = ui::outline(entry->view);
    else if (format == "json")
        out = records::encodeJSON(*entry).value_or("") + "\n";
    else
        out = drawn(*std::move(entry), family, now, format, options);
    writeOutput(options.output.empty() ? "-" : options.output, out);
}

}  // namespace zelto::cli

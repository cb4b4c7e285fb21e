#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>

#include "Commands.hpp"
#include "Extension.hpp"
#include "Failure.hpp"
#include "Input.hpp"
#include "SheetGrid.hpp"
#include "drawing/PNG.hpp"
#include "drawing/Renderer.hpp"
#include "layout/Layout.hpp"

namespace zelto::cli {
namespace {

struct Look {
    std::string kind;
    widgetkit::WidgetFamily family;
    layout::DisplayList displayList;
};

/// What there is to draw, and what is wrong with the rest.
struct Looks {
    std::vector<Look> looks;
    std::map<std::string, std::string> faults;  // which looks are missing, by the cause
};

Looks askForLooks(const RenderOptions& options, drawing::Renderer& renderer) {
    Extension extension(options.extension);
    const auto widgets = extension.widgets();
    std::vector<std::string> kinds;
    for (const auto& name : options.kinds) kinds.push_back(findWidget(widgets, name).kind);

    std::vector<widgetkit::Request> requests;
    for (const widgetkit::WidgetDescription& widget : widgets) {
        if (!kinds.empty() && std::ranges::find(kinds, widget.kind) == kinds.end()) continue;
        // Previews are what the gallery asks for: a snapshot. Everything else is what a placed widget shows.
        for (const widgetkit::WidgetFamily family : widget.families)
            requests.push_back(
                {.request =
                     options.preview ? widgetkit::RequestKind::snapshot : widgetkit::RequestKind::timeline,
                 .kind = widget.kind,
                 .family = family,
                 .preview = options.preview});
    }
    Looks out;
    for (const auto& [place, outcome] : extension.ask(requests)) {
        const std::string& kind = *requests[place].kind;
        const widgetkit::WidgetFamily family = *requests[place].family;
        if (!outcome || (!outcome->reply.entry && !outcome->reply.timeline)) {
            std::string& missing =
                out.faults[outcome ? "an answer without an entry" : outcome.fault().reason];
            missing += (missing.empty() ? "" : ", ") + kind + " (" + familyName(family) + ")";
            continue;
        }
        const widgetkit::Reply& reply = outcome->reply;
        const widgetkit::ArchivedEntry& entry = reply.entry ? *reply.entry : reply.timeline->entries.front();
        const ui::Size size = widgetkit::sizeOf(family);
        out.looks.push_back(
            {kind,
             family,
             layout::layOut(entry.view, {.size = size, .now = entry.date}, renderer.measuring())});
    }
    return out;
}

void writePNG(const std::filesystem::path& path, const drawing::Picture& picture) {
    const auto bytes = drawing::encodePNG(picture);
    if (!bytes) throw Failure(path.string() + ": the picture could not be made");
    writeOutput(path.string(), *bytes);
}

}  // namespace

void render(const RenderOptions& options) {
    const std::filesystem::path folder = options.output;
    drawing::Renderer renderer;
    const auto [looks, faults] = askForLooks(options, renderer);
    if (looks.empty() && faults.size() == 1) throw Failure(faults.begin()->first);

    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw Failure(folder.string() + ": " + error.message());
    std::vector<widgetkit::WidgetFamily> families;
    for (const Look& look : looks) families.push_back(look.family);
    SheetGrid grid(families);
    std::vector<drawing::SheetItem> sheet;
    for (const Look& look : looks) {
        writePNG(
            folder / (look.kind + "-" + familyName(look.family) + ".png"),
            renderer.draw(
                look.displayList,
                options.scale,
                options.corners ? drawing::Corners::rounded : drawing::Corners::square));
        sheet.push_back({grid.place(look.family), &look.displayList});
    }
    writePNG(folder / "gallery.png", renderer.drawSheet(sheet, grid.size(), options.scale));
    std::cout << looks.size() << " pictures and gallery.png are in "
              << std::filesystem::absolute(folder).string() << '\n';
    std::string all;
    for (const auto& [cause, missing] : faults) {
        all += all.empty() ? "not drawn: " : "; ";
        all += missing;
        all += ": ";
        all += cause;
    }
    if (!all.empty()) throw Failure(all);
}

}  // namespace zelto::cli

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "cli/Commands.hpp"
#include "cli/Extension.hpp"
#include "cli/Failure.hpp"
#include "cli/Input.hpp"
#include "cli/SheetGrid.hpp"
#include "platform/drawing/PNG.hpp"
#include "platform/drawing/Renderer.hpp"
#include "platform/layout/Layout.hpp"

namespace zelto::cli {
namespace {

struct Look {
    std::string kind;
    WidgetFamily family;
    layout::Placement placement;
};

std::vector<Look> askForLooks(const RenderOptions& options, drawing::Renderer& renderer) {
    Extension extension(options.extension);
    const auto widgets = extension.widgets();
    std::vector<std::string> kinds;
    for (const auto& name : options.kinds) kinds.push_back(findWidget(widgets, name).kind);

    std::vector<Request> requests;
    for (const WidgetDescription& widget : widgets) {
        if (!kinds.empty() && std::ranges::find(kinds, widget.kind) == kinds.end()) continue;
        // Previews are what the gallery asks for: a snapshot. Everything else is what a placed widget shows.
        for (const WidgetFamily family : widget.families)
            requests.push_back(
                {.request = options.preview ? RequestKind::snapshot : RequestKind::timeline,
                 .kind = widget.kind,
                 .family = family,
                 .preview = options.preview});
    }
    std::vector<Look> looks;
    const auto replies = extension.ask(requests);
    for (std::size_t i = 0; i < replies.size(); ++i) {
        const Reply& reply = replies[i];
        if (!reply.entry && !reply.timeline) throw Failure("the widget extension answered without an entry");
        const ArchivedEntry& entry = reply.entry ? *reply.entry : reply.timeline->entries.front();
        const WidgetSize size = sizeOf(*requests[i].family);
        looks.push_back(
            {*requests[i].kind,
             *requests[i].family,
             layout::layOut(
                 entry.view, {.size = {size.width, size.height}, .now = entry.date}, renderer.measuring())});
    }
    return looks;
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
    const auto looks = askForLooks(options, renderer);

    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw Failure(folder.string() + ": " + error.message());
    SheetGrid grid(6);
    std::vector<drawing::SheetItem> sheet;
    for (const Look& look : looks) {
        writePNG(
            folder / (look.kind + "-" + familyName(look.family) + ".png"),
            renderer.draw(look.placement, options.scale));
        sheet.push_back({grid.place(look.family), &look.placement});
    }
    writePNG(folder / "gallery.png", renderer.drawSheet(sheet, grid.size(), options.scale));
    std::cout << looks.size() << " pictures and gallery.png are in "
              << std::filesystem::absolute(folder).string() << '\n';
}

}  // namespace zelto::cli

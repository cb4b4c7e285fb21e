// Any bytes as an extension's reply: whatever passes the host's checks can be laid out and drawn.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "drawing/Renderer.hpp"
#include "layout/Layout.hpp"
#include "ui/Outline.hpp"
#include "widgetkit/ReplyReader.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto;
    using namespace zelto::widgetkit;
    static drawing::Renderer renderer;
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    const auto reply = decodeReply(line);
    // Whatever it remembers, it reads the same.
    static ReplyReader reader;
    for (int i = 0; i < 2; ++i) {
        const auto read = reader.read(line);
        if (read.has_value() != reply.has_value() || (read && *read != *reply)) std::abort();
    }
    if (!reply) return 0;
    const auto show = [](const ui::View& view) {
        const auto displayList =
            layout::layOut(view, {.size = {164, 164}, .now = {800000000}}, renderer.measuring());
        if (layout::dump(displayList).empty() || ui::outline(view).empty()) std::abort();
        renderer.draw(displayList, 0.5);
    };
    if (reply->entry) show(reply->entry->view);
    if (reply->timeline) show(reply->timeline->entries.front().view);
    return 0;
}

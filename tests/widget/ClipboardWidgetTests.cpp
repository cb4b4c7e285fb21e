#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "widget/Widgets/ClipboardWidget.hpp"

namespace zelto::test {

using namespace shared;
using namespace widget;
namespace {

Look clips(
    std::size_t howMany, const std::function<void(WidgetSnapshot::Clip&)>& edit = [](auto&) {}) {
    return sample([&](auto& s) {
        s.clips.clear();
        for (std::size_t i = 0; i < howMany; ++i) {
            WidgetSnapshot::Clip clip{.id = {}, .text = "clip", .imagePath = {}, .date = {}};
            edit(clip);
            s.clips.push_back(clip);
        }
    });
}

TEST(ClipboardWidget, ShowsTheFirstThreeOrSeven) {
    EXPECT_EQ(count(outlineOf("ZeltoClipboard", medium, clips(10)), ".link("), 3);
    EXPECT_EQ(count(outlineOf("ZeltoClipboard", large, clips(10)), ".link("), 7);
    EXPECT_TRUE(
        has(outlineOf("ZeltoClipboard", large, clips(1)),
            ".link(\"zelto://clip?id=00000000-0000-0000-0000-000000000000\")"));
}

TEST(ClipboardWidget, HasANoteWithoutClips) {
    for (const Look& look : {without(), clips(0)})
        EXPECT_EQ(
            texts(outlineOf("ZeltoClipboard", medium, look)),
            (std::vector<std::string>{"Copiados", "toque para copiar", "Copie algo e ele aparece aqui."}));
}

TEST(ClipboardWidget, PutsATextOnOneLine) {
    const auto text = [](std::optional<std::string> value) {
        return ClipboardWidgetView::rowText(
            {.id = {}, .text = std::move(value), .imagePath = {}, .date = {}});
    };
    EXPECT_EQ(text("a\nb"), "a b");
    EXPECT_EQ(text("a\r\n\n b "), "a\r   b ");
    EXPECT_EQ(text({}), "");
}

TEST(ClipboardWidget, PinsOnlyWhatIsPinned) {
    EXPECT_EQ(count(outlineOf("ZeltoClipboard", medium, clips(2)), "pin.fill"), 0);
    EXPECT_EQ(
        count(outlineOf("ZeltoClipboard", medium, clips(2, [](auto& c) { c.pinned = true; })), "pin.fill"),
        2);
}

TEST(ClipboardWidget, FallsBackToTheTextOfAnImageThatCannotBeRead) {
    const Look look = clips(1, [](auto& c) { c.imagePath = "/no/such/image.png"; });
    EXPECT_TRUE(shows(outlineOf("ZeltoClipboard", medium, look), "clip"));
    EXPECT_FALSE(has(outlineOf("ZeltoClipboard", medium, look), "Image "));
}

TEST(ClipboardWidget, ShowsAThumbnail) {
    Look look = clips(1, [](auto& c) { c.imagePath = "/a.png"; });
    look.thumbnail = [](const std::string& path) -> std::optional<ui::node::Image> {
        if (path != "/a.png") return std::nullopt;
        return ui::node::Image{66, 66, {std::vector<std::uint8_t>(66 * 66 * 4)}};
    };
    const std::string text = outlineOf("ZeltoClipboard", medium, look);
    EXPECT_TRUE(
        has(text,
            "Image width=66 height=66 pixels=17424 bytes .scaledToFill() .frame(width=22 height=22)"
            " .clipShape(roundedRectangle(4))"))
        << text;
    EXPECT_TRUE(shows(text, "Imagem"));
}

}  // namespace
}  // namespace zelto::test

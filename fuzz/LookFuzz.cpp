// Any snapshot that an app may legally write, through the extension, the host's check, layout and drawing.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "drawing/Renderer.hpp"
#include "foundation/UTF8.hpp"
#include "layout/Layout.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "ui/Reading.hpp"
#include "widget/Widgets/ZeltoWidgetBundle.hpp"
#include "widgetkit/Service.hpp"

namespace {

using namespace zelto::records;
using namespace zelto::shared;
using namespace zelto::texts;
using namespace zelto::widget;
using namespace zelto::widgetkit;
using namespace zelto;
using Kind = Schema::Kind;

constexpr Date now{816'954'816};

/// Fills a value by its type's schema with what the fuzzer's bytes say; zeros when they are used up.
class Filler {
  public:
    Filler(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

    std::uint8_t byte() {
        if (left_ == 0) return 0;
        --left_;
        return *data_++;
    }
    void fill(const Schema& schema, void* value) {
        switch (schema.kind) {
            case Kind::boolean: *static_cast<bool*>(value) = (byte() & 1) != 0; break;
            case Kind::integer: *static_cast<std::int64_t*>(value) = static_cast<std::int64_t>(word()); break;
            case Kind::unsignedInteger: *static_cast<std::uint64_t*>(value) = word(); break;
            case Kind::real: *static_cast<double*>(value) = real(false); break;
            case Kind::date: static_cast<Date*>(value)->sinceReference = real(true); break;
            case Kind::string: *static_cast<std::string*>(value) = text(); break;
            case Kind::token:
                // Identifiers are as good as they are; a link is whatever is one.
                if (&schema == &schemaOf<URL>() && !schema.parse(value, "https://" + text()))
                    schema.parse(value, "https://example.com");
                break;
            case Kind::optional:
                if ((byte() & 1) != 0) fill(schema.element(), schema.append(value));
                break;
            case Kind::list:
                for (std::size_t count = length(); count > 0 && left_ > 0; --count)
                    fill(schema.element(), schema.append(value));
                break;
            case Kind::record:
                for (const auto& field : schema.fields)
                    // Pictures have a target of their own.
                    if (field.name != "imagePath") fill(field.schema(), field.address(value));
                break;
            // A snapshot has none of these.
            case Kind::choice:
            case Kind::bytes:
            case Kind::enumeration: break;
        }
    }

  private:
    std::uint64_t word() {
        std::uint64_t value = byte();
        if ((value & 0x80) != 0)
            for (int i = 0; i < 7; ++i) value = value << 8 | byte();
        return value;
    }
    double real(bool isDate) {
        switch (byte() % 6) {
            case 0: return byte() / 255.0;
            case 1: return byte() * 10.0;
            case 2: return isDate ? now.sinceReference + (byte() - 128) * 600.0 : -1.0 * byte();
            case 3: return std::ldexp(1.0, byte() * 4);
            default: {
                const std::uint64_t bits = word() << 32 | word();
                double value = 0;
                std::memcpy(&value, &bits, sizeof(value));
                return std::isfinite(value) ? value : 0;
            }
        }
    }
    std::size_t length() {
        const std::uint8_t tells = byte();
        return tells < 240 ? tells % 10 : std::size_t{tells} * 8;
    }
    /// A piece of the input, once or over and over.
    std::string text() {
        const std::size_t size = byte() % 24, times = byte() < 250 ? 1 : 2000;
        std::string piece, out;
        while (piece.size() < size && left_ > 0) piece += static_cast<char>(byte());
        piece.resize(validUTF8Prefix(piece));
        for (std::size_t i = 0; i < times; ++i) out += piece;
        return out;
    }

    const std::uint8_t* data_;
    std::size_t left_;
};

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static drawing::Renderer renderer;
    static std::optional<WidgetSnapshot> snapshot;
    static const ProviderSources sources{
        .now = [] { return now; },
        .live = [] { return placeholderLiveData(); },
        .snapshot = [] { return snapshot; }};
    static const auto widgets = ZeltoWidgetBundle{sources}.body();
    static const Service service(
        widgets, {.environment = {"pt_BR", "America/Sao_Paulo"}, .now = [] { return now; }});

    Filler filler(data, size);
    const auto& widget = widgets[filler.byte() % widgets.size()].info();
    const WidgetFamily family = widget.families[filler.byte() % widget.families.size()];
    WidgetSnapshot filled;
    filler.fill(schemaOf<WidgetSnapshot>(), &filled);
    // A speed that no integer holds is the end of the process, by the fans widget's rule.
    for (auto& fan : filled.fans)
        if (!(std::fabs(fan.actual) < 0x1p62)) fan.actual = 0;
    const auto document = encodeJSON(filled);
    if (!document) fail("a sound snapshot cannot be written");
    auto read = decodeJSON<WidgetSnapshot>(*document);
    if (!read) fail("a written snapshot cannot be read: " + read.fault().text());
    snapshot = *std::move(read);

    const Request request{.id = 1, .request = RequestKind::timeline, .kind = widget.kind, .family = family};
    const auto reply = decodeReply(service.answer(*encodeJSON(request)));
    if (!reply) fail(reply.fault().text());
    if (!reply->timeline) fail(reply->error.value_or("no timeline"));
    const ui::Size room = sizeOf(family);
    const auto displayList = layout::layOut(
        reply->timeline->entries.front().view, {.size = room, .now = now}, renderer.measuring());
    for (const auto& link : displayList.links)
        if (jsonLength(link.name) > ViewBudget().linkNameBytes || link.url.size() > ViewBudget().linkBytes)
            fail("a link beyond the budget");
    renderer.draw(displayList, 0.5);
    return 0;
}

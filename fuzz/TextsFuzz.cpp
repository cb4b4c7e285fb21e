// Any bytes as a zone table, a URL, an instant, an id, a locale, a zone, a wish for a widget.

#include <cstdint>
#include <cstdlib>

#include "Bytes.hpp"
#include "foundation/ISO8601.hpp"
#include "foundation/UUID.hpp"
#include "host/DesktopInterface.hpp"
#include "shared/TimeZoneFlags.hpp"
#include "texts/Environment.hpp"
#include "texts/Formatting.hpp"
#include "texts/TimeZone.hpp"
#include "texts/URL.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto;
    FuzzBytes in{data, size};
    const auto what = in.byte() % 6;
    const std::string text = in.rest();
    if (what == 0) {
        const auto zones = shared::TimeZoneFlags::parse(text);
        for (const auto& [zone, country] : zones) shared::TimeZoneFlags::flag(zone, zones);
    } else if (what == 1) {
        if (const auto url = texts::URL::parse(text)) {
            // What was accepted is plain, and is accepted again.
            if (!texts::URL::parse(url->text())) std::abort();
            for (const char c : url->text())
                if (static_cast<unsigned char>(c) >= 0x80 || c <= ' ') std::abort();
        }
        texts::percentEncodedAlphanumerics(text);
    } else if (what == 2) {
        parseISO8601(text);
    } else if (what == 3) {
        if (const auto id = UUID::parse(text); id && UUID::parse(id->text()) != id) std::abort();
        host::parseAddition(text);
    } else if (what == 4) {
        if (texts::isKnownLocale(text)) texts::Formatting({text, "UTC"}).byteCount(1'000'000);
    } else if (texts::isKnownTimeZone(text)) {
        texts::Formatting({"pt_BR", text}).byteCount(1'000'000);
    }
    return 0;
}

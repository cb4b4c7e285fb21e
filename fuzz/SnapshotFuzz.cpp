// Any bytes as a snapshot: decoding never crashes, and what it accepts survives being written and read again.

#include <cstdint>
#include <cstdlib>

#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto;
    using namespace zelto::records;
    using namespace zelto::shared;
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    const auto snapshot = decodeJSON<WidgetSnapshot>(document);
    if (!snapshot) {
        if (snapshot.fault().reason.empty() || snapshot.fault().path.empty()) std::abort();
        return 0;
    }
    const auto text = encodeJSON(*snapshot);
    if (!text) std::abort();
    const auto again = decodeJSON<WidgetSnapshot>(*text);
    if (!again || encodeJSON(*again) != text) std::abort();
    return 0;
}

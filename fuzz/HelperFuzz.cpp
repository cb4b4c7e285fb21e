// Any bytes as what passes between the app and the helper over the bus.

#include <cstdint>
#include <cstdlib>

#include "Bytes.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/HelperProtocol.hpp"

namespace {

using namespace zelto;

template <class T>
void check(const std::string& text) {
    const auto value = records::decodeJSON<T>(text);
    if (!value) return;
    const auto written = records::encodeJSON(*value);
    if (!written) std::abort();
    const auto again = records::decodeJSON<T>(*written);
    if (!again || records::encodeJSON(*again) != written) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzBytes in{data, size};
    switch (in.byte() % 3) {
        case 0: check<shared::ChargeConfig>(in.rest()); break;
        case 1: check<shared::FanConfig>(in.rest()); break;
        default: check<shared::HelperStatus>(in.rest()); break;
    }
    return 0;
}

// The load by the maker's own library, whose functions are found by their names: no header of it is needed.

#include <dlfcn.h>
#include <memory>

#include "foundation/Handle.hpp"
#include "sources/Graphics.hpp"

namespace zelto::sources {
namespace {

using Library = Handle<void, dlclose>;

struct Utilization {
    unsigned graphics, memory;  // percent
};
constexpr int success = 0;

template <class Function>
Function* function(const Library& library, const char* name) {
    return reinterpret_cast<Function*>(dlsym(library.get(), name));
}

}  // namespace

std::optional<double> vendorLibraryLoad(const std::string& path, const std::string& address) {
    const Library library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library) return std::nullopt;
    const auto begin = function<int()>(library, "nvmlInit_v2");
    const auto end = function<int()>(library, "nvmlShutdown");
    const auto find = function<int(const char*, void**)>(library, "nvmlDeviceGetHandleByPciBusId_v2");
    const auto ask = function<int(void*, Utilization*)>(library, "nvmlDeviceGetUtilizationRates");
    if (!begin || !end || !find || !ask || begin() != success) return std::nullopt;
    void* card = nullptr;
    Utilization utilization{};
    const bool isKnown = find(address.c_str(), &card) == success && ask(card, &utilization) == success;
    // Left open it would keep the card awake.
    end();
    return isKnown ? std::optional(static_cast<double>(utilization.graphics) / 100) : std::nullopt;
}

}  // namespace zelto::sources

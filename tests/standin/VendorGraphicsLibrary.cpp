// A graphics maker's library with one card, as busy as 42 percent, which may be begun once at a time.

#include <cstring>

namespace {

int begun = 0;
constexpr int success = 0, unknown = 6;

}  // namespace

extern "C" {

int nvmlInit_v2() {
    return ++begun == 1 ? success : unknown;
}
int nvmlShutdown() {
    --begun;
    return success;
}
int nvmlDeviceGetHandleByPciBusId_v2(const char* address, void** card) {
    *card = &begun;
    return std::strcmp(address, "0000:01:00.0") == 0 ? success : unknown;
}
int nvmlDeviceGetUtilizationRates(void*, unsigned* utilization) {
    utilization[0] = 42;
    utilization[1] = 7;
    return success;
}
}

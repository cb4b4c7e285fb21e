#include "sources/Processor.hpp"

#include <algorithm>
#include <utility>

namespace zelto::sources {

void ProcessorHistory::add(const system::CPUTicks& ticks) {
    const auto last = std::exchange(last_, ticks);
    if (!last) return;
    const auto busy = [](const system::CPUTicks& each) { return each.user + each.system + each.nice; };
    const double worked = static_cast<double>(busy(ticks)) - static_cast<double>(busy(*last));
    const double all = worked + static_cast<double>(ticks.idle) - static_cast<double>(last->idle);
    if (!(all > 0)) return;
    // The kernel's waiting time, which counts as idle, may step back, and with it the busy share beyond all.
    values_.push_back(std::clamp(worked / all, 0.0, 1.0));
    if (values_.size() > longest) values_.erase(values_.begin());
}

}  // namespace zelto::sources

#pragma once

#include <span>

#include "confinement/Confinement.hpp"

namespace zelto::confinement {

/// Leaves this process only the basic system calls and these. False when the kernel has no filters.
bool restrictCalls(std::span<const AllowedCall> calls);

}  // namespace zelto::confinement

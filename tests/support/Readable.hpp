#pragma once

#include <poll.h>

namespace zelto::test {

/// Whether a descriptor can be read, now or after so long at most.
inline bool canBeRead(int fd, int milliseconds) {
    pollfd waiting{fd, POLLIN, 0};
    return poll(&waiting, 1, milliseconds) == 1;
}

}  // namespace zelto::test

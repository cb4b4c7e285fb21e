#pragma once

namespace zelto::test {

/// Whether the tests, and with them the programs that they run, are built with an address sanitizer.
#ifdef __SANITIZE_ADDRESS__
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

}  // namespace zelto::test

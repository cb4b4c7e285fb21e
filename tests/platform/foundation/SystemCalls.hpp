#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

/// The calls of the C library that these tests watch or answer, in place of its own in this program.
namespace zelto::test::SystemCalls {

/// The paths of what was synced, as they were then.
inline std::vector<std::string> synced;
/// The real user, instead of the process's own; the user database then has one entry, for that user, which
/// takes `entryBytes` to read.
inline std::optional<uid_t> user;
inline std::size_t entryBytes = 0;

}  // namespace zelto::test::SystemCalls

#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "foundation/FileDescriptor.hpp"

namespace zelto::runloop {

/// Notices that folders appear, go away or are replaced by others of their name, and that files change, also
/// when they or their folders go and come again: `fd` is readable when something of that may have happened.
/// What else happens inside of a folder is not of interest.
class PathWatch {
  public:
    PathWatch();

    /// These are the folders and files from now on; each is watched through the nearest folder above it that
    /// exists.
    void follow(std::vector<std::filesystem::path> folders, std::vector<std::filesystem::path> files = {});

    /// False where the system has no more watches to give.
    bool works() const { return static_cast<bool>(events_); }
    int fd() const { return events_.get(); }

    struct Changes {
        bool folders = false;         // one of them is another than at the last call
        std::set<std::string> files;  // that have other contents
    };
    Changes take();

  private:
    /// What something is, whatever it is called: its number, and when it was made, since numbers are given
    /// again; of a file, also how large it is and when it was last written or put in place.
    using Identity = std::optional<std::array<std::uint64_t, 8>>;
    struct Path {
        std::filesystem::path path;
        bool isFile;
        Identity identity = {};
    };
    static Identity identityOf(const Path& path);
    /// Watches what there is now; what came meanwhile is seen in the identities.
    void watchAll();
    void watch(const Path& path);

    FileDescriptor events_;
    std::vector<int> watches_, own_;  // all of them; the folders' own
    std::vector<Path> paths_;
};

}  // namespace zelto::runloop

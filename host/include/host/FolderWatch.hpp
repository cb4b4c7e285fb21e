#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "foundation/FileDescriptor.hpp"

namespace zelto::host {

/// Notices that folders appear, go away or are replaced by others of their name: `fd` is readable when one of
/// them may have. What happens inside of them is not of interest.
class FolderWatch {
  public:
    FolderWatch();

    /// These are the folders from now on; each is watched through the nearest one above it that exists.
    void follow(std::vector<std::filesystem::path> folders);

    int fd() const { return events_.get(); }
    /// Whether one of them is another than at the last call.
    bool take();

  private:
    /// What a folder is, whatever it is called: its number, and when it was made, since numbers are given
    /// again.
    using Identity = std::optional<std::array<std::uint64_t, 5>>;
    struct Folder {
        std::filesystem::path path;
        Identity identity = {};
    };
    static Identity identityOf(const std::filesystem::path& path);
    /// Watches what there is now; what came meanwhile is seen in the identities.
    void watchAll();
    void watch(const std::filesystem::path& folder);

    FileDescriptor events_;
    std::vector<int> watches_, own_;  // all of them; the folders' own
    std::vector<Folder> folders_;
};

}  // namespace zelto::host

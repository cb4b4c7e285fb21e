#pragma once

#include <filesystem>

#include "foundation/PersonalFolders.hpp"

namespace zelto::host {

/// Where the host keeps what it knows.
struct Folders {
    std::filesystem::path configuration;  // the widgets' places
    std::filesystem::path cache;          // their last timelines

    static Folders of(const PersonalFolders& personal);
    static Folders current();
};

}  // namespace zelto::host

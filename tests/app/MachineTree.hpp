#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// A machine's files below a folder of the test's.
class MachineTree {
  public:
    using Files = std::map<std::string, std::string>;
    explicit MachineTree(const Files& files = {}) { add(files); }

    const std::filesystem::path& root() const { return folder_.path(); }
    void add(const Files& files) const {
        for (const auto& [name, text] : files) folder_.write(name, text);
    }
    void link(const std::string& name, const std::string& target) const {
        const auto path = root() / name;
        std::filesystem::create_directories(path.parent_path());
        std::filesystem::create_symlink(target, path);
    }
    void remove(const std::string& name) const { std::filesystem::remove_all(root() / name); }

  private:
    TemporaryFolder folder_;
};

}  // namespace zelto::test

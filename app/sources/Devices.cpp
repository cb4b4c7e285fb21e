#include "Devices.hpp"

#include <system_error>

#include "system/KernelValues.hpp"

namespace zelto::sources {

bool isAsleep(const std::filesystem::path& device) {
    const auto status = system::kernelLine(device / "power/runtime_status");
    return status == "suspended" || status == "suspending";
}

std::optional<std::string> nameOfLink(const std::filesystem::path& link) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(link, error);
    if (error) return std::nullopt;
    return target.filename().string();
}

}  // namespace zelto::sources

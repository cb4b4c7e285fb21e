#pragma once

#include <filesystem>

#include "sources/Fans.hpp"

namespace zelto::agent {

/// The highest speeds that fans were seen at, as they are kept between starts.
sources::FanMemory::Speeds loadFanSpeeds(const std::filesystem::path& file);
void storeFanSpeeds(const std::filesystem::path& file, const sources::FanMemory::Speeds& speeds);

}  // namespace zelto::agent

#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include <sys/types.h>

namespace zelto::sources {

/// The load of the graphics cards, as a fraction from 0 to 1: of several, the busiest. A card that sleeps is
/// left asleep and counts for nothing.
///
///   amdgpu              its own figure, gpu_busy_percent
///   nvidia              the maker's library, opened for each reading and closed again: an open one alone
///                       would keep the card awake
///   i915, xe, others    what each of the person's programs used of the card's engines since the last
///   reading,
///                       which the kernel tells in the programs' fdinfo; so the first one gives nothing
class Graphics {
  public:
    struct Seams {
        /// Where proc and sys are.
        std::filesystem::path root = "/";
        /// Whose programs are looked at.
        uid_t user = 0;
        std::function<std::chrono::nanoseconds()> clock;
        /// The load of the card at a PCI address such as "0000:01:00.0", by the maker's library.
        std::function<std::optional<double>(const std::string& address)> vendorLoad;

        static Seams ofLinux(const std::filesystem::path& root = "/");
    };
    explicit Graphics(Seams seams) : seams_(std::move(seams)) {}

    /// Absent where no card that is awake tells its load.
    std::optional<double> read();

  private:
    /// Of one program's open card: how long it has used an engine, by the engine's name, in one unit.
    struct Use {
        double used = 0;
        /// Of the same unit; absent where the unit is the nanosecond.
        std::optional<double> total;
        double engines = 1;
    };
    /// By card, client and engine.
    using Uses = std::map<std::string, std::map<std::string, std::map<std::string, Use>>>;

    Uses readUses() const;
    void addUses(Uses& uses, const std::filesystem::path& information) const;
    std::optional<double> loadOf(const std::string& address, const Uses& now, double nanoseconds) const;

    Seams seams_;
    Uses before_;
    std::optional<std::chrono::nanoseconds> readAt_;
};

/// By the maker's library, or another that has its functions. Absent where it is missing or refuses.
std::optional<double> vendorLibraryLoad(const std::string& library, const std::string& address);

}  // namespace zelto::sources

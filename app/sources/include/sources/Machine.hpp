#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "shared/WidgetSnapshot.hpp"
#include "sources/Fans.hpp"
#include "sources/Graphics.hpp"
#include "sources/Power.hpp"
#include "system/SystemReadings.hpp"

namespace zelto::sources {

/// What a reading changes in a snapshot.
using Change = std::function<void(shared::WidgetSnapshot&)>;

/// One part of the snapshot that the machine fills.
struct Part {
    std::string name;
    /// On the main thread: what is to be read. The reading may wait for long, and runs on any thread, of one
    /// part never twice at a time; the change is made on the main thread.
    std::function<std::function<Change()>()> begin;
    /// What is so while it cannot be read: nothing that was read before is still true.
    Change absent = [](shared::WidgetSnapshot&) {};
};

/// This machine's parts of the snapshot: memory, graphics, temperature, fans, disk, battery. The processor,
/// whose history needs readings of its own, is not among them.
class Machine {
  public:
    struct Seams {
        std::filesystem::path root = "/";
        system::SystemReadings readings;
        Graphics::Seams graphics;
        std::function<Date()> now = Date::now;
        /// What the power daemon tells; absent where the kernel's files are to be read instead.
        std::function<std::optional<PowerReading>()> daemonPower = [] { return std::nullopt; };
        /// The highest speeds that fans were seen at until now, and where new ones go.
        FanMemory::Speeds fanSpeeds = {};
        std::function<void(const FanMemory::Speeds&)> keepFanSpeeds = [](const auto&) {};

        static Seams ofLinux(const std::filesystem::path& root = "/");
    };
    explicit Machine(Seams seams);
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    /// They live as long as this object.
    std::vector<Part> parts();
    /// What the power daemon told between two readings, for the means of a minute.
    void sawPower(const shared::WidgetSnapshot::Battery& battery);

  private:
    std::function<Change()> beginFans();
    std::function<Change()> beginPower();

    Seams seams_;
    Graphics graphics_;
    std::vector<FanReading> lastFans_;
    std::optional<Date> fansReadAt_;
    FanMemory fanMemory_;
    MinuteMean watts_, minutes_;
};

}  // namespace zelto::sources

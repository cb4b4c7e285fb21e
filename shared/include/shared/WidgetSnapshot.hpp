#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Date.hpp"
#include "foundation/Files.hpp"
#include "foundation/UUID.hpp"
#include "texts/URL.hpp"

namespace zelto::shared {

/// What the main app tells the widgets, as one JSON document (docs/snapshot-format.md). Fractions go from 0
/// to 1, temperatures are in degrees Celsius, sizes in bytes, fan speeds in revolutions per minute.
struct WidgetSnapshot {
    struct Battery {
        std::int64_t percent = 0;
        bool charging = false;
        bool pluggedIn = false;
        std::optional<double> health;
        std::optional<std::int64_t> cycles;
        std::optional<std::int64_t> minutesRemaining;
        std::optional<double> temperature;
        std::optional<double> watts;
        bool limitEnabled = false;
        std::int64_t limit = 80;
        bool chargingPaused = false;
        bool adapterDisabled = false;
    };
    struct Fan {
        double actual = 0;
        double minimum = 0;
        double maximum = 0;
        bool manual = false;
    };
    struct Disk {
        std::string name;
        std::uint64_t total = 0;
        std::uint64_t available = 0;
    };
    /// One item of the clipboard history: a text, or an image by its file's path.
    struct Clip {
        UUID id = UUID::random();
        std::optional<std::string> text;
        std::optional<std::string> imagePath;
        Date date = Date::now();
        bool pinned = false;
    };
    struct Event {
        std::string id;
        std::string title;
        Date start = Date::now();
        Date end = Date::now();
        bool allDay = false;
        std::string colorHex = "#4F8DF7";
        std::optional<std::string> location;
        std::optional<texts::URL> meetingURL;
    };
    struct CareItem {
        std::string title;
        std::string level = "ok";
        std::string summary;
    };

    Date date = Date::now();
    std::optional<Battery> battery;
    double cpu = 0;
    std::vector<double> cpuHistory;
    std::optional<double> gpu;
    double memory = 0;
    std::uint64_t memoryUsed = 0;
    std::uint64_t memoryTotal = 0;
    std::optional<double> chipTemperature;
    std::vector<Fan> fans;
    std::optional<std::string> fanMode;
    std::optional<Disk> disk;
    bool awakeActive = false;
    std::optional<Date> awakeEnd;
    bool eqEnabled = false;
    std::string eqPreset;
    std::optional<std::string> eqOutput;
    std::vector<Clip> clips;
    bool calendarAccess = false;
    std::vector<Event> events;
    std::vector<std::string> clockZones;
    std::optional<Date> careDate;
    std::vector<CareItem> careItems;

    // The file through which the app hands the snapshot over. Both sides find it by the user database, so
    // that a sandboxed process with a home of its own sees the same one.

    static std::filesystem::path realHome(const HomeLookup& lookup = HomeLookup::system());
    /// Library/Application Support/Zelto below the real home.
    static std::filesystem::path folder(const HomeLookup& lookup = HomeLookup::system());
    /// widget.json in `folder`.
    static std::filesystem::path url(const HomeLookup& lookup = HomeLookup::system());

    /// A file that holds more bytes counts as one that cannot be read.
    static constexpr std::size_t largestDocument = std::size_t{16} << 20;

    /// The snapshot in the file; absent when there is none that reads without a fault.
    static std::optional<WidgetSnapshot> load(const HomeLookup& lookup = HomeLookup::system());
    /// The same, but that memory which runs out is no missing snapshot: raises std::bad_alloc.
    static std::optional<WidgetSnapshot> read(const HomeLookup& lookup = HomeLookup::system());
    /// Replaces the file atomically, making its folder where it is missing. A new file and the folder itself
    /// are the owner's alone; what is there keeps its mode. Failures are silent; the old file then stays.
    void save(const HomeLookup& lookup = HomeLookup::system()) const;

    /// A realistic snapshot taken at `now`, for the gallery and for placeholders. Built anew each time: its
    /// clips have fresh identifiers. The widget module defines it, since only the widgets show it.
    static WidgetSnapshot sample(Date now = Date::now());
};

}  // namespace zelto::shared

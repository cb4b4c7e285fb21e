#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The commands of `zelto`, each with what a person can tell it. They print to standard output and raise
// Failure.
namespace zelto::cli {

/// Which extension is asked, and what it is told to look at.
struct ExtensionOptions {
    std::string program;  // the installed one when empty
    std::string home, machine;
    std::string now;  // the current instant for it, ISO 8601
};

struct GalleryOptions {
    ExtensionOptions extension;
    bool json = false;
};
void gallery(const GalleryOptions& options);

struct PreviewOptions {
    std::string kind;
    std::string family;
    std::string snapshot;  // a file, "-" or empty for the user's own
    bool sample = false, noSnapshot = false;
    std::string live;  // a file, "-" or empty for real readings
    bool placeholder = false;
    std::string date, now;
    std::string locale, timeZone;
    std::string format;  // text, json, png, svg or empty
    bool accessibility = false;
    double scale = 2;
    bool corners = false;  // rounded, and clear behind
    std::string output = {};
};
void preview(const PreviewOptions& options);

struct TimelineOptions {
    ExtensionOptions extension;
    std::string kind;
    std::string family;
    bool preview = false, json = false;
};
void timeline(const TimelineOptions& options);

struct RenderOptions {
    ExtensionOptions extension;
    std::vector<std::string> kinds;  // all when empty
    bool preview = false;
    double scale = 2;
    bool corners = false;
    std::string output = "zelto-pictures";
};
void render(const RenderOptions& options);

void snapshotSample();
/// A file, "-" or empty for the user's own.
void snapshotCheck(const std::string& file);

/// Becomes the program that puts the widgets on the desktop, or talks to the widgets that are there; then the
/// status.
int desktop(const std::vector<std::string>& arguments);

struct ReloadOptions {
    std::string kind;  // all when empty
    std::string bus;   // an address; the session bus when empty
};
void reload(const ReloadOptions& options);

struct AppOptions {
    std::string bus;  // an address; the session bus when empty
    bool json = false;
    /// Until it ends; 0 for no end.
    std::int64_t minutes = 0;
    std::string zone, link, option, value;
    std::string home, machine;
};
void awakeOn(const AppOptions& options);
void awakeOff(const AppOptions& options);
void awakeToggle(const AppOptions& options);
void awakeStatus(const AppOptions& options);
void clockList(const AppOptions& options);
void clockAdd(const AppOptions& options);
void clockRemove(const AppOptions& options);
void careShow(const AppOptions& options);
void careRun(const AppOptions& options);
void appStatus(const AppOptions& options);
/// Prints a snapshot made now; needs no agent.
void appSnapshot(const AppOptions& options);
void appOpen(const AppOptions& options);
void appSet(const AppOptions& options);
void appQuit(const AppOptions& options);

/// What the exit statuses of the helper's commands mean, for people.
std::string helperExitTexts();

struct HelperOptions {
    std::string bus;       // an address; the system bus when empty
    double deadline = 10;  // seconds
    bool json = false;
    /// "limit=80": what is to change of the configuration in force.
    std::vector<std::string> changes;
};
void helperStatus(const HelperOptions& options);
void helperSetCharge(const HelperOptions& options);
void helperSetFan(const HelperOptions& options);
void helperReset(const HelperOptions& options);

}  // namespace zelto::cli

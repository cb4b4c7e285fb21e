#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/JSONDecoder.hpp"
#include "records/Record.hpp"
#include "ui/ViewFields.hpp"
#include "widgetkit/ViewBounds.hpp"
#include "widgetkit/WidgetFamily.hpp"

namespace zelto::widgetkit {

// What a host and an extension say to each other, one JSON object a line. docs/extension-protocol.md is the
// prose.

enum class RequestKind : std::uint8_t { bundle, placeholder, snapshot, timeline };

struct Request {
    std::int64_t id = 0;
    RequestKind request = RequestKind::bundle;
    std::optional<std::string> kind = {};
    std::optional<WidgetFamily> family = {};
    std::optional<bool> preview = {};
    std::optional<std::string> locale = {};
    std::optional<std::string> timeZone = {};

    bool operator==(const Request&) const = default;
};

/// What can still be read of a request that cannot be read whole.
struct RequestHead {
    std::optional<std::int64_t> id = {};
};

/// A widget as the gallery shows it.
struct WidgetDescription {
    std::string kind;
    std::string displayName;
    std::string description;
    std::vector<WidgetFamily> families;
    /// Whole paths of the files that it is made from: where one of them changes, a host asks again.
    std::optional<std::vector<std::string>> files = {};
    /// Whether it shows readings of the moment, which a host asks for more often while they are seen.
    std::optional<bool> live = {};

    bool operator==(const WidgetDescription&) const = default;
};

/// An entry whose view is finished.
struct ArchivedEntry {
    Date date;
    ui::View view;

    bool operator==(const ArchivedEntry&) const = default;
};

struct ArchivedTimeline {
    std::vector<ArchivedEntry> entries;
    /// The next timeline may be asked for at or after this instant.
    Date reloadAfter;

    bool operator==(const ArchivedTimeline&) const = default;
};

/// How an extension's process is confined.
struct Confinement {
    /// What the kernel did not offer for it, by name.
    std::vector<std::string> lacks = {};
    /// Folders that the process can only see as they were when it started: where one of them appears or is
    /// replaced, what is asked next is for a new process.
    std::vector<std::string> folders = {};

    bool operator==(const Confinement&) const = default;
};

/// Exactly one of `widgets`, `entry`, `timeline` and `error` is present, and `confinement` beside `widgets`
/// at most. `id` is absent when the request had none that could be read.
struct Reply {
    std::optional<std::int64_t> id = {};
    std::optional<std::vector<WidgetDescription>> widgets = {};
    std::optional<ArchivedEntry> entry = {};
    std::optional<ArchivedTimeline> timeline = {};
    std::optional<std::string> error = {};
    std::optional<Confinement> confinement = {};

    bool operator==(const Reply&) const = default;
};

/// A line of JSON without its end; absent when a view holds a number that is not finite or a text that is not
/// UTF-8.
std::optional<std::string> encodeReply(const Reply& reply);

/// What a host takes of one reply.
struct ReplyBounds {
    std::size_t bytes = std::size_t{2} << 20;
    std::size_t kinds = 64, entries = 256;
    std::size_t files = 16, pathBytes = 4096;  // of one widget
    std::size_t errorBytes = 200;
};

/// Reads a reply and checks it as untrusted input. One whose syntax or fields are wrong is none. One whose
/// contents are out of bounds, here or in ViewBounds.hpp, becomes an error reply to the same request. The
/// text of an error is cut, and its control characters are blanks.
Result<Reply> decodeReply(std::string_view line);

}  // namespace zelto::widgetkit

template <>
inline zelto::widgetkit::ArchivedEntry zelto::records::blank<zelto::widgetkit::ArchivedEntry>() {
    return {.date = {}, .view = records::blank<ui::View>()};
}

ZELTO_NAMES(zelto::widgetkit::RequestKind, "a request", bundle, placeholder, snapshot, timeline);
ZELTO_RECORD(zelto::widgetkit::Request, id, request, kind, family, preview, locale, timeZone);
ZELTO_RECORD(zelto::widgetkit::RequestHead, id);
ZELTO_RECORD(zelto::widgetkit::WidgetDescription, kind, displayName, description, families, files, live);
ZELTO_RECORD(zelto::widgetkit::ArchivedEntry, date, view);
ZELTO_RECORD(zelto::widgetkit::ArchivedTimeline, entries, reloadAfter);
ZELTO_RECORD(zelto::widgetkit::Confinement, lacks, folders);
ZELTO_RECORD(zelto::widgetkit::Reply, id, widgets, entry, timeline, error, confinement);

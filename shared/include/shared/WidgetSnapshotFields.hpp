#pragma once

// The field tables of the snapshot: its JSON keys and their order.

#include "records/Record.hpp"
#include "shared/WidgetSnapshot.hpp"

// Of these there are many, and their no-argument initialiser draws random identifiers or reads the clock
// twice.
template <>
inline zelto::shared::WidgetSnapshot::Clip zelto::records::blank<zelto::shared::WidgetSnapshot::Clip>() {
    return {.id = UUID::nil(), .text = {}, .imagePath = {}, .date = {}, .pinned = false};
}
template <>
inline zelto::shared::WidgetSnapshot::Event zelto::records::blank<zelto::shared::WidgetSnapshot::Event>() {
    return {
        .id = {},
        .title = {},
        .start = {},
        .end = {},
        .allDay = false,
        .colorHex = {},
        .location = {},
        .meetingURL = {}};
}

ZELTO_RECORD(
    zelto::shared::WidgetSnapshot::Battery, percent, charging, pluggedIn, health, cycles, minutesRemaining,
    temperature, watts, limitEnabled, limit, chargingPaused, adapterDisabled);
ZELTO_RECORD(zelto::shared::WidgetSnapshot::Fan, actual, minimum, maximum, manual);
ZELTO_RECORD(zelto::shared::WidgetSnapshot::Disk, name, total, available);
ZELTO_RECORD(zelto::shared::WidgetSnapshot::Clip, id, text, imagePath, date, pinned);
ZELTO_RECORD(
    zelto::shared::WidgetSnapshot::Event, id, title, start, end, allDay, colorHex, location, meetingURL);
ZELTO_RECORD(zelto::shared::WidgetSnapshot::CareItem, title, level, summary);
ZELTO_RECORD(
    zelto::shared::WidgetSnapshot, date, battery, cpu, cpuHistory, gpu, memory, memoryUsed, memoryTotal,
    chipTemperature, fans, fanMode, disk, awakeActive, awakeEnd, eqEnabled, eqPreset, eqOutput, clips,
    calendarAccess, events, clockZones, careDate, careItems);

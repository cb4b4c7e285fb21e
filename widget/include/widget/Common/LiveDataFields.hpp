#pragma once

// The field table of the live readings, for tools that read them from a file.

#include "records/Record.hpp"
#include "widget/Common/LiveData.hpp"

ZELTO_RECORD(zelto::widget::LiveData, battery, charging, cpu, memory, disk, diskFree, diskTotal);

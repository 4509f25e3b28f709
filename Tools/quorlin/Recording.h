// Reads all of a machine that a record holds, through the hardware library and the machine in use.
#pragma once

#include <functional>
#include <string_view>

#include "Packages/FERROXExternal/FERROXLib/RecordedHardware.h"

struct RecordingOptions_t {
    bool withLicenceKeys = false;
    // Is called with what is read next.
    std::function<void(std::string_view what)> progress;
};
// Only reads. What can't be read is in the facts. Sets `files` of the facts to those that were recorded, without
// hashes.
RecordedHardware_t ReadHardware(const RecordingOptions_t& options);

// Reads all of a machine that a record holds, through the hardware library and the machine in use.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "Packages/Analysis/Redact.h"
#include "Packages/FERROXExternal/FERROXLib/RecordedHardware.h"

struct RecordingOptions_t {
    bool withLicenceKeys = false;
    // Is called with what is read next.
    std::function<void(std::string_view what)> progress;
};
// Only reads. What can't be read is in the facts. Sets `files` of the facts to those that were recorded, without
// hashes.
RecordedHardware_t ReadHardware(const RecordingOptions_t& options);

// Redacts the machine's table and what was read of it. False, with a line on standard error, if the system can't.
bool RedactHardware(std::span<uint8_t> table, const RedactOptions_t& options, const std::vector<uint8_t>& key,
                    RecordedHardware_t& hardware);

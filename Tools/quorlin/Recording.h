// Reads all of a machine that a record holds, through the hardware library and the machine in use.
#pragma once

#include <functional>
#include <string_view>

#include "Packages/FERROXExternal/FERROXLib/RecordedHardware.h"

// A model-specific register that is recorded.
struct RegisterRow_t {
    uint32_t number;
    // The makers whose processors have it. All but those of any maker are left out under a hypervisor, which may lack
    // them.
    enum Maker_t : uint8_t { kAny, kIntel, kAmd } maker;
    char name[29];
};
std::span<const RegisterRow_t> RecordedRegisters();

struct RecordingOptions_t {
    bool withLicenceKeys = false;
    // Is called with what is read next.
    std::function<void(std::string_view what)> progress;
};
// Only reads. What can't be read is in the facts. Sets `files` of the facts to those that were recorded, without
// hashes.
RecordedHardware_t ReadHardware(const RecordingOptions_t& options);

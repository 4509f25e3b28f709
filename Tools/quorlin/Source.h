// Which tables a command works on: the options that name them, and what was given.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/ImageFile.h"
#include "Tools/quorlin/CommandLine.h"

struct Source_t {
    std::vector<std::string> images;
    std::string imageList;
    bool sample = false, sampleIfNone = false, verbose = false, recover = false;
    bool driver = false, noDriver = false;
    std::string replay, method, form, version, signatureText, color, trace;

    // Set by Check.
    TableForm_t as = TableForm_t::kAny;
    uint8_t major = 3, minor = 0;  // of a bare table
    uint32_t signature = 0;        // of an image's processor

    // The options that fill this: for a command that takes one table, and for a command that takes many.
    std::vector<Option_t> OptionsForOne();
    std::vector<Option_t> OptionsForMany();
    // Checks the options as a whole, and begins the trace. Throws BadUsage_t.
    void Check();
    // The same for a command that takes one table.
    void CheckOne();

    bool IsFleet() const { return !imageList.empty() || images.size() > 1; }
    // The only access method reads this machine's memory.
    bool ReadsMemory() const { return method == "scan" || method == "efi"; }
};

// The --replay option; it fills `folder`.
Option_t ReplayOption(std::string* folder);

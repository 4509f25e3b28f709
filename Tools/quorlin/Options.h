// What the user asked for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum class Source_t { kThisMachine, kThisMachineOrSample, kImageFile, kSample };
enum class Format_t { kText, kLines };

struct Options_t {
    Source_t source = Source_t::kThisMachine;
    std::string image;             // the file, for kImageFile
    std::vector<uint8_t> types;    // empty: the sweep
    uint32_t signature = 0;        // of an image's processor
    uint8_t major = 3, minor = 0;  // SMBIOS version of a bare table
    Format_t format = Format_t::kText;
};

// Fills `options` from the command line. False when the program is to end here with `exitCode`: help or version were
// asked for and printed, or the usage was bad and a line said so.
bool ParseOptions(const std::vector<std::string>& arguments, Options_t* options, int* exitCode);

// A system for the fuzzers of the program: files in memory, and standard streams that are captured. No file is written,
// and the driver can't be started.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Fuzz/Fuzz.h"
#include "Tools/quorlin/Commands.h"

struct Platform_t {
    std::map<std::string, std::string> files;  // by path; a folder exists if a file in it does
    size_t terminalWidth = 0;                  // 0: standard output isn't a terminal
    std::string output, errors;
    std::vector<std::pair<std::string, std::string>> folder;  // that was made: the names and bytes of its files
};
extern Platform_t platform;

// Runs the program and returns its exit code. `platform` then contains what it wrote to its standard streams.
int RunOnPlatform(const Arguments_t& arguments);
// Closes what the last run left open, as a run leaves its table to the next one.
void EndRuns();

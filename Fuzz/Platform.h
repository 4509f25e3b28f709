// What the fuzzers of the program give it in place of its system: files, and standard streams that are kept. Nothing is
// written, and the driver can't be started.
#pragma once

#include <map>
#include <string>

#include "Fuzz/Fuzz.h"
#include "Tools/quorlin/Commands.h"

struct Platform_t {
    std::map<std::string, std::string> files;  // by path; a folder is there when a file in it is
    size_t terminalWidth = 0;                  // 0: standard output is no terminal
    std::string output, errors;
};
extern Platform_t platform;

// Runs the program, and gives its exit code. What it wrote to its standard streams is in `platform`.
int RunOnPlatform(const Arguments_t& arguments);
// Closes what the last run left open.
void EndRuns();

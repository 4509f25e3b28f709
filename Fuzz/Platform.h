// What the fuzzers of the program give it in place of its system: files, and a standard output that is kept. Nothing is
// written, and the driver can't be started.
#pragma once

#include <map>
#include <string>

#include "Fuzz/Fuzz.h"
#include "Tools/quorlin/Commands.h"

struct Platform_t {
    std::map<std::string, std::string> files;  // by path; a folder is there when a file in it is
    size_t terminalWidth = 0;                  // 0: standard output is no terminal
    std::string output;
};
extern Platform_t platform;

// Runs the program, and gives its exit code. What it wrote to standard output is in `platform`.
int RunOnPlatform(const Arguments_t& arguments);
// Closes what the last run left open.
void EndRuns();

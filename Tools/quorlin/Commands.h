// The commands, each in the file of its name: what its help says, and what runs it, which gives the exit code.
#pragma once

#include "Tools/quorlin/CommandLine.h"

extern const Usage_t kShowUsage, kTypesUsage, kFindUsage, kGetUsage, kDiffUsage, kDumpUsage, kRawUsage, kCheckUsage,
    kHardwareUsage;
int RunShow(const Arguments_t& arguments);
int RunTypes(const Arguments_t& arguments);
int RunFind(const Arguments_t& arguments);
int RunGet(const Arguments_t& arguments);
int RunDiff(const Arguments_t& arguments);
int RunDump(const Arguments_t& arguments);
int RunRaw(const Arguments_t& arguments);
int RunCheck(const Arguments_t& arguments);
int RunHardware(const Arguments_t& arguments);

// Runs the command that the first argument names, or show; gives the program's exit code.
int RunProgram(Arguments_t arguments);

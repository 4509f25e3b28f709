// The trace of a whole run.
#pragma once

#include <string>

#include "Tools/quorlin/CommandLine.h"

inline constexpr char kTraceHelp[] = "Trace the libraries' work, as a debug.conf with this line would";

// Takes the settings from `spec`, if it isn't empty, and begins the run's trace. As ParseCommandLine when it is bad.
bool BeginTrace(const Usage_t& usage, const std::string& spec, int* exitCode);
// For --verbose: says on standard error why a debug.conf isn't obeyed, if there is one and it isn't. After BeginTrace.
void SayRefusedConfig();
// Does nothing for a run that has begun none.
void EndTrace();

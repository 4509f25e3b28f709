// The trace of a whole run.
#pragma once

#include <string>

#include "Tools/quorlin/CommandLine.h"

Option_t TraceOption(std::string* spec);
// Takes the settings from `spec`, unless it is empty, and begins the run's trace. Throws BadUsage_t.
void BeginTrace(const std::string& spec);
// For --verbose: says on standard error why a debug.conf is ignored, if one is. Call after BeginTrace.
void SayRefusedConfig();
// Does nothing if no trace was begun.
void EndTrace();

// The report of an unhandled exception.
#pragma once

#include "Packages/OS/CrashFilter.h"

// Installs the report as this process's crash filter. A second call changes nothing.
void InstallCrashReport();

// The crash filter: prints the cause on standard output, as plain text for a person who reads the console, and lets the
// system continue with its own handling.
// Result   always 0
// Threads  runs on the thread that faulted; allocates nothing, takes no lock of ours and keeps no state
int32_t ReportUnhandledException(const Fault_t& fault);

// The report of an exception that nobody handles.
#pragma once

#include "Packages/OS/CrashFilter.h"

// Makes the report this process's answer to an unhandled exception. A second call changes nothing.
void InstallCrashReport();

// The report itself, a crash filter: prints what happened on standard output, as plain text for a person who reads the
// console, and lets the system go on with its own handling.
// Result   always 0
// Threads  runs on the thread that faulted; allocates nothing, takes no lock of ours and keeps no state
int32_t ReportUnhandledException(const Fault_t& fault);

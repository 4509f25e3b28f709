// The report of an exception that nobody handles.
#pragma once

#include "Packages/Platform/Platform.h"

// Makes the report this process's answer to an unhandled exception. A second call changes nothing.
void InstallCrashReport();

// The report itself, a filter for SetUnhandledExceptionFilter: prints what happened on standard output, as plain text
// for a person who reads the console, and lets the system go on with its own handling.
// pointers  the platform's record; its exception record tells the code, the address, and for a bad access what was
//           tried and where
// Result    always EXCEPTION_CONTINUE_SEARCH
// Threads   runs on the thread that faulted, takes no lock of ours and keeps no state
LONG WINAPI ReportUnhandledException(EXCEPTION_POINTERS* pointers);

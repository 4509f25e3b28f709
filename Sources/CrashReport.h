// The report of an exception that nobody handles.
#pragma once

// Makes the report this process's answer to an unhandled exception. A second call changes nothing.
void InstallCrashReport();

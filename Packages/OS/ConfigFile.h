// Whether this process may obey a configuration file.
#pragma once

#include <cstdio>

// Opens a regular file for reading. Null if there is none, if it can't be opened, or if the process is privileged and
// another user could have written the file: a configuration names files that are then opened for writing. A pipe or
// a folder of that name counts as no file. The stream is the caller's to close.
FILE* OpenConfigFile(const char* path);

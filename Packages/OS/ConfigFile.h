// The files of tracing: which configuration a process obeys, and where it may write what the configuration asks for.
#pragma once

#include <cstdio>

// Whether the process has rights that the user who started it lacks, as a set-user-ID program has. It takes no names
// of files from him.
bool HasForeignRights();

// Opens a configuration file for reading, if it is a plain file that this process may obey: a configuration names files
// that are then written to. The system or the effective user owns the file and each folder on the way to it, and nobody
// else can write it, add files to its folder, or rename a folder. Null if there is no such file; `*refusal` then is
// null where there is no file, and says in words what is wrong where there is one. A process with foreign rights obeys
// none. The stream is the caller's to close.
std::FILE* OpenConfigFile(const char* path, const char** refusal);

// Opens a log for writing: a new file that is its owner's alone, or a plain one, which is emptied. No link is followed.
// With `deviceToo`, as a user may ask for, also a device, a pipe, or a stream of this process by the name that the
// system gives it. Null on failure. The stream is the caller's to close.
std::FILE* OpenLogFile(const char* path, bool deviceToo);

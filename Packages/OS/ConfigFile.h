// Files of the trace library: the configuration that a process accepts, and the logs that it may write.
#pragma once

#include <cstdio>

// Whether the process has rights that the user who started it lacks, as a set-user-ID program has. Such a process must
// take no file names from the user.
bool HasForeignRights();

// Opens a configuration file for reading, if only the system or the effective user could have written it: a
// configuration names files that are then written to. It must be a plain file. The system or the effective user must
// own it and each folder above it, and nobody else may be able to write it, add files to its folder, or rename a folder
// above. A process with foreign rights accepts no file. Returns a stream, which the caller closes; or null, and sets
// `*refusal` to null if there is no file, otherwise to a constant text that says what is wrong with it.
std::FILE* OpenConfigFile(const char* path, const char** refusal);

// Opens a log for writing: a new file that only its owner can read and write, or an existing plain file, which it
// empties. Follows no links. With `deviceToo` also opens a device, a pipe, or a stream of this process by the system's
// name for it, such as /dev/stderr. Returns null on failure. The caller closes the stream.
std::FILE* OpenLogFile(const char* path, bool deviceToo);

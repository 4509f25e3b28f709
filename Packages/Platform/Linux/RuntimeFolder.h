// The folder that holds what this provider shares between the processes of one user: /run/quorlin for root, for others
// /run/user/UID/quorlin, or /dev/shm/quorlin-UID where the system has no such folder. No other user can write there.
#pragma once

#include <cstddef>

// A descriptor of the folder, made if need be, or -1 where it can't be had safely. The caller closes it.
int OpenRuntimeFolder();

// The same for the folder at `path`: -1 unless it is a folder of the effective user's own, not a link, that nobody else
// may read, write or enter.
int OpenPrivateFolder(const char* path);

// A descriptor of the regular file `name` in `folder`, made empty if need be, for reading and writing; -1 unless it is
// the effective user's own and nobody else may write it. The caller closes it.
int OpenPrivateFile(int folder, const char* name);

// flock and posix_fallocate that a signal doesn't break off. The second gives 0 or an error number; it keeps a write
// into the file from failing by a signal where the file system is full.
bool LockFile(int file, int kind);
int ReserveSpace(int file, size_t size);

// Recursive locks with names. On Windows all processes of the session share the lock of a name; elsewhere a lock
// belongs to this process.
#pragma once

struct NamedLock_t;

// Opens the lock with this name, or creates it. An empty name creates a new lock. Returns a reference, to be released
// with os_CloseNamedLock; null on failure.
NamedLock_t* os_OpenNamedLock(const char* name);
void os_CloseNamedLock(NamedLock_t* lock);

// Waits until the calling thread holds the lock. The thread may hold it already. Takes over a lock whose holder died.
// Returns false if the system refuses.
bool os_TakeNamedLock(NamedLock_t* lock);
// Undoes one os_TakeNamedLock. Must be called on the same thread.
void os_ReleaseNamedLock(NamedLock_t* lock);

// Recursive locks that are found by a name. On Windows a name holds for all processes of the session; elsewhere a lock
// is this process's own, as nothing is shared between processes there.
#pragma once

struct NamedLock_t;

// The lock of that name, made if there is none; an empty name gives a lock of its own. The caller owns the reference,
// and gives it to os_CloseNamedLock. Null on failure.
NamedLock_t* os_OpenNamedLock(const char* name);
void os_CloseNamedLock(NamedLock_t* lock);

// Waits until the calling thread holds the lock, which it may hold already. A lock whose holder died is taken over.
// False when the system refuses.
bool os_TakeNamedLock(NamedLock_t* lock);
// Gives back what os_TakeNamedLock took, on the same thread.
void os_ReleaseNamedLock(NamedLock_t* lock);

#include "Packages/OS/NamedLock.h"

#include "Packages/OS/Windows/Windows.h"

// A NamedLock_t* is the handle of a mutex.
static HANDLE MutexOf(NamedLock_t* lock) { return static_cast<HANDLE>(static_cast<void*>(lock)); }

NamedLock_t* os_OpenNamedLock(const char* name) {
    return static_cast<NamedLock_t*>(static_cast<void*>(CreateMutexA(nullptr, FALSE, name)));
}

void os_CloseNamedLock(NamedLock_t* lock) { CloseHandle(MutexOf(lock)); }

bool os_TakeNamedLock(NamedLock_t* lock) {
    const DWORD waited = WaitForSingleObject(MutexOf(lock), INFINITE);
    return waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
}

void os_ReleaseNamedLock(NamedLock_t* lock) { ReleaseMutex(MutexOf(lock)); }

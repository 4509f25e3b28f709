// The last error of a call that failed, by its result; 0 for one that succeeded.
#pragma once

#include "Packages/Platform/Platform.h"

inline DWORD ErrorOf(BOOL done) { return done ? 0 : GetLastError(); }
inline DWORD ErrorOf(const void* handle) {
    return handle == nullptr || handle == INVALID_HANDLE_VALUE ? GetLastError() : 0;
}

// Calls of the provider in the short forms that its tests use.
#pragma once

#include "Packages/Platform/Platform.h"

// The last error of a call that failed, by its result; 0 for one that succeeded.
inline DWORD ErrorOf(BOOL done) { return done ? 0 : GetLastError(); }
inline DWORD ErrorOf(const void* handle) {
    return handle == nullptr || handle == INVALID_HANDLE_VALUE ? GetLastError() : 0;
}

inline SC_HANDLE CreateDriver(SC_HANDLE manager, const char* name, const char* path = "/dev/null",
                              DWORD startType = SERVICE_DEMAND_START, const char* group = nullptr) {
    return CreateServiceA(manager, name, nullptr, SERVICE_ALL_ACCESS, SERVICE_KERNEL_DRIVER, startType,
                          SERVICE_ERROR_NORMAL, path, group, nullptr, nullptr, nullptr, nullptr);
}
inline void RemoveDriver(SC_HANDLE service) {
    DeleteService(service);
    CloseServiceHandle(service);
}

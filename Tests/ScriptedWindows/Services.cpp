// Stand-ins: service control and the registry.
#include <algorithm>
#include <cstring>

#include "StandIn.h"  // this platform's
#include "Tests/ScriptedWindows/ScriptedWindows.h"

static SC_HANDLE AddService(const char* kind) {
    return static_cast<SC_HANDLE>(static_cast<void*>(Machine().Add(kind)));
}

STAND_IN(SC_HANDLE, OpenSCManagerA, (LPCSTR, LPCSTR, DWORD)) {
    return Machine().Call("OpenSCManagerA") ? AddService("manager") : nullptr;
}

STAND_IN(SC_HANDLE, OpenServiceA, (SC_HANDLE manager, LPCSTR name, DWORD)) {
    if (!Machine().Call("OpenServiceA", manager, "manager")) return nullptr;
    if (!Machine().service.exists || std::strcmp(name, "Ravelink") != 0) {
        return Fail(ERROR_SERVICE_DOES_NOT_EXIST), nullptr;
    }
    return AddService("service");
}

STAND_IN(SC_HANDLE, CreateServiceA,
         (SC_HANDLE manager, LPCSTR name, LPCSTR displayName, DWORD, DWORD type, DWORD startType, DWORD errorControl,
          LPCSTR path, LPCSTR group, LPDWORD, LPCSTR, LPCSTR, LPCSTR)) {
    if (!Machine().Call("CreateServiceA", manager, "manager")) return nullptr;
    if (std::strcmp(name, "Ravelink") != 0 || std::strcmp(displayName, name) != 0 || type != SERVICE_KERNEL_DRIVER ||
        errorControl != SERVICE_ERROR_NORMAL || std::strcmp(group, "Extended Base") != 0) {
        return Fail(ERROR_INVALID_PARAMETER), nullptr;
    }
    ScriptedService_t& service = Machine().service;
    if (service.exists) return Fail(ERROR_SERVICE_EXISTS), nullptr;
    service.exists = true;
    service.path = path;
    service.startType = startType;
    service.state = SERVICE_STOPPED;
    return AddService("service");
}

STAND_IN(BOOL, StartServiceA, (SC_HANDLE handle, DWORD, LPCSTR*)) {
    if (!Machine().Call("StartServiceA", handle, "service")) return FALSE;
    ScriptedService_t& service = Machine().service;
    if (!service.startErrors.empty()) {
        const DWORD error = service.startErrors.front();
        service.startErrors.pop_front();
        return Fail(error);
    }
    if (service.state == SERVICE_RUNNING) return Fail(ERROR_SERVICE_ALREADY_RUNNING);
    if (service.path != kDriverFile) return Fail(ERROR_FILE_NOT_FOUND);
    service.state = SERVICE_RUNNING;
    return TRUE;
}

STAND_IN(BOOL, ControlService, (SC_HANDLE handle, DWORD control, LPSERVICE_STATUS)) {
    if (!Machine().Call("ControlService", handle, "service")) return FALSE;
    Machine().controls.push_back(control);
    Machine().service.state = SERVICE_STOPPED;
    return TRUE;
}

STAND_IN(BOOL, QueryServiceStatusEx, (SC_HANDLE handle, SC_STATUS_TYPE, LPBYTE buffer, DWORD size, LPDWORD needed)) {
    if (!Machine().Call("QueryServiceStatusEx", handle, "service")) return FALSE;
    *needed = sizeof(SERVICE_STATUS_PROCESS);
    if (size < sizeof(SERVICE_STATUS_PROCESS)) return Fail(ERROR_INSUFFICIENT_BUFFER);
    ScriptedService_t& service = Machine().service;
    if (!service.nextStates.empty()) {
        service.state = service.nextStates.front();
        service.nextStates.pop_front();
    }
    SERVICE_STATUS_PROCESS status = {};
    status.dwServiceType = SERVICE_KERNEL_DRIVER;
    status.dwCurrentState = service.state;
    status.dwWaitHint = service.waitHint;
    std::memcpy(buffer, &status, sizeof(status));
    return TRUE;
}

STAND_IN(BOOL, QueryServiceConfigA, (SC_HANDLE handle, LPQUERY_SERVICE_CONFIGA config, DWORD size, LPDWORD needed)) {
    if (!Machine().Call("QueryServiceConfigA", handle, "service")) return FALSE;
    // In a real answer the texts follow the record.
    *needed = sizeof(QUERY_SERVICE_CONFIGA) + 120;
    if (config == nullptr || size < *needed) return Fail(ERROR_INSUFFICIENT_BUFFER);
    *config = {};
    config->dwServiceType = SERVICE_KERNEL_DRIVER;
    config->dwStartType = Machine().service.startType;
    return TRUE;
}

STAND_IN(BOOL, DeleteService, (SC_HANDLE handle)) {
    if (!Machine().Call("DeleteService", handle, "service")) return FALSE;
    Machine().service.exists = false;
    return TRUE;
}

STAND_IN(BOOL, CloseServiceHandle, (SC_HANDLE handle)) {
    if (Machine().Remove(handle)) return TRUE;
    ++Machine().badCloses;
    return Fail(ERROR_INVALID_HANDLE);
}

// ---- Registry

static LSTATUS Code(DWORD error) { return static_cast<LSTATUS>(error); }

STAND_IN(LSTATUS, RegOpenKeyExA, (HKEY root, LPCSTR path, DWORD, REGSAM, PHKEY key)) {
    if (!Machine().Call("RegOpenKeyExA")) return Code(ERROR_ACCESS_DENIED);
    if (root != HKEY_LOCAL_MACHINE || std::strcmp(path, "SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink") != 0) {
        return Code(ERROR_FILE_NOT_FOUND);
    }
    *key = static_cast<HKEY>(static_cast<void*>(Machine().Add("key")));
    return Code(ERROR_SUCCESS);
}

STAND_IN(LSTATUS, RegQueryValueExA, (HKEY key, LPCSTR name, LPDWORD, LPDWORD, LPBYTE data, LPDWORD size)) {
    if (!Machine().Call("RegQueryValueExA")) return Code(ERROR_ACCESS_DENIED);
    const auto& path = Machine().registryPath;
    if (!Machine().IsOpen(key, "key")) return Code(ERROR_INVALID_HANDLE);
    if (!path || std::strcmp(name, "FERROXDrvPath") != 0) return Code(ERROR_FILE_NOT_FOUND);
    // The registry may store a value as long as the buffer without its NUL.
    const size_t stored = path->size() == *size ? path->size() : path->size() + 1;
    if (stored > *size) return Code(ERROR_MORE_DATA);
    std::memcpy(data, path->c_str(), stored);
    *size = static_cast<DWORD>(stored);
    return Code(ERROR_SUCCESS);
}

STAND_IN(LSTATUS, RegCloseKey, (HKEY key)) {
    if (!Machine().Remove(key)) ++Machine().badCloses;
    return Code(Machine().Call("RegCloseKey") ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}

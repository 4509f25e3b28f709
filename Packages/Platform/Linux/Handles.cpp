// Handles and the last error.
#include "Packages/Platform/Linux/Handles.h"

#include <cerrno>

static thread_local DWORD lastError = ERROR_SUCCESS;

DWORD GetLastError() { return lastError; }

void SetLastError(DWORD error) { lastError = error; }

DWORD ErrorFromErrno(int errorNumber) {
    switch (errorNumber) {
        case 0: return ERROR_SUCCESS;
        case ENOENT: return ERROR_FILE_NOT_FOUND;
        case ENOTDIR: return ERROR_PATH_NOT_FOUND;
        case EMFILE:
        case ENFILE: return ERROR_TOO_MANY_OPEN_FILES;
        case EACCES:
        case EPERM:
        case EROFS: return ERROR_ACCESS_DENIED;
        case EBADF: return ERROR_INVALID_HANDLE;
        case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
        case EEXIST: return ERROR_ALREADY_EXISTS;
        case ENOSPC: return ERROR_DISK_FULL;
        case EINVAL: return ERROR_INVALID_PARAMETER;
        case ENOSYS:
        case EOPNOTSUPP: return ERROR_NOT_SUPPORTED;
        default: return ERROR_GEN_FAILURE;
    }
}

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

BOOL FailWithErrno() { return Fail(ErrorFromErrno(errno)); }

DWORD ClObject::Wait(DWORD) {
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
}

BOOL CloseHandle(HANDLE handle) {
    if (handle == kCurrentThread) return TRUE;
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return Fail(ERROR_INVALID_HANDLE);
    delete static_cast<ClObject*>(handle);
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    ClObject* object = ObjectOf<ClObject>(handle);
    return object == nullptr ? WAIT_FAILED : object->Wait(milliseconds);
}

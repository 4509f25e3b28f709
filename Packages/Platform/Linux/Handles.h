// What a handle of this provider points to, and how the provider reports errors.
#pragma once

#include "Packages/Platform/Linux/Windows.h"

// A handle is a pointer to one of these. CloseHandle deletes it, and the kind's destructor releases what it holds.
class ClObject {
  public:
    ClObject() = default;
    ClObject(const ClObject&) = delete;
    ClObject& operator=(const ClObject&) = delete;
    virtual ~ClObject() = default;
    // WaitForSingleObject's answer for this object; kinds that can't be waited for keep this one.
    virtual DWORD Wait(DWORD milliseconds);
};

// Stands for the calling thread, whichever it is. No object is behind it, and closing it does nothing.
inline const HANDLE kCurrentThread = reinterpret_cast<HANDLE>(static_cast<intptr_t>(-2));

// The object behind `handle` if it is one of that kind; else nullptr, with the last error set.
template <typename Kind>
Kind* ObjectOf(HANDLE handle) {
    Kind* object = nullptr;
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE && handle != kCurrentThread)
        object = dynamic_cast<Kind*>(static_cast<ClObject*>(handle));
    if (object == nullptr) SetLastError(ERROR_INVALID_HANDLE);
    return object;
}

// The Windows error that says what `errorNumber` says.
DWORD ErrorFromErrno(int errorNumber);
// Sets the last error, and gives FALSE, so that a failing function can return it.
BOOL Fail(DWORD error);
BOOL FailWithErrno();

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

// The Windows error that says what `errorNumber` says.
DWORD ErrorFromErrno(int errorNumber);
// Sets the last error, and gives FALSE, so that a failing function can return it.
BOOL Fail(DWORD error);
BOOL FailWithErrno();

// How a stand-in takes a system function's place when a test program is linked: callers go through the pointer that the
// import library would define, so the stand-in defines that pointer.
//
//     STAND_IN(BOOL, ReleaseMutex, (HANDLE mutex)) { ... }
#pragma once

#include "Packages/OS/Windows/Windows.h"

#define STAND_IN(result, name, parameters)                   \
    static result WINAPI Scripted##name parameters;          \
    extern "C" {                                             \
    extern decltype(&Scripted##name) __imp_##name;           \
    decltype(&Scripted##name) __imp_##name = Scripted##name; \
    }                                                        \
    static result WINAPI Scripted##name parameters

// The system function that a stand-in replaces, for calls by the language's runtime.
template <typename Function>
Function* SystemFunction(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), name)));
}

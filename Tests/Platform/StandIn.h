// How a stand-in takes a system function's place when a test program is linked.
//
//     STAND_IN(BOOL, ReleaseMutex, (HANDLE mutex)) { ... }
//
// Off Windows it is the function itself, and the provider isn't linked. On Windows callers go through the pointer that
// the import library would define, so the stand-in defines that pointer.
#pragma once

#include "Packages/Platform/Platform.h"

#ifdef _WIN32
#define STAND_IN(result, name, parameters)                   \
    static result WINAPI Scripted##name parameters;          \
    extern "C" {                                             \
    extern decltype(&Scripted##name) __imp_##name;           \
    decltype(&Scripted##name) __imp_##name = Scripted##name; \
    }                                                        \
    static result WINAPI Scripted##name parameters
#else
#define STAND_IN(result, name, parameters) extern "C" result name parameters
#endif

// The system's own function behind a stand-in, for calls that the language's runtime makes; null where the runtime
// makes none.
template <typename Function>
Function* SystemFunction([[maybe_unused]] const char* name) {
#ifdef _WIN32
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), name)));
#else
    return nullptr;
#endif
}

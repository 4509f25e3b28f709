// Stand-ins: handles, the named mutex, the shared section and the clock.
#include <cstring>

#include "StandIn.h"  // the platform's own
#include "Tests/Platform/ScriptedPlatform.h"

STAND_IN(BOOL, CloseHandle, (HANDLE handle)) {
    if (Platform().IsOpen(handle, "file") && !Platform().Call("CloseHandle file")) return FALSE;
    if (Platform().Remove(handle)) return TRUE;
    if (auto* system = SystemFunction<decltype(CloseHandle)>("CloseHandle")) return system(handle);
    ++Platform().badCloses;
    return Fail(ERROR_INVALID_HANDLE);
}

// ---- Mutex

STAND_IN(HANDLE, CreateMutexA, (LPSECURITY_ATTRIBUTES, BOOL, LPCSTR name)) {
    return Platform().Call("CreateMutexA") && name != nullptr ? Platform().Add("mutex") : nullptr;
}

STAND_IN(DWORD, WaitForSingleObject, (HANDLE handle, DWORD milliseconds)) {
    if (auto* system = SystemFunction<decltype(WaitForSingleObject)>("WaitForSingleObject");
        system != nullptr && !Platform().IsOpen(handle, "mutex")) {
        return system(handle, milliseconds);
    }
    // A wait for a mutex that is held would last for ever here.
    if (!Platform().Call("WaitForSingleObject") || !Platform().IsOpen(handle, "mutex") || Platform().mutexHeld) {
        return WAIT_FAILED;
    }
    Platform().mutexHeld = Platform().waitAnswer != WAIT_FAILED;
    return Platform().waitAnswer;
}

STAND_IN(BOOL, ReleaseMutex, (HANDLE handle)) {
    if (!Platform().IsOpen(handle, "mutex") || !Platform().mutexHeld) {
        ++Platform().badCloses;
        return Fail(ERROR_NOT_OWNER);
    }
    Platform().mutexHeld = false;
    return TRUE;
}

// ---- Shared section

STAND_IN(BOOL, InitializeSecurityDescriptor, (PSECURITY_DESCRIPTOR descriptor, DWORD revision)) {
    if (!Platform().Call("InitializeSecurityDescriptor")) return FALSE;
    std::memset(descriptor, 0, sizeof(SECURITY_DESCRIPTOR));
    return revision == 1;
}

STAND_IN(BOOL, SetSecurityDescriptorDacl, (PSECURITY_DESCRIPTOR, BOOL present, PACL list, BOOL)) {
    return Platform().Call("SetSecurityDescriptorDacl") && present && list == nullptr;
}

STAND_IN(HANDLE, CreateFileMappingA,
         (HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protection, DWORD, DWORD size, LPCSTR name)) {
    if (!Platform().Call("CreateFileMappingA")) return nullptr;
    if (file != INVALID_HANDLE_VALUE || protection != PAGE_READWRITE || size != 4 ||
        name != std::string("Global\\OSMIRALSharedMemoryExt")) {
        return Fail(ERROR_INVALID_PARAMETER), nullptr;
    }
    if (!Platform().SharedCount()) Platform().section = 0;
    Platform().sectionSecurity =
        security != nullptr && security->bInheritHandle ? security->lpSecurityDescriptor : nullptr;
    return Platform().Add("section");
}

// The one view of this process; its address is the section itself.
static HANDLE view = nullptr;

STAND_IN(LPVOID, MapViewOfFile, (HANDLE handle, DWORD access, DWORD, DWORD, SIZE_T size)) {
    if (!Platform().Call("MapViewOfFile")) return nullptr;
    if (!Platform().IsOpen(handle, "section") || access != FILE_MAP_ALL_ACCESS || size != 4) return nullptr;
    view = Platform().Add("view");
    return &Platform().section;
}

STAND_IN(BOOL, UnmapViewOfFile, (LPCVOID address)) {
    if (address == &Platform().section && Platform().Remove(view)) return TRUE;
    ++Platform().badCloses;
    return FALSE;
}

// ---- Clock

STAND_IN(DWORD, GetTickCount, ()) { return Platform().tickCount; }

STAND_IN(void, Sleep, (DWORD milliseconds)) {
    Platform().sleeps.push_back(milliseconds);
    Platform().tickCount += milliseconds;
}

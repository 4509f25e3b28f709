// Stand-ins: handles, the named mutex, the shared section and the clock.
#include <cstring>

#include "StandIn.h"  // this platform's
#include "Tests/ScriptedWindows/ScriptedWindows.h"

STAND_IN(BOOL, CloseHandle, (HANDLE handle)) {
    if (Machine().IsOpen(handle, "file") && !Machine().Call("CloseHandle file")) return FALSE;
    if (Machine().Remove(handle)) return TRUE;
    if (auto* system = SystemFunction<decltype(CloseHandle)>("CloseHandle")) return system(handle);
    ++Machine().badCloses;
    return Fail(ERROR_INVALID_HANDLE);
}

// ---- Mutex

STAND_IN(HANDLE, CreateMutexA, (LPSECURITY_ATTRIBUTES, BOOL, LPCSTR name)) {
    return Machine().Call((std::string("CreateMutexA ") + name).c_str()) ? Machine().Add("mutex") : nullptr;
}

STAND_IN(DWORD, WaitForSingleObject, (HANDLE handle, DWORD milliseconds)) {
    if (auto* system = SystemFunction<decltype(WaitForSingleObject)>("WaitForSingleObject");
        system != nullptr && !Machine().IsOpen(handle, "mutex")) {
        return system(handle, milliseconds);
    }
    // A wait for a taken mutex would never end here.
    if (!Machine().Call("WaitForSingleObject", handle, "mutex") || milliseconds != INFINITE || Machine().mutexHeld)
        return WAIT_FAILED;
    Machine().mutexHeld = true;
    return Machine().waitAnswer;
}

STAND_IN(BOOL, ReleaseMutex, (HANDLE handle)) {
    if (!Machine().IsOpen(handle, "mutex") || !Machine().mutexHeld) {
        ++Machine().badCloses;
        return Fail(ERROR_NOT_OWNER);
    }
    Machine().mutexHeld = false;
    return TRUE;
}

// ---- Shared section

STAND_IN(BOOL, InitializeSecurityDescriptor, (PSECURITY_DESCRIPTOR descriptor, DWORD revision)) {
    if (!Machine().Call("InitializeSecurityDescriptor")) return FALSE;
    std::memset(descriptor, 0, sizeof(SECURITY_DESCRIPTOR));
    return revision == 1;
}

STAND_IN(BOOL, SetSecurityDescriptorDacl, (PSECURITY_DESCRIPTOR, BOOL present, PACL list, BOOL)) {
    return Machine().Call("SetSecurityDescriptorDacl") && present && list == nullptr;
}

STAND_IN(HANDLE, CreateFileMappingA,
         (HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protection, DWORD, DWORD size, LPCSTR name)) {
    if (!Machine().Call("CreateFileMappingA")) return nullptr;
    if (file != INVALID_HANDLE_VALUE || protection != PAGE_READWRITE || size != 4 ||
        name != std::string("Global\\OSMIRALSharedMemoryExt")) {
        return Fail(ERROR_INVALID_PARAMETER), nullptr;
    }
    if (!Machine().SharedCount()) Machine().section = 0;
    Machine().sectionSecurity =
        security != nullptr && security->bInheritHandle ? security->lpSecurityDescriptor : nullptr;
    return Machine().Add("section");
}

// The one view of this process; its address is the section itself.
static HANDLE view = nullptr;

STAND_IN(LPVOID, MapViewOfFile, (HANDLE handle, DWORD access, DWORD, DWORD, SIZE_T size)) {
    if (!Machine().Call("MapViewOfFile")) return nullptr;
    if (!Machine().IsOpen(handle, "section") || access != FILE_MAP_ALL_ACCESS || size != 4) return nullptr;
    view = Machine().Add("view");
    return &Machine().section;
}

STAND_IN(BOOL, UnmapViewOfFile, (LPCVOID address)) {
    if (address == &Machine().section && Machine().Remove(view)) return TRUE;
    ++Machine().badCloses;
    return FALSE;
}

// ---- Clock

STAND_IN(DWORD, GetTickCount, ()) { return Machine().tickCount; }

STAND_IN(void, Sleep, (DWORD milliseconds)) {
    Machine().sleeps.push_back(milliseconds);
    Machine().tickCount += milliseconds;
}

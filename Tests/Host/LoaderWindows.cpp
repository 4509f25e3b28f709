#include <windows.h>

#include <cstdio>
#include <cstdlib>

void* FindIn(const char* library, const char* name) {
    const HMODULE loaded = LoadLibraryA(library);
    if (const FARPROC found = loaded == nullptr ? nullptr : GetProcAddress(loaded, name))
        return reinterpret_cast<void*>(found);
    std::fprintf(stderr, "%s, %s: error %lu\n", library, name, GetLastError());
    std::exit(1);
}

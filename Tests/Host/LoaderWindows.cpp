#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "Loader.h"

namespace {

template <class Pointer>
Pointer Checked(Pointer found, const char* name) {
    if (found != nullptr) return found;
    std::fprintf(stderr, "%s: error %lu\n", name, GetLastError());
    std::exit(1);
}

}  // namespace

ClLoader::ClLoader(const char* path) : m_library(Checked(LoadLibraryA(path), path)) {}

ClLoader::~ClLoader() { FreeLibrary(static_cast<HMODULE>(m_library)); }

ClLoader::Address_t ClLoader::Address(const char* name) const {
    return reinterpret_cast<Address_t>(
        reinterpret_cast<void*>(Checked(GetProcAddress(static_cast<HMODULE>(m_library), name), name)));
}
